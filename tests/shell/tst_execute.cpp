#include "tst_execute.h"
#include "gapp_ccontainer.h"
#include "gapp_command.h"
#include "gapp_init.h"
#include "gapp_main_window.h"
#include "gapp_status_mgr.h"
#include "test_util.h"
#include "zal_dialogs.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_variant.h"
#include <QProgressBar>
#include <QStatusBar>
#include <QToolBar>
#include <functional>

using namespace Zal;
using namespace Zal::GApp;

namespace {

// A command whose answers and actions the tests set.
class TestCommand : public Command
{
public:
    TestCommand(const QString &name, bool menuFunction = true)
        : Command(menuFunction, false, name, name + QStringLiteral(" text"), QString())
    {
    }
    bool isChecked() const override { return false; }
    bool isMenuSensitive() const override { return menuSensitive; }
    bool isScriptSensitive() const override { return scriptSensitive; }
    QString getParameterString() override { return params; }
    bool parseParameterString(const QString &p, bool, QString *code, ErrorLog *log) override
    {
        parsed = p;
        if (p == QLatin1String("bad")) {
            *code = QStringLiteral("GAPP-0013");
            *log << "bad parameters" << END_LOG;
            return false;
        }
        return true;
    }
    Interactive_t isInteractive() override { return INTERACTIVE_NO; }
    bool executeMenu() override
    {
        ++menuRuns;
        if (onRun)
            onRun();
        return menuResult;
    }
    bool executeScript(QString *result, QString *code, ErrorLog *) override
    {
        ++scriptRuns;
        scriptCounterSeen = MainWindow::main_win->isScriptCommandRunning();
        if (onRun)
            onRun();
        *result = scriptResult;
        if (!scriptOk)
            *code = scriptCode;
        return scriptOk;
    }
    using Command::executeScript;
    bool isSensitiveInSelectCommandMode(SelectCommandMode_t mode) const override
    {
        return mode == selectMode;
    }
    std::vector<CmdGroup_t> getSynchronizedCmdGroups() override { return synchronizedGroups; }
    std::vector<CmdGroup_t> belongsToCmdGroups() override { return groups; }

    bool menuSensitive = true;
    bool scriptSensitive = true;
    bool menuResult = true;
    bool scriptOk = true;
    QString scriptCode;
    QString scriptResult = QStringLiteral("done");
    QString params = QStringLiteral("a=1");
    QString parsed;
    int menuRuns = 0;
    int scriptRuns = 0;
    bool scriptCounterSeen = false;
    SelectCommandMode_t selectMode = SELECT_2;
    std::vector<CmdGroup_t> synchronizedGroups;
    std::vector<CmdGroup_t> groups;
    std::function<void()> onRun;
};

class RecordingCallback : public MenuFunctionFinishedCallback
{
public:
    explicit RecordingCallback(QStringList *calls, QString name) : _calls(calls), _name(std::move(name)) {}
    void menuFunctionFinished() override { _calls->append(_name); }

private:
    QStringList *_calls;
    QString _name;
};

} // namespace

struct TestExecution::Fixture
{
    TestUtil::Environment env;
    GTools::ScriptedDialogs dialogs;
    QStringList args{QStringLiteral("prog")};
    MainWindow *window;
    Fixture() : window(new MainWindow("execution test", new AppStatusManager, InitLibrary(), args)) {}
    ~Fixture() { delete window; }
};

void TestExecution::init()
{
    _f = new Fixture;
}

void TestExecution::cleanup()
{
    delete _f;
    _f = nullptr;
}

void TestExecution::menuCommandRunsWithStatusLine()
{
    TestCommand cmd(QStringLiteral("test.measure"));
    QString seen;
    cmd.onRun = [&] { seen = _f->window->getStatusText(); };
    QSignalSpy finished(_f->window, &MainWindow::menuCommandFinishedSignal);
    QVERIFY(_f->window->executeCommand(&cmd));
    QCOMPARE(cmd.menuRuns, 1);
    QCOMPARE(seen, QStringLiteral("test.measure text"));
    QCOMPARE(finished.count(), 1);
    QCOMPARE(finished.at(0).at(0).toString(), QStringLiteral("test.measure"));
    QVERIFY(!MainWindow::smgr->isCommandActive());
    QVERIFY(!MainWindow::smgr->isMenuFunctionActive());
}

