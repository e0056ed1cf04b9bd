#pragma once
#include "gapp_export.h"
#include "gapp_status_data.h"
#include "zal_unique_id.h"
#include <QObject>
#include <QString>
#include <deque>
#include <map>
#include <set>
#include <vector>

namespace Zal {
namespace GApp {
class Command;
class Menu;
class SpecialMenuProvider;
class ProfileMenuProvider;

// The hub of the application's state: the registered application types with
// their status data (owned), the active application mode, the stack of
// running commands, the flags commands set while they run, the special and
// profile menu providers and the exit notifiers (neither owned). It emits the
// data, selection and visualisation signals. The host creates one and hands
// it to the main window. GUI thread only; signals are delivered directly.
class GAPP_EXPORT AppStatusManager : public QObject
{
    Q_OBJECT
public:
    enum CommandStartMode_t {
        START_NORMAL = 0,
        START_REMOTE = 1 // started by the remote control
    };
    enum MacroErrorBehaviour_t {
        MACRO_ERROR_STOP = 0,     // the first failing stage ends the loop
        MACRO_ERROR_CONTINUE = 1, // failing stages are reported, the loop goes on
        MACRO_ERROR_ASK = 2       // the user decides at each failure
    };

    explicit AppStatusManager(QObject *parent = nullptr);
    ~AppStatusManager() override;

    // Application types and modes
    unsigned int getUniqueId(const QString &name);
    bool existUniqueId(const QString &name) const;
    QString getUniqueIdText(unsigned int id) const;
    void setStatusData(unsigned int mode, StatusData *data);
    StatusData *getStatus(unsigned int mode) const;
    std::vector<unsigned int> getAppModes() const;
    unsigned int getAppMode() const { return _app_mode; }
    void setAppMode(unsigned int newMode);
    bool isAppModeChangePossible(unsigned int newMode) const;

    // Flags
    void setMenuFunctionActive(bool active);
    bool isMenuFunctionActive() const { return _menu_function_active; }
    void setSelectionEnabled(bool enabled) { _selection_enabled = enabled; }
    bool isSelectionEnabled() const { return _selection_enabled; }
    void setSelectionInCommandEnabled(bool enabled) { _selection_in_command_enabled = enabled; }
    bool isSelectionInCommandEnabled() const { return _selection_in_command_enabled; }
    void setFigureOperationInCommandEnabled(bool enabled);
    bool isFigureOperationInCommandEnabled() const;
    void increaseStartModeFlag();
    void decreaseStartModeFlag();
    CommandStartMode_t getCommandStartMode() const;

    // Active commands
    void pushActiveCommand(Command *cmd);
    void popActiveCommand();
    bool getActiveCommand(Command **cmd) const;
    bool isCommandActive() const { return !_active_commands.empty(); }

    // Signals, with the main window's refresh after the paired ones
    void emitSelectionChanged(unsigned int app, SelectionMode_t mode);
    void emitDataChanged(unsigned int app, unsigned int reason);
    void emitVisualizationChanged(unsigned int app, unsigned int stage);
    void emitObjectPointNormalSelected(const std::vector<ObjectPointDescriptor> &points);
    void emitDialogPreview();
    void emitDialogCreate();
    void emitDialogCreateClose();
    void emitDialogResetLastEntry();
    void emitDialogResetAll();
    void emitDialogApply();
    void emitDialogApplyDeselect();
    void emitDialogApplyClose();
    void emitDialogSetEnabled(bool enable);

    // Menu providers
    void registerSpecialMenuProvider(const QString &name, SpecialMenuProvider *provider);
    SpecialMenuProvider *getSpecialMenuProvider(const QString &name) const;
    SpecialMenuProvider *getSpecialMenuProvider(const Menu *menu) const;
    void registerProfileMenuProvider(ProfileMenuProvider *provider);
    ProfileMenuProvider *getProfileMenuProvider() const { return _profile_menu_provider; }

    // Exit
    void registerExitNotifier(ExitNotifier *notifier);
    void unregisterExitNotifier(ExitNotifier *notifier);
    bool callCanExitProgram();
    void callExitProgram();
    void callCommitData();

    // Data questions: the active type's selection, or a given type's data.
    std::vector<QString> getSelectedData(const char *selection);
    std::vector<QString> getAllData(unsigned int mode);
    bool isDataModified(unsigned int mode, const QString &name) const;

signals:
    void selectionPreChangedSignal(uint app, Zal::GApp::SelectionMode_t mode);
    void selectionChangedSignal(uint app, Zal::GApp::SelectionMode_t mode);
    void dataPreChangedSignal(uint app, uint reason);
    void dataChangedSignal(uint app, uint reason);
    void visualizationChangedSignal(uint app, uint stage);
    void objectPointNormalSelectedSignal(std::vector<Zal::GApp::ObjectPointDescriptor> p);
    void dialogPreview();
    void dialogCreate();
    void dialogCreateClose();
    void dialogResetLastEntry();
    void dialogResetAll();
    void dialogApply();
    void dialogApplyDeselect();
    void dialogApplyClose();
    void dialogSetEnabled(bool enable);

protected:
    void setMainWindowCaption();

private slots:
    void specialMenuProviderDestroyed(QObject *provider);

private:
    void updateMainWindow();

    unsigned int _app_mode = 0;
    bool _menu_function_active = false;
    bool _selection_enabled = true;
    bool _selection_in_command_enabled = false;
    unsigned int _figure_operation_counter = 0;
    std::deque<Command *> _active_commands;
    unsigned int _start_mode_counter = 0;
    std::map<unsigned int, StatusData *> _status_data;
    std::map<QString, SpecialMenuProvider *> _special_menu_providers;
    ProfileMenuProvider *_profile_menu_provider = nullptr;
    std::set<ExitNotifier *> _exit_notifiers;
    UniqueIdCreator _unique_ids;
};

} // namespace GApp
} // namespace Zal
