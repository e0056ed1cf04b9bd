#include "gapp_main_window.h"
#include "gapp_ccontainer.h"
#include "gapp_container_widget.h"
#include "gapp_documentation.h"
#include "gapp_event_filter.h"
#include "gapp_icon_set.h"
#include "gapp_init.h"
#include "gapp_main_area.h"
#include "gapp_menu.h"
#include "gapp_menu_data.h"
#include "gapp_progress_event.h"
#include "gapp_safemode.h"
#include "gapp_shortcut.h"
#include "gapp_toolbar_data.h"
#include "gapp_vcontainer.h"
#include "gapp_view_widget.h"
#include "zal_cfg.h"
#include "zal_cfg_array.h"
#include "zal_cfg_file.h"
#include "zal_cfg_profile.h"
#include "zal_dialogs.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_get_selection.h"
#include "zal_icon.h"
#include "zal_os.h"
#include "zal_progress.h"
#include "zal_timing_spy.h"
#include "zal_translate.h"
#include <QCloseEvent>
#include <QCoreApplication>
#include <QDomDocument>
#include <QFile>
#include <QGuiApplication>
#include <QLabel>
#include <QLayout>
#include <QMenuBar>
#include <QProgressBar>
#include <QScreen>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <algorithm>

namespace Zal {
namespace GApp {

MainWindow *MainWindow::main_win = nullptr;
MainArea::Area *MainWindow::main_area = nullptr;
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
    main_area = new MainArea::Area(this);
    setCentralWidget(main_area);
    setAcceptDrops(true);
    if (layout())
        layout()->activate();
    smgr = statusManager;
    cfg = config;
    _background_timer = new QTimer(this);
    _background_timer->setSingleShot(true);
    _background_timer->setInterval(10);
    connect(_background_timer, &QTimer::timeout, this, &MainWindow::executeBackgroundTimerExpired);

    bool helpIdsInitialized = false;
    try {
        Documentation::initialize();
        helpIdsInitialized = true;
        debug_menus = OS::getEnv("ZAL_DEBUG_MENUS");
        debug_views = OS::getEnv("ZAL_DEBUG_VIEWS");
        debug_signals = OS::getEnv("ZAL_DEBUG_SIGNALS");
        debug_events = OS::getEnv("ZAL_DEBUG_EVENTS");
        debug_commands = OS::getEnv("ZAL_DEBUG_COMMANDS");
        debug_scripts = OS::getEnv("ZAL_DEBUG_SCRIPTS");
        debug_undo = OS::getEnv("ZAL_DEBUG_UNDO");
        if (debug_commands)
            GTools::ErrorMessageContainer::show_error_text = true;
        if (debug_signals && smgr)
            new GTools::TimingSpy(smgr, {QStringLiteral("selectionPreChangedSignal (uint, Zal::GApp::SelectionMode_t)"),
                                         QStringLiteral("dataPreChangedSignal (uint, uint)"),
                                         QStringLiteral("selectionChangedSignal (uint, Zal::GApp::SelectionMode_t)"),
                                         QStringLiteral("dataChangedSignal (uint, uint)")});

        for (int i = 1; i + 1 < args.size(); ++i) {
            if (args.at(i) == QLatin1String("-config")) {
                _config_file_name = args.at(i + 1);
                args.removeAt(i + 1);
                args.removeAt(i);
                break;
            }
        }
        new GAppGetSelectionInterface;
        new ShortcutData(QStringLiteral("default"), translate("GAppShortcut", "default map name"));
        readLayout();
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
        {
            // The defaults of the layout file stay where a user file fails.
            ErrorLog droppedShortcuts;
            ShortcutContainer::load(&droppedShortcuts);
            ErrorLog dropped;
            ToolBarContainer::load(&dropped);
            ErrorLog droppedIcons;
            IconSetContainer::loadStandard(&droppedIcons);
        }
    } catch (...) {
        // The window is not usable; leave no half-registered main window behind.
        // The host keeps ownership of what it passed in when construction fails.
        delete GetSelectionInterface::getInterface();
        // A later window creates the map "default" again.
        ShortcutContainer::deleteData(QStringLiteral("default"));
        // A later window initialises the help identifiers again.
        if (helpIdsInitialized)
            Documentation::deinitialize();
        main_area = nullptr;
        smgr = nullptr;
        cfg = nullptr;
        main_win = nullptr;
        GTools::main_widget = nullptr;
        throw;
    }

    setCaption(QString());
    setWindowIcon(GIcon::Cache::getAppIcon(ZalInit::getApplicationName()));

