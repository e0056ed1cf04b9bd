// Switching views in a shown main window: two views of 20 view widgets each
// in 6 tab groups, and a template of the first that shows 12 of its widgets.
// A template switch rearranges the widgets it has; a view switch deletes
// them and creates those of the other view.
//
// A switch is timed from setView() until the polish and layout requests it
// posted are handled. Painting the window afterwards is left out: it is the
// same work for both kinds of switch and belongs to the host's widgets.
// Each run is one round trip to the other view and two round trips to the
// template; the first template switch after new widgets also pays their
// deferred first-time work (the tables lay out their items when they first
// leave a window), so the median gives the usual cost of a switch.
#include "bench_util.h"
#include "test_world.h"
#include "gapp_init.h"
#include "gapp_main_window.h"
#include "gapp_status_mgr.h"
#include "gapp_vcontainer.h"
#include "gapp_view_widget.h"
#include "zal_os.h"
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QVBoxLayout>
#include <cstdio>
#include <vector>

using namespace Zal;
using namespace Zal::GApp;

namespace {

const int WIDGETS = 20;
const int GROUPS = 6;
const int TEMPLATE_WIDGETS = 12;
const int RUNS = 31;

int g_created = 0;

// A typical element list: a caption over a table of a few hundred cells.
class BenchCreator : public ViewWidgetCreator
{
public:
    explicit BenchCreator(const QString &name) : ViewWidgetCreator(name, name, nullptr), _name(name) {}
    QWidget *createWidget(QWidget *parent) override
    {
        ++g_created;
        auto *widget = new QWidget(parent);
        auto *box = new QVBoxLayout(widget);
        box->addWidget(new QLabel(_name, widget));
        auto *table = new QTableWidget(40, 6, widget);
        for (int row = 0; row < 40; ++row)
            for (int column = 0; column < 6; ++column)
                table->setItem(row, column, new QTableWidgetItem(QString::number(row * column)));
        box->addWidget(table);
        return widget;
    }

private:
    QString _name;
};

// Group k > 0 docks to group (k - 1) / 2, right for odd k, below for even
// k; the other widgets are further tabs. The first widgets are the group
// heads, so a template of the first ones shows every dock widget it needs.
QByteArray viewXml(const QString &view, const QString &prefix)
{
    QByteArray xml = "<view name='" + view.toUtf8() + "'>";
    for (int i = 0; i < WIDGETS; ++i) {
        const QByteArray name = (prefix + QString::number(i)).toUtf8();
        if (i == 0) {
            xml += "<widget name='" + name + "' pos='top' size='100' maximizable='yes'/>";
        } else if (i < GROUPS) {
            xml += "<widget name='" + name + "' dock='" + (prefix + QString::number((i - 1) / 2)).toUtf8()
                   + "' pos='" + (i % 2 ? "right" : "bottom") + "' size='" + QByteArray::number(40 + 5 * i)
                   + "' maximizable='yes'/>";
        } else {
            xml += "<widget name='" + name + "' dock='" + (prefix + QString::number(i % GROUPS)).toUtf8()
                   + "' pos='center' size='100' maximizable='yes'/>";
        }
    }
    return xml + "</view>";
}

QtMessageHandler g_previous_handler = nullptr;

// The offscreen platform warns on every size-constraint change of a window.
void quietHandler(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (message.contains(QLatin1String("propagateSizeHints")))
        return;
    if (g_previous_handler)
        g_previous_handler(type, context, message);
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    g_previous_handler = qInstallMessageHandler(quietHandler);

    QByteArray xml = "<layout><viewsection>" + viewXml(QStringLiteral("first"), QStringLiteral("a"))
                     + "<template name='part' parent='first'>";
    for (int i = 0; i < TEMPLATE_WIDGETS; ++i)
        xml += "<widget>a" + QByteArray::number(i) + "</widget>";
    xml += "</template>" + viewXml(QStringLiteral("second"), QStringLiteral("b")) + "</viewsection></layout>";

    TestUtil::World world(xml);
    if (!world.isValid())
        return 1;

    for (int i = 0; i < WIDGETS; ++i) {
        new BenchCreator(QStringLiteral("a%1").arg(i));
        new BenchCreator(QStringLiteral("b%1").arg(i));
    }
    QStringList args{QStringLiteral("bench_views")};
    auto *win = new MainWindow("bench", new AppStatusManager, InitLibrary(), args);
    win->resize(1600, 1000);
    win->show();
    QCoreApplication::processEvents();

    const auto switchTo = [](const char *view) {
        const double ns = Bench::timeNs([view] {
            ViewContainer::setView(QString::fromLatin1(view));
            // Layouts may ask again for their parents; a few passes settle them.
            for (int pass = 0; pass < 4; ++pass) {
                QCoreApplication::sendPostedEvents(nullptr, QEvent::PolishRequest);
                QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
            }
        });
        QCoreApplication::processEvents();
        return ns;
    };

    // Warm-up, then alternate between the view and the template rounds.
    switchTo("first");
    switchTo("part");
    switchTo("first");
    switchTo("second");
    switchTo("first");
    std::vector<double> templateSwitches;
    std::vector<double> viewSwitches;
    int recreatedByTemplates = 0;
    for (int run = 0; run < RUNS; ++run) {
        viewSwitches.push_back(switchTo("second"));
        viewSwitches.push_back(switchTo("first"));
        const int before = g_created;
        for (int round = 0; round < 2; ++round) {
            templateSwitches.push_back(switchTo("part"));
            templateSwitches.push_back(switchTo("first"));
        }
        recreatedByTemplates += g_created - before;
    }
    const double templateMs = Bench::median(templateSwitches) / 1e6;
    const double viewMs = Bench::median(viewSwitches) / 1e6;
    Bench::report("template_switch_ms", templateMs, "ms");
    Bench::report("view_switch_ms", viewMs, "ms");
    Bench::ratio("template_vs_view_switch", templateMs / viewMs);
    delete win;
    if (recreatedByTemplates != 0) {
        std::fprintf(stderr, "bench_views: template switches created %d widgets\n", recreatedByTemplates);
        return 1;
    }
    return 0;
}
