#pragma once
#include "gapp_export.h"
#include "gapp_command.h"
#include "gapp_status_mgr.h"
#include "zal_string.h"
#include "zal_thread.h"
#include <QEvent>
#include <QMainWindow>
#include <QString>
#include <QStringList>
#include <vector>

class QCloseEvent;
class QDragEnterEvent;
class QDropEvent;
class QAbstractButton;
class QEventLoop;
class QPushButton;
class QKeyEvent;
class QLabel;
class QMenu;
class QProgressBar;
class QTimer;

namespace Zal {
class CfgNode;
class ErrorLog;
class Variant;
namespace MainArea {
class Area;
}
namespace GTools {
class SemiModalDialog;
}
namespace GApp {
class EventFilter;
class Menu;

// Posted to the main window by command actions and shortcuts so that the
// command runs later from the event loop, outside the triggering handler.
class GAPP_EXPORT ExecuteCommandEvent : public QEvent
{
public:
    static constexpr QEvent::Type TYPE = QEvent::User; // 1000

    ExecuteCommandEvent(Command *cmd, AppStatusManager::CommandStartMode_t mode);
    Command *getCommand() const { return _cmd; }
    AppStatusManager::CommandStartMode_t getStartMode() const { return _mode; }

private:
    Command *_cmd;
    AppStatusManager::CommandStartMode_t _mode;
};

// Runs once the outermost running command has finished: registered while a
// command runs, it waits; registered while none runs, it runs at once.
// Pending callbacks are owned by the list.
class GAPP_EXPORT MenuFunctionFinishedCallback
{
public:
    virtual ~MenuFunctionFinishedCallback();
    virtual void menuFunctionFinished() = 0;

    static void registerCB(MenuFunctionFinishedCallback *cb);
    static void callCBs();
    static void clearCBs();
    static void disableCallbackRegistration(bool disable) { _callbacks_disabled = disable; }
    static bool isCallbackRegistrationDisabled() { return _callbacks_disabled; }

private:
    static std::vector<MenuFunctionFinishedCallback *> _cbs;
    static bool _callbacks_disabled;
};

// The library's script error code for rejected command parameters.
GAPP_EXPORT extern const char *const PARAMETER_ERROR;

// The single top-level window and the hub through which the library reaches
// the running GUI. One per process: `main_win` is the handle everything uses.
// It owns the status manager and the configuration node handed to it.
// GUI thread only.
class GAPP_EXPORT MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    static MainWindow *main_win;
    static MainArea::Area *main_area;
    static AppStatusManager *smgr;
    static CfgNode *cfg;
    static bool debug_menus;
    static bool debug_views;
    static bool debug_signals;
    static bool debug_events;
    static bool debug_commands;
    static bool debug_scripts;
    static bool debug_undo;
    static const char *const ERROR_USER_ABORT;
    static const char *const ERROR_OUT_OF_MEMORY;

    MainWindow(const char *name, AppStatusManager *smgr, CfgNode *cfg, QStringList &args);
    ~MainWindow() override;

    // Configuration.
    bool loadConfiguration();
    bool saveConfiguration();
    void checkConfiguration();
    void applyConfiguration(const ZalString &changed);
    const QString &getConfigFileName() const { return _config_file_name; }
    // The layout file that was read at start-up.
    const QString &getLayoutFileName() const { return _layout_file_name; }

    // Window state and title.
    void setCaption(const QString &caption);
    QString getCaption() const;
    QString saveStateToString() const;
    void restoreStateFromString(const QString &state);
    QLabel *createStatusBarEntry();
    void showSensor(bool show);
    // Appends a column's menu to the menu bar; the menu bar's action for it.
    QAction *insertSubMenu(Menu *menu);
    // Empties the menu bar and destroys the widgets of every toolbar not kept.
    void clearMenuAndToolBar(const std::vector<QString> &kept_toolbars);
    // The context menu of the toolbar and dock areas.
    QMenu *createPopupMenu() override;
    void updateSensitivity();
    void emitHelpRequestedSignal(QWidget *widget);
    // The layout file's document: found, parsed and handed to the containers.
    void readLayout();

