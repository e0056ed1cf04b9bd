// Command execution of the main window: menu commands from posted events,
// script commands with parameter strings, stage loops, macro recording.
#include "gapp_main_window.h"
#include "gapp_safemode.h"
#include "gapp_state_record.h"
#include "gapp_undo_check.h"
#include "zal_dialogs.h"
#include "zal_errorlog.h"
#include "zal_gui_thread_event.h"
#include "zal_record_manager.h"
#include "zal_semimodal_dialog.h"
#include "zal_translate.h"
#include "zal_variant.h"
#include <QCoreApplication>
#include <cstdio>

namespace Zal {
namespace GApp {

const char *const PARAMETER_ERROR = "GAPP-0013";

std::vector<MenuFunctionFinishedCallback *> MenuFunctionFinishedCallback::_cbs;
bool MenuFunctionFinishedCallback::_callbacks_disabled = false;

namespace {

QString notSensitiveText(const Command *cmd)
{
    return translate("GAPP_err", "the command is not sensitive: %1").arg(cmd->getName());
}

// The script-level answer to an insensitive command.
bool refuseInsensitive(const Command *cmd, QString *errorCode, ErrorLog *log)
{
    *errorCode = QStringLiteral("GAPP-0003");
    *log << notSensitiveText(cmd) << END_LOG;
    return false;
}

// The short script forms show what went wrong, except for a user abort.
bool showScriptFailure(bool ok, const QString &code, const ErrorLog &log)
{
    if (!ok && code != QLatin1String(MainWindow::ERROR_USER_ABORT))
        GTools::ErrorDialog(code, log.getText());
    return ok;
}

// Debug traces: names in the local 8-bit encoding, times in Latin-1.
void trace(const QString &text)
{
    std::printf("%s\n", text.toLocal8Bit().constData());
    std::fflush(stdout);
}

void traceTime()
{
    std::printf("at %s\n", Time::currentTimeString().toLatin1().constData());
    std::fflush(stdout);
}

bool isExemptFromUndoCheck(const QString &name)
{
    static const char *const exact[] = {
        "sys.undo", "sys.redo", "sys.show_undo_steps", "sys.clear_unused_memory", "sys.get_data",
        "sys.save_session", "pelta.disable_colored_view", "quarn.disable_colored_view",
        "cad.select_in_explorer", "cad.select_in_explorer_by_property", "cad.select_in_explorer_by_sphere",
        "cad.deselect_in_explorer", "cad.deselect_in_explorer_by_property",
        "cad.deselect_in_explorer_by_sphere"};
    static const char *const prefixes[] = {"macro.", "userscript.", "automation.execute_",
                                           "automation.command_group_", "view."};
    for (const char *e : exact)
        if (name == QLatin1String(e))
            return true;
    for (const char *p : prefixes)
        if (name.startsWith(QLatin1String(p)))
            return true;
    return false;
}

// Commands that record no undo step make the recorded history unusable.
void applyUndoRecordRule(Command *cmd)
{
    RecordManagerBase *manager = RecordManagerBase::_manager_base;
    if (manager && !(cmd->isUndoRedoPossible() && manager->isUndoRecordingOn()))
        manager->clearHistory();
}

// Undo and redo run with drawing locked; the lock is released even when the
// host's record manager throws.
class DrawingLock
{
public:
    explicit DrawingLock(MainWindow *window) : _window(window) { _window->lockDrawing(); }
    ~DrawingLock() { _window->unlockDrawing(); }
    DrawingLock(const DrawingLock &) = delete;
    DrawingLock &operator=(const DrawingLock &) = delete;

private:
    MainWindow *_window;
};

// Runs a script command and verifies that it made one undo record and that
// undoing and redoing it restores the recorded states; a failure throws.
bool executeWithUndoCheck(MainWindow *window, RecordManagerBase *manager, Command *cmd,
                          Variant *result, QString *errorCode, ErrorLog *log)
{
    const QString name = cmd->getName();
    const ApplicationStateRecord beforeCommand(QStringLiteral("before_command"));
    const unsigned int idBefore = RecordManagerBase::_next_record_id;
    if (!cmd->executeScript(result, errorCode, log))
        return false;
    if (!DebugUndoRedoTools::checkUndoHistory(name, idBefore, RecordManagerBase::_next_record_id))
        return true;
    if (MainWindow::debug_commands)
        trace(QStringLiteral("executing undo+redo for ") + name);

    const ApplicationStateRecord beforeUndoRedo(QStringLiteral("before_undo+redo"));
    {
        DrawingLock lock(window);
        manager->undo();
    }
    MainWindow::smgr->emitDataChanged(MainWindow::smgr->getAppMode(), 0);
    const ApplicationStateRecord afterUndo(QStringLiteral("after_undo"));
    {
        DrawingLock lock(window);
        manager->redo();
    }
    MainWindow::smgr->emitDataChanged(MainWindow::smgr->getAppMode(), 0);
    const ApplicationStateRecord afterUndoRedo(QStringLiteral("after_undo+redo"));

    DebugUndoRedoTools::check(name, beforeCommand, afterUndo);
    DebugUndoRedoTools::check(name, beforeUndoRedo, afterUndoRedo);
    return true;
}

} // namespace

MenuFunctionFinishedCallback::~MenuFunctionFinishedCallback() = default;

void MenuFunctionFinishedCallback::registerCB(MenuFunctionFinishedCallback *cb)
{
    if (!cb)
        return;
    if (_callbacks_disabled) {
        delete cb;
        return;
    }
    if (MainWindow::smgr && MainWindow::smgr->isCommandActive()) {
        _cbs.push_back(cb);
        return;
    }
    cb->menuFunctionFinished();
    delete cb;
}

void MenuFunctionFinishedCallback::callCBs()
{
    // By index: a callback may register further ones, which run in this pass too.
    for (size_t i = 0; i < _cbs.size(); ++i)
        _cbs[i]->menuFunctionFinished();
    clearCBs();
}

void MenuFunctionFinishedCallback::clearCBs()
{
    const auto cbs = std::move(_cbs);
    _cbs.clear();
    for (MenuFunctionFinishedCallback *cb : cbs)
        delete cb;
}

void MainWindow::setRecording(bool recording)
{
    _recording = recording;
    emit recordingStateChangedSignal(recording);
}

void MainWindow::customEvent(QEvent *e)
{
    if (e->type() == GUIThreadEvent::eventType()) {
        static_cast<GUIThreadEvent *>(e)->execute();
        return;
    }
    if (e->type() == GTools::DialogShowEvent::eventType()) {
        emit dialogShowSignal(static_cast<GTools::DialogShowEvent *>(e)->getDialog());
        return;
    }
    if (e->type() != ExecuteCommandEvent::TYPE) {
        QMainWindow::customEvent(e);
        return;
    }
    auto *ev = static_cast<ExecuteCommandEvent *>(e);
    Command *cmd = ev->getCommand();
    if (!cmd || isGUILocked() || !isMenuSensitive(cmd))
        return;
    if (ev->getStartMode() == AppStatusManager::CommandStartMode_t(1) && smgr) {
        smgr->increaseStartModeFlag();
        executeCommand(cmd);
        smgr->decreaseStartModeFlag();
    } else {
        executeCommand(cmd);
    }
}

bool MainWindow::executeCommand(Command *cmd)
{
    const int mode = int(_select_command_mode);
    if (mode >= 1 && mode <= 3 && cmd->isSensitiveInSelectCommandMode(_select_command_mode)) {
        emit selectCommandSignal(cmd->getName(), cmd->getParameterString());
        return true;
    }
    bool synchronized = false;
    Command::CmdGroup_t group{};
    const bool semaphore = cmd->needsMenuSemaphore(&synchronized, &group);
    const bool nested = smgr->isCommandActive();
    smgr->pushActiveCommand(cmd);

    if (semaphore) {
        if (smgr->isMenuFunctionActive()) {
            GTools::ErrorDialog(QStringLiteral("GAPP-0002"), QString());
            smgr->popActiveCommand();
            return false;
        }
        smgr->setMenuFunctionActive(true);
        updateSensitivity();
    } else if (synchronized) {
        updateSensitivity();
        emit menuGroupCmdStartedSignal(group);
    }

    if (debug_commands)
        trace(QStringLiteral("executing ") + cmd->getName() + QStringLiteral(" from menu at ")
              + Time::currentTimeString());
    const bool result = executeInternal(cmd, nested);
    if (debug_commands)
        trace(QStringLiteral("result for menu command: ") + (result ? QStringLiteral("true") : QStringLiteral("false")));

    if (synchronized)
        emit menuGroupCmdFinishedSignal(group);
    smgr->popActiveCommand();
    if (semaphore) {
        smgr->setMenuFunctionActive(false);
        updateSensitivity();
    } else if (synchronized) {
        updateSensitivity();
    }
    exitIfRequested();
    return result;
}

bool MainWindow::executeInternal(Command *cmd, bool nested)
{
    if (!cmd->isMenuSensitive()) {
        GTools::ErrorDialog(QStringLiteral("GAPP-0003"), notSensitiveText(cmd));
        return false;
    }
    const QString preMessage = _pre_message;
    const QString message = _message;
    resetStatus();
    showCommandName(cmd);
    const bool result = cmd->executeMenu();
    hideCommandName();
    updateSensitivity();
    if (nested) {
        _pre_message = preMessage;
        setMessage(message, 0);
    }
    return result;
}

bool MainWindow::execute(Command *cmd, const QString &params, Variant *result, QString *errorCode,
                         ErrorLog *log, bool noRecord)
{
    resetStatus();
    bool ok = false;
    if (!cmd->isScriptSensitive()) {
        refuseInsensitive(cmd, errorCode, log);
    } else {
        if (_recording && !noRecord)
            emit recordMacroSignal(cmd->getName(), params, false);
        *result = Variant::NONE;
        errorCode->clear();
        log->clear();
        showCommandName(cmd);
        if (debug_commands) {
            trace(QStringLiteral("executing ") + cmd->getName() + QStringLiteral(" (")
                  + ResolveInterface::resolveParameterString(params) + QStringLiteral(")"));
            traceTime();
        }
        if (cmd->parseParameterString(params, true, errorCode, log)) {
            ++_script_command_counter;
            applyUndoRecordRule(cmd);
            RecordManagerBase *manager = RecordManagerBase::_manager_base;
            if (debug_undo && manager && manager->isUndoRecordingOn() && !manager->isBusy()
                && cmd->isUndoRedoPossible() && !isExemptFromUndoCheck(cmd->getName())) {
                try {
                    ok = executeWithUndoCheck(this, manager, cmd, result, errorCode, log);
                } catch (...) {
                    // The failed check goes to the caller; the execution state
                    // is put back as on every other path.
                    --_script_command_counter;
                    hideCommandName();
                    updateSensitivity();
                    throw;
                }
            } else {
                ok = cmd->executeScript(result, errorCode, log);
            }
            --_script_command_counter;
        }
        if (debug_commands)
            trace(QStringLiteral("result '") + result->toString() + QStringLiteral("'"));
        hideCommandName();
        updateSensitivity();
    }
    exitIfRequested();
    return ok;
}

bool MainWindow::execute(Command *cmd, const QString &params, QString *result, QString *errorCode,
                         ErrorLog *log, bool noRecord)
{
    Variant variant;
    const bool ok = execute(cmd, params, &variant, errorCode, log, noRecord);
    if (ok) {
        result->clear();
        const int type = int(variant.getType());
        if (type == 5)
            *result = variant.getString();
        else if ((type >= 0 && type <= 4) || type == 6 || type == 7)
            *result = variant.toString();
    }
    return ok;
}

bool MainWindow::execute(Command *cmd, const QString &params, QString *result, bool noRecord)
{
    QString code;
    ErrorLog log(false);
    return showScriptFailure(execute(cmd, params, result, &code, &log, noRecord), code, log);
}

bool MainWindow::execute(Command *cmd, const QString &params, bool noRecord)
{
    QString result;
    return execute(cmd, params, &result, noRecord);
}

bool MainWindow::executeInteractive(Command *cmd, const QString &params, QString *result,
                                    QString *errorCode, ErrorLog *log, bool noRecord)
{
    if (!cmd->isMenuSensitive())
        return refuseInsensitive(cmd, errorCode, log);
    const QString preMessage = _pre_message;
    const QString message = _message;
    resetStatus();
    if (_recording && !noRecord)
        emit recordMacroSignal(cmd->getName(), params, false);
    result->clear();
    errorCode->clear();
    log->clear();
    showCommandName(cmd);
    if (debug_commands) {
        trace(QStringLiteral("executing interactive ") + cmd->getName() + QStringLiteral(" (")
              + ResolveInterface::resolveParameterString(params) + QStringLiteral(")"));
        traceTime();
    }
    bool ok = false;
    if (cmd->parseParameterString(params, true, errorCode, log))
        ok = cmd->executeScriptInteractive(result, errorCode, log);
    if (debug_commands)
        trace(QStringLiteral("result interactive '") + *result + QStringLiteral("'"));
    hideCommandName();
    updateSensitivity();
    if (smgr && smgr->isCommandActive()) {
        _pre_message = preMessage;
        setMessage(message, 0);
    }
    exitIfRequested();
    return ok;
}

bool MainWindow::executeInteractive(Command *cmd, const QString &params, QString *result, bool noRecord)
{
    QString code;
    ErrorLog log(false);
    return showScriptFailure(executeInteractive(cmd, params, result, &code, &log, noRecord), code,
                             log);
}

void MainWindow::addCommandToMacro(Command *cmd, const QString &params)
{
    applyUndoRecordRule(cmd);
    if (_recording)
        emit recordMacroSignal(cmd->getName(), params, false);
    if (debug_commands) {
        trace(QStringLiteral("recording ") + cmd->getName() + QStringLiteral(" (")
              + ResolveInterface::resolveParameterString(params) + QStringLiteral(")"));
        traceTime();
    }
}

bool MainWindow::beginStageLoopCommand(Command *cmd, QString *errorCode, ErrorLog *log)
{
    resetStatus();
    if (!cmd->isScriptSensitive())
        return refuseInsensitive(cmd, errorCode, log);
    showCommandName(cmd);
    return true;
}

bool MainWindow::parseStageLoopCommand(Command *cmd, const QString &params, const QString &stage,
                                       bool execute, bool first, QString *errorCode, ErrorLog *log)
{
    return cmd->parseParameterStringStage(stage, params, execute, first, errorCode, log);
}

bool MainWindow::executeStageLoopCommand(Command *cmd, AppStatusManager::MacroErrorBehaviour_t behaviour,
                                         std::vector<QString> *results, std::vector<bool> *success,
                                         QString *errorCode, ErrorLog *log)
{
    if (debug_commands)
        trace(QStringLiteral("executing stage command ") + cmd->getName());
    return cmd->executeScriptStage(behaviour, results, success, errorCode, log);
}

void MainWindow::endStageLoopCommand()
{
    hideCommandName();
    updateSensitivity();
}

void MainWindow::exitIfRequested()
{
    if (_exit_requested && !isScriptCommandRunning() && !(smgr && smgr->isCommandActive()))
        exitProgram();
}

} // namespace GApp
} // namespace Zal
