// The demo host. With "-headless" it runs its commands without a window,
// prints what happened and exits 0 only when every expected result held;
// otherwise it shows its commands on a toolbar.
#include "demo_app.h"
#include "gapp_ccontainer.h"
#include "gapp_main_window.h"
#include "gapp_status_mgr.h"
#include "zal_errorlog.h"
#include "zal_variant.h"
#include <QApplication>
#include <QLabel>
#include <QMainWindow>
#include <QToolBar>
#include <cstdio>

using namespace Zal;
using namespace Zal::GApp;

namespace {

int failures = 0;

void expect(bool ok, const QString &what)
{
    std::printf("%s %s\n", ok ? "ok  " : "FAIL", what.toLocal8Bit().constData());
    if (!ok)
        ++failures;
}

bool runScript(const QString &name, const QString &params, Variant *result)
{
    Command *cmd = CommandContainer::getCommand(name);
    if (!cmd)
        return false;
    QString code;
    ErrorLog log;
    if (!cmd->parseParameterString(params, true, &code, &log))
        return false;
    return cmd->executeScript(result, &code, &log);
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    const bool headless = app.arguments().contains(QStringLiteral("-headless"));

    AppStatusManager smgr;
    // Until the demo has its main window, the commands reach the manager here.
    MainWindow::smgr = &smgr;

    QStringList journal;
    const unsigned int measure = smgr.getUniqueId(QStringLiteral("measure"));
    const unsigned int inspect = smgr.getUniqueId(QStringLiteral("inspect"));
    smgr.setStatusData(measure, new Demo::DemoStatus(measure, QStringLiteral("measure"), &journal));
    smgr.setStatusData(inspect, new Demo::DemoStatus(inspect, QStringLiteral("inspect"), &journal));
    Demo::createCommands();

    unsigned int dataSignals = 0;
    QObject::connect(&smgr, &AppStatusManager::dataChangedSignal, [&] { ++dataSignals; });

    smgr.setAppMode(measure);
    expect(smgr.getAppMode() == measure, QStringLiteral("measuring mode active"));
    journal.clear();
    smgr.setAppMode(inspect);
    expect(journal
               == QStringList(
                   {"measure before 1", "inspect before 1", "measure after 0", "inspect after 0"}),
           QStringLiteral("both types heard of the change to inspection: ")
               + journal.join(QStringLiteral("; ")));

    expect(std::distance(CommandContainer::begin(), CommandContainer::end()) == 6,
           QStringLiteral("six commands registered"));

    Variant result;
    bool ran =
        runScript(QStringLiteral("file.open"), QStringLiteral("file=\"part 1.insp\""), &result);
    expect(ran && result.getString() == QStringLiteral("part 1.insp"),
           QStringLiteral("file.open -> ") + result.toString());

    ran = runScript(QStringLiteral("meas.distance"), QStringLiteral("p1=[0, 0, 0] p2=[3, 4, 0]"),
                    &result);
    expect(ran && result.getType() == Variant::TYPE_LIST && result.getList().size() == 4
               && result.getList()[0].getString() == QStringLiteral("5"),
           QStringLiteral("meas.distance -> ") + result.toString());
    expect(!runScript(QStringLiteral("meas.distance"), QStringLiteral("p1=[0, 0]"), &result),
           QStringLiteral("meas.distance rejects a point with two coordinates"));
    expect(dataSignals == 2, QStringLiteral("data changed twice: %1").arg(dataSignals));

    CommandAction *save = CommandContainer::getCommandAction(QStringLiteral("file.save"));
    save->updateAction(true);
    expect(save->isEnabled(), QStringLiteral("file.save enabled after a measurement"));
    ran = runScript(QStringLiteral("sys.undo"), QString(), &result);
    expect(ran && result.getString() == QStringLiteral("0"),
           QStringLiteral("sys.undo -> ") + result.toString());
    CommandAction *redo = CommandContainer::getCommandAction(QStringLiteral("sys.redo"));
    redo->updateAction(true);
    expect(redo->isEnabled(), QStringLiteral("sys.redo enabled after an undo"));

    Command *grid = CommandContainer::getCommand(QStringLiteral("view.toggle_grid"));
    CommandAction *gridAction =
        CommandContainer::getCommandAction(QStringLiteral("view.toggle_grid"));
    grid->executeMenu();
    gridAction->updateAction(true);
    expect(gridAction->isCheckable() && gridAction->isChecked(),
           QStringLiteral("view.toggle_grid checked"));
    expect(grid->isDefaultIconSet()
               && !CommandContainer::getCommand(QStringLiteral("file.open"))->isDefaultIconSet(),
           QStringLiteral("grid has a text icon, file.open its own"));

    int status = failures == 0 ? 0 : 1;
    std::printf("%s\n",
                failures == 0 ? "demo: all results as expected" : "demo: some results differ");
    if (!headless) {
        QMainWindow win;
        QToolBar *bar = win.addToolBar(QStringLiteral("demo"));
        for (auto it = CommandContainer::begin(); it != CommandContainer::end(); ++it)
            it->second->createToolBarWidget(bar, false);
        win.setCentralWidget(new QLabel(
            QStringLiteral("The main window arrives soon; these are the demo's commands.")));
        win.show();
        status = app.exec();
    }
    CommandContainer::deleteAllCommands();
    MainWindow::smgr = nullptr;
    return status;
}
