#include "gapp_tb_group.h"
#include "gapp_ccontainer.h"
#include "gapp_main_window.h"
#include "gapp_menu.h"
#include "gapp_status_mgr.h"
#include "zal_icon.h"
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QScreen>
#include <QStandardItemModel>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>

namespace Zal {
namespace GApp {

namespace {

const int MENU_DELAY_MS = 250;

// Whether the main window lets the command run now; without a window nothing runs.
bool windowAllows(Command *cmd)
{
    return cmd && MainWindow::main_win && MainWindow::main_win->isMenuSensitive(cmd);
}

void postCommand(Command *cmd)
{
    if (MainWindow::main_win)
        MainWindow::main_win->postExecuteCommandEvent(cmd, AppStatusManager::CommandStartMode_t(0));
}

} // namespace

// ---- ToolBarGroupCommand --------------------------------------------------------

ToolBarGroupCommand::ToolBarGroupCommand(bool toggle, const QString &name, const QString &menu_name)
    : ToolBarGroupCommand(toggle, name, menu_name, true)
{
}

ToolBarGroupCommand::ToolBarGroupCommand(bool toggle, const QString &name, const QString &menu_name,
                                         bool raise_commands)
    : Command(false, toggle, name, menu_name, QStringLiteral("tb_group_unused_help_id"), nullptr),
      _raise_commands(raise_commands)
{
}

ToolBarGroupCommand::~ToolBarGroupCommand() = default;

void ToolBarGroupCommand::setCommand(Command *cmd)
{
    _commands.push_back(cmd);
}

void ToolBarGroupCommand::addSeparator()
{
    _commands.push_back(nullptr);
}

void ToolBarGroupCommand::setCommands(const std::vector<Command *> &commands)
{
    _commands = commands;
}

void ToolBarGroupCommand::setCommands(Command *c1, Command *c2, Command *c3, Command *c4,
                                      Command *c5, Command *c6, Command *c7, Command *c8)
{
    for (Command *cmd : {c1, c2, c3, c4, c5, c6, c7, c8}) {
        if (cmd)
            _commands.push_back(cmd);
    }
}

void ToolBarGroupCommand::clearCommands()
{
    _commands.clear();
}

bool ToolBarGroupCommand::isChecked() const
{
    if (!isToggle())
        return false;
    for (const Command *cmd : _commands) {
        if (cmd && cmd->isToggle() && cmd->isChecked())
            return true;
    }
    return false;
}

QString ToolBarGroupCommand::getMenuName()
{
    if (!isToggle())
        return Command::getMenuName();
    for (Command *cmd : _commands) {
        if (cmd && cmd->isToggle() && cmd->isChecked())
            return cmd->getMenuName();
    }
    if (!_commands.empty() && _commands.front())
        return _commands.front()->getMenuName();
    return QString();
}

void ToolBarGroupCommand::createToolBarWidget(QToolBar *toolbar, bool show_name)
{
    if (!toolbar)
        return;
    if (show_name)
        toolbar->addWidget(new ToolBarGroupMenu(this, toolbar));
    else
        toolbar->addWidget(new ToolBarGroupButton(this, toolbar));
}

bool ToolBarGroupCommand::isMenuSensitive() const
{
    return false;
}

bool ToolBarGroupCommand::isScriptSensitive() const
{
    return false;
}

Command::Interactive_t ToolBarGroupCommand::isInteractive()
{
    return INTERACTIVE_TOOLBAR_GROUP;
}

bool ToolBarGroupCommand::executeMenu()
{
    return false;
}

bool ToolBarGroupCommand::executeScript(QString *, QString *, ErrorLog *)
{
    return false;
}

QString ToolBarGroupCommand::getParameterString()
{
    return QString();
}

bool ToolBarGroupCommand::parseParameterString(const QString &, bool, QString *, ErrorLog *)
{
    return true;
}

// ---- ToolBarGroupButton ---------------------------------------------------------

ToolBarGroupButton::ToolBarGroupButton(ToolBarGroupCommand *group, QToolBar *toolbar)
    : QFrame(toolbar), _group(group)
{
    _main_button = new QToolButton(this);
    _main_button->setAutoRaise(true);
    if (toolbar)
        _main_button->setIconSize(toolbar->iconSize());
    _arrow_button = new QToolButton(this);
    _arrow_button->setAutoRaise(true);
    const QPixmap arrow = GIcon::Cache::getIcon(GIcon::ACT_TB_GROUP_MENU, 0);
    _arrow_button->setIcon(arrow);
    _arrow_button->setIconSize(arrow.size());
    _arrow_button->setFixedWidth(arrow.width());
    _menu = new Menu(group->getMenuName(), this);
    _timer = new QTimer(this);
    _timer->setSingleShot(true);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(_main_button);
    layout->addWidget(_arrow_button);
    updateButton();

    if (group->isToggle()) {
        connect(_main_button, &QToolButton::pressed, this, &ToolBarGroupButton::openMenu);
    } else {
        connect(_main_button, &QToolButton::pressed, this, &ToolBarGroupButton::delayedOpenMenu);
        connect(_main_button, &QToolButton::clicked, this, &ToolBarGroupButton::activateCommand);
    }
    connect(_timer, &QTimer::timeout, this, &ToolBarGroupButton::openMenu);
    connect(_arrow_button, &QToolButton::pressed, this, &ToolBarGroupButton::openMenu);
    connect(_menu, &QMenu::aboutToHide, this, &ToolBarGroupButton::hideMenu);
    connect(_menu, &QMenu::triggered, this, &ToolBarGroupButton::actionTriggered);
    if (MainWindow *win = MainWindow::main_win)
        connect(win, &MainWindow::setMenuSensitiveSignal, this, &ToolBarGroupButton::updateSensitivity);
    if (AppStatusManager *smgr = MainWindow::smgr) {
        connect(smgr, &AppStatusManager::selectionChangedSignal, this, &ToolBarGroupButton::updateButton);
        connect(smgr, &AppStatusManager::dataChangedSignal, this, &ToolBarGroupButton::updateButton);
    }
    if (toolbar)
        connect(toolbar, &QToolBar::iconSizeChanged, _main_button, &QToolButton::setIconSize);
    // A button made while a main menu is built must not wait for the next
    // sensitivity change to become usable.
    updateSensitivity();
}

ToolBarGroupButton::~ToolBarGroupButton() = default;

void ToolBarGroupButton::actionTriggered(QAction *action)
{
    if (auto *commandAction = qobject_cast<CommandAction *>(action)) {
        _current = commandAction->getCommand();
        updateButton();
    }
}

void ToolBarGroupButton::delayedOpenMenu()
{
    _timer->start(MENU_DELAY_MS);
}

void ToolBarGroupButton::openMenu()
{
    _timer->stop();
    _menu->clear();
    for (Command *cmd : _group->getCommands()) {
        if (!cmd)
            _menu->addSeparator();
        else if (CommandAction *action = CommandContainer::getCommandAction(cmd->getName()))
            _menu->addAction(action);
    }
    _menu->exec(menuPosition());
}

QPoint ToolBarGroupButton::menuPosition() const
{
    const QPoint p = _arrow_button->mapToGlobal(QPoint(0, 0));
    const QSize a = _arrow_button->size();
    const QSize m = _menu->sizeHint();
    const QScreen *screen = _arrow_button->screen();
    const QRect desktop = screen ? screen->virtualGeometry() : QRect(0, 0, 1 << 20, 1 << 20);
    const auto *toolbar = qobject_cast<const QToolBar *>(parentWidget());
    if (toolbar && toolbar->orientation() != Qt::Horizontal) {
        const int x = p.x() + m.width() + a.width() > desktop.x() + desktop.width()
                          ? p.x() - m.width()
                          : p.x() + a.width();
        return QPoint(x, p.y());
    }
    const int y = p.y() + m.height() + a.height() > desktop.y() + desktop.height()
                      ? p.y() - m.height()
                      : p.y() + a.height();
    int x = p.x();
    if (_arrow_button->layoutDirection() == Qt::RightToLeft)
        x = p.x() - m.width() + a.width();
    return QPoint(x, y);
}

void ToolBarGroupButton::hideMenu()
{
    _timer->stop();
    _main_button->setDown(false);
    _arrow_button->setDown(false);
}

void ToolBarGroupButton::activateCommand()
{
    _timer->stop();
    updateButton();
    if (_enabled && _current)
        postCommand(_current);
}

void ToolBarGroupButton::updateButton()
{
    if (_group->isToggle() || !_current) {
        Command *chosen = nullptr;
        if (_group->isToggle()) {
            for (Command *cmd : _group->getCommands()) {
                if (cmd && cmd->isVisible() && cmd->isToggle() && cmd->isChecked()) {
                    chosen = cmd;
                    break;
                }
            }
        }
        if (!chosen) {
            for (Command *cmd : _group->getCommands()) {
                if (cmd && cmd->isVisible()) {
                    chosen = cmd;
                    break;
                }
            }
        }
        _current = chosen;
    }
    if (_current != _shown) {
        _main_button->setIcon(_current ? *_current->getIconSet() : QIcon());
        setToolTip(_current ? _current->getMenuName() : QString());
        _shown = _current;
    }
    _main_button->setCheckable(_current && _current->isToggle());
    _main_button->setChecked(_current && _current->isChecked());
}

void ToolBarGroupButton::updateSensitivity()
{
    _enabled = _current && windowAllows(_current) && _current->isVisible();
    _main_button->setEnabled(_enabled);
}

// ---- ToolBarGroupMenu -----------------------------------------------------------

ToolBarGroupMenu::ToolBarGroupMenu(ToolBarGroupCommand *group, QToolBar *toolbar)
    : QComboBox(toolbar), _group(group)
{
    setMaxVisibleItems(int(group->getCommands().size()));
    updateContents();
    connect(this, &QComboBox::activated, this, &ToolBarGroupMenu::itemSelected);
    if (MainWindow *win = MainWindow::main_win)
        connect(win, &MainWindow::setMenuSensitiveSignal, this, &ToolBarGroupMenu::updateSensitivity);
    if (AppStatusManager *smgr = MainWindow::smgr) {
        connect(smgr, &AppStatusManager::selectionChangedSignal, this, &ToolBarGroupMenu::updateContents);
        connect(smgr, &AppStatusManager::dataChangedSignal, this, &ToolBarGroupMenu::updateContents);
    }
}

ToolBarGroupMenu::~ToolBarGroupMenu() = default;

void ToolBarGroupMenu::itemSelected(int row)
{
    auto *cmd = static_cast<Command *>(itemData(row, Qt::UserRole).value<void *>());
    if (windowAllows(cmd))
        postCommand(cmd);
    else
        updateContents(); // puts the selection back
}

void ToolBarGroupMenu::updateContents()
{
    clear();
    int selected = -1;
    for (Command *cmd : _group->getCommands()) {
        if (!cmd || !cmd->isVisible())
            continue;
        const QIcon icon = cmd->isDefaultIconSet() ? QIcon() : *cmd->getIconSet();
        addItem(icon, cmd->getMenuName(), QVariant::fromValue<void *>(cmd));
        if (selected < 0 && cmd->isToggle() && cmd->isChecked())
            selected = count() - 1;
    }
    if (selected < 0 && count() > 0)
        selected = 0;
    if (selected >= 0) {
        setCurrentIndex(selected);
        auto *cmd = static_cast<Command *>(itemData(selected, Qt::UserRole).value<void *>());
        setToolTip(cmd->getMenuName());
    } else {
        setToolTip(QString());
    }
}

void ToolBarGroupMenu::updateSensitivity()
{
    auto *items = qobject_cast<QStandardItemModel *>(model());
    if (!items)
        return;
    for (int row = 0; row < count(); ++row) {
        auto *cmd = static_cast<Command *>(itemData(row, Qt::UserRole).value<void *>());
        if (QStandardItem *item = items->item(row))
            item->setEnabled(cmd && cmd->isMenuSensitive());
    }
}

} // namespace GApp
} // namespace Zal
