// The main area under a realistic arrangement: 40 view widgets in 12 tab
// groups and 11 splitters. Measures realising the layout (tree, widgets,
// first layout and paint) against building the same QSplitter/QTabWidget
// tree by hand with plain Qt, and one save and restore of its state string.
#include "bench_util.h"
#include "gapp_main_area.h"
#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QSplitter>
#include <QTabWidget>
#include <cstdio>
#include <vector>

using namespace Zal::MainArea;

namespace {

const int VIEWS = 40;
const int GROUPS = 12;
const int RUNS = 41;

// Group k > 0 docks to group (k - 1) / 2, to its right for odd k, below it
// for even k; the remaining views are further tabs, spread over the groups.
void fillLayout(Layout *layout, const std::vector<QWidget *> &views)
{
    for (int k = 0; k < GROUPS; ++k) {
        const QString label = views[size_t(k)]->objectName();
        if (k == 0) {
            layout->addWidget(views[0], QIcon(), label, nullptr, Area::Center, Area::Percent, 0);
            continue;
        }
        const Area::DockPosition position = k % 2 ? Area::Right : Area::Bottom;
        layout->addWidget(views[size_t(k)], QIcon(), label, views[size_t((k - 1) / 2)], position,
                          Area::Percent, 40 + k);
    }
    for (int i = GROUPS; i < VIEWS; ++i) {
        layout->addWidget(views[size_t(i)], QIcon(), views[size_t(i)]->objectName(),
                          views[size_t(i % GROUPS)], Area::Center, Area::Percent, 0);
    }
}

// The offscreen platform warns on every size-constraint change of a window;
// that noise would bury the result lines.
QtMessageHandler g_previous_handler = nullptr;

void quietHandler(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (message.contains(QLatin1String("propagateSizeHints")))
        return;
    if (g_previous_handler)
        g_previous_handler(type, context, message);
    else
        std::fprintf(stderr, "%s\n", qPrintable(message));
}

int extent(const QSize &size, Qt::Orientation orientation)
{
    return orientation == Qt::Horizontal ? size.width() : size.height();
}

// The plain-Qt equivalent, built from the same tree description.
QWidget *buildByHand(const LayoutGroup *group, const LayoutRow *row, QWidget *parent)
{
    if (group) {
        auto *tabs = new QTabWidget(parent);
        for (const LayoutItem &item : group->items)
            tabs->addTab(item.widget, item.label);
        if (group->raised_widget)
            tabs->setCurrentWidget(group->raised_widget);
        return tabs;
    }
    auto *splitter = new QSplitter(row->orientation, parent);
    splitter->addWidget(buildByHand(row->first_group, row->first_row, splitter));
    splitter->addWidget(buildByHand(row->second_group, row->second_row, splitter));
    splitter->setSizes({extent(row->first_size, row->orientation), extent(row->second_size, row->orientation)});
    return splitter;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    g_previous_handler = qInstallMessageHandler(quietHandler);

    std::vector<QWidget *> views;
    for (int i = 0; i < VIEWS; ++i) {
        auto *view = new QLabel(QStringLiteral("view %1").arg(i));
        view->setObjectName(QStringLiteral("view%1").arg(i));
        view->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        views.push_back(view);
    }

    // Both trees live in a shown window of the same size.
    QWidget oursWindow;
    auto *oursBox = new QHBoxLayout(&oursWindow);
    oursBox->setContentsMargins(0, 0, 0, 0);
    auto *area = new Area(&oursWindow);
    oursBox->addWidget(area);
    oursWindow.resize(1600, 1000);
    oursWindow.show();

    QWidget handWindow;
    auto *handBox = new QHBoxLayout(&handWindow);
    handBox->setContentsMargins(0, 0, 0, 0);
    handWindow.resize(1600, 1000);
    handWindow.show();
    QCoreApplication::processEvents();

    // The description for the hand-built tree, made once.
    Layout description(area);
    fillLayout(&description, views);

    QWidget *handRoot = nullptr;
    const auto buildOurs = [&] {
        Layout layout(area);
        fillLayout(&layout, views);
        area->addWidgets(&layout);
        QCoreApplication::processEvents();
    };
    const auto tearDownOurs = [&] {
        area->detachWidgets();
        QCoreApplication::processEvents();
    };
    const auto buildHand = [&] {
        handRoot = buildByHand(description.topGroup(), description.topRow(), &handWindow);
        handBox->addWidget(handRoot);
        QCoreApplication::processEvents();
    };
    const auto tearDownHand = [&] {
        for (QWidget *view : views) {
            view->hide();
            view->setParent(nullptr);
        }
        delete handRoot;
        handRoot = nullptr;
        QCoreApplication::processEvents();
    };

    // Warm-up, then alternate so that drifts of the machine hit both alike.
    buildOurs();
    tearDownOurs();
    buildHand();
    tearDownHand();
    std::vector<double> ours;
    std::vector<double> byHand;
    for (int i = 0; i < RUNS; ++i) {
        ours.push_back(Bench::timeNs(buildOurs));
        tearDownOurs();
        byHand.push_back(Bench::timeNs(buildHand));
        tearDownHand();
    }
    const double oursNs = Bench::median(ours);
    const double handNs = Bench::median(byHand);
    Bench::report("area_build_ms", oursNs / 1e6, "ms");
    Bench::ratio("area_build", oursNs / handNs);

    // Save the realised arrangement and restore it into a fresh tree.
    buildOurs();
    const double roundTripNs = Bench::medianNs(RUNS, [&] {
        const QString state = area->saveStateToString();
        Layout layout(area);
        fillLayout(&layout, views);
        layout.restoreStateFromString(state);
    });
    Bench::report("area_state_roundtrip_ms", roundTripNs / 1e6, "ms");

    area->deleteWidgets();
    return 0;
}
