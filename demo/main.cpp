// The demo host: a small inspection application on libZalGApplication.
//   zal_demo                 the application in a window
//   zal_demo -headless       plays demo.macro through the script path, checks
//                            the results, writes a screenshot and exits 0 only
//                            when everything held (-screenshot FILE names it)
//   zal_demo -first-frame    prints "FIRST_FRAME <ms>" once the window is
//                            painted, then exits (for the start-up benchmark)
#include "demo_background.h"
#include "demo_commands.h"
#include "demo_document.h"
#include "demo_files.h"
#include "demo_macro.h"
#include "demo_recent.h"
#include "demo_resources.h"
#include "demo_shell.h"
#include "demo_status.h"
#include "demo_undo_check.h"
#include "demo_views.h"
#include "gapp_application.h"
#include "gapp_ccontainer.h"
#include "gapp_container_widget.h"
#include "gapp_init.h"
#include "gapp_main_area.h"
#include "gapp_main_window.h"
#include "gapp_menu_data.h"
#include "gapp_shortcut.h"
#include "gapp_status_mgr.h"
#include "gapp_style.h"
#include "gapp_toolbar_data.h"
#include "gapp_vcontainer.h"
#include "gapp_view_widget.h"
#include "zal_dialogs.h"
#include "zal_cfg_profile.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_icon.h"
#include "zal_os.h"
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QMenuBar>
#include <QTemporaryDir>
#include <QTimer>
#include <cstdio>
#include <cstring>

using namespace Zal;
using namespace Zal::GApp;

namespace {

int failures = 0;

void check(bool ok, const QString &what)
{
    std::printf("%s %s\n", ok ? "ok  " : "FAIL", what.toLocal8Bit().constData());
    std::fflush(stdout);
    failures += ok ? 0 : 1;
}

bool hasArg(int argc, char **argv, const char *arg)
{
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], arg) == 0)
            return true;
    return false;
}

QString argValue(const QStringList &args, const QString &name, const QString &fallback)
{
    const int i = args.indexOf(name);
    return (i >= 0 && i + 1 < args.size()) ? args.at(i + 1) : fallback;
}

// Paints once, then reports how long the start took.
class FirstFrameProbe : public QObject
{
public:
    explicit FirstFrameProbe(const QElapsedTimer &clock) : _clock(clock) {}
    bool eventFilter(QObject *, QEvent *e) override
    {
        if (e->type() == QEvent::Paint && !_done) {
            _done = true;
            std::printf("FIRST_FRAME %.1f\n", double(_clock.nsecsElapsed()) / 1e6);
            std::fflush(stdout);
            QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        }
        return false;
    }

private:
    const QElapsedTimer &_clock;
    bool _done = false;
};

QStringList menuTitles(MainWindow *window)
{
    QStringList titles;
    for (QAction *a : window->menuBar()->actions())
        titles << a->text();
    return titles;
}

QStringList entriesOf(MainWindow *window, const QString &title)
{
    QStringList entries;
    for (QAction *a : window->menuBar()->actions()) {
        if (a->text() != title || !a->menu())
            continue;
        for (QAction *entry : a->menu()->actions())
            if (!entry->isSeparator())
                entries << entry->text();
    }
    return entries;
}

// A key press as the user's keyboard would send it.
void pressKey(QWidget *target, int key, Qt::KeyboardModifiers modifiers)
{
    QKeyEvent press(QEvent::KeyPress, key, modifiers);
    QCoreApplication::sendEvent(target, &press);
    QCoreApplication::sendPostedEvents();
}

