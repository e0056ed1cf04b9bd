#pragma once
#include "gapp_export.h"
#include "gapp_command.h"
#include <QComboBox>
#include <QFrame>
#include <vector>

class QAction;
class QTimer;
class QToolBar;
class QToolButton;

namespace Zal {
namespace GApp {
class Menu;

// A pseudo-command that stands for a group of commands in a toolbar: a
// button showing one member with a drop-down menu of all members, or (with
// the entry's show-name flag) a combo box of the members. It never runs
// itself; its members run. Members are not owned; a null member is a
// separator. GUI thread only.
class GAPP_EXPORT ToolBarGroupCommand : public Command
{
public:
    ToolBarGroupCommand(bool toggle, const QString &name, const QString &menu_name);
    ToolBarGroupCommand(bool toggle, const QString &name, const QString &menu_name,
                        bool raise_commands);
    ~ToolBarGroupCommand() override;

    void setCommand(Command *cmd);
    void addSeparator();
    void setCommands(const std::vector<Command *> &commands);
    // Appends the non-null ones, in order.
    void setCommands(Command *c1, Command *c2 = nullptr, Command *c3 = nullptr, Command *c4 = nullptr,
                     Command *c5 = nullptr, Command *c6 = nullptr, Command *c7 = nullptr,
                     Command *c8 = nullptr);
    void clearCommands();
    const std::vector<Command *> &getCommands() const { return _commands; }
    bool raiseCommands() const { return _raise_commands; }

    // A toggle group is checked when a checkable member is.
    bool isChecked() const override;
    // A toggle group is named after its checked (or first) member.
    QString getMenuName() override;
    void createToolBarWidget(QToolBar *toolbar, bool show_name) override;
    bool isMenuSensitive() const override;
    bool isScriptSensitive() const override;
    Interactive_t isInteractive() override;
    bool executeMenu() override;
    using Command::executeScript;
    bool executeScript(QString *result, QString *errorCode, ErrorLog *log) override;
    QString getParameterString() override;
    bool parseParameterString(const QString &params, bool execute, QString *errorCode,
                              ErrorLog *log) override;

private:
    std::vector<Command *> _commands;
    bool _raise_commands;
};

// The toolbar widget of a group: the main button stands for one member, the
// arrow button opens the menu of all members. A short click runs the member
// of a plain group, holding the button 250 ms opens the menu; a toggle group
// opens the menu at once and shows its checked member. Lives as long as its
// toolbar.
class GAPP_EXPORT ToolBarGroupButton : public QFrame
{
    Q_OBJECT
public:
    ToolBarGroupButton(ToolBarGroupCommand *group, QToolBar *toolbar);
    ~ToolBarGroupButton() override;

private slots:
    void actionTriggered(QAction *action);
    void delayedOpenMenu();
    void openMenu();
    void hideMenu();
    void activateCommand();
    void updateButton();
    void updateSensitivity();

private:
    QPoint menuPosition() const;

    ToolBarGroupCommand *_group;
    Command *_current = nullptr;
    Command *_shown = nullptr;
    bool _enabled = false;
    QToolButton *_main_button;
    QToolButton *_arrow_button;
    Menu *_menu;
    QTimer *_timer;
};

// The combo box form of a group: one row per visible member, the checked
// (or first) one selected; choosing a row runs its command if the main
// window lets it, and otherwise puts the selection back.
class GAPP_EXPORT ToolBarGroupMenu : public QComboBox
{
    Q_OBJECT
public:
    ToolBarGroupMenu(ToolBarGroupCommand *group, QToolBar *toolbar);
    ~ToolBarGroupMenu() override;

private slots:
    void itemSelected(int row);
    void updateContents();
    void updateSensitivity();

private:
    ToolBarGroupCommand *_group;
};

} // namespace GApp
} // namespace Zal