void TestExecution::semaphoreRefusesASecondMenuFunction()
{
    TestCommand outer(QStringLiteral("test.outer"));
    TestCommand inner(QStringLiteral("test.inner"));
    bool innerResult = true;
    Command *topDuring = nullptr;
    outer.onRun = [&] {
        innerResult = _f->window->executeCommand(&inner);
        MainWindow::smgr->getActiveCommand(&topDuring);
    };
    QVERIFY(_f->window->executeCommand(&outer));
    QVERIFY(!innerResult);
    QCOMPARE(inner.menuRuns, 0);
    QCOMPARE(topDuring, static_cast<Command *>(&outer));
    QCOMPARE(int(_f->dialogs.requests().size()), 1);
    QCOMPARE(_f->dialogs.requests()[0].code, QStringLiteral("GAPP-0002"));
    QVERIFY(!MainWindow::smgr->isCommandActive());
}

void TestExecution::synchronizedGroupRunsBesideTheMenuFunction()
{
    TestCommand outer(QStringLiteral("test.outer"));
    outer.synchronizedGroups = {Command::CmdGroup_t(3), Command::CmdGroup_t(5)};
    TestCommand inner(QStringLiteral("test.inner"));
    inner.groups = {Command::CmdGroup_t(5)};
    QSignalSpy started(_f->window, &MainWindow::menuGroupCmdStartedSignal);
    QSignalSpy done(_f->window, &MainWindow::menuGroupCmdFinishedSignal);
    int startedDuringInner = -1;
    inner.onRun = [&] { startedDuringInner = started.count(); };
    outer.onRun = [&] { QVERIFY(_f->window->executeCommand(&inner)); };
    QVERIFY(_f->window->executeCommand(&outer));
    QCOMPARE(inner.menuRuns, 1);
    QCOMPARE(startedDuringInner, 1);
    QCOMPARE(done.count(), 1);
    QCOMPARE(started.at(0).at(0).value<Command::CmdGroup_t>(), Command::CmdGroup_t(5));
    QVERIFY(_f->dialogs.requests().empty());
}

void TestExecution::selectCommandModes()
{
    TestCommand selectable(QStringLiteral("test.selectable"));
    TestCommand other(QStringLiteral("test.other"));
    other.selectMode = Command::SELECT_1;
    QToolBar bar;
    bar.addAction(CommandContainer::getCommandAction(selectable.getName()));
    bar.addAction(CommandContainer::getCommandAction(other.getName()));
    bar.show();

    _f->window->setSelectCommandMode(Command::SELECT_2);
    QSignalSpy selected(_f->window, &MainWindow::selectCommandSignal);
    CommandContainer::getCommandAction(selectable.getName())->trigger();
    QCOMPARE(selected.count(), 1);
    QCOMPARE(selected.at(0).at(0).toString(), QStringLiteral("test.selectable"));
    QCOMPARE(selected.at(0).at(1).toString(), QStringLiteral("a=1"));
    QCoreApplication::sendPostedEvents();
    QCOMPARE(selectable.menuRuns, 0);

    CommandContainer::getCommandAction(other.getName())->updateAction(true);
    QVERIFY(!CommandContainer::getCommandAction(other.getName())->isEnabled());
    _f->window->postExecuteCommandEvent(&other);
    QCoreApplication::sendPostedEvents();
    QCOMPARE(other.menuRuns, 0);

    _f->window->setSelectCommandMode(Command::SelectCommandMode_t(5));
    QVERIFY(!_f->window->isMenuSensitive(&selectable));
    QVERIFY(!_f->window->isMenuSensitive(&other));

    _f->window->setSelectCommandMode(Command::SELECT_NONE);
    _f->window->updateSensitivity();
    QVERIFY(CommandContainer::getCommandAction(other.getName())->isEnabled());
    CommandContainer::getCommandAction(other.getName())->trigger();
    QCoreApplication::sendPostedEvents();
    QCOMPARE(other.menuRuns, 1);
}

void TestExecution::postedEventsRespectSensitivity()
{
    TestCommand cmd(QStringLiteral("test.posted"));
    cmd.menuSensitive = false;
    _f->window->postExecuteCommandEvent(&cmd);
    QCoreApplication::sendPostedEvents();
    QCOMPARE(cmd.menuRuns, 0);
    QVERIFY(_f->dialogs.requests().empty()); // dropped, not refused with a dialog

    cmd.menuSensitive = true;
    _f->window->postExecuteCommandEvent(&cmd, AppStatusManager::CommandStartMode_t(1));
    int modeDuring = -1;
    cmd.onRun = [&] { modeDuring = int(MainWindow::smgr->getCommandStartMode()); };
    QCoreApplication::sendPostedEvents();
    QCOMPARE(cmd.menuRuns, 1);
    QCOMPARE(modeDuring, 1);
    QCOMPARE(int(MainWindow::smgr->getCommandStartMode()), 0);
}

