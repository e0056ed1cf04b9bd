#pragma once
#include "gapp_export.h"
#include <QAction>
#include <QString>
#include <map>

class QIcon;

namespace Zal {
namespace GApp {
class Command;

// The one QAction of a command, shared by every menu and toolbar that shows
// it. Owned by the command registry; lives exactly as long as its command.
class GAPP_EXPORT CommandAction : public QAction
{
    Q_OBJECT
public:
    CommandAction(Command *cmd, QObject *parent);
    ~CommandAction() override;

    Command *getCommand() const { return _cmd; }

    // Brings text, shortcut, icon, visibility, enabled and checked state in
    // line with the command. Unless forced, an action without a visible
    // widget is left alone until its menu or toolbar is shown. Emits changed()
    // at most once, and only when something changed.
    void updateAction(bool force);

private slots:
    void actionTriggered(bool checked);

private:
    Command *_cmd;
    const QIcon *_last_icon; // only compared, never dereferenced
};

// The one place where commands are found by name. Commands enter and leave it
// from their own constructor and destructor; the actions it creates are owned
// here. GUI thread only.
class GAPP_EXPORT CommandContainer
{
public:
    using const_iterator = std::map<QString, Command *>::const_iterator;
    using removed_const_iterator = std::map<QString, QString>::const_iterator;

    ~CommandContainer();

    static void registerCommand(Command *cmd);
    static void unregisterCommand(Command *cmd);
    static Command *getCommand(const QString &name);
    static CommandAction *getCommandAction(const QString &name);
    static void registerRemovedCommand(const QString &name, const QString &text);
    static const_iterator begin();
    static const_iterator end();
    static removed_const_iterator removedBegin();
    static removed_const_iterator removedEnd();
    static void updateAllActions();
    static void deleteAllCommands();

private:
    static std::map<QString, Command *> _cmds;
    static std::map<QString, CommandAction *> _actions;
    static std::map<QString, QString> _removed_cmds;
};

} // namespace GApp
} // namespace Zal
