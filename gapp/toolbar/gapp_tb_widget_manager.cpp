#include "gapp_tb_widget_manager.h"
#include "gapp_command.h"
#include "gapp_main_window.h"
#include "gapp_status_mgr.h"
#include "zal_dialogs.h"
#include "zal_exception.h"
#include "zal_icon.h"
#include <QAction>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>
#include <QToolBar>
#include <QToolButton>
#include <algorithm>
#include <memory>

namespace Zal {
namespace GApp {

namespace {

bool needsSemaphore(const Command *cmd)
{
    bool synchronized = false;
    Command::CmdGroup_t group = Command::CMD_GROUP_NONE;
    return cmd && cmd->needsMenuSemaphore(&synchronized, &group);
}

} // namespace

// ---- ToolBarWidgetManager -------------------------------------------------------

ToolBarWidgetManager::ToolBarWidgetManager(Command *command, QToolBar *toolbar,
                                           unsigned int mode_count)
    : QObject(toolbar), _toolbar(toolbar), _command(command), _mode_count(mode_count),
      _mode_sets(mode_count)
{
    if (MainWindow *win = MainWindow::main_win) {
        connect(win, &MainWindow::setMenuSensitiveSignal, this, &ToolBarWidgetManager::handleUpdateSensitivity);
        connect(win, &MainWindow::saveConfigSignal, this, &ToolBarWidgetManager::handleSaveConfig);
    }
    if (AppStatusManager *smgr = MainWindow::smgr) {
        connect(smgr, &AppStatusManager::selectionChangedSignal, this, &ToolBarWidgetManager::handleSelectionChanged);
        connect(smgr, &AppStatusManager::dataChangedSignal, this, &ToolBarWidgetManager::handleDataChanged);
    }
}

ToolBarWidgetManager::~ToolBarWidgetManager() = default;

void ToolBarWidgetManager::addWidget(QWidget *widget, int mode)
{
    if (mode < -1 || (mode >= 0 && unsigned(mode) >= _mode_count))
        throw ZAL_PROG_ERROR("Zal::GApp::ToolBarWidgetManager::addWidget",
                             QStringLiteral("mode index out of range"));
    QAction *action = actionForWidget(widget);
    if (!action) {
        action = _toolbar->addWidget(widget);
        action->setVisible(false);
        _actions.push_back(action);
        // A toolbar refilled in place deletes its widget actions.
        connect(action, &QObject::destroyed, this, &ToolBarWidgetManager::forgetAction);
    }
    if (mode == -1) {
        action->setVisible(true);
        for (std::set<QAction *> &set : _mode_sets)
            set.insert(action);
    } else {
        if (unsigned(mode) == _current_mode)
            action->setVisible(true);
        _mode_sets[size_t(mode)].insert(action);
    }
}

void ToolBarWidgetManager::addSeparator(int mode)
{
    auto separator = std::make_unique<ToolBarSeparator>(nullptr);
    addWidget(separator.get(), mode);
    separator.release();
}

QToolButton *ToolBarWidgetManager::addToolButton(const QString &icon_name, const QString &tooltip,
                                                 bool checkable, int mode)
{
    auto button = std::make_unique<QToolButton>();
    button->setIcon(GIcon::Cache::getIconSet(icon_name.toLatin1().constData(), 0));
    button->setCheckable(checkable);
    button->setToolTip(tooltip);
    addWidget(button.get(), mode);
    connect(button.get(), &QToolButton::clicked, this, &ToolBarWidgetManager::handleSelectCommand);
    return button.release();
}

void ToolBarWidgetManager::switchMode(unsigned int mode)
{
    if (mode >= _mode_count)
        throw ZAL_PROG_ERROR("Zal::GApp::ToolBarWidgetManager::switchMode",
                             QStringLiteral("mode index out of range"));
    _current_mode = mode;
    const std::set<QAction *> &visible = _mode_sets[mode];
    for (QAction *action : _actions)
        action->setVisible(visible.count(action) != 0);
}

void ToolBarWidgetManager::setToolBarEnabled(bool enabled)
{
    for (QAction *action : _actions)
        action->setEnabled(enabled);
    _toolbar_enabled = enabled;
}

bool ToolBarWidgetManager::isCommandExecutionAllowed() const
{
    return !(needsSemaphore(_command) && MainWindow::smgr && MainWindow::smgr->isMenuFunctionActive());
}

void ToolBarWidgetManager::beginCommandExecution()
{
    AppStatusManager *smgr = MainWindow::smgr;
    if (!smgr)
        return;
    smgr->pushActiveCommand(_command);
    if (needsSemaphore(_command)) {
        if (smgr->isMenuFunctionActive()) {
            GTools::ErrorDialog(QStringLiteral("GAPP-0002"), QString());
            smgr->popActiveCommand();
            return;
        }
        smgr->setMenuFunctionActive(true);
        if (MainWindow::main_win)
            MainWindow::main_win->updateSensitivity();
    }
    _command_executing = true;
}

void ToolBarWidgetManager::endCommandExecution()
{
    AppStatusManager *smgr = MainWindow::smgr;
    // An end without a successful begin must not release what another
    // command holds.
    if (!smgr || !_command_executing)
        return;
    if (needsSemaphore(_command)) {
        smgr->setMenuFunctionActive(false);
        if (MainWindow::main_win)
            MainWindow::main_win->updateSensitivity();
    }
    smgr->popActiveCommand();
    _command_executing = false;
}

void ToolBarWidgetManager::handleUpdateSensitivity()
{
    updateSensitivity();
}

void ToolBarWidgetManager::handleSaveConfig()
{
    saveConfig();
}

void ToolBarWidgetManager::handleSelectionChanged()
{
    selectionChanged();
}

void ToolBarWidgetManager::handleDataChanged()
{
    dataChanged();
}

void ToolBarWidgetManager::handleSelectCommand()
{
    MainWindow *win = MainWindow::main_win;
    if (win && _command && win->isCommandSensitiveInSelectCommandMode(_command))
        win->emitSelectCommandSignal(_command);
}

QAction *ToolBarWidgetManager::actionForWidget(QWidget *widget)
{
    const QList<QAction *> list = _toolbar->actions();
    for (QAction *action : list) {
        if (_toolbar->widgetForAction(action) == widget)
            return action;
    }
    return nullptr;
}

void ToolBarWidgetManager::forgetAction(QObject *object)
{
    // Only compared: the action is half destroyed already.
    auto *action = static_cast<QAction *>(object);
    _actions.erase(std::remove(_actions.begin(), _actions.end(), action), _actions.end());
    for (std::set<QAction *> &set : _mode_sets)
        set.erase(action);
}

// ---- ToolBarSeparator -----------------------------------------------------------

ToolBarSeparator::ToolBarSeparator(QWidget *parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Minimum);
}

ToolBarSeparator::~ToolBarSeparator() = default;

bool ToolBarSeparator::isHorizontal() const
{
    const auto *toolbar = qobject_cast<const QToolBar *>(parentWidget());
    return toolbar && toolbar->orientation() == Qt::Horizontal;
}

QSize ToolBarSeparator::sizeHint() const
{
    const int extent = style()->pixelMetric(QStyle::PM_DockWidgetSeparatorExtent, nullptr, this);
    return isHorizontal() ? QSize(extent, 0) : QSize(0, extent);
}

void ToolBarSeparator::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QStyleOption option;
    option.initFrom(this);
    if (isHorizontal())
        option.state |= QStyle::State_Horizontal;
    style()->drawPrimitive(QStyle::PE_IndicatorToolBarSeparator, &option, &painter, this);
}

} // namespace GApp
} // namespace Zal