void TestExecution::scriptExecution()
{
    TestCommand cmd(QStringLiteral("test.script"));
    QString result, code;
    ErrorLog log;
    log << "old entry" << END_LOG;
    QVERIFY(_f->window->execute(&cmd, QStringLiteral("x=2"), &result, &code, &log));
    QCOMPARE(result, QStringLiteral("done"));
    QCOMPARE(cmd.parsed, QStringLiteral("x=2"));
    QVERIFY(cmd.scriptCounterSeen);
    QVERIFY(!_f->window->isScriptCommandRunning());
    QVERIFY(log.isEmpty());

    // Rejected parameters: nothing runs and the counter stays as it was.
    QVERIFY(!_f->window->execute(&cmd, QStringLiteral("bad"), &result, &code, &log));
    QCOMPARE(cmd.scriptRuns, 1);
    QCOMPARE(code, QStringLiteral("GAPP-0013"));
    QCOMPARE(log.getText(), QStringLiteral("bad parameters"));
    QVERIFY(!_f->window->isScriptCommandRunning());

    cmd.scriptSensitive = false;
    QVERIFY(!_f->window->execute(&cmd, QString(), &result, &code, &log));
    QCOMPARE(code, QStringLiteral("GAPP-0003"));
    QVERIFY(log.getText().endsWith(QStringLiteral("the command is not sensitive: test.script")));
}

void TestExecution::shortScriptFormsShowTheErrorDialog()
{
    TestCommand cmd(QStringLiteral("test.failing"));
    cmd.scriptOk = false;
    cmd.scriptCode = QStringLiteral("GAPP-0014");
    QVERIFY(!_f->window->execute(&cmd, QString()));
    QCOMPARE(int(_f->dialogs.requests().size()), 1);
    QCOMPARE(_f->dialogs.requests()[0].code, QStringLiteral("GAPP-0014"));

    cmd.scriptCode = QStringLiteral("GAPP-0011"); // a user abort needs no dialog
    QVERIFY(!_f->window->execute(&cmd, QString()));
    QCOMPARE(int(_f->dialogs.requests().size()), 1);
}

void TestExecution::macroRecording()
{
    TestCommand cmd(QStringLiteral("test.recorded"));
    QSignalSpy recorded(_f->window, &MainWindow::recordMacroSignal);
    QSignalSpy state(_f->window, &MainWindow::recordingStateChangedSignal);
    QString result, code;
    ErrorLog log;
    _f->window->execute(&cmd, QStringLiteral("p=1"), &result, &code, &log);
    QCOMPARE(recorded.count(), 0);
    _f->window->setRecording(true);
    QCOMPARE(state.count(), 1);
    _f->window->execute(&cmd, QStringLiteral("p=2"), &result, &code, &log);
    _f->window->execute(&cmd, QStringLiteral("p=3"), &result, &code, &log, true);
    _f->window->addCommandToMacro(&cmd, QStringLiteral("p=4"));
    QCOMPARE(recorded.count(), 2);
    QCOMPARE(recorded.at(0).at(1).toString(), QStringLiteral("p=2"));
    QCOMPARE(recorded.at(1).at(1).toString(), QStringLiteral("p=4"));
    QCOMPARE(recorded.at(1).at(2).toBool(), false);
}

void TestExecution::interactiveScriptRestoresTheOuterStatusLine()
{
    TestCommand outer(QStringLiteral("test.outer"));
    TestCommand inner(QStringLiteral("test.inner"));
    QString during, afterInteractive, afterPlain;
    outer.onRun = [&] {
        _f->window->setMessage(QStringLiteral("picking"), 0);
        during = _f->window->getStatusText();
        QString result, code;
        ErrorLog log;
        _f->window->executeInteractive(&inner, QString(), &result, &code, &log);
        afterInteractive = _f->window->getStatusText();
        _f->window->execute(&inner, QString(), &result, &code, &log);
        afterPlain = _f->window->getStatusText();
    };
    _f->window->setPreMessage(QStringLiteral("mode"));
    QVERIFY(_f->window->executeCommand(&outer));
    QCOMPARE(during, QStringLiteral("mode: test.outer text: picking"));
    QCOMPARE(afterInteractive, during);
    QCOMPARE(afterPlain, QStringLiteral("mode: test.outer text"));
}

