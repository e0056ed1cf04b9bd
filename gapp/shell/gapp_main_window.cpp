#include "gapp_main_window.h"
#include "gapp_ccontainer.h"
#include "gapp_init.h"
#include "gapp_safemode.h"
#include "zal_cfg_array.h"
#include "zal_cfg_file.h"
#include "zal_icon.h"
#include "zal_cfg.h"
#include "zal_cfg_profile.h"
#include "zal_dialogs.h"
#include "zal_exception.h"
#include "zal_os.h"
#include "zal_translate.h"
#include <QCoreApplication>

namespace Zal {
namespace GApp {

MainWindow *MainWindow::main_win = nullptr;
AppStatusManager *MainWindow::smgr = nullptr;
CfgNode *MainWindow::cfg = nullptr;
bool MainWindow::debug_menus = false;
bool MainWindow::debug_views = false;
bool MainWindow::debug_signals = false;
bool MainWindow::debug_events = false;
bool MainWindow::debug_commands = false;
bool MainWindow::debug_scripts = false;
bool MainWindow::debug_undo = false;
const char *const MainWindow::ERROR_USER_ABORT = "GAPP-0011";
const char *const MainWindow::ERROR_OUT_OF_MEMORY = "GAPP-0012";

ExecuteCommandEvent::ExecuteCommandEvent(Command *cmd, AppStatusManager::CommandStartMode_t mode)
    : QEvent(TYPE), _cmd(cmd), _mode(mode)
{
}

MainWindow::MainWindow(const char *name, AppStatusManager *statusManager, CfgNode *config,
                       QStringList &args)
    : QMainWindow(nullptr), _name(QString::fromLatin1(name ? name : ""))
{
    if (main_win)
        throw ZAL_PROG_ERROR("Zal::GApp::MainWindow::MainWindow",
                             QStringLiteral("trying to create second main window"));
    main_win = this;
    GTools::main_widget = this;
    resize(800, 700);
    smgr = statusManager;
    cfg = config;

    debug_menus = OS::getEnv("ZAL_DEBUG_MENUS");
    debug_views = OS::getEnv("ZAL_DEBUG_VIEWS");
    debug_signals = OS::getEnv("ZAL_DEBUG_SIGNALS");
    debug_events = OS::getEnv("ZAL_DEBUG_EVENTS");
    debug_commands = OS::getEnv("ZAL_DEBUG_COMMANDS");
    debug_scripts = OS::getEnv("ZAL_DEBUG_SCRIPTS");
    debug_undo = OS::getEnv("ZAL_DEBUG_UNDO");
    if (debug_commands)
        GTools::ErrorMessageContainer::show_error_text = true;

    for (int i = 1; i + 1 < args.size(); ++i) {
        if (args.at(i) == QLatin1String("-config")) {
            _config_file_name = args.at(i + 1);
            args.removeAt(i + 1);
            args.removeAt(i);
            break;
        }
    }
    for (int i = 1; i < args.size(); ++i) {
        if (args.at(i) == QLatin1String("-safemode")) {
            _safe_mode = true;
            args.removeAt(i);
            break;
        }
    }

    _config_loaded = loadConfiguration();
    if (_safe_mode)
        Safemode::restoreSafeCfgItems();
    applyConfiguration(ZalString());
    if (cfg && !Cfg::Profile::instance()) {
        if (auto *skipped = cfg->getArray<QString>(ZalString(CFG_IGNORED_SYSTEM_TEMPLATES)))
            ResourceContainer::setSystemLevelSkippedForResources(skipped->getValues());
    }
    ResourceContainer::update();

    setCaption(QString());
    setWindowIcon(GIcon::Cache::getAppIcon(ZalInit::getApplicationName()));
}

MainWindow::~MainWindow()
{
    delete SaveSessionHandler::ssh;
    if (cfg)
        saveConfiguration();
    delete smgr;
    smgr = nullptr;
    delete cfg;
    cfg = nullptr;
    main_win = nullptr;
    if (GTools::main_widget == this)
        GTools::main_widget = nullptr;
    DeleteStaticData();
}

void MainWindow::setCaption(const QString &caption)
{
    QString title = caption.isEmpty() ? _name : caption + QStringLiteral(" - ") + _name;
    if (Cfg::AdministrationProfile::instance())
        title += QStringLiteral(" - ") + translate("GAppMainWindow", "administration mode");
    setWindowTitle(title);
}

QString MainWindow::getCaption() const
{
    return _name;
}

void MainWindow::updateSensitivity()
{
    if (_exiting)
        return;
    CommandContainer::updateAllActions();
    emit setMenuSensitiveSignal();
}

void MainWindow::emitHelpRequestedSignal(QWidget *widget)
{
    emit helpRequestedSignal(widget);
}

void MainWindow::exitProgram()
{
    _exiting = true;
    if (smgr)
        smgr->callExitProgram();
    QCoreApplication::quit();
}

void MainWindow::setExitRequested()
{
    _exit_requested = true;
    emit exitRequestedSignal();
}

bool MainWindow::isMenuSensitive(Command *cmd) const
{
    const int mode = int(_select_command_mode);
    if (mode >= 1 && mode <= 3)
        return cmd->isSensitiveInSelectCommandMode(_select_command_mode);
    if (mode > 3)
        return false;
    if (!cmd->isMenuSensitive())
        return false;
    if (smgr && smgr->isMenuFunctionActive()) {
        bool synchronized = false;
        Command::CmdGroup_t group{};
        if (cmd->needsMenuSemaphore(&synchronized, &group))
            return false;
    }
    return true;
}

bool MainWindow::isCommandSensitiveInSelectCommandMode(Command *cmd) const
{
    const int mode = int(_select_command_mode);
    if (mode == 0 || mode > 3)
        return false;
    return cmd->isSensitiveInSelectCommandMode(_select_command_mode);
}

void MainWindow::emitSelectCommandSignal(Command const *cmd)
{
    Command *c = const_cast<Command *>(cmd);
    emit selectCommandSignal(c->getName(), c->getParameterString());
}

void MainWindow::postExecuteCommandEvent(Command *cmd)
{
    postExecuteCommandEvent(cmd, AppStatusManager::CommandStartMode_t(0));
}

void MainWindow::postExecuteCommandEvent(Command *cmd, AppStatusManager::CommandStartMode_t mode)
{
    QCoreApplication::postEvent(this, new ExecuteCommandEvent(cmd, mode));
}

void MainWindow::emitMenuCommandFinishedSignal(const QString &name)
{
    emit menuCommandFinishedSignal(name);
}

} // namespace GApp
} // namespace Zal
