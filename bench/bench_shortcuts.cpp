// Shortcut keys and the application event filter.
//
// shortcut_lookup_us: a key press sent to a widget of the main window, through
// the application's event filters to the execute-command event posted for
// it, with 5,000 bindings in the active map. The key looked up is the last
// one bound, which a walk over all bindings would find last. The posted
// events are counted and dropped at the end, outside the timing.
//
// event_filter_overhead: 1,000,000 ordinary (non-input) events sent to a
// widget of the main window, with the library's application event filters
// installed against the same flood with them removed; the two floods
// alternate and the medians are compared.
#include "bench_util.h"
#include "test_world.h"
#include "gapp_ccontainer.h"
#include "gapp_command.h"
#include "gapp_event_filter.h"
#include "gapp_init.h"
#include "gapp_main_area.h"
#include "gapp_main_window.h"
#include "gapp_shortcut.h"
#include "gapp_status_mgr.h"
#include "zal_os.h"
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QKeyEvent>
#include <QTemporaryDir>
#include <cstdio>

using namespace Zal;
using namespace Zal::GApp;

namespace {

const int BINDINGS = 5000;
const int COMMANDS = 50;
const int KEYS_PER_RUN = 1000;
const int FLOOD = 1000000;
const int RUNS = 31;

class BenchCommand : public TestUtil::StubCommand
{
public:
    explicit BenchCommand(const QString &name) : StubCommand(name) {}
};

// Counts the posted command events when they arrive and drops them, so
// that the run can be checked without running the commands.
class PostCounter : public QObject
{
public:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() != ExecuteCommandEvent::TYPE)
            return false;
        ++posted;
        return true;
    }
    int posted = 0;
};

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);

    TestUtil::World world("<layout/>");
    if (!world.isValid())
        return 1;

    for (int i = 0; i < COMMANDS; ++i)
        new BenchCommand(QStringLiteral("bench.cmd%1").arg(i));
    QStringList args{QStringLiteral("bench_shortcuts")};
    auto *win = new MainWindow("bench", new AppStatusManager, InitLibrary(), args);
    auto *target = new QWidget(win);

    // Distinct printable keys, a few of them also with Control.
    std::vector<ShortcutData::Shortcut_t> bindings;
    for (int i = 0; i < BINDINGS; ++i) {
        const int key = 0x100 + i / 2;
        const int modifiers = i % 2 ? int(Qt::ControlModifier) : 0;
        bindings.push_back({QStringLiteral("bench.cmd%1").arg(i % COMMANDS), QString(), key | modifiers});
    }
    ShortcutContainer::getData(QStringLiteral("default"))->setShortcuts(bindings);
    ShortcutContainer::setActiveData(QStringLiteral("default"));
    const int lastKey = 0x100 + (BINDINGS - 1) / 2;

    const double lookupNs = Bench::medianNs(RUNS, [&] {
        for (int i = 0; i < KEYS_PER_RUN; ++i) {
            QKeyEvent press(QEvent::KeyPress, lastKey, Qt::ControlModifier);
            QCoreApplication::sendEvent(target, &press);
        }
    });
    PostCounter counter;
    win->installEventFilter(&counter);
    QCoreApplication::sendPostedEvents(win, ExecuteCommandEvent::TYPE);
    win->removeEventFilter(&counter);
    if (counter.posted != KEYS_PER_RUN * (RUNS + 1)) {
        std::fprintf(stderr, "posted %d command events, expected %d\n", counter.posted, KEYS_PER_RUN * (RUNS + 1));
        return 1;
    }
    Bench::report("shortcut_lookup_us", lookupNs / KEYS_PER_RUN / 1000.0, "us");

    const QEvent::Type ordinary = QEvent::Type(QEvent::User + 1);
    const auto flood = [&] {
        for (int i = 0; i < FLOOD; ++i) {
            QEvent event(ordinary);
            QCoreApplication::sendEvent(target, &event);
        }
    };
    QObject *filters[] = {EventFilter::instance(), MainWindow::main_area};
    const auto withoutFilters = [&] {
        for (QObject *f : filters)
            app.removeEventFilter(f);
        flood();
        for (QObject *f : filters)
            app.installEventFilter(f);
    };
    const auto medians = Bench::alternatingMediansNs(RUNS / 2, flood, withoutFilters);
    Bench::ratio("event_filter_overhead", medians.first / medians.second);

    delete win;
    return 0;
}
