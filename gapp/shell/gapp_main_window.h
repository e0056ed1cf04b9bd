#pragma once
#include "gapp_export.h"
#include "gapp_command.h"
#include "gapp_status_mgr.h"
#include "zal_string.h"
#include <QEvent>
#include <QMainWindow>
#include <QString>
#include <QStringList>

namespace Zal {
class CfgNode;
namespace GApp {

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

// The single top-level window and the hub through which the library reaches
// the running GUI. One per process: `main_win` is the handle everything uses.
// It owns the status manager and the configuration node handed to it.
// GUI thread only.
class GAPP_EXPORT MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    static MainWindow *main_win;
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

    // Window state and title.
    void setCaption(const QString &caption);
    QString getCaption() const;
    void updateSensitivity();
    void emitHelpRequestedSignal(QWidget *widget);

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

    // Menu execution.
    void postExecuteCommandEvent(Command *cmd);
    void postExecuteCommandEvent(Command *cmd, AppStatusManager::CommandStartMode_t mode);
    void emitMenuCommandFinishedSignal(const QString &name);

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

private:
    QString _config_file_name;
    QString _name;
    Command::SelectCommandMode_t _select_command_mode = Command::SelectCommandMode_t(0);
    unsigned int _script_command_counter = 0;
    bool _show_sensor = false;
    bool _exit_requested = false;
    bool _exiting = false;
    bool _config_loaded = false;
    bool _object_selection_3d = false;
    bool _safe_mode = false;
    bool _repaint_signal_needed = false;
};

} // namespace GApp
} // namespace Zal