    // Exit.
    void exitProgram();
    bool isExiting() const { return _exiting; }
    void setExitRequested();
    bool isExitRequested() const { return _exit_requested; }

    // Small accessors.
    bool isSafemode() const { return _safe_mode; }
    void setObjectSelection3d(bool on) { _object_selection_3d = on; }
    bool getObjectSelection3d() const { return _object_selection_3d; }
    void setRepaintSignalNeeded(bool on) { _repaint_signal_needed = on; }
    bool isRepaintSignalNeeded() const { return _repaint_signal_needed; }
    bool isScriptCommandRunning() const { return _script_command_counter != 0; }
    int getNumberOfRunningRyn3dApplications() const { return 1; }

    // Sensitivity and select-command mode.
    bool isMenuSensitive(Command *cmd) const;
    bool isCommandSensitiveInSelectCommandMode(Command *cmd) const;
    void emitSelectCommandSignal(Command const *cmd);
    void setSelectCommandMode(Command::SelectCommandMode_t mode) { _select_command_mode = mode; }
    Command::SelectCommandMode_t getSelectCommandMode() const { return _select_command_mode; }

    // Macro recording.
    void setRecording(bool recording);
    bool isRecording() const { return _recording; }

    // Menu execution.
    void postExecuteCommandEvent(Command *cmd);
    void postExecuteCommandEvent(Command *cmd, AppStatusManager::CommandStartMode_t mode);
    bool executeCommand(Command *cmd);
    void emitMenuCommandFinishedSignal(const QString &name);

    // Script execution; the last flag suppresses macro recording.
    bool execute(Command *cmd, const QString &params, Variant *result, QString *errorCode,
                 ErrorLog *log, bool noRecord = false);
    bool execute(Command *cmd, const QString &params, QString *result, QString *errorCode,
                 ErrorLog *log, bool noRecord = false);
    bool execute(Command *cmd, const QString &params, QString *result, bool noRecord = false);
    bool execute(Command *cmd, const QString &params, bool noRecord = false);
    bool executeInteractive(Command *cmd, const QString &params, QString *result,
                            QString *errorCode, ErrorLog *log, bool noRecord = false);
    bool executeInteractive(Command *cmd, const QString &params, QString *result,
                            bool noRecord = false);
    void addCommandToMacro(Command *cmd, const QString &params);

    // Stage loops.
    bool beginStageLoopCommand(Command *cmd, QString *errorCode, ErrorLog *log);
    bool parseStageLoopCommand(Command *cmd, const QString &params, const QString &stage,
                               bool execute, bool first, QString *errorCode, ErrorLog *log);
    bool executeStageLoopCommand(Command *cmd, AppStatusManager::MacroErrorBehaviour_t behaviour,
                                 std::vector<QString> *results, std::vector<bool> *success,
                                 QString *errorCode, ErrorLog *log);
    void endStageLoopCommand();

    // Status line.
    void setMessage(const QString &text, unsigned int timeout);
    void setPreMessage(const QString &text);
    void resetStatus();
    void setProgress(int min, int max, unsigned int progress, const QString &text);
    QString getStatusText() const;

    // Background execution: the thread runs while the GUI waits in a nested
    // event loop with input blocked; false when the user aborted it.
    bool executeBackground(QPushButton *button, Thread *thread, bool cancelable);
    bool executeBackground(Thread *thread, bool cancelable);
    // Any thread may ask.
    bool executeBgRunning() const;

    // Drawing lock.
    void lockDrawing();
    void unlockDrawing();
    bool isDrawingLocked() const { return _drawing_lock != 0; }

    // Input is locked while widgets are locked or work runs in the background.
    bool isGUILocked() const { return !_locked_widgets.empty() || _background_active; }