void click(QWidget *target)
{
    const QPointF at(target->width() / 2.0, target->height() / 2.0);
    QMouseEvent press(QEvent::MouseButtonPress, at, target->mapToGlobal(at), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QMouseEvent release(QEvent::MouseButtonRelease, at, target->mapToGlobal(at), Qt::LeftButton, Qt::NoButton,
                        Qt::NoModifier);
    QCoreApplication::sendEvent(target, &press);
    QCoreApplication::sendEvent(target, &release);
}

void checkKeysHelpAndLocking(MainWindow *window)
{
    // The same key runs different commands in the 3-D view and the list.
    QStringList ran;
    auto finished = QObject::connect(window, &MainWindow::menuCommandFinishedSignal,
                                     [&ran](const QString &name) { ran << name; });
    QWidget *view3d = ViewWidgetContainer::getWidget(QStringLiteral("view3d"));
    QWidget *elements = ViewWidgetContainer::getWidget(QStringLiteral("elements"));
    ViewWidgetContainer::setActiveView(QStringLiteral("view3d"));
    pressKey(view3d, Qt::Key_D, Qt::ControlModifier);
    ViewWidgetContainer::setActiveView(QStringLiteral("elements"));
    pressKey(elements, Qt::Key_D, Qt::ControlModifier);
    QObject::disconnect(finished);
    check(ran == QStringList({QStringLiteral("meas.distance"), QStringLiteral("meas.point_count")}),
          QStringLiteral("Ctrl+D by view: ") + ran.join(QLatin1Char(' ')));

    CommandAction *open = CommandContainer::getCommandAction(QStringLiteral("file.open"));
    open->updateAction(true);
    check(open->shortcut() == QKeySequence(QStringLiteral("Ctrl+O")),
          QStringLiteral("the open action shows its key ") + open->shortcut().toString());

    // The user's own binding is stored as a difference and read back.
    ShortcutData *map = ShortcutContainer::getData(QStringLiteral("default"));
    auto bindings = map->getShortcuts();
    bindings.push_back({QStringLiteral("sys.redo"), ShortcutData::GLOBAL_VIEW,
                        QKeyCombination(Qt::CTRL, Qt::Key_Y).toCombined()});
    map->setShortcuts(bindings);
    ErrorLog log;
    bool ok = ShortcutContainer::save(&log);
    map->restoreDefault();
    const bool goneAfterReset = map->find(QStringLiteral("sys.redo")) != QKeyCombination(Qt::CTRL, Qt::Key_Y).toCombined();
    ok = ok && goneAfterReset && ShortcutContainer::load(&log);
    check(ok && map->find(QStringLiteral("sys.redo")) == QKeyCombination(Qt::CTRL, Qt::Key_Y).toCombined(),
          QStringLiteral("user shortcut Ctrl+Y for sys.redo read back") + log.getText());

    // F1 reaches the help handler with the widget it was pressed in.
    QWidget *helped = nullptr;
    auto help = QObject::connect(window, &MainWindow::helpRequestedSignal, [&helped](QWidget *w) { helped = w; });
    pressKey(elements, Qt::Key_F1, Qt::NoModifier);
    QObject::disconnect(help);
    check(helped == elements, QStringLiteral("F1 asks for help on the element list"));

    // While the GUI is locked, clicks elsewhere are swallowed.
    auto *button = new QPushButton(QStringLiteral("Probe"), window);
    auto *busy = new QLabel(QStringLiteral("working..."), window);
    button->setGeometry(10, 10, 80, 24);
    button->show();
    int clicks = 0;
    QObject::connect(button, &QPushButton::clicked, [&clicks] { ++clicks; });
    window->lockGUI(busy);
    click(button);
    const int whileLocked = clicks;
    window->unlockGUI(busy);
    click(button);
    check(whileLocked == 0 && clicks == 1, QStringLiteral("a click during the locked phase is swallowed"));
    delete button;
    delete busy;
}

int runHeadless(MainWindow *window, const QString &screenshot)
{
    AppStatusManager *smgr = MainWindow::smgr;
    const unsigned int measure = smgr->getUniqueId(QStringLiteral("measure"));
    check(smgr->getAppMode() == measure, QStringLiteral("starts in the measuring mode"));
    check(window->windowTitle() == QStringLiteral("Zal Demo"), QStringLiteral("title: ") + window->windowTitle());
    check(qobject_cast<RynStyle *>(QApplication::style()) != nullptr,
          QStringLiteral("the application runs in the library's own style"));

    // The macro works on copies in a scratch folder.
    QTemporaryDir scratch;
    QDir(scratch.path()).mkpath(QStringLiteral("data"));
    QFile::copy(QStringLiteral("data/bracket.pts"), scratch.filePath(QStringLiteral("data/bracket.pts")));
    const QString macro = QDir::current().absoluteFilePath(QStringLiteral("demo.macro"));
    const QString home = QDir::currentPath();
    QDir::setCurrent(scratch.path());
    const QStringList measureMenus = menuTitles(window);
    check(measureMenus == QStringList({"&File", "&Edit", "&Measure", "&View"}),
          QStringLiteral("measuring menus: ") + measureMenus.join(QLatin1Char(' ')));
    const QStringList viewEntries = entriesOf(window, QStringLiteral("&View"));
    check(viewEntries == QStringList({"&Record macro"}),
          QStringLiteral("the profile replaced the grid entry: ") + viewEntries.join(QLatin1Char(' ')));

    const int macroFailures = Demo::playMacro(macro);
    QDir::setCurrent(home);
    check(macroFailures == 0, QStringLiteral("the macro gave every expected result"));

    window->execute(CommandContainer::getCommand(QStringLiteral("sys.set_mode")), QStringLiteral("mode=\"inspect\""));
    const QStringList inspectMenus = menuTitles(window);
    check(inspectMenus == QStringList({"&File", "&Edit", "&Inspect", "&View"}),
          QStringLiteral("inspection menus: ") + inspectMenus.join(QLatin1Char(' ')));
    window->execute(CommandContainer::getCommand(QStringLiteral("sys.set_mode")), QStringLiteral("mode=\"measure\""));

    const QStringList recent = Demo::RecentFilesProvider::instance()->files();
    check(recent.size() == 1 && recent.first().endsWith(QStringLiteral("data/bracket.pts")),
          QStringLiteral("recent files: ") + recent.join(QLatin1Char(' ')));
    check(window->windowTitle() == QStringLiteral("bracket-copy.pts - Zal Demo"),
          QStringLiteral("the caption names the saved file: ") + window->windowTitle());
    CommandAction *grid = CommandContainer::getCommandAction(QStringLiteral("view.toggle_grid"));
    grid->updateAction(true);
    check(grid->isChecked(),
          QStringLiteral("the grid toggle shows its state"));
    check(!window->isRecording(), QStringLiteral("macro recording is off again"));

    // A template shows some of its view's widgets: the very same objects.
    QWidget *view3d = ViewWidgetContainer::getWidget(QStringLiteral("view3d"));
    ViewContainer::setView(QStringLiteral("measure_3d"));
    check(ViewWidgetContainer::getWidget(QStringLiteral("view3d")) == view3d && view3d->isVisible()
              && !ViewWidgetContainer::getWidget(QStringLiteral("elements"))->isVisible(),
          QStringLiteral("template measure_3d keeps the 3-D view widget and hides the list"));
    ViewContainer::setView(QStringLiteral("measure_view"));
    check(ViewWidgetContainer::getWidget(QStringLiteral("view3d")) == view3d
              && ViewContainer::getActualView() == QStringLiteral("measure_view"),
          QStringLiteral("back to measure_view with the same widgets"));

    // The editors container shows one editor at a time; the shown one is the active view.
    auto *editors = qobject_cast<ContainerWidget *>(ViewWidgetContainer::getWidget(QStringLiteral("editors")));
    bool switched = false;
    if (editors) {
        editors->showWidget(1);
        QWidget *notes = editors->getCurrentWidget();
        editors->showWidget(0);
        switched = notes && notes->objectName() != editors->getCurrentWidget()->objectName()
                   && notes == editors->getWidget(1);
    }
    check(switched, QStringLiteral("the editors container switches between its two editors"));

    // The user's own entry on the custom toolbar survives a save and a reload.
    ToolBarData *custom = ToolBarContainer::getCustomToolBar();
    std::vector<ToolBarData::ToolBarItem> items = custom->getItems();
    ToolBarData::ToolBarItem mine;
    mine.kind = ToolBarData::ToolBarItem::COMMAND;
    mine.level = 2;
    mine.command = QStringLiteral("meas.distance");
    items.push_back(mine);
    custom->setCommands(items);
    ErrorLog toolbarLog;
    const bool toolbarSaved = ToolBarContainer::save(&toolbarLog);
    custom->setCommands(custom->getDefaultItems());
    const bool toolbarLoaded = ToolBarContainer::load(&toolbarLog);
    QStringList entries;
    for (const auto &item : custom->getItems())
        entries << item.command;
    check(toolbarSaved && toolbarLoaded
              && entries == QStringList({QStringLiteral("meas.point_count"), QStringLiteral("meas.distance")}),
          QStringLiteral("custom toolbar read back: ") + entries.join(QLatin1Char(' ')) + toolbarLog.getText());

    checkKeysHelpAndLocking(window);
    QString fitDetail;
    const bool fitted = Demo::checkBackgroundFit(window, &fitDetail);
    check(fitted, QStringLiteral("fit in the background: ") + fitDetail);
    check(Demo::checkOpenByContent(QStringLiteral("files.macro")) == 0,
          QStringLiteral("files open in the mode of their kind"));
    check(Demo::checkResources(window) == 0, QStringLiteral("user icons and help identifiers"));
    QString undoDetail;
    const bool undoChecked = Demo::checkUndoDebugging(window, &undoDetail);
    check(undoChecked, QStringLiteral("undo checks: ") + undoDetail);
    QString shellDetail, callbackDetail;
    const bool shellRan = Demo::checkShellCommand(&shellDetail);
    check(shellRan, QStringLiteral("shell command: ") + shellDetail);
    const bool calledBack = Demo::checkGuiCallback(window, &callbackDetail);
    check(calledBack, QStringLiteral("GUI callback: ") + callbackDetail);

    QCoreApplication::processEvents();
    const bool saved = window->grab().save(screenshot);
    check(saved, QStringLiteral("screenshot written to ") + QDir::current().absoluteFilePath(screenshot));
    return failures;
}

} // namespace

