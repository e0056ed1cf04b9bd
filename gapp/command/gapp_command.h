#pragma once
#include "gapp_export.h"
#include "gapp_status_mgr.h"
#include "zal_parse.h"
#include "zal_string.h"
#include <QMetaType>
#include <QString>
#include <vector>

class QIcon;
class QToolBar;

namespace Zal {
class CfgNode;
class ErrorLog;
class Variant;

namespace GApp {

// One change of a command's script interface between two releases.
struct GAPP_EXPORT ChangeLogEntry
{
    enum UpdateType_t {
        NAME_CHANGE = 0,
        NEW_PARAMETER = 1,
        REMOVED_PARAMETER = 2,
        PARAMETER_CHANGE = 3,
        SYSTEM_ELEM_SUPPORT = 4
    };

    ChangeLogEntry() = default;
    // The two last texts become one-element lists.
    ChangeLogEntry(UpdateType_t type, const char *text, const char *first, const char *second);
    ChangeLogEntry(UpdateType_t type, const char *text, const std::vector<ZalString> &first,
                   const std::vector<ZalString> &second);

    UpdateType_t type = NAME_CHANGE;
    ZalString text;
    std::vector<ZalString> list1;
    std::vector<ZalString> list2;
};

// How a command's script interface changed between releases, for the host's
// script converter. The library only builds it.
class GAPP_EXPORT CommandUpdateInformation
{
public:
    using UpdateType_t = ChangeLogEntry::UpdateType_t;

    virtual ~CommandUpdateInformation();

    void addNameChange(const char *text, const char *newName);
    void addNewParameter(const char *text, const char *parameter);
    void addRemovedParameter(const char *text, const char *parameter);
    void addParameterChange(const char *text, const char *from, const char *to);
    void addSystemElemSupport(const char *text, const std::vector<ZalString> &first,
                              const std::vector<ZalString> &second);
    std::vector<ChangeLogEntry> getChangeLog() const { return _change_log; }

private:
    std::vector<ChangeLogEntry> _change_log;
};

// One user-visible operation, run from menus, toolbars, shortcuts, scripts,
// macros and stage loops. The host derives one class per operation. A command
// registers itself under its unique name ("group.name") when constructed and
// leaves the registry when destroyed; the registry never owns it, except that
// CommandContainer::deleteAllCommands destroys what is left at shutdown.
// GUI thread only.
class GAPP_EXPORT Command : public Parse
{
public:
    // Groups for running menu functions side by side; the values are the
    // host's, the library only compares them.
    enum CmdGroup_t : int {
        CMD_GROUP_NONE = 0,
        CMD_GROUP_VIEW = 1,
        CMD_GROUP_SELECTION = 2,
        CMD_GROUP_MEASUREMENT = 3,
        CMD_GROUP_ALIGNMENT = 4,
        CMD_GROUP_INSPECTION = 5,
        CMD_GROUP_REPORT = 6
    };
    // The main window's select-command mode: in modes 1 to 3 triggering a
    // command selects it instead of running it; from SELECT_DISABLED on no
    // command is sensitive.
    enum SelectCommandMode_t : int {
        SELECT_NONE = 0,
        SELECT_1 = 1,
        SELECT_2 = 2,
        SELECT_3 = 3,
        SELECT_DISABLED = 4
    };
    enum Interactive_t {
        INTERACTIVE_NO = 0,
        INTERACTIVE_YES = 1,
        INTERACTIVE_TOOLBAR_GROUP = 2 // the answer of toolbar group commands
    };

    // Registers the command; throws ProgError when the name is taken.
    Command(bool menuFunction, bool toggle, const QString &name, const QString &menuName,
            const QString &helpId, const char *iconName = nullptr);
    Command(const Command &) = delete;
    Command &operator=(const Command &) = delete;