    _sensor_label = new QLabel(statusBar());
    _sensor_label->setPixmap(GIcon::Cache::getSmallIcon(GIcon::ST_SENSOR));
    _sensor_label->hide();
    _sensor_label->setToolTip(translate("GAppMemory", "sensor label tt"));
    _memory_label = new QLabel(statusBar());
    _memory_label->setToolTip(translate("GAppMemory", "meminfo tt"));
    _progress_bar = new QProgressBar(statusBar());
    _progress_bar->setAlignment(Qt::AlignCenter);
    _progress_bar->setRange(0, 100);
    _progress_bar->setFixedWidth(100);
    _cancel_button = new QToolButton(statusBar());
    _cancel_button->setIcon(GIcon::Cache::getIconSet(GIcon::ACT_CANCEL, 0));
    _cancel_button->setEnabled(false);
    const int height = _progress_bar->sizeHint().height();
    _cancel_button->setFixedHeight(height);
    _progress_bar->setFixedHeight(height);
    _memory_label->setFixedHeight(height);
    statusBar()->addPermanentWidget(_sensor_label, 0);
    statusBar()->addPermanentWidget(_memory_label, 0);
    statusBar()->addPermanentWidget(_progress_bar, 0);
    statusBar()->addPermanentWidget(_cancel_button, 0);

    connect(main_area, &MainArea::Area::widgetSelected, this, &MainWindow::activeViewChanged);
    connect(main_area, &MainArea::Area::widgetVisibilityChanged, this, &MainWindow::viewVisibilityChanged);