int main(int argc, char **argv)
{
    QElapsedTimer clock;
    clock.start();
    const bool headless = hasArg(argc, argv, "-headless");
    const bool firstFrame = hasArg(argc, argv, "-first-frame");
    ZalInit::setApplicationName(QStringLiteral("ZalDemo"));
    // A headless run leaves the user's own settings alone.
    QTemporaryDir settings;
    if ((headless || firstFrame) && !OS::getEnv("ZAL_USER_CONFIG_DIR"))
        qputenv("ZAL_USER_CONFIG_DIR", settings.path().toLocal8Bit());

    try {
        // The demo's profile hides the grid toggle in menus and puts the
        // recording toggle in its place.
        ErrorLog profileLog;
        if (!Cfg::Profile::load(QStringLiteral("ZalDemo.profile"), &profileLog))
            std::printf("profile not used: %s\n", profileLog.getText().toLocal8Bit().constData());
        CfgNode *cfg = InitLibrary();
        Application app(argc, argv);
        QStringList args = app.arguments();
        static Demo::RecordManager records;
        Demo::createCommands();
        Demo::createBackgroundCommands();
        Demo::registerViews();

        auto *smgr = new AppStatusManager;
        for (const char *name : {"measure", "inspect"}) {
            const unsigned int mode = smgr->getUniqueId(QString::fromLatin1(name));
            smgr->setStatusData(mode, Demo::createStatus(mode, QString::fromLatin1(name)));
        }
        smgr->registerSpecialMenuProvider(QString::fromLatin1(MenuData::RECENT_FILES),
                                          Demo::RecentFilesProvider::instance());
        auto *window = new MainWindow("Zal Demo", smgr, cfg, args);
        Demo::LogView::attach(window);
        QObject::connect(&Demo::Document::instance(), &Demo::Document::changed, window,
                         [window] { window->updateSensitivity(); });
        // Without a person in front of it, dialogs are printed and answered.
        if (headless || firstFrame) {
            GTools::DialogSeam::setHandler([](const GTools::DialogRequest &r) {
                std::printf("dialog: %s: %s\n", r.title.toLocal8Bit().constData(), r.text.toLocal8Bit().constData());
                return 0;
            });
        }
        FirstFrameProbe probe(clock);
        if (firstFrame)
            window->installEventFilter(&probe);
        // Shown before the first mode: a view's first stored arrangement then
        // holds the sizes the window really gives it.
        window->show();
        smgr->setAppMode(smgr->getUniqueId(QStringLiteral("measure")));
        window->checkConfiguration();

        int status = 0;
        if (headless && !firstFrame) {
            status = runHeadless(window, argValue(args, QStringLiteral("-screenshot"), QStringLiteral("zal-demo.png")));
            std::printf("%s\n", status == 0 ? "demo: all checks passed" : "demo: some checks FAILED");
        } else {
            status = app.exec();
        }
        delete window;
        return status == 0 ? 0 : 1;
    } catch (const Exception &e) {
        std::fprintf(stderr, "zal_demo: %s\n", e.what());
        return 2;
    } catch (const std::exception &e) {
        std::fprintf(stderr, "zal_demo: %s\n", e.what());
        return 2;
    }
}
