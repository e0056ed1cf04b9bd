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

    // Data and file operations. Commands do not know which type holds their
    // data: these go to the active type, to a named type, or to all types.
    // An active mode without status data throws "invalid application type",
    // except where a fallback answer is given.

    // The number of leading bytes read to tell which type opens a file.
    static constexpr unsigned int CONTENTS_READ_SIZE = 1024;

    // Forwarded to the active type unchanged.
    bool isSaveSensitive() const;
    bool saveFile(const QString &name, const QString &fileName, QString *errorCode, ErrorLog *log);
    bool isSaveAsSensitive() const;
    bool isExportC3DSensitive() const;
    bool isSaveProjectAsSensitive() const;
    bool isCloseSensitive() const;
    bool closeData(const std::vector<QString> &names, QString *errorCode, ErrorLog *log);
    bool isCopyToClipboardSensitive() const;
    bool copyToClipboard(const std::vector<QString> &names, const std::vector<QString> &formats,
                         QString *errorCode, ErrorLog *log) const;
    // The active type's saveFileAsRecent: the recent-files name comes back too.
    bool saveFileAs(const std::vector<QString> &names, const QString &fileName, RenameType_t rename,
                    QString *recentName, QString *errorCode, ErrorLog *log);

    // Forwarded to the active type.
    std::vector<QString> getSelectedData(const char *selection);
    std::vector<const char *> getAdditionalSelectionNames();
    // True when the active mode has no status data.
    bool cleanupInconsistentState();

    // Addressed to the type of `mode`.
    bool isDataModified(unsigned int mode, const QString &name) const;
    QString getFileName(unsigned int mode, const QString &name);
    bool isFileNameValid(unsigned int mode, const QString &fileName) const;
    QString getFileNameExtension(unsigned int mode, const QString &name);
    QString getFileNameExtension(unsigned int mode, const std::vector<QString> &names);
    std::vector<QString> getAllData(unsigned int mode);

    // Combined over all types, in ascending mode order.
    bool isStatusDataEmpty() const;
    // Each extension once, in order of first appearance.
    std::vector<QString> getAllFileNameExtensions();

    // Stages: the active type's answer, with fallbacks when it has none.
    StageIdentifier getActualStageIdentifier();
    StatusData::StageActive_t isStageActive(const QString &stage);
    std::vector<int> getStageNumbers(QString name, StatusData::ExplorerPosition_t position, int index);
    std::vector<QString> getStageLoopStages(const QString &name, StatusData::StageLoopStage_t stage);

    // Files. The first CONTENTS_READ_SIZE bytes (fewer for a shorter file)
    // tell which type reads a file: the active type when it can, else the
    // type with the lowest mode that can.
    bool readFileContents(const QString &fileName, std::vector<char> *bytes, ErrorLog *log) const;
    bool getFileType(const QString &fileName, ErrorLog *log) const;
    // Switches the mode when another type reads the file; error codes
    // "GAPP-0014" (cannot open), "GAPP-0007" (unknown kind), "GAPP-0008"
    // (the active type refuses the mode change), else the type's own.
    bool openFile(const QString &fileName, QString *second, QString *errorCode, ErrorLog *log);
    // The kind of files[0] picks the type; an empty list is a programming
    // error ("no file to paste").
    bool pasteFromClipboard(const std::vector<QString> &files, const std::vector<QString> &second,
                            QString *third, QString *errorCode, ErrorLog *log);

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
    // Which type reads the file; `mode` is all bits set when none does.
    bool getFileInfo(const QString &fileName, unsigned int *mode, ErrorLog *log) const;

private slots:
    void specialMenuProviderDestroyed(QObject *provider);

private:
    void updateMainWindow();
    // The active type's status data, or null when the active mode has none.
    StatusData *activeStatus() const;
    // The status data of `mode`; throws "invalid application type" naming `function`.
    StatusData *statusFor(unsigned int mode, const char *function) const;
    // Switches to `mode` unless it is the active one; false when the active
    // type refuses. `function` names the caller in the error of an
    // unregistered active mode.
    bool changeModeFor(unsigned int mode, const char *function);

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