    // GUI lock: while a widget is locked, input reaches only the locked
    // widgets themselves, the cancel widget and modal dialogs. In pairs.
    void lockGUI(QWidget *widget);
    void unlockGUI(QWidget *widget);
    void setCancelWidget(QWidget *widget);
    void unsetCancelWidget(QWidget *widget);
    QWidget *getCancelWidget() const { return _cancel_widget; }
    // Input flags of a background execution, read by the event filter.
    void setInputBlocked(bool on) { _input_blocked = on; }
    bool isInputBlocked() const { return _input_blocked; }
    void setCancelEnabled(bool on) { _cancel_enabled = on; }
    bool isCancelEnabled() const { return _cancel_enabled; }
    void setEscapeSuppressed(bool on) { _escape_suppressed = on; }
    bool isEscapeSuppressed() const { return _escape_suppressed; }
    void setAbortRequested(bool on) { _abort_requested = on; }
    bool isAbortRequested() const { return _abort_requested; }

protected:
    bool event(QEvent *e) override;
    void customEvent(QEvent *e) override;
    void closeEvent(QCloseEvent *e) override;
    void dragEnterEvent(QDragEnterEvent *e) override;
    void dropEvent(QDropEvent *e) override;

signals:
    void setMenuSensitiveSignal();
    void applyConfigSignal(const Zal::ZalString &node);
    void saveConfigSignal();
    void escapePressedSignal(QObject *obj, bool *discard);
    void menuCommandFinishedSignal(QString name);
    void recordingStateChangedSignal(bool recording);
    void recordMacroSignal(QString name, QString params, bool loop_stage_command);
    void selectCommandSignal(QString name, QString params);
    void helpRequestedSignal(QWidget *widget);
    void exitRequestedSignal();
    void menuGroupCmdStartedSignal(Zal::GApp::Command::CmdGroup_t group);
    void menuGroupCmdFinishedSignal(Zal::GApp::Command::CmdGroup_t group);
    void dialogShowSignal(Zal::GTools::SemiModalDialog *dlg);

private slots:
    void toggleToolBarVisibility(QAction *action);
    void activeViewChanged(QWidget *widget);
    void viewVisibilityChanged(QWidget *widget);
    void executeBackgroundTimerExpired();
    void updateStatusInfo();
    void screenLayoutChanged(int screen);
    void showRestartInformation();

private:
    friend class EventFilter;
    // The application event filter's decision: true swallows the event.
    bool appEventFilter(QObject *receiver, QEvent *event);
    bool applyLockRule(QObject *receiver, QEvent *event);
    bool dispatchShortcut(QKeyEvent *key, QWidget *widget);
    bool isInForeignModalWindow(QObject *receiver) const;

    bool executeInternal(Command *cmd, bool nested);
    void showCommandName(Command *cmd);
    void hideCommandName();
    QString composeStatus(const QString &text) const;
    void initProgressEventCreator();
    void exitIfRequested();
    void centerOnScreen();

    QString _config_file_name;
    QString _layout_file_name;
    QString _name;
    std::vector<Menu *> _menus;
    QProgressBar *_progress_bar = nullptr;
    bool _input_blocked = false;
    bool _cancel_enabled = false;
    bool _escape_suppressed = false;
    bool _abort_requested = false;
    // The status bar's cancel button, or for one run the caller's own.
    QAbstractButton *_cancel_button = nullptr;
    std::vector<QWidget *> _locked_widgets;
    QWidget *_cancel_widget = nullptr;
    bool _background_active = false;
    // Guards _background_active against readers in other threads.
    mutable Mutex _background_mutex{"Zal::GApp::MainWindow::MainWindow", "gapp_main_window"};
    QTimer *_background_timer = nullptr;
    bool _cancel_allowed = false;
    Thread *_current_thread = nullptr;
    QEventLoop *_event_loop = nullptr;
    bool _recording = false;
    Command::SelectCommandMode_t _select_command_mode = Command::SelectCommandMode_t(0);
    QString _message;
    QString _pre_message;
    std::vector<QString> _command_names;
    QTimer *_message_timer = nullptr;
    unsigned int _drawing_lock = 0;
    unsigned int _script_command_counter = 0;
    QTimer *_status_timer = nullptr;
    QLabel *_memory_label = nullptr;
    QLabel *_sensor_label = nullptr;
    bool _show_sensor = false;
    bool _exit_requested = false;
    bool _exiting = false;
    bool _config_loaded = false;
    bool _object_selection_3d = false;
    bool _safe_mode = false;
    bool _repaint_signal_needed = false;
    EventFilter *_event_filter = nullptr;
};

} // namespace GApp
} // namespace Zal