    virtual ~Command();
    virtual bool isChecked() const = 0;
    virtual bool needsMenuSemaphore(bool *synchronized, CmdGroup_t *group) const;
    virtual QString getMenuName();
    virtual bool isDefaultIconSet() const;
    // Never null.
    virtual const QIcon *getIconSet();
    virtual void createToolBarWidget(QToolBar *toolbar, bool textOnly);
    virtual bool isMenuSensitive() const = 0;
    virtual bool isScriptSensitive() const = 0;
    virtual QString getParameterString() = 0;
    virtual bool parseParameterString(const QString &params, bool execute, QString *errorCode,
                                      ErrorLog *log) = 0;
    virtual bool parseParameterStringStage(const QString &params, const QString &stage,
                                           bool execute, bool first, QString *errorCode,
                                           ErrorLog *log);
    virtual bool isVisible() const;
    virtual Interactive_t isInteractive() = 0;
    virtual bool executeMenu() = 0;
    // Runs the string form and turns a result "[a, b]" into a list of string
    // variants, anything else into one string variant.
    virtual bool executeScript(Variant *result, QString *errorCode, ErrorLog *log);
    virtual bool executeScript(QString *result, QString *errorCode, ErrorLog *log);
    virtual bool executeScriptInteractive(QString *result, QString *errorCode, ErrorLog *log);
    virtual bool executeScriptStage(AppStatusManager::MacroErrorBehaviour_t behaviour,
                                    std::vector<QString> *results, std::vector<bool> *success,
                                    QString *errorCode, ErrorLog *log);
    virtual bool isCommandSubstitutionAllowed() const;
    virtual bool substituteParameterString(const QString &from, const QString &to, QString *params);
    virtual bool isUndoRedoPossible() const;
    virtual bool isSensitiveInSelectCommandMode(SelectCommandMode_t mode) const;
    // Owned by the caller; null when the interface never changed.
    virtual CommandUpdateInformation *createUpdateInformation() const;
    virtual std::vector<CmdGroup_t> getSynchronizedCmdGroups();
    virtual std::vector<CmdGroup_t> belongsToCmdGroups();

    bool isToggle() const { return _toggle; }
    const QString &getName() const { return _name; }
    const QString &getHelpId() const { return _help_id; }
    bool isCommandForDialogFastCreation() const { return _dialog_fast_creation; }
    void setCommandForDialogFastCreation(bool fast) { _dialog_fast_creation = fast; }
    QString createErrorString(const QString &message) const;
    void emitSelectionChanged(SelectionMode_t mode);
    void emitDataChanged(unsigned int flags);

    // Parameters whose range and recorded value come from an entry of the
    // library's configuration node (MainWindow::cfg). The readers throw
    // ParseError like Parse's; a missing node or entry is a ProgError.
    static double getCfgDouble(QString &params, const QString &key, const char *entry);
    static double getCfgUnit(QString &params, const QString &key, const char *entry);
    static int getCfgInt(QString &params, const QString &key, const char *entry);
    static unsigned int getCfgUInt(QString &params, const QString &key, const char *entry);
    static QString createCfgDouble(const QString &key, const char *entry);
    static QString createCfgUnit(const QString &key, const char *entry);
    static QString createCfgInt(const QString &key, const char *entry);
    static QString createCfgUInt(const QString &key, const char *entry);
    static QString createCfgBool(const QString &key, const char *entry);

    // The same against a given node, for hosts that keep such entries elsewhere.
    static double getCfgDouble(const CfgNode *node, QString &params, const QString &key,
                               const char *entry);
    static double getCfgUnit(const CfgNode *node, QString &params, const QString &key,
                             const char *entry);
    static int getCfgInt(const CfgNode *node, QString &params, const QString &key,
                         const char *entry);
    static unsigned int getCfgUInt(const CfgNode *node, QString &params, const QString &key,
                                   const char *entry);
    static QString createCfgDouble(const CfgNode *node, const QString &key, const char *entry);
    static QString createCfgUnit(const CfgNode *node, const QString &key, const char *entry);
    static QString createCfgInt(const CfgNode *node, const QString &key, const char *entry);
    static QString createCfgUInt(const CfgNode *node, const QString &key, const char *entry);
    static QString createCfgBool(const CfgNode *node, const QString &key, const char *entry);

private:
    bool _toggle;
    bool _menu_function;
    bool _dialog_fast_creation = false;
    QString _name;
    QString _menu_name;
    QString _help_id;
    QIcon *_icon = nullptr;
    bool _icon_generated = false;
    const char *_icon_name;
};

} // namespace GApp
} // namespace Zal

Q_DECLARE_METATYPE(Zal::GApp::Command::CmdGroup_t)
