// The command registry under load: 10,000 commands, 300 of them on a shown
// toolbar. Measures registration, lookups by name, and one refresh of all
// actions after a state change against plain Qt refreshing the same 300
// visible actions by hand.
#include "bench_util.h"
#include "gapp_ccontainer.h"
#include "gapp_command.h"
#include <QApplication>
#include <QToolBar>
#include <vector>

using namespace Zal::GApp;

namespace {

const int COMMANDS = 10000;
const int VISIBLE = 300;

// What every command reports; flipping it is the "state change".
bool g_state = false;

class BenchCommand : public Command
{
public:
    explicit BenchCommand(const QString &name)
        : Command(false, true, name, QStringLiteral("Bench"), QString(), nullptr)
    {
    }
    bool isChecked() const override { return g_state; }
    bool isMenuSensitive() const override { return !g_state; }
    bool isScriptSensitive() const override { return true; }
    QString getParameterString() override { return QString(); }
    bool parseParameterString(const QString &, bool, QString *, Zal::ErrorLog *) override
    {
        return true;
    }
    Interactive_t isInteractive() override { return INTERACTIVE_NO; }
    bool executeMenu() override { return true; }
};

QString nameOf(int i)
{
    return QStringLiteral("bench.cmd_%1").arg(i, 5, 10, QLatin1Char('0'));
}

void registerAll(const std::vector<QString> &names)
{
    for (const QString &name : names)
        new BenchCommand(name);
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);

    std::vector<QString> names;
    names.reserve(COMMANDS);
    for (int i = 0; i < COMMANDS; ++i)
        names.push_back(nameOf(i));

    const double registerNs = Bench::medianNs(5, [&] {
        CommandContainer::deleteAllCommands();
        registerAll(names);
    });
    Bench::report("register_10k_ms", registerNs / 1e6, "ms");

    CommandContainer::deleteAllCommands();
    registerAll(names);

    volatile quintptr sink = 0;
    const double lookupNs = Bench::medianNs(21, [&] {
        for (const QString &name : names)
            sink = sink + quintptr(CommandContainer::getCommand(name));
    });
    Bench::report("get_command_ns", lookupNs / COMMANDS, "ns");

    // Every 33rd command stands on the toolbar, so the visible ones are
    // spread over the whole registry.
    QToolBar bar;
    std::vector<QAction *> visible;
    std::vector<Command *> visibleCommands;
    for (int i = 0; i < VISIBLE; ++i) {
        const QString &name = names[size_t(i) * (COMMANDS / VISIBLE)];
        CommandAction *action = CommandContainer::getCommandAction(name);
        bar.addAction(action);
        visible.push_back(action);
        visibleCommands.push_back(CommandContainer::getCommand(name));
    }
    bar.show();
    CommandContainer::updateAllActions();

    const auto ours = [] {
        g_state = !g_state;
        CommandContainer::updateAllActions();
    };
    const auto baseline = [&] {
        g_state = !g_state;
        for (size_t i = 0; i < visible.size(); ++i) {
            QAction *a = visible[i];
            Command *c = visibleCommands[i];
            const QString text = c->getMenuName();
            if (a->text() != text)
                a->setText(text);
            const bool enabled = c->isMenuSensitive();
            if (a->isEnabled() != enabled)
                a->setEnabled(enabled);
            const bool checked = c->isChecked();
            if (a->isChecked() != checked)
                a->setChecked(checked);
        }
    };
    const auto medians = Bench::alternatingMediansNs(41, ours, baseline);
    Bench::report("update_all_actions_us", medians.first / 1e3, "us");
    Bench::report("update_baseline_us", medians.second / 1e3, "us");
    Bench::ratio("update_all_actions", medians.first / medians.second);

    CommandContainer::deleteAllCommands();
    return 0;
}
