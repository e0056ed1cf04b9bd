#include "gapp_ccontainer.h"
#include "gapp_init.h"
#include "gapp_main_window.h"
#include "gapp_menu_data.h"
#include "gapp_tb_group.h"
#include "gapp_tb_widget_manager.h"
#include "gapp_toolbar_data.h"
#include "gapp_toolbar_file.h"
#include "zal_cfg_profile.h"
#include "zal_dialogs.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_os.h"
#include "zal_stream.h"
#include "test_util.h"
#include <QApplication>
#include <QDomDocument>
#include <QLabel>
#include <QLayout>
#include <QMenu>
#include <QScreen>
#include <QStyle>
#include <QToolButton>
#include <QtTest>

using namespace Zal;
using namespace Zal::GApp;
using namespace Qt::StringLiterals;
using Item = ToolBarData::ToolBarItem;

namespace {

class TestCommand : public Command
{
public:
    TestCommand(const QString &name, bool toggle = false, bool menuFunction = false)
        : Command(menuFunction, toggle, name, name.toUpper(), QString(), nullptr) {}
    bool isChecked() const override { return checked; }
    bool isMenuSensitive() const override { return sensitive; }
    bool isScriptSensitive() const override { return true; }
    QString getParameterString() override { return QString(); }
    bool parseParameterString(const QString &, bool, QString *, ErrorLog *) override { return true; }
    bool isVisible() const override { return visible; }
    Interactive_t isInteractive() override { return INTERACTIVE_NO; }
    bool executeMenu() override { ++runs; return true; }
    bool checked = false, sensitive = true, visible = true;
    int runs = 0;
};

class Manager : public ToolBarWidgetManager
{
public:
    using ToolBarWidgetManager::ToolBarWidgetManager;
    void updateSensitivity() override { calls << "sensitivity"; }
    void saveConfig() override { calls << "config"; }
    void selectionChanged() override { calls << "selection"; }
    void dataChanged() override { calls << "data"; }
    QStringList calls;
};

QStringList describe(const std::vector<Item> &items)
{
    QStringList list;
    for (const Item &i : items)
        list << (i.kind == Item::SEPARATOR ? u"-"_s : i.command + (i.show_name ? "*" : ""));
    return list;
}

void loadSection(const QByteArray &section)
{
    QDomDocument doc;
    QVERIFY(doc.setContent("<layout><toolbarsection>" + section + "</toolbarsection></layout>"));
    ToolBarContainer::loadInitialDefault(&doc);
}

QString filePath(Cfg::Level level)
{
    return Cfg::UserFile::getDirectory(level) + '/' + ZalInit::getApplicationName() + ".toolbars";
}

// A toolbar file whose one block holds the given command entries.
void writeFile(const QString &path, unsigned int version, unsigned int blockVersion, const QStringList &names)
{
    IO::OutStream out(path, u"ToolBars"_s, version);
    unsigned int size = 4;
    for (const QString &n : names)
        size += 5 + IO::Stream::sizeOf(n);
    out.beginBlock(size, blockVersion);
    out.writeUInt(unsigned(names.size()));
    for (const QString &n : names) {
        out.writeUInt(1);
        out.writeBool(false);
        out.writeString(n);
    }
    out.endBlock();
}

// A main window on a layout of the given toolbar and menu sections.
struct Window
{
    Window(const QByteArray &toolbars = {}, const QByteArray &menus = {})
        : env("<layout><toolbarsection>" + toolbars + "</toolbarsection><menusection>" + menus + "</menusection></layout>")
    {
        QStringList args{u"prog"_s};
        win = new MainWindow("toolbar test", smgr = new AppStatusManager, InitLibrary(), args);
        bar = win->addToolBar(u"bar"_s);
        bar->setObjectName(u"bar"_s);
    }
    ~Window() { delete win; }
    QToolBar *widget(const char *name) { return ToolBarContainer::getToolBar(QLatin1String(name))->widget(); }

    TestUtil::Environment env;
    AppStatusManager *smgr;
    MainWindow *win;
    QToolBar *bar; // a plain toolbar for group widgets and managers
};

// The main and the arrow button of the group button in the toolbar.
std::pair<QToolButton *, QToolButton *> groupButtons(QToolBar *toolbar)
{
    const auto buttons = toolbar->findChild<ToolBarGroupButton *>()->findChildren<QToolButton *>();
    return {buttons.at(0), buttons.at(1)};
}

// Runs `check` on the popup menu that `open` shows, then closes it.
void onPopup(const std::function<void()> &open, const std::function<void(QMenu *)> &check)
{
    bool seen = false;
    QTimer::singleShot(0, [&] {
        if (auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget())) {
            seen = true;
            check(menu);
            menu->close();
        }
    });
    open();
    QVERIFY(seen);
}

} // namespace