void TestExecution::callbacksRunWhenTheOutermostCommandEnds()
{
    QStringList calls;
    MenuFunctionFinishedCallback::registerCB(new RecordingCallback(&calls, QStringLiteral("now")));
    QCOMPARE(calls, QStringList{QStringLiteral("now")});

    TestCommand outer(QStringLiteral("test.outer"));
    TestCommand inner(QStringLiteral("test.inner"), false);
    inner.onRun = [&] {
        MenuFunctionFinishedCallback::registerCB(new RecordingCallback(&calls, QStringLiteral("inner")));
    };
    outer.onRun = [&] {
        MenuFunctionFinishedCallback::registerCB(new RecordingCallback(&calls, QStringLiteral("outer")));
        _f->window->executeCommand(&inner);
        calls.append(QStringLiteral("outer done"));
    };
    _f->window->executeCommand(&outer);
    QCOMPARE(calls, QStringList({"now", "outer done", "outer", "inner"}));

    MenuFunctionFinishedCallback::disableCallbackRegistration(true);
    MenuFunctionFinishedCallback::registerCB(new RecordingCallback(&calls, QStringLiteral("dropped")));
    MenuFunctionFinishedCallback::disableCallbackRegistration(false);
    QCOMPARE(calls.size(), 4);
}

void TestExecution::exitRequestedDuringACommandWaitsForItsEnd()
{
    TestCommand outer(QStringLiteral("test.outer"));
    TestCommand inner(QStringLiteral("test.inner"), false);
    bool exitingInside = true;
    inner.onRun = [&] { _f->window->setExitRequested(); };
    outer.onRun = [&] {
        _f->window->executeCommand(&inner);
        exitingInside = _f->window->isExiting();
    };
    QSignalSpy requested(_f->window, &MainWindow::exitRequestedSignal);
    _f->window->executeCommand(&outer);
    QCOMPARE(requested.count(), 1);
    QVERIFY(!exitingInside);
    QVERIFY(_f->window->isExiting());
}

void TestExecution::closeRunsTheExitCommand()
{
    TestCommand exitCmd(QStringLiteral("sys.exit_program"));
    exitCmd.menuSensitive = false;
    _f->window->close();
    QCOMPARE(exitCmd.menuRuns, 0);
    exitCmd.menuSensitive = true;
    _f->window->close();
    QCOMPARE(exitCmd.menuRuns, 1);
    QVERIFY(MainWindow::main_win); // the window itself never closes
}

void TestExecution::statusLineComposition()
{
    MainWindow *w = _f->window;
    w->setMessage(QStringLiteral("only a message"), 0);
    QCOMPARE(w->getStatusText(), QStringLiteral("only a message"));
    w->setPreMessage(QStringLiteral("pre"));
    QCOMPARE(w->getStatusText(), QStringLiteral("pre: only a message"));
    w->resetStatus();
    QCOMPARE(w->getStatusText(), QStringLiteral("pre: "));

    auto *bar = w->statusBar()->findChild<QProgressBar *>();
    QVERIFY(bar);
    w->setProgress(0, 200, 50, QStringLiteral("half"));
    QCOMPARE(bar->value(), 100);
    QCOMPARE(w->getStatusText(), QStringLiteral("pre: half"));
    w->setProgress(-1, 200, 90, QStringLiteral("left alone"));
    QCOMPARE(bar->value(), 100);
}

void TestExecution::drawingLockMustBeBalanced()
{
    MainWindow *w = _f->window;
    w->lockDrawing();
    w->lockDrawing();
    w->unlockDrawing();
    QVERIFY(w->isDrawingLocked());
    w->unlockDrawing();
    QVERIFY(!w->isDrawingLocked());
    try {
        w->unlockDrawing();
        QFAIL("no exception");
    } catch (const ProgError &e) {
        QCOMPARE(e.getMessage(), QStringLiteral("drawing was not locked before."));
        QCOMPARE(e.getFile(), QStringLiteral("gapp_progress"));
    }
}

void TestExecution::commandTracesUnderDebugging()
{
    TestCommand cmd(QStringLiteral("test.traced"));
    MainWindow::debug_commands = true;
    const QByteArray out = TestUtil::captureStdout([&] {
        QString result, code;
        ErrorLog log;
        _f->window->execute(&cmd, QStringLiteral("k=v"), &result, &code, &log);
        _f->window->executeCommand(&cmd);
    });
    MainWindow::debug_commands = false;
    QVERIFY2(out.contains("executing test.traced (k=v)\nat "), out.constData());
    QVERIFY(out.contains("result 'done'\n"));
    QVERIFY(out.contains("executing test.traced from menu at "));
    QVERIFY(out.contains("result for menu command: true\n"));
}