    _status_timer = new QTimer(this);
    _status_timer->setSingleShot(true);
    connect(_status_timer, &QTimer::timeout, this, &MainWindow::updateStatusInfo);
    updateStatusInfo();
    centerOnScreen();
    _event_filter = new EventFilter(this);
    initProgressEventCreator();
}

MainWindow::~MainWindow()
{
    // The area outlives this part of the window while QWidget deletes the
    // children; its signals must not reach slots of a half-destroyed window.
    if (main_area)
        main_area->disconnect(this);
    MenuFunctionFinishedCallback::clearCBs();
    // Workers that outlive the window must not post to it.
    Progress::setEventReceiver(nullptr);
    Progress::registerGUIEventCreator(nullptr);
    delete SaveSessionHandler::ssh;
    delete _message_timer;
    _message_timer = nullptr;
    if (cfg)
        saveConfiguration();
    try {
        Documentation::deinitialize();
    } catch (const ProgError &e) {
        // The host may have released it already; a destructor must not throw.
        e.report();
    }
    ViewContainer::hideView();
    // Later events of this process (and later windows) must not reach a
    // window that is going away.
    delete _event_filter;
    _event_filter = nullptr;
    for (Menu *menu : _menus)
        delete menu;
    _menus.clear();
    menuBar()->clear();
    ToolBarContainer::deleteWidgets({});
    delete smgr;
    smgr = nullptr;
    delete cfg;
    cfg = nullptr;
    main_win = nullptr;
    main_area = nullptr;
    if (GTools::main_widget == this)
        GTools::main_widget = nullptr;
    DeleteStaticData();
    delete GetSelectionInterface::getInterface();
}

void MainWindow::readLayout()
{
    QDomDocument doc(QStringLiteral("viewdocument"));
    const QString app = ZalInit::getApplicationName();
    const QString candidates[] = {
        QStringLiteral("%1.xml").arg(app),
        QStringLiteral("%1/%2.xml").arg(ZalInit::getConfigDirectory(0), app),
        QStringLiteral("%1/layout/%2.xml").arg(ZalInit::getSoftwareDirectory(), app),
    };
    QFile file;
    for (const QString &candidate : candidates) {
        file.setFileName(candidate);
        if (file.open(QIODevice::ReadOnly))
            break;
    }
    if (!file.isOpen())
        throw ZAL_PROG_ERROR("Zal::GApp::MainWindow::readLayout", QStringLiteral("cannot read menu layout file"));
    QString message;
    int line = -1;
    int column = -1;
    if (!doc.setContent(&file, &message, &line, &column)) {
        file.close();
        QString text = QStringLiteral("cannot set contents of menu layout file: ") + message;
        if (line >= 0)
            text += QStringLiteral(" in line %1").arg(line);
        if (column >= 0)
            text += QStringLiteral(" in column %1").arg(column);
        throw ZAL_PROG_ERROR("Zal::GApp::MainWindow::readLayout", text);
    }
    file.close();
    _layout_file_name = file.fileName();
    // The toolbar, menu, view and shortcut definitions read their sections
    // from the document, in that order.
    ToolBarContainer::loadInitialDefault(&doc);
    MenuDataContainer::loadMenus(&doc);
    ViewContainer::loadAllViews(&doc);
    ShortcutContainer::loadInitialDefault(&doc);
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

QString MainWindow::saveStateToString() const
{
    return QString::fromLatin1(saveState(0).toBase64());
}

void MainWindow::restoreStateFromString(const QString &state)
{
    const QByteArray bytes = QByteArray::fromBase64(state.toLatin1());
    // Restoring lays out every toolbar and dock again; the state the window
    // is in already (a switch between main menus that nobody rearranged)
    // costs only the comparison.
    if (bytes == saveState(0))
        return;
    restoreState(bytes, 0);
}

bool MainWindow::event(QEvent *e)
{
    if (e->type() == QEvent::StatusTip)
        return true;
    return QMainWindow::event(e);
}

QLabel *MainWindow::createStatusBarEntry()
{
    auto *label = new QLabel(statusBar());
    label->hide();
    return label;
}

void MainWindow::showSensor(bool show)
{
    _show_sensor = show;
}

QAction *MainWindow::insertSubMenu(Menu *menu)
{
    QAction *action = menuBar()->addMenu(menu);
    if (std::find(_menus.begin(), _menus.end(), menu) == _menus.end())
        _menus.push_back(menu);
    return action;
}

void MainWindow::clearMenuAndToolBar(const std::vector<QString> &kept_toolbars)
{
    menuBar()->clear();
    _menus.clear();
    ToolBarContainer::deleteWidgets(kept_toolbars);
}

QMenu *MainWindow::createPopupMenu()
{
    auto *menu = new Menu(QStringLiteral("toolbar menu"), this);
    menu->setSeparatorsCollapsible(true);
    const QList<QToolBar *> toolbars = findChildren<QToolBar *>();
    for (QToolBar *toolbar : toolbars) {
        QAction *action = menu->addAction(toolbar->windowTitle());
        action->setCheckable(true);
        action->setChecked(toolbar->isVisible());
        action->setData(QVariant::fromValue<QWidget *>(toolbar));
    }
    menu->addSeparator();
    menu->addCommand(QString::fromLatin1(CMD_RESET_TOOLBARS));
    menu->addSeparator();
    menu->addCommand(QString::fromLatin1(CMD_RESET_VIEWS));
    connect(menu, &QMenu::triggered, this, &MainWindow::toggleToolBarVisibility);
    return menu;
}

void MainWindow::toggleToolBarVisibility(QAction *action)
{
    const QVariant data = action->data();
    if (data.metaType() != QMetaType::fromType<QWidget *>())
        return;
    if (QWidget *widget = data.value<QWidget *>())
        widget->setVisible(action->isChecked());
}

void MainWindow::updateSensitivity()
{
    if (_exiting)
        return;
    MenuDataContainer::updateSensitivity();
    emit setMenuSensitiveSignal();
}

void MainWindow::emitHelpRequestedSignal(QWidget *widget)
{
    emit helpRequestedSignal(widget);
}

void MainWindow::exitProgram()
{
    _exiting = true;
    lockDrawing();
    ViewContainer::hideView();
    if (smgr)
        smgr->callExitProgram();
    QCoreApplication::quit();
}

void MainWindow::setExitRequested()
{
    _exit_requested = true;
    emit exitRequestedSignal();
}

void MainWindow::closeEvent(QCloseEvent *e)
{
    e->ignore();
    if (!smgr || smgr->isMenuFunctionActive())
        return;
    Command *exitCmd = CommandContainer::getCommand(QStringLiteral("sys.exit_program"));
    if (exitCmd && isMenuSensitive(exitCmd))
        executeCommand(exitCmd);
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
    // The parameter string is asked of the command, which may compute it.
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
    MenuFunctionFinishedCallback::callCBs();
}

void MainWindow::updateStatusInfo()
{
    if (!debug_events) {
        const unsigned int process = OS::getSizeOfProcess() / 1024;
        const int freeMemory = OS::getSizeOfFreeSystemMemory() / 1024;
        const int freeSwap = OS::getSizeOfFreeSwap() / 1024;
        _memory_label->setText(QStringLiteral("%4: %1/%2/%3 %5")
                                   .arg(process)
                                   .arg(freeMemory)
                                   .arg(freeSwap)
                                   .arg(translate("GAppMemory", "memory"), translate("GAppMemory", "mb")));
        _memory_label->setMinimumWidth(qMax(_memory_label->width(), _memory_label->sizeHint().width()));
        if (_show_sensor && _sensor_label->isHidden())
            _sensor_label->show();
        else if (!_show_sensor && !_sensor_label->isHidden())
            _sensor_label->hide();
    }
    _status_timer->start(1000);
}

void MainWindow::activeViewChanged(QWidget *widget)
{
    // A container stands for the inner widget it shows.
    if (auto *container = qobject_cast<ContainerWidget *>(widget)) {
        if (QWidget *inner = container->getCurrentWidget())
            widget = inner;
    }
    if (widget)
        ViewWidgetContainer::setActiveView(widget->objectName(), true);
}

void MainWindow::viewVisibilityChanged(QWidget *)
{
    if (isDrawingLocked() || _exiting)
        return;
    MenuDataContainer::updateSensitivity();
    emit setMenuSensitiveSignal();
}

void MainWindow::screenLayoutChanged(int)
{
}

void MainWindow::showRestartInformation()
{
}

void MainWindow::centerOnScreen()
{
    QScreen *screen = QGuiApplication::primaryScreen();
    if (!screen)
        return;
    const QRect available = screen->availableGeometry();
    const QRect frame = frameGeometry();
    const int x = available.width() > frame.width() ? (available.width() - frame.width()) / 2 : 0;
    const int y = available.height() > frame.height() ? (available.height() - frame.height()) / 2 : 0;
    move(x, y);
}

} // namespace GApp
} // namespace Zal
