// Switching between two main menus that share half of 20 toolbars of 20
// buttons each (400 buttons): the shared toolbars are kept and re-placed,
// the others destroyed and built anew. Measured against hiding and showing
// the same number of plain QToolBars, built once, by hand. Both sides end
// each switch with the posted work done (layout requests, deferred
// deletes), as the event loop would do it right after.
//
// Both sides run in the library's application object, as a host does, and
// so with its widget style. The same run under Qt's default style follows
// in a child process ("--qt-style"), since a process has one application.
#include "bench_util.h"
#include "test_world.h"
#include "gapp_application.h"
#include "gapp_ccontainer.h"
#include "gapp_command.h"
#include "gapp_init.h"
#include "gapp_main_window.h"
#include "gapp_menu_data.h"
#include "gapp_status_mgr.h"
#include "gapp_toolbar_data.h"
#include "zal_os.h"
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMainWindow>
#include <QProcess>
#include <QTemporaryDir>
#include <QToolBar>
#include <cstdio>
#include <memory>
#include <vector>

using namespace Zal;
using namespace Zal::GApp;

namespace {

const int TOOLBARS = 20;
const int BUTTONS = 20;
const int SHARED = 10;
const int RUNS = 41;

class BenchCommand : public TestUtil::StubCommand
{
public:
    explicit BenchCommand(const QString &name) : StubCommand(name, false) {}
};

QString commandName(int toolbar, int button)
{
    return QStringLiteral("t%1.c%2").arg(toolbar).arg(button);
}

// Toolbars of main menu m: the shared ones, then five of its own.
std::vector<int> toolbarsOf(int m)
{
    std::vector<int> list;
    for (int t = 0; t < SHARED; ++t)
        list.push_back(t);
    for (int t = 0; t < (TOOLBARS - SHARED) / 2; ++t)
        list.push_back(SHARED + m * (TOOLBARS - SHARED) / 2 + t);
    return list;
}

// Every fifth toolbar stands in the left area, the others at the top.
const char *edgeOf(int t)
{
    return t % 5 == 4 ? "left" : "top";
}

QByteArray layoutFile()
{
    QByteArray xml = "<layout><toolbarsection>";
    for (int t = 0; t < TOOLBARS; ++t) {
        xml += QStringLiteral("<toolbar name='tb%1' translate_section='bench' edge='%2'>").arg(t).arg(QLatin1String(edgeOf(t))).toUtf8();
        for (int b = 0; b < BUTTONS; ++b)
            xml += (b == BUTTONS / 2 ? "<sep/><entry>" : "<entry>") + commandName(t, b).toUtf8() + "</entry>";
        xml += "</toolbar>";
    }
    xml += "</toolbarsection><menusection>";
    for (int m = 0; m < 2; ++m) {
        xml += QStringLiteral("<menubar name='main%1'>").arg(m).toUtf8();
        for (int t : toolbarsOf(m))
            xml += QStringLiteral("<toolbar>tb%1</toolbar>").arg(t).toUtf8();
        xml += "</menubar>";
    }
    return xml + "</menusection></layout>";
}

} // namespace

int main(int argc, char **argv)
{
    // The offscreen platform warns about every window size hint it ignores.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    const bool qtStyle = argc > 1 && qstrcmp(argv[1], "--qt-style") == 0;
    std::unique_ptr<QApplication> app(qtStyle ? new QApplication(argc, argv) : new Application(argc, argv));
    const QString suffix = qtStyle ? QStringLiteral("_qt_style") : QString();
    for (int t = 0; t < TOOLBARS; ++t)
        for (int b = 0; b < BUTTONS; ++b)
            new BenchCommand(commandName(t, b));

    const QByteArray xml = layoutFile();
    TestUtil::World world(xml);
    if (!world.isValid())
        return 1;

    QStringList args{QStringLiteral("bench_toolbars")};
    auto *win = new MainWindow("bench", new AppStatusManager, InitLibrary(), args);
    win->show();
    MenuDataContainer::createMainMenu(QStringLiteral("main0"));
    std::vector<QToolBar *> sharedWidgets;
    for (int t = 0; t < SHARED; ++t)
        sharedWidgets.push_back(ToolBarContainer::getToolBar(QStringLiteral("tb%1").arg(t))->widget());

    // By hand: the same toolbars as plain QToolBars with plain actions, all
    // built once; a switch hides those of the old main menu and shows the
    // others.
    QMainWindow plain;
    std::vector<QToolBar *> plainBars;
    for (int t = 0; t < TOOLBARS; ++t) {
        QToolBar *bar = plain.addToolBar(QStringLiteral("tb%1").arg(t));
        if (edgeOf(t)[0] == 'l')
            plain.addToolBar(Qt::LeftToolBarArea, bar);
        for (int b = 0; b < BUTTONS; ++b) {
            if (b == BUTTONS / 2)
                bar->addSeparator();
            bar->addAction(commandName(t, b));
        }
        plainBars.push_back(bar);
    }
    plain.show();
    std::vector<bool> inMenu[2];
    for (int m = 0; m < 2; ++m) {
        inMenu[m].assign(TOOLBARS, false);
        for (int t : toolbarsOf(m))
            inMenu[m][size_t(t)] = true;
    }

    int ours = 0;
    int byHand = 0;
    const auto switchOurs = [&] {
        ours = 1 - ours;
        MenuDataContainer::createMainMenu(QStringLiteral("main%1").arg(ours));
        QCoreApplication::sendPostedEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    };
    const auto switchByHand = [&] {
        byHand = 1 - byHand;
        for (int t = 0; t < TOOLBARS; ++t)
            plainBars[size_t(t)]->setVisible(inMenu[byHand][size_t(t)]);
        QCoreApplication::sendPostedEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    };
    // Two switches per sample, so that each sample holds one switch in each direction.
    const auto times = Bench::alternatingMediansNs(RUNS, [&] { switchOurs(); switchOurs(); },
                                                   [&] { switchByHand(); switchByHand(); });

    for (int t = 0; t < SHARED; ++t) {
        if (ToolBarContainer::getToolBar(QStringLiteral("tb%1").arg(t))->widget() != sharedWidgets[size_t(t)]) {
            std::fprintf(stderr, "bench_toolbars: shared toolbar tb%d was built anew\n", t);
            return 1;
        }
    }
    Bench::ratio(("toolbar_switch" + suffix).toUtf8().constData(), times.first / times.second);
    Bench::report(("toolbar_switch" + suffix + "_ms").toUtf8().constData(), times.first / 2 / 1e6, "ms");
    delete win;
    if (!qtStyle) {
        std::fflush(stdout);
        QProcess child;
        child.setProcessChannelMode(QProcess::ForwardedChannels);
        child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--qt-style")});
        if (!child.waitForFinished(-1) || child.exitCode() != 0)
            return 1;
    }
    return 0;
}
