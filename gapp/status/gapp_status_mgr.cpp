#include "gapp_status_mgr.h"
#include "gapp_command.h"
#include "gapp_main_window.h"
#include "gapp_menu_data.h"
#include "gapp_menu_provider.h"
#include "gapp_shortcut.h"
#include "gapp_vcontainer.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_gtools_flags.h"
#include "zal_translate.h"
#include <vector>

namespace Zal {
namespace GApp {

namespace {

// Where the shortcut maps join a mode change: the map "default" becomes the
// active one.
void activateDefaultShortcuts()
{
    // Without a main window there is no map "default".
    if (ShortcutContainer::getData(QStringLiteral("default")))
        ShortcutContainer::setActiveData(QStringLiteral("default"));
}

// The mode's standard view is shown; without a window there is no main area.
void showStandardView(const QString &view)
{
    if (MainWindow::main_win)
        ViewContainer::setView(view);
}

// The mode's main menu is built; without a window there is no menu bar.
void createMainMenu(const QString &name)
{
    if (MainWindow::main_win)
        MenuDataContainer::createMainMenu(name);
}

} // namespace

AppStatusManager::AppStatusManager(QObject *parent) : QObject(parent)
{
    qRegisterMetaType<SelectionMode_t>();
    qRegisterMetaType<std::vector<ObjectPointDescriptor>>();
}

AppStatusManager::~AppStatusManager()
{
    for (auto &entry : _status_data)
        delete entry.second;
}

unsigned int AppStatusManager::getUniqueId(const QString &name)
{
    return _unique_ids.getUniqueId(name);
}

bool AppStatusManager::existUniqueId(const QString &name) const
{
    return _unique_ids.existUniqueId(name);
}

QString AppStatusManager::getUniqueIdText(unsigned int id) const
{
    return _unique_ids.getUniqueIdText(id);
}

void AppStatusManager::setStatusData(unsigned int mode, StatusData *data)
{
    if (_status_data.count(mode))
        throw ZAL_PROG_ERROR("Zal::GApp::AppStatusManager::setStatusData",
                             QStringLiteral("duplicated application type"));
    _status_data.emplace(mode, data);
}

StatusData *AppStatusManager::getStatus(unsigned int mode) const
{
    const auto it = _status_data.find(mode);
    if (it == _status_data.end())
        throw ZAL_PROG_ERROR("Zal::GApp::AppStatusManager::getStatus",
                             QStringLiteral("invalid application type"));
    return it->second;
}

namespace {
// The status data of a mode, for an operation that names itself in the error.
StatusData *statusOf(const std::map<unsigned int, StatusData *> &data, unsigned int mode, const char *function)
{
    const auto it = data.find(mode);
    if (it == data.end())
        throw ZAL_PROG_ERROR(function, QStringLiteral("invalid application type"));
    return it->second;
}
} // namespace

std::vector<QString> AppStatusManager::getSelectedData(const char *selection)
{
    return statusOf(_status_data, _app_mode, "Zal::GApp::AppStatusManager::getSelectedData")
        ->getSelectedData(selection);
}

std::vector<QString> AppStatusManager::getAllData(unsigned int mode)
{
    return statusOf(_status_data, mode, "Zal::GApp::AppStatusManager::getAllData")->getAllData();
}

bool AppStatusManager::isDataModified(unsigned int mode, const QString &name) const
{
    return statusOf(_status_data, mode, "Zal::GApp::AppStatusManager::isDataModified")->isDataModified(name);
}

std::vector<unsigned int> AppStatusManager::getAppModes() const
{
    std::vector<unsigned int> modes;
    modes.reserve(_status_data.size());
    for (const auto &entry : _status_data)
        modes.push_back(entry.first);
    return modes;
}

void AppStatusManager::setAppMode(unsigned int newMode)
{
    const bool debug = MainWindow::debug_views;
    for (const auto &entry : _status_data) {
        const QString name = getUniqueIdText(entry.first);
        if (debug)
            Debug::printTrace(QStringLiteral("Before mode change '%1'").arg(name));
        entry.second->beforeModeChange(newMode);
        if (debug)
            Debug::printTrace(QStringLiteral("Before mode change '%1' ok").arg(name));
    }

    const unsigned int oldMode = _app_mode;
    _app_mode = newMode;

    activateDefaultShortcuts();

    for (const auto &entry : _status_data) {
        const QString name = getUniqueIdText(entry.first);
        if (debug)
            Debug::printTrace(QStringLiteral("After mode change '%1'").arg(name));
        entry.second->afterModeChange(oldMode);
        if (debug)
            Debug::printTrace(QStringLiteral("After mode change '%1' ok").arg(name));
    }

    StatusData *status = getStatus(newMode);
    if (!status->getStandardView().isEmpty())
        showStandardView(status->getStandardView());
    createMainMenu(status->getMainMenuName());
}

bool AppStatusManager::isAppModeChangePossible(unsigned int newMode) const
{
    return getStatus(_app_mode)->isAppModeChangePossible(newMode);
}

void AppStatusManager::setMenuFunctionActive(bool active)
{
    if (active == _menu_function_active)
        throw ZAL_PROG_ERROR("Zal::GApp::AppStatusManager::setMenuFunctionActive",
                             QStringLiteral("second menu function is active"));
    _menu_function_active = active;
}

void AppStatusManager::setFigureOperationInCommandEnabled(bool enabled)
{
    if (enabled) {
        ++_figure_operation_counter;
        return;
    }
    if (_figure_operation_counter == 0)
        throw ZAL_PROG_ERROR("Zal::GApp::AppStatusManager::setFigureOperationInCommandEnabled",
                             QStringLiteral("Flag has never been set before"));
    --_figure_operation_counter;
}

bool AppStatusManager::isFigureOperationInCommandEnabled() const
{
    return _figure_operation_counter == _active_commands.size();
}

void AppStatusManager::increaseStartModeFlag()
{
    ++_start_mode_counter;
    GTools::remote_ctrl_command_active = _start_mode_counter != 0;
}

void AppStatusManager::decreaseStartModeFlag()
{
    // Unpaired decreases must not wrap around into "remote for ever".
    if (_start_mode_counter != 0)
        --_start_mode_counter;
    GTools::remote_ctrl_command_active = _start_mode_counter != 0;
}

AppStatusManager::CommandStartMode_t AppStatusManager::getCommandStartMode() const
{
    return _start_mode_counter != 0 ? START_REMOTE : START_NORMAL;
}

void AppStatusManager::pushActiveCommand(Command *cmd)
{
    _active_commands.push_back(cmd);
}

void AppStatusManager::popActiveCommand()
{
    if (_active_commands.empty())
        throw ZAL_PROG_ERROR("Zal::GApp::AppStatusManager::popActiveCommand",
                             QStringLiteral("no active command left"));
    Command *cmd = _active_commands.back();
    _active_commands.pop_back();

    MainWindow *win = MainWindow::main_win;
    if (!win)
        return;
    if (_active_commands.empty())
        win->emitMenuCommandFinishedSignal(cmd ? cmd->getName() : QString());
    // An exit asked for while commands ran is carried out by the outermost one.
    if (win->isExitRequested() && !win->isScriptCommandRunning() && _active_commands.empty())
        win->exitProgram();
}

bool AppStatusManager::getActiveCommand(Command **cmd) const
{
    if (_active_commands.empty())
        return false;
    if (cmd)
        *cmd = _active_commands.back();
    return true;
}

void AppStatusManager::updateMainWindow()
{
    if (!MainWindow::main_win)
        return;
    MainWindow::main_win->updateSensitivity();
    setMainWindowCaption();
}

void AppStatusManager::emitSelectionChanged(unsigned int app, SelectionMode_t mode)
{
    emit selectionPreChangedSignal(app, mode);
    emit selectionChangedSignal(app, mode);
    updateMainWindow();
}

void AppStatusManager::emitDataChanged(unsigned int app, unsigned int reason)
{
    emit dataPreChangedSignal(app, reason);
    emit dataChangedSignal(app, reason);
    updateMainWindow();
}

void AppStatusManager::emitVisualizationChanged(unsigned int app, unsigned int stage)
{
    const bool debug = MainWindow::debug_signals;
    if (debug)
        Debug::printTrace(QStringLiteral("Signal: visualizationChangedSignal"));
    emit visualizationChangedSignal(app, stage);
    if (debug)
        Debug::printTrace(QStringLiteral("Signal: visualizationChangedSignal ok"));
}

void AppStatusManager::emitObjectPointNormalSelected(
    const std::vector<ObjectPointDescriptor> &points)
{
    emit objectPointNormalSelectedSignal(points);
}

void AppStatusManager::emitDialogPreview()
{
    emit dialogPreview();
}

void AppStatusManager::emitDialogCreate()
{
    emit dialogCreate();
}

void AppStatusManager::emitDialogCreateClose()
{
    emit dialogCreateClose();
}

void AppStatusManager::emitDialogResetLastEntry()
{
    emit dialogResetLastEntry();
}

void AppStatusManager::emitDialogResetAll()
{
    emit dialogResetAll();
}

void AppStatusManager::emitDialogApply()
{
    emit dialogApply();
}

void AppStatusManager::emitDialogApplyDeselect()
{
    emit dialogApplyDeselect();
}

void AppStatusManager::emitDialogApplyClose()
{
    emit dialogApplyClose();
}

void AppStatusManager::emitDialogSetEnabled(bool enable)
{
    emit dialogSetEnabled(enable);
}

void AppStatusManager::registerSpecialMenuProvider(const QString &name,
                                                   SpecialMenuProvider *provider)
{
    const auto it = _special_menu_providers.find(name);
    if (it != _special_menu_providers.end() && it->second)
        throw ZAL_PROG_ERROR("Zal::GApp::AppStatusManager::registerSpecialMenuProvider",
                             QStringLiteral("cannot register second provider for special menu."));
    _special_menu_providers[name] = provider;
    if (provider)
        connect(provider, &QObject::destroyed, this,
                &AppStatusManager::specialMenuProviderDestroyed);
}

SpecialMenuProvider *AppStatusManager::getSpecialMenuProvider(const QString &name) const
{
    const auto it = _special_menu_providers.find(name);
    return it == _special_menu_providers.end() ? nullptr : it->second;
}

SpecialMenuProvider *AppStatusManager::getSpecialMenuProvider(const Menu *menu) const
{
    for (const auto &entry : _special_menu_providers)
        if (entry.second && entry.second->isRegisteredMenu(menu))
            return entry.second;
    return nullptr;
}

void AppStatusManager::specialMenuProviderDestroyed(QObject *provider)
{
    // The provider is inside ~QObject here: compare addresses only.
    for (auto it = _special_menu_providers.begin(); it != _special_menu_providers.end(); ++it) {
        if (it->second && static_cast<QObject *>(it->second) == provider) {
            _special_menu_providers.erase(it);
            return;
        }
    }
}

void AppStatusManager::registerProfileMenuProvider(ProfileMenuProvider *provider)
{
    if (_profile_menu_provider)
        ZAL_PROG_ERROR("Zal::GApp::AppStatusManager::registerProfileMenuProvider",
                       QStringLiteral("only one provider possible"))
            .report();
    _profile_menu_provider = provider;
}

void AppStatusManager::registerExitNotifier(ExitNotifier *notifier)
{
    if (_exit_notifiers.count(notifier))
        throw ZAL_PROG_ERROR("Zal::GApp::AppStatusManager::registerExitNotifier",
                             QStringLiteral("Exit notifier already registered"));
    _exit_notifiers.insert(notifier);
}

void AppStatusManager::unregisterExitNotifier(ExitNotifier *notifier)
{
    if (!_exit_notifiers.count(notifier))
        throw ZAL_PROG_ERROR("Zal::GApp::AppStatusManager::unregisterExitNotifier",
                             QStringLiteral("Exit notifier not registered"));
    _exit_notifiers.erase(notifier);
}

bool AppStatusManager::callCanExitProgram()
{
    for (const auto &entry : _status_data)
        if (!entry.second->canExitProgram())
            return false;
    for (ExitNotifier *notifier : _exit_notifiers)
        if (!notifier->canExitProgram())
            return false;
    return true;
}

void AppStatusManager::callExitProgram()
{
    for (const auto &entry : _status_data)
        entry.second->exitProgram();
    // A notifier may unregister itself from inside the call.
    const std::vector<ExitNotifier *> notifiers(_exit_notifiers.begin(), _exit_notifiers.end());
    for (ExitNotifier *notifier : notifiers)
        notifier->exitProgram();
}

void AppStatusManager::callCommitData()
{
    for (const auto &entry : _status_data)
        entry.second->commitData();
}

void AppStatusManager::setMainWindowCaption()
{
    if (!MainWindow::main_win)
        return;
    QString caption;
    const auto it = _status_data.find(_app_mode);
    QString name;
    bool modified = false;
    if (it != _status_data.end() && it->second->getSelectedDataName(&name, &modified)) {
        caption = name;
        if (modified)
            caption += translate("GAppStatusMgr", "(*)");
    }
    MainWindow::main_win->setCaption(caption);
}

} // namespace GApp
} // namespace Zal