class TestToolBar : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        Cfg::Profile::setInstance(nullptr);
        Cfg::AdministrationProfile::setInstance(nullptr);
        ToolBarContainer::deleteAllToolBars();
        CommandContainer::deleteAllCommands();
    }

    // --- definitions ----------------------------------------------------------------

    void layoutErrors_data()
    {
        QTest::addColumn<QByteArray>("section");
        QTest::addColumn<QString>("function");
        QTest::addColumn<QString>("message");
        const QString load = u"ToolBarContainer::loadInitialDefault"_s, fill = u"ToolBarData::fillToolBar"_s;
        QTest::newRow("comment in section") << QByteArray("<!-- x -->") << load << "toolbar element is null";
        QTest::newRow("no name") << QByteArray("<toolbar translate_section='s'/>") << load << "Missing attribute: 'name' or 'translate_section'";
        QTest::newRow("no section") << QByteArray("<toolbar name='t'/>") << load << "Missing attribute: 'name' or 'translate_section'";
        QTest::newRow("edge with capital") << QByteArray("<toolbar name='t' translate_section='s' edge='Top'/>") << load << "invalid parameter edge='Top' for toolbar 't'";
        QTest::newRow("newline") << QByteArray("<toolbar name='t' translate_section='s' newline='1'/>") << load << "invalid parameter newline='1' for toolbar 't'";
        QTest::newRow("show") << QByteArray("<toolbar name='t' translate_section='s' show='No'/>") << load << "invalid parameter show='No' for toolbar 't'";
        QTest::newRow("edge before show") << QByteArray("<toolbar name='t' translate_section='s' show='x' edge='y'/>") << load << "invalid parameter edge='y' for toolbar 't'";
        QTest::newRow("duplicate, any tag") << QByteArray("<any name='first' translate_section='s'/>") << load << "duplicated toolbar name 'first'";
        QTest::newRow("comment in toolbar") << QByteArray("<toolbar name='t' translate_section='s'><!-- x --></toolbar>") << fill << "Toolbar item is null!";
        QTest::newRow("text in toolbar") << QByteArray("<toolbar name='t' translate_section='s'>x</toolbar>") << fill << "Toolbar item is null!";
        QTest::newRow("unknown tag") << QByteArray("<toolbar name='t' translate_section='s'><button/></toolbar>") << fill << "unknown tag: button";
    }

    void layoutErrors()
    {
        QFETCH(QByteArray, section);
        QFETCH(QString, function);
        QFETCH(QString, message);
        loadSection("<toolbar name='first' translate_section='s'/>");
        try {
            loadSection(section);
            QFAIL("no ProgError");
        } catch (const ProgError &e) {
            QCOMPARE(e.getFunction() + ' ' + e.getFile() + ": " + e.getMessage(), "Zal::GApp::" + function + " gapp_toolbar_data: " + message);
        }
        // What was registered before stays; the failed toolbar is not there.
        QVERIFY(ToolBarContainer::getToolBar(u"first"_s) && !ToolBarContainer::getToolBar(u"t"_s));
        try {
            ToolBarContainer::createWidgets({u"t"_s}, {QString()});
            QFAIL("no ProgError");
        } catch (const ProgError &e) {
            QCOMPARE(e.getFunction() + ": " + e.getMessage(), u"Zal::GApp::ToolBarContainer::createWidgets: invalid toolbar name 't'"_s);
        }
    }

    void entriesAndRenaming()
    {
        new TestCommand(u"a.one"_s);
        new TestCommand(u"a.two"_s);
        const QByteArray out = TestUtil::captureStdout([] {
            loadSection("<toolbar name='plain' translate_section='s'><entry show_name='1'>a.one</entry><sep/>"
                        "<entry show_name='yes'>a.two</entry><entry>a.none</entry><entry show_name=''>a.one</entry></toolbar>"
                        "<toolbar name='side' translate_section='s' edge='right' newline='yes' show='no'/>");
        });
        QCOMPARE(out, QByteArray("Zal::GApp::ToolBarData::fillToolBar(76): error: command does not exist: a.none\n"));
        const ToolBarData *plain = ToolBarContainer::getToolBar(u"plain"_s);
        QCOMPARE(describe(plain->getItems()), QStringList({"a.one*", "-", "a.two", "a.one"}));
        QCOMPARE(describe(plain->getDefaultItems()), describe(plain->getItems()));
        QCOMPARE(plain->getDockArea(), Qt::TopToolBarArea);
        QCOMPARE(ToolBarContainer::getToolBar(u"side"_s)->getDockArea(), Qt::RightToolBarArea);
        // Renaming touches the user's own entries (level 2) only.
        ToolBarData *side = ToolBarContainer::getToolBar(u"side"_s);
        side->setCommands({{Item::COMMAND, 1, false, u"a.one"_s}, {Item::COMMAND, 2, false, u"a.one"_s}});
        ToolBarContainer::renameCommand(u"a.one"_s, u"a.new"_s);
        QCOMPARE(describe(side->getItems()) + describe(plain->getItems()), QStringList({"a.one", "a.new", "a.one*", "-", "a.two", "a.one"}));
    }

    // --- widgets of main menus ------------------------------------------------------

    void placesFollowTheMainMenu()
    {
        for (const char *name : {"a.one", "a.two", "a.three"})
            new TestCommand(QLatin1String(name));
        Window w("<toolbar name='T1' translate_section='s'><entry>a.one</entry><sep/><entry show_name='1'>a.two</entry></toolbar>"
                 "<toolbar name='T2' translate_section='s'><entry>a.two</entry></toolbar>"
                 "<toolbar name='T3' translate_section='s' edge='left'><entry>a.three</entry></toolbar>"
                 "<toolbar name='T4' translate_section='s' edge='left' show='no'/>"
                 "<toolbar name='X' translate_section='s' edge='bottom'><entry>a.one</entry></toolbar>"
                 "<toolbar name='N' translate_section='s' newline='yes'/>",
                 "<menubar name='first'><toolbar>T2</toolbar><toolbar>X</toolbar></menubar><menubar name='second'>"
                 "<toolbar>T1</toolbar><toolbar>T2</toolbar><toolbar>T3</toolbar><toolbar>N</toolbar><toolbar>T4</toolbar></menubar>");
        QCOMPARE(MenuDataContainer::getToolBarSuccessors(u"second"_s), std::vector<QString>({"T2", "N", "T4", "", ""}));
        w.win->show();
        MenuDataContainer::createMainMenu(u"first"_s);
        QPointer<QToolBar> t2 = w.widget("T2"), x = w.widget("X");
        QVERIFY(t2 && x && !w.widget("T1"));
        MenuDataContainer::createMainMenu(u"second"_s);
        // X is gone, T2 kept its widget, T1 came before it although made
        // later, and N starts a row of its own.
        QVERIFY(!x);
        QCOMPARE(w.widget("T2"), t2.data());
        QToolBar *t1 = w.widget("T1"), *n = w.widget("N");
        w.win->layout()->activate();
        QVERIFY(t1->geometry().right() < t2->geometry().left() && n->geometry().top() > t2->geometry().bottom());
        QVERIFY(w.win->toolBarBreak(n) && !w.win->toolBarBreak(t2));
        QCOMPARE(w.win->toolBarArea(w.widget("T3")), Qt::LeftToolBarArea);
        QCOMPARE(w.widget("T3")->orientation(), Qt::Vertical);
        QVERIFY(w.widget("T3")->isVisible() && !w.widget("T4")->isVisible());
        QVERIFY(qobject_cast<ToolBar *>(t1) && t1->objectName() == "T1");
        QStringList entries;
        for (QAction *a : t1->actions()) {
            auto *button = qobject_cast<QToolButton *>(t1->widgetForAction(a));
            entries << (a->isSeparator() ? "-" : a->text() + (button->toolButtonStyle() == Qt::ToolButtonTextOnly ? "*" : ""));
        }
        QCOMPARE(entries, QStringList({"A.ONE", "-", "A.TWO*"}));
        // Back again: X is made anew, at its place and with its entries.
        MenuDataContainer::createMainMenu(u"first"_s);
        QVERIFY(w.widget("X") && !w.widget("T1"));
        QCOMPARE(w.win->toolBarArea(w.widget("X")), Qt::BottomToolBarArea);
        QCOMPARE(w.widget("X")->actions().size(), 1);
    }

    // A long session of switches: the toolbars that go take their buttons,
    // group widgets and menus with them.
    void switchesLeaveNothingBehind()
    {
        for (const char *name : {"a.one", "a.two", "a.three"})
            new TestCommand(QLatin1String(name));
        auto *group = new ToolBarGroupCommand(false, u"g.group"_s, u"Group"_s);
        group->setCommand(CommandContainer::getCommand(u"a.one"_s));
        group->setCommand(CommandContainer::getCommand(u"a.two"_s));
        Window w("<toolbar name='S' translate_section='s'><entry>a.one</entry><entry>g.group</entry></toolbar>"
                 "<toolbar name='X' translate_section='s'><entry>a.two</entry><sep/><entry>g.group</entry>"
                 "<entry show_name='1'>g.group</entry></toolbar>"
                 "<toolbar name='Y' translate_section='s' edge='left'><entry>a.three</entry><entry>g.group</entry></toolbar>",
                 "<menubar name='first'><toolbar>S</toolbar><toolbar>X</toolbar></menubar>"
                 "<menubar name='second'><toolbar>S</toolbar><toolbar>Y</toolbar></menubar>");
        w.win->show();
        const auto settle = [] {
            QCoreApplication::sendPostedEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        };
        const auto round = [&] {
            MenuDataContainer::createMainMenu(u"first"_s);
            settle();
            MenuDataContainer::createMainMenu(u"second"_s);
            settle();
        };
        round();
        const qsizetype objects = w.win->findChildren<QObject *>().size();
        const qsizetype widgets = QApplication::allWidgets().size();
        for (int i = 0; i < 100; ++i)
            round();
        QCOMPARE(w.win->findChildren<QObject *>().size(), objects);
        QCOMPARE(QApplication::allWidgets().size(), widgets);
        QVERIFY(w.widget("Y")->findChild<ToolBarGroupButton *>() && !w.widget("X"));
    }

    // The user's arrangement of a main menu's toolbars comes back with the
    // main menu, and the default layout undoes it.
    void userArrangementFollowsItsMainMenu()
    {
        new TestCommand(u"a.one"_s);
        Window w("<toolbar name='T1' translate_section='s'><entry>a.one</entry></toolbar>"
                 "<toolbar name='T2' translate_section='s'><entry>a.one</entry></toolbar>",
                 "<menubar name='first'><toolbar>T1</toolbar><toolbar>T2</toolbar></menubar>"
                 "<menubar name='second'><toolbar>T1</toolbar></menubar>");
        w.win->show();
        MenuDataContainer::createMainMenu(u"first"_s);
        MenuDataContainer::createMainMenu(u"second"_s);
        MenuDataContainer::createMainMenu(u"first"_s);
        QCOMPARE(w.win->toolBarArea(w.widget("T1")), Qt::TopToolBarArea);
        w.win->addToolBar(Qt::RightToolBarArea, w.widget("T1"));
        MenuDataContainer::createMainMenu(u"second"_s);
        QCOMPARE(w.win->toolBarArea(w.widget("T1")), Qt::TopToolBarArea);
        MenuDataContainer::createMainMenu(u"first"_s);
        QCOMPARE(w.win->toolBarArea(w.widget("T1")), Qt::RightToolBarArea);
        // Unchanged since it was stored: the arrangement stays as it is.
        MenuDataContainer::createMainMenu(u"first"_s);
        QCOMPARE(w.win->toolBarArea(w.widget("T1")), Qt::RightToolBarArea);
        MenuDataContainer::applyDefaultLayout();
        QCOMPARE(w.win->toolBarArea(w.widget("T1")), Qt::TopToolBarArea);
        QCOMPARE(w.win->toolBarArea(w.widget("T2")), Qt::TopToolBarArea);
    }

    void profilesAndRebuildInPlace()
    {
        auto *one = new TestCommand(u"a.one"_s);
        auto *group = new ToolBarGroupCommand(false, u"g.group"_s, u"Group"_s);
        group->setCommands(one, new TestCommand(u"a.two"_s));
        Window w("<toolbar name='custom_tb' translate_section='s'><entry>a.one</entry><entry>a.two</entry></toolbar>",
                 "<menubar name='m'><toolbar>custom_tb</toolbar></menubar>");
        Cfg::AdministrationProfile::setInstance(new Cfg::ParsedProfile);
        Cfg::AdministrationProfile::instance()->hideCommand(u"a.one"_s);
        MenuDataContainer::createMainMenu(u"m"_s);
        QToolBar *custom = w.widget("custom_tb");
        QCOMPARE(custom->actions().size(), 2); // the administration profile hides nothing
        Cfg::Profile::setInstance(new Cfg::ParsedProfile);
        Cfg::Profile::instance()->hideCommand(u"a.one"_s);
        std::vector<Item> items = ToolBarContainer::getCustomToolBar()->getItems();
        items.push_back({Item::SEPARATOR, 2, false, QString()});
        items.push_back({Item::COMMAND, 2, false, u"g.group"_s});
        items.push_back({Item::COMMAND, 2, true, u"g.group"_s});
        ToolBarContainer::getCustomToolBar()->setCommands(items);
        ToolBarContainer::updateToolBars();
        // Rebuilt in place without a.one; rebuilding again leaves nothing behind.
        QCOMPARE(w.widget("custom_tb"), custom);
        QCOMPARE(custom->actions().size(), 4);
        QCOMPARE(custom->actions().at(0), CommandContainer::getCommandAction(u"a.two"_s));
        QVERIFY(custom->findChild<ToolBarGroupButton *>() && custom->findChild<ToolBarGroupMenu *>());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        const qsizetype children = custom->children().size();
        for (int i = 0; i < 3; ++i)
            ToolBarContainer::updateToolBars();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // the toolbar's own buttons
        QCOMPARE(custom->children().size(), children);
    }

    // --- group widgets --------------------------------------------------------------

    void groupButtonClickAndHold()
    {
        auto *one = new TestCommand(u"a.one"_s);
        auto *two = new TestCommand(u"a.two"_s);
        auto *group = new ToolBarGroupCommand(false, u"g.group"_s, u"Group"_s);
        one->visible = false;
        group->setCommands(std::vector<Command *>{nullptr, one, two});
        Window w;
        group->createToolBarWidget(w.bar, false);
        auto [main, arrow] = groupButtons(w.bar);
        auto *timer = w.bar->findChild<ToolBarGroupButton *>()->findChild<QTimer *>();
        w.win->show();
        QCOMPARE(main->parentWidget()->toolTip(), u"A.TWO"_s); // the first visible member
        // A short click runs the member; the timer never fires.
        QTest::mousePress(main, Qt::LeftButton);
        QVERIFY(timer->isActive() && timer->isSingleShot() && timer->interval() == 250);
        QTest::mouseRelease(main, Qt::LeftButton);
        QVERIFY(!timer->isActive());
        QCoreApplication::sendPostedEvents(w.win);
        QCOMPARE(two->runs, 1);
        // Held until the timer fires, it opens the members' menu; the member
        // chosen there runs and stays the button's command.
        one->visible = true;
        QTest::mousePress(main, Qt::LeftButton);
        onPopup([&] { QMetaObject::invokeMethod(timer, "timeout"); }, [&](QMenu *menu) {
            QCOMPARE(menu->actions().size(), 3);
            QVERIFY(menu->actions().at(0)->isSeparator());
            menu->actions().at(1)->trigger();
        });
        QVERIFY(!main->isDown() && !arrow->isDown());
        QTest::mouseRelease(main, Qt::LeftButton);
        QTest::mouseClick(main, Qt::LeftButton);
        QCoreApplication::sendPostedEvents(w.win);
        QCOMPARE(QList<int>({one->runs, two->runs}), QList<int>({2, 1}));
        // Not sensitive: the click runs nothing, the arrow still opens the menu.
        one->sensitive = false;
        w.win->updateSensitivity();
        QVERIFY(!main->isEnabled() && arrow->isEnabled());
        onPopup([&] { QTest::mousePress(arrow, Qt::LeftButton); }, [](QMenu *) {});
    }

    void toggleGroupShowsCheckedMember()
    {
        auto *a = new TestCommand(u"a.a"_s, true);
        auto *b = new TestCommand(u"a.b"_s, true);
        auto *group = new ToolBarGroupCommand(true, u"g.toggle"_s, u"Toggle"_s, false);
        group->setCommands(nullptr, a, nullptr, b); // nulls are passed over here
        QCOMPARE(group->getCommands(), std::vector<Command *>({a, b}));
        QVERIFY(!group->isChecked() && !group->raiseCommands() && !group->isMenuSensitive());
        Window w;
        group->createToolBarWidget(w.bar, false);
        QToolButton *main = groupButtons(w.bar).first;
        w.win->show();
        QCOMPARE(main->parentWidget()->toolTip(), u"A.A"_s);
        QVERIFY(main->isCheckable() && !main->isChecked());
        b->checked = true;
        w.smgr->emitDataChanged(0, 0);
        QCOMPARE(main->parentWidget()->toolTip(), u"A.B"_s);
        QVERIFY(main->isChecked() && group->isChecked());
        QCOMPARE(group->getMenuName(), u"A.B"_s); // a toggle group is named after its checked member
        // Pressing opens the menu at once, without the timer, and runs nothing.
        onPopup([&] { QTest::mousePress(main, Qt::LeftButton); }, [](QMenu *menu) { QCOMPARE(menu->actions().size(), 2); });
        QTest::mouseRelease(main, Qt::LeftButton);
        QCoreApplication::sendPostedEvents(w.win);
        QCOMPARE(a->runs + b->runs, 0);
    }

    void menuPlacement_data()
    {
        QTest::addColumn<Qt::Orientation>("orientation");
        QTest::addColumn<bool>("farEdge");
        QTest::addColumn<bool>("rightToLeft");
        QTest::newRow("below") << Qt::Horizontal << false << false;
        QTest::newRow("above at the bottom") << Qt::Horizontal << true << false;
        QTest::newRow("right to left") << Qt::Horizontal << false << true;
        QTest::newRow("beside") << Qt::Vertical << false << false;
        QTest::newRow("left at the right edge") << Qt::Vertical << true << false;
    }

    void menuPlacement()
    {
        QFETCH(Qt::Orientation, orientation);
        QFETCH(bool, farEdge);
        QFETCH(bool, rightToLeft);
        auto *group = new ToolBarGroupCommand(false, u"g.group"_s, u"Group"_s);
        for (int i = 0; i < 6; ++i)
            group->setCommand(new TestCommand(u"a.long_member_name_%1"_s.arg(i)));
        QToolBar toolbar;
        toolbar.setOrientation(orientation);
        group->createToolBarWidget(&toolbar, false);
        QToolButton *arrow = groupButtons(&toolbar).second;
        arrow->setLayoutDirection(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        toolbar.adjustSize();
        toolbar.move(!farEdge ? QPoint(300, 100)
                     : orientation == Qt::Horizontal ? QPoint(300, screen.bottom() - toolbar.height())
                                                     : QPoint(screen.right() - toolbar.width(), 100));
        toolbar.show();
        QVERIFY(QTest::qWaitForWindowExposed(&toolbar));
        onPopup([&] { QTest::mousePress(arrow, Qt::LeftButton); }, [&](QMenu *menu) {
            const QPoint p = arrow->mapToGlobal(QPoint(0, 0));
            const QSize a = arrow->size(), m = menu->sizeHint();
            QPoint wanted(rightToLeft ? p.x() - m.width() + a.width() : p.x(), farEdge ? p.y() - m.height() : p.y() + a.height());
            if (orientation == Qt::Vertical)
                wanted = QPoint(farEdge ? p.x() - m.width() : p.x() + a.width(), p.y());
            QCOMPARE(menu->pos(), wanted);
        });
    }

    void groupComboBox()
    {
        auto *hidden = new TestCommand(u"a.hidden"_s);
        auto *first = new TestCommand(u"a.first"_s, true);
        auto *blocked = new TestCommand(u"a.blocked"_s, true, true);
        auto *dead = new TestCommand(u"a.dead"_s);
        hidden->visible = false;
        dead->sensitive = false;
        auto *group = new ToolBarGroupCommand(true, u"g.group"_s, u"Group"_s);
        group->setCommands(hidden, first, blocked);
        group->addSeparator();
        group->setCommand(dead);
        Window w;
        group->createToolBarWidget(w.bar, true);
        auto *combo = w.bar->findChild<ToolBarGroupMenu *>();
        QCOMPARE(QList<int>({combo->count(), combo->maxVisibleItems()}), QList<int>({3, 5}));
        QCOMPARE(combo->itemText(0) + ' ' + combo->toolTip(), u"A.FIRST A.FIRST"_s);
        QCOMPARE(combo->itemData(1, Qt::UserRole).value<void *>(), static_cast<void *>(blocked));
        blocked->checked = true;
        w.smgr->emitSelectionChanged(0, SelectionMode_t(0));
        QCOMPARE(combo->currentIndex(), 1);
        QCOMPARE(combo->toolTip(), u"A.BLOCKED"_s);
        // The main window refuses a.blocked while a menu function runs,
        // although the command itself is sensitive: the choice is undone.
        blocked->checked = false;
        combo->setCurrentIndex(0);
        w.smgr->setMenuFunctionActive(true);
        w.win->show();
        QTest::keyClick(combo, Qt::Key_Down);
        QCOMPARE(combo->currentIndex(), 0);
        QCoreApplication::sendPostedEvents(w.win);
        QCOMPARE(blocked->runs, 0);
        w.smgr->setMenuFunctionActive(false);
        QTest::keyClick(combo, Qt::Key_Down);
        QCoreApplication::sendPostedEvents(w.win);
        QCOMPARE(blocked->runs, 1);
        // Rows follow the commands' own sensitivity.
        w.win->updateSensitivity();
        QList<bool> enabled;
        for (int row = 0; row < combo->count(); ++row)
            enabled << bool(combo->model()->flags(combo->model()->index(row, 0)) & Qt::ItemIsEnabled);
        QCOMPARE(enabled, QList<bool>({true, true, false}));
    }

    // --- widget managers ------------------------------------------------------------

    void widgetManagerModes()
    {
        auto *command = new TestCommand(u"a.tool"_s);
        Window w;
        auto *manager = new Manager(command, w.bar, 2);
        auto *zero = new QLabel(u"zero"_s);
        manager->addWidget(new QLabel(u"both"_s), -1);
        manager->addWidget(zero, 0);
        manager->addSeparator(1);
        QToolButton *button = manager->addToolButton(u"none"_s, u"tip"_s, true, 1);
        manager->addWidget(new QLabel(u"one"_s), 1);
        manager->addWidget(zero, 1); // the same action, now in both modes
        QLabel spare;
        QVERIFY_THROWS_EXCEPTION(ProgError, manager->addWidget(&spare, -2));
        try {
            manager->addWidget(&spare, 2);
            QFAIL("no ProgError");
        } catch (const ProgError &e) {
            QCOMPARE(e.getFunction() + ' ' + e.getFile() + ": " + e.getMessage(),
                     u"Zal::GApp::ToolBarWidgetManager::addWidget gapp_tb_widget_manager: mode index out of range"_s);
        }
        const auto shown = [&] {
            QString s;
            for (QAction *a : w.bar->actions())
                s += a->isVisible() ? '1' : '0';
            return s;
        };
        QCOMPARE(shown(), u"11000"_s);
        manager->switchMode(1);
        QCOMPARE(shown(), u"11111"_s);
        QVERIFY_THROWS_EXCEPTION(ProgError, manager->switchMode(2));
        auto *separator = w.bar->findChild<ToolBarSeparator *>();
        QCOMPARE(separator->sizeHint(), QSize(separator->style()->pixelMetric(QStyle::PM_DockWidgetSeparatorExtent, nullptr, separator), 0));
        w.bar->setOrientation(Qt::Vertical);
        QCOMPARE(separator->sizeHint().width(), 0);
        manager->setToolBarEnabled(false);
        QVERIFY(!manager->isToolBarEnabled() && !button->isEnabled());
        // Change signals reach the subclass; in select-command mode a click
        // on its buttons selects the command.
        w.win->updateSensitivity();
        w.smgr->emitDataChanged(0, 0);
        w.win->saveConfiguration();
        QVERIFY(manager->calls.contains("sensitivity") && manager->calls.contains("data") && manager->calls.contains("config"));
        QSignalSpy selected(w.win, &MainWindow::selectCommandSignal);
        w.win->setSelectCommandMode(Command::SELECT_1);
        manager->setToolBarEnabled(true);
        button->click();
        QCOMPARE(selected.value(0).value(0).toString(), u"a.tool"_s);
    }

    void widgetManagerExecutionBookkeeping()
    {
        auto *tool = new TestCommand(u"a.tool"_s, false, true);
        auto *other = new TestCommand(u"a.other"_s, false, true);
        Window w;
        GTools::ScriptedDialogs dialogs;
        Manager first(tool, w.bar, 1), second(other, w.bar, 1);
        QVERIFY(first.isCommandExecutionAllowed());
        first.beginCommandExecution();
        QVERIFY(first.isCommandExecuting() && w.smgr->isMenuFunctionActive());
        Command *active = nullptr;
        QVERIFY(w.smgr->getActiveCommand(&active) && active == tool);
        // A second menu function is refused with GAPP-0002 and leaves the stack as it was.
        QVERIFY(!second.isCommandExecutionAllowed());
        second.beginCommandExecution();
        QVERIFY(!second.isCommandExecuting());
        QCOMPARE(dialogs.requests().size(), size_t(1));
        QCOMPARE(dialogs.requests().at(0).code, u"GAPP-0002"_s);
        QVERIFY(w.smgr->getActiveCommand(&active) && active == tool);
        second.endCommandExecution(); // unpaired: releases nothing
        QVERIFY(w.smgr->isMenuFunctionActive());
        first.endCommandExecution();
        QVERIFY(!first.isCommandExecuting() && !w.smgr->isMenuFunctionActive() && !w.smgr->isCommandActive());
    }

    // --- the user file --------------------------------------------------------------

    void savedBlockHoldsUserEntriesOnly()
    {
        TestUtil::Environment env;
        ToolBarFile file;
        new TestCommand(u"x.y"_s);
        loadSection("<toolbar name='custom_tb' translate_section='s'><entry>x.y</entry><sep/></toolbar>");
        ToolBarData *custom = ToolBarContainer::getCustomToolBar();
        ErrorLog log;
        QVERIFY(ToolBarContainer::save(&log));
        QCOMPARE(IO::InStream(filePath(2)).getVersion(), 8u);
        std::vector<Item> items = custom->getItems();
        items.push_back({Item::COMMAND, 1, false, u"x.shared"_s});
        items.push_back({Item::COMMAND, 2, true, u"a.b"_s});
        custom->setCommands(items);
        for (unsigned int user : {0, 1}) {
            if (user)
                QVERIFY(ToolBarContainer::save(&log));
            IO::InStream in(filePath(2), u"ToolBars"_s);
            in.openBlock();
            QCOMPARE(in.getBlockVersion(), 1u);
            QCOMPARE(in.getBlockRemaining(), 4 + user * (5 + IO::Stream::sizeOf(u"a.b"_s)));
            unsigned int count = 0, kind = 0;
            bool showName = false;
            QString name;
            in.readUInt(count);
            QCOMPARE(count, user);
            if (user) {
                in.readUInt(kind);
                in.readBool(showName);
                in.readString(name);
                QCOMPARE(u"%1 %2 %3"_s.arg(kind).arg(showName).arg(name), u"1 1 a.b"_s);
            }
        }
    }

    void damagedFilesLeaveDefaults_data()
    {
        QTest::addColumn<QString>("damage");
        QTest::addColumn<bool>("result");
        QTest::addColumn<QString>("logged");
        QTest::newRow("version 9") << "version 9" << false << "cannot load toolbars: invalid file version";
        QTest::newRow("version 7 ignored") << "version 7" << true << QString();
        QTest::newRow("block version 2") << "block 2" << false << "cannot load toolbars: invalid block version";
        QTest::newRow("count beyond the block") << "count" << false << "cannot load toolbars: ";
        QTest::newRow("foreign type") << "type" << false << "cannot load toolbars: ";
        QTest::newRow("garbage") << "garbage" << false << "cannot load toolbars: ";
    }

    void damagedFilesLeaveDefaults()
    {
        QFETCH(QString, damage);
        QFETCH(bool, result);
        QFETCH(QString, logged);
        TestUtil::Environment env;
        ToolBarFile file;
        new TestCommand(u"x.y"_s);
        loadSection("<toolbar name='custom_tb' translate_section='s'><entry>x.y</entry></toolbar>");
        const QString path = filePath(2);
        if (damage == "type") {
            IO::OutStream out(path, u"Shortcuts"_s, 8);
        } else if (damage == "garbage") {
            TestUtil::writeFile(path, QByteArray(64, '\xff'));
        } else if (damage == "count") { // 4e9 entries announced, none there
            IO::OutStream out(path, u"ToolBars"_s, 8);
            out.beginBlock(4, 1);
            out.writeUInt(4000000000u);
            out.endBlock();
        } else {
            writeFile(path, damage == "version 9" ? 9 : damage == "version 7" ? 7 : 8, damage == "block 2" ? 2 : 1, {u"u.one"_s});
        }
        ErrorLog log;
        QCOMPARE(ToolBarContainer::load(&log), result);
        QCOMPARE(describe(ToolBarContainer::getCustomToolBar()->getItems()), QStringList({"x.y"}));
        QCOMPARE(log.getEntries().size(), result ? 0 : 1);
        if (!result)
            QVERIFY2(log.getText().startsWith(logged), qPrintable(log.getText()));
    }

    // Random damage of a real file, the same every run: a refused reading
    // leaves the defaults, and the intact file reads back afterwards.
    void randomlyDamagedFilesAreAnsweredCleanly()
    {
        TestUtil::Environment env;
        ToolBarFile file;
        for (const char *name : {"x.y", "u.one", "u.two"})
            new TestCommand(QLatin1String(name));
        loadSection("<toolbar name='custom_tb' translate_section='s'><entry>x.y</entry></toolbar>");
        ToolBarData *custom = ToolBarContainer::getCustomToolBar();
        std::vector<Item> items = custom->getItems();
        items.push_back({Item::COMMAND, 2, true, u"u.one"_s});
        items.push_back({Item::SEPARATOR, 2, false, QString()});
        items.push_back({Item::COMMAND, 2, false, u"u.two"_s});
        custom->setCommands(items);
        ErrorLog log;
        QVERIFY(ToolBarContainer::save(&log));
        const QString path = filePath(2);
        const QByteArray good = TestUtil::readFile(path);
        TestUtil::readDamagedCopies(path, good, 400, [](ErrorLog *l) { return ToolBarContainer::load(l); },
                                    [&] { QCOMPARE(describe(custom->getItems()), QStringList({"x.y"})); });
        QVERIFY(ToolBarContainer::load(&log));
        QCOMPARE(describe(custom->getItems()), QStringList({"x.y", "u.one*", "-", "u.two"}));
    }

    void sharedLevelBeforeUserLevel()
    {
        TestUtil::Environment env;
        ToolBarFile file;
        new TestCommand(u"x.y"_s);
        loadSection("<toolbar name='custom_tb' translate_section='s'><entry>x.y</entry></toolbar>");
        writeFile(filePath(1), 8, 1, {u"s.one"_s, u"s.two"_s});
        writeFile(filePath(2), 8, 1, {u"u.one"_s});
        ErrorLog log;
        for (int i = 0; i < 2; ++i) // reading again does not repeat anything
            QVERIFY(ToolBarContainer::load(&log));
        ToolBarData *custom = ToolBarContainer::getCustomToolBar();
        QCOMPARE(describe(custom->getItems()), QStringList({"x.y", "s.one", "s.two", "u.one"}));
        QCOMPARE(describe(custom->getDefaultItems()), QStringList({"x.y", "s.one", "s.two"}));
        QVERIFY(ToolBarContainer::save(&log));
        IO::InStream in(filePath(2));
        in.openBlock();
        QCOMPARE(in.getBlockRemaining(), 4 + 5 + IO::Stream::sizeOf(u"u.one"_s)); // the user's entry only
        // A broken shared file costs its own entries only, and the result stays true.
        TestUtil::writeFile(filePath(1), "broken");
        file.syncFromDisk();
        QCOMPARE(describe(custom->getItems()), QStringList({"x.y", "u.one"}));
        QVERIFY(ToolBarContainer::load(&log));
    }

    void withoutCustomToolBarNothingIsReadOrWritten()
    {
        TestUtil::Environment env;
        ToolBarFile file;
        loadSection("<toolbar name='other' translate_section='s'/>");
        writeFile(filePath(2), 9, 1, {});
        ErrorLog log;
        QVERIFY(ToolBarContainer::load(&log) && QFile::remove(filePath(2)));
        QVERIFY(ToolBarContainer::save(&log) && !QFile::exists(filePath(2)) && log.isEmpty());
    }
};

QTEST_MAIN(TestToolBar)
#include "tst_toolbar.moc"
