#include "gapp_ccontainer.h"
#include "gapp_command.h"
#include "gapp_main_window.h"
#include "gapp_shortcut.h"
#include "zal_cfg_profile.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include <QIcon>
#include <QKeySequence>
#include <QToolButton>
#include <QWidget>

namespace Zal {
namespace GApp {

std::map<QString, Command *> CommandContainer::_cmds;
std::map<QString, CommandAction *> CommandContainer::_actions;
std::map<QString, QString> CommandContainer::_removed_cmds;

namespace {

// Where the shortcut maps join: the key of the command in the override map,
// else in the active map, else none.
QKeySequence shortcutForCommand(const QString &name)
{
    if (const ShortcutData *map = ShortcutContainer::getOverrideData()) {
        if (const int key = map->find(name))
            return QKeySequence(key);
    }
    if (const ShortcutData *map = ShortcutContainer::getActiveData()) {
        if (const int key = map->find(name))
            return QKeySequence(key);
    }
    return QKeySequence();
}

bool isHiddenByProfile(const QString &name)
{
    const Cfg::ParsedProfile *profile = Cfg::AdministrationProfile::instance();
    return profile && profile->isCommandHidden(name);
}

bool hasVisibleWidget(const QAction *action)
{
    const QList<QObject *> objects = action->associatedObjects();
    for (QObject *o : objects)
        if (o->isWidgetType() && static_cast<QWidget *>(o)->isVisible())
            return true;
    return false;
}

} // namespace

CommandAction::CommandAction(Command *cmd, QObject *parent) : QAction(parent), _cmd(cmd)
{
    _last_icon = cmd->getIconSet();
    setIcon(_last_icon && !cmd->isDefaultIconSet() ? *_last_icon : QIcon());
    setText(cmd->getMenuName());
    setCheckable(cmd->isToggle());
    connect(this, &QAction::triggered, this, &CommandAction::actionTriggered);
}

CommandAction::~CommandAction() = default;

void CommandAction::actionTriggered(bool)
{
    MainWindow *win = MainWindow::main_win;
    if (!win)
        return;
    if (win->isCommandSensitiveInSelectCommandMode(_cmd))
        win->emitSelectCommandSignal(_cmd);
    else
        win->postExecuteCommandEvent(_cmd);
}

void CommandAction::updateAction(bool force)
{
    if (!force && !hasVisibleWidget(this))
        return;

    const bool wasBlocked = blockSignals(true);
    bool touched = false;
    const QString &name = _cmd->getName();

    const bool hidden = isHiddenByProfile(name);

    const QKeySequence key = shortcutForCommand(name);
    if (key != shortcut()) {
        // Shown in menus only; key presses reach commands through the
        // application's event filter and the shortcut maps.
        setShortcutContext(Qt::WidgetShortcut);
        setShortcut(key);
        touched = true;
    }

    const QString menuName = _cmd->getMenuName();
    const QString label = hidden ? QLatin1Char('(') + menuName + QLatin1Char(')') : menuName;
    if (label != text()) {
        setText(label);
        touched = true;
    }

    const QIcon *icon = _cmd->getIconSet();
    const bool defaultIcon = icon && _cmd->isDefaultIconSet();
    if (icon != _last_icon) {
        setIcon(icon && !defaultIcon ? *icon : QIcon());
        _last_icon = icon;
        touched = true;
    }

    const bool visible = _cmd->isVisible();
    if (visible != isVisible()) {
        setVisible(visible);
        touched = true;
    }

    MainWindow *win = MainWindow::main_win;
    const bool enabled = win ? win->isMenuSensitive(_cmd) : _cmd->isMenuSensitive();
    if (enabled != isEnabled()) {
        setEnabled(enabled);
        touched = true;
    }

    if (isCheckable()) {
        const bool checked = _cmd->isChecked();
        if (checked != isChecked()) {
            setChecked(checked);
            touched = true;
        }
    }

    blockSignals(wasBlocked);

    // Toolbar buttons show the generated text icon that menus leave out.
    if (defaultIcon) {
        const QList<QObject *> objects = associatedObjects();
        for (QObject *o : objects) {
            auto *button = qobject_cast<QToolButton *>(o);
            if (button && button->icon().cacheKey() != icon->cacheKey())
                button->setIcon(*icon);
        }
    }

    if (touched && !wasBlocked)
        emit changed();
}

CommandContainer::~CommandContainer()
{
    deleteAllCommands();
}

void CommandContainer::registerCommand(Command *cmd)
{
    const QString &name = cmd->getName();
    if (_cmds.count(name))
        throw ZAL_PROG_ERROR("Zal::GApp::CommandContainer::registerCommand",
                             QStringLiteral("Command does already exist: ") + name);
    const auto inserted = _cmds.emplace(name, cmd).first;
    try {
        _actions.emplace(name, new CommandAction(cmd, nullptr));
    } catch (...) {
        _cmds.erase(inserted);
        throw;
    }
    if (name.contains(QLatin1String("_draft")))
        Debug::printLine("Zal::GApp::CommandContainer::registerCommand", 57,
                         QStringLiteral("draft command name: '%1'").arg(name));
}

void CommandContainer::unregisterCommand(Command *cmd)
{
    const QString &name = cmd->getName();
    const auto it = _cmds.find(name);
    if (it == _cmds.end())
        throw ZAL_PROG_ERROR("Zal::GApp::CommandContainer::unregisterCommand",
                             QStringLiteral("command '%1' not registered").arg(name));
    _cmds.erase(it);
    const auto action = _actions.find(name);
    if (action != _actions.end()) {
        delete action->second;
        _actions.erase(action);
    }
}

Command *CommandContainer::getCommand(const QString &name)
{
    const auto it = _cmds.find(name);
    return it == _cmds.end() ? nullptr : it->second;
}

CommandAction *CommandContainer::getCommandAction(const QString &name)
{
    const auto it = _actions.find(name);
    return it == _actions.end() ? nullptr : it->second;
}

void CommandContainer::registerRemovedCommand(const QString &name, const QString &text)
{
    _removed_cmds[name] = text;
}

CommandContainer::const_iterator CommandContainer::begin()
{
    return _cmds.cbegin();
}

CommandContainer::const_iterator CommandContainer::end()
{
    return _cmds.cend();
}

CommandContainer::removed_const_iterator CommandContainer::removedBegin()
{
    return _removed_cmds.cbegin();
}

CommandContainer::removed_const_iterator CommandContainer::removedEnd()
{
    return _removed_cmds.cend();
}

void CommandContainer::updateAllActions()
{
    for (const auto &entry : _actions)
        entry.second->updateAction(false);
}

void CommandContainer::deleteAllCommands()
{
    // Each command's destructor takes its entry and its action out.
    while (!_cmds.empty())
        delete _cmds.begin()->second;
}

} // namespace GApp
} // namespace Zal
