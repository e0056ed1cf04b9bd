#include "gapp_ccontainer.h"
#include "gapp_command.h"
#include "gapp_config_keys_p.h"
#include "gapp_init.h"
#include "gapp_main_window.h"
#include "gapp_menu.h"
#include "gapp_menu_data.h"
#include "gapp_menu_provider.h"
#include "gapp_status_data.h"
#include "gapp_status_mgr.h"
#include "zal_cfg.h"
#include "zal_cfg_array.h"
#include "zal_cfg_profile.h"
#include "zal_exception.h"
#include "test_util.h"
#include <QApplication>
#include <QDomDocument>
#include <QMenuBar>
#include <QToolBar>
#include <QtTest>
#include <cstdio>
#include <functional>
#include <memory>
#include <unistd.h>

using namespace Zal;
using namespace Zal::GApp;
using TestUtil::captureStdout;

namespace {

class TestCommand : public Command
{
public:
    explicit TestCommand(const QString &name) : Command(false, false, name, name, QString(), nullptr) {}
    bool isChecked() const override { return false; }
    bool isMenuSensitive() const override { return true; }
    bool isScriptSensitive() const override { return true; }
    QString getParameterString() override { return QString(); }
    bool parseParameterString(const QString &, bool, QString *, ErrorLog *) override { return true; }
    bool isVisible() const override { return visible; }
    Interactive_t isInteractive() override { return INTERACTIVE_NO; }
    bool executeMenu() override { return true; }
    bool visible = true;
};

TestCommand *command(const QString &name, bool visible = true)
{
    auto *cmd = static_cast<TestCommand *>(CommandContainer::getCommand(name));
    cmd = cmd ? cmd : new TestCommand(name);
    cmd->visible = visible;
    return cmd;
}

QAction *actionOf(const char *name) { return CommandContainer::getCommandAction(QString::fromLatin1(name)); }

class RecentFiles : public SpecialMenuProvider
{
public:
    QString getMenuTitle() const override { return QStringLiteral("Recent"); }
    void fillMenu(Menu *menu) override { ++fills; for (const QString &f : files) menu->addAction(f); }
    bool isVisible() const override { return visible; }
    QStringList files;
    int fills = 0;
    bool visible = true;
};

QByteArray captureStderr(const std::function<void()> &fn)
{
    QTemporaryFile file;
    if (!file.open())
        return "cannot capture";
    std::fflush(stderr);
    const int saved = dup(fileno(stderr));
    dup2(file.handle(), fileno(stderr));
    fn();
    std::fflush(stderr);
    dup2(saved, fileno(stderr));
    ::close(saved);
    file.seek(0);
    return file.readAll();
}

QByteArray layout(const QByteArray &section)
{
    return "<layout><menusection>" + section + "</menusection></layout>";
}

void load(const QByteArray &section)
{
    QDomDocument doc;
    QVERIFY(doc.setContent(layout(section)));
    MenuDataContainer::loadMenus(&doc);
}

QStringList texts(const QMenu *menu)
{
    QStringList list;
    for (const QAction *action : menu->actions())
        list << (action->isSeparator() ? QStringLiteral("-") : action->text());
    return list;
}

QStringList strings(const std::vector<QString> &v) { return QStringList(v.begin(), v.end()); }

// A definition as text: commands by name, "-", "[sub: ...]", "*special".
QStringList tree(const MenuData *menu)
{
    QStringList list;
    for (const MenuDataItem &item : menu->getItems()) {
        if (item.kind == MenuDataItem::SUB_MENU)
            list << QStringLiteral("[%1: %2]").arg(item.sub_menu->getName(), tree(item.sub_menu).join(' '));
        else
            list << (item.kind == MenuDataItem::SEPARATOR ? QStringLiteral("-")
                     : item.kind == MenuDataItem::SPECIAL_MENU ? '*' + item.name : item.name);
    }
    return list;
}

} // namespace

class TestMenu : public QObject
{
    Q_OBJECT
    AppStatusManager *_smgr = nullptr;

private slots:
    void init() { MainWindow::smgr = _smgr = new AppStatusManager; }

    void cleanup()
    {
        MainWindow::smgr = nullptr;
        delete _smgr;
        Cfg::Profile::setInstance(nullptr);
        Cfg::AdministrationProfile::setInstance(nullptr);
        // Popups built without a window are top-level menus.
        const QWidgetList windows = QApplication::topLevelWidgets();
        std::vector<QPointer<QWidget>> menus(windows.begin(), windows.end());
        for (const QPointer<QWidget> &w : menus)
            if (w && !w->parent() && qobject_cast<Menu *>(w))
                delete w;
        MenuDataContainer::deleteAllMenus();
        CommandContainer::deleteAllCommands();
    }

    // --- definitions ----------------------------------------------------------------

    void layoutErrorsThrow_data()
    {
        QTest::addColumn<QByteArray>("section");
        QTest::addColumn<QString>("function");
        QTest::addColumn<QString>("message");
        const QString c = QStringLiteral("Zal::GApp::MenuDataContainer::");
        const QByteArray col = "<menucolumn name='c' translate_section='s'>";
        const QByteArray part = "<partial_menu name='p' translate_section='s'";
        QTest::newRow("column without name") << QByteArray("<menucolumn translate_section='s'/>") << c + "loadMenus" << "missing attribute 'name'";
        QTest::newRow("partial without section") << QByteArray("<partial_menu name='p'/>") << c + "loadMenus" << "missing attribute 'translate_section'";
        QTest::newRow("menubar without name") << QByteArray("<menubar name=''/>") << c + "loadMenus" << "missing attribute 'name'";
        QTest::newRow("name checked first") << QByteArray("<menucolumn/>") << c + "loadMenus" << "missing attribute 'name'";
        QTest::newRow("other tag") << QByteArray("<toolbar/>") << c + "loadMenus" << "invalid tag:toolbar";
        QTest::newRow("comment in section") << QByteArray("<!-- x -->") << c + "loadMenus" << "invalid tag:";
        QTest::newRow("comment in column") << QByteArray(col + "<!-- x --></menucolumn>") << c + "fillMenuRecursive" << "menu item is null";
        QTest::newRow("unknown item") << QByteArray(col + "<item/></menucolumn>") << c + "fillMenuRecursive" << "";
        QTest::newRow("text in menubar") << QByteArray("<menubar name='m'>x</menubar>") << c + "fillMainMenu" << "column item is null";
        QTest::newRow("tag in menubar") << QByteArray("<menubar name='m'><entry/></menubar>") << c + "fillMainMenu" << "tagname is not 'column' or 'toolbar'";
        QTest::newRow("second main menu") << QByteArray("<menubar name='m'/><menubar name='m'/>") << c + "registerMainMenu" << "main menu does already exist";
        QTest::newRow("second column") << QByteArray(col + "</menucolumn>" + col + "</menucolumn>") << c + "registerMenu" << "menu column 'c' does already exist";
        QTest::newRow("second partial") << QByteArray(part + "/>" + part + "/>") << c + "registerPartialMenuNode" << "partial menu 'p' does already exist";
        QTest::newRow("partial defined later") << QByteArray(col + "<use_partial>p</use_partial></menucolumn>" + part + "/>") << c + "getPartialMenu" << "partial menu 'p' does not exist";
        QTest::newRow("partial of an earlier file") << QByteArray(col + "<use_partial>q</use_partial></menucolumn>") << c + "getPartialMenu" << "partial menu 'q' does not exist";
        // Hostile files fail instead of exhausting the stack or the memory.
        QTest::newRow("partial using itself") << QByteArray(part + "><use_partial>p</use_partial></partial_menu>" + col + "<use_partial>p</use_partial></menucolumn>") << c + "fillMenuRecursive" << "partial menu 'p' uses itself";
        QTest::newRow("nesting too deep") << QByteArray(col + QByteArray("<menu>").repeated(70) + QByteArray("</menu>").repeated(70) + "</menucolumn>") << c + "fillMenuRecursive" << "menu nesting too deep";
        QByteArray bomb = "<partial_menu name='p0' translate_section='s'><entry>x.a</entry></partial_menu>";
        for (int i = 1; i <= 6; ++i)
            bomb += QStringLiteral("<partial_menu name='p%1' translate_section='s'>%2</partial_menu>").arg(i).arg(QStringLiteral("<use_partial>p%1</use_partial>").arg(i - 1).repeated(10)).toUtf8();
        QTest::newRow("expansion too large") << QByteArray(bomb + col + "<use_partial>p6</use_partial></menucolumn>") << c + "fillMenuRecursive" << "too many menu items";
    }

    void layoutErrorsThrow()
    {
        QFETCH(QByteArray, section);
        QFETCH(QString, function);
        QFETCH(QString, message);
        // A partial menu of an earlier file must not be usable.
        load("<partial_menu name='q' translate_section='s'/>");
        QDomDocument doc;
        QVERIFY(doc.setContent(layout(section)));
        std::unique_ptr<ProgError> error;
        const QByteArray err = captureStderr([&] {
            try { MenuDataContainer::loadMenus(&doc); } catch (const ProgError &e) { error = std::make_unique<ProgError>(e); }
        });
        QVERIFY(error);
        QCOMPARE(error->getFunction() + ' ' + error->getFile(), function + " gapp_menu_data");
        QCOMPARE(error->getMessage(), message);
        // Only an unknown item tag is also named on standard error.
        QCOMPARE(err, message.isEmpty() ? QByteArray("unknown tag:item\n") : QByteArray());
    }

    void sectionsAreReadInOrderAndNest()
    {
        QDomDocument doc;
        QVERIFY(doc.setContent(QByteArray(
            "<layout><toolbarsection/><menusection>"
            "<partial_menu name='p' translate_section='s'><entry>x.p</entry><sep/></partial_menu>"
            "<menubar name='zeta'><column>c</column><toolbar>T1</toolbar><toolbar>T2</toolbar></menubar>"
            "</menusection><viewsection/><menusection><menucolumn name='c' translate_section='s'><entry>x.a</entry>"
            "<menu name='one'><menu name='two'><menu name='three'><entry>x.deep</entry></menu></menu>"
            "<special_menu>recent_files</special_menu></menu><use_partial>p</use_partial><entry></entry></menucolumn>"
            "<menubar name='alpha'/></menusection></layout>")));
        MenuDataContainer::loadMenus(&doc);
        MenuData *c = MenuDataContainer::getMenu(QStringLiteral("c"));
        QVERIFY(c);
        QCOMPARE(tree(c), QStringList({"x.a", "[one: [two: [three: x.deep]] *recent_files]", "x.p", "-", ""}));
        // Loading closed every sub-menu: only the root is open.
        QVERIFY_THROWS_EXCEPTION(ProgError, c->closeSubMenu());
        { MenuData copy(*c); QCOMPARE(tree(&copy), tree(c)); } // copies own their tree
        QCOMPARE(tree(c).size(), 5);
        QCOMPARE(strings(MenuDataContainer::getMainMenuNames()), QStringList({"alpha", "zeta"}));
        QCOMPARE(strings(MenuDataContainer::getToolBarNames(QStringLiteral("zeta"))), QStringList({"T1", "T2"}));
        // Toolbars without a definition have no dock area and so no successor.
        QCOMPARE(strings(MenuDataContainer::getToolBarSuccessors(QStringLiteral("zeta"))), QStringList({"", ""}));
        QVERIFY_THROWS_EXCEPTION(ProgError, MenuDataContainer::getMenuNames(QStringLiteral("none")));
    }

    void prefixRule_data()
    {
        QTest::addColumn<QString>("partialPrefix");
        QTest::addColumn<QString>("usePrefix");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("renamed") << "grp1." << "grp2." << QStringList({"grp2.a", "other.b", "grp1.c"});
        QTest::newRow("no use prefix") << "grp1." << "" << QStringList({"grp1.a", "other.b", "grp1.c"});
        QTest::newRow("no partial prefix") << "" << "grp2." << QStringList({"grp1.a", "other.b", "grp1.c"});
        QTest::newRow("case-sensitive") << "GRP1." << "grp2." << QStringList({"grp1.a", "other.b", "grp1.c"});
    }

    void prefixRule()
    {
        QFETCH(QString, partialPrefix);
        QFETCH(QString, usePrefix);
        QFETCH(QStringList, expected);
        // The inner partial applies only its own pair: grp1. -> grp2. is not carried into it.
        load(QStringLiteral("<partial_menu name='in' translate_section='s' prefix='x.'><entry>grp1.c</entry></partial_menu>"
                            "<partial_menu name='p' translate_section='s' prefix='%1'><entry>grp1.a</entry>"
                            "<entry>other.b</entry><use_partial prefix='y.'>in</use_partial></partial_menu>"
                            "<menucolumn name='c' translate_section='s'><use_partial prefix='%2'>p</use_partial></menucolumn>")
                 .arg(partialPrefix, usePrefix).toUtf8());
        QCOMPARE(tree(MenuDataContainer::getMenu(QStringLiteral("c"))), expected);
    }

    void layoutStringsInConfig_data()
    {
        QTest::addColumn<QStringList>("stored");
        QTest::addColumn<bool>("restored");
        const QStringList good({"V6", "NEXT_MENU", "a", "la", "da", "NEXT_MENU", "b", "t1", "t2", "lb", "db"});
        QTest::newRow("matching") << good << true;
        QTest::newRow("extra elements ignored") << (good + QStringList{"junk"}) << true;
        QTest::newRow("other version") << (QStringList{"V5"} + good.mid(1)) << false;
        QTest::newRow("empty") << QStringList() << false;
        QTest::newRow("renamed toolbar") << QStringList({"V6", "NEXT_MENU", "a", "la", "da", "NEXT_MENU", "b", "t1", "t9", "lb", "db"}) << false;
        QTest::newRow("missing toolbar") << QStringList({"V6", "NEXT_MENU", "a", "la", "da", "NEXT_MENU", "b", "t1", "lb", "db"}) << false;
        QTest::newRow("premature end") << good.mid(0, 10) << false;
        QTest::newRow("other main menus") << QStringList({"V6", "NEXT_MENU", "b", "t1", "t2", "lb", "db"}) << false;
    }

    void layoutStringsInConfig()
    {
        QFETCH(QStringList, stored);
        QFETCH(bool, restored);
        std::unique_ptr<CfgNode> node(InitLibrary());
        MainWindow::cfg = node.get();
        load("<menubar name='b'><toolbar>t1</toolbar><toolbar>t2</toolbar></menubar><menubar name='a'/>");
        auto *array = node->getArray<QString>(ZalString(CfgKeys::TOOLBARS3));
        array->setArray(std::vector<QString>(stored.begin(), stored.end()));
        MenuDataContainer::loadConfig();
        MenuDataContainer::saveConfig();
        MainWindow::cfg = nullptr;
        // A mismatch anywhere empties the strings of every main menu.
        const QStringList expected = restored ? QStringList({"la", "da", "lb", "db"}) : QStringList({"", "", "", ""});
        QCOMPARE(strings(array->getValues()), QStringList({"V6", "NEXT_MENU", "a", expected[0], expected[1], "NEXT_MENU",
                                                           "b", "t1", "t2", expected[2], expected[3]}));
    }

    // --- building menus -------------------------------------------------------------

    void titleAndRightClickOnEmptySpace()
    {
        Menu menu(QStringLiteral("Save && Close"), nullptr);
        QCOMPARE(QStringList({menu.title(), menu.objectName(), menu.windowTitle()}),
                 QStringList({"Save && Close", "Save && Close", "Save & Close"}));
        menu.addAction(QStringLiteral("entry"));
        menu.setMinimumHeight(200);
        menu.popup(QPoint(100, 100));
        QVERIFY(QTest::qWaitForWindowExposed(&menu));
        // Press, drag and release on empty space: QMenu would close.
        QTest::mousePress(&menu, Qt::RightButton, Qt::NoModifier, QPoint(12, 195));
        for (int i = 0; i < 8; ++i)
            QTest::mouseMove(&menu, QPoint(12 + i, 190));
        QTest::mouseRelease(&menu, Qt::RightButton, Qt::NoModifier, QPoint(20, 190));
        QVERIFY(menu.isVisible());
    }

    void profilesAddAndHide_data()
    {
        QTest::addColumn<bool>("admin");
        QTest::addColumn<QStringList>("rules");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<QByteArray>("out");
        const QStringList plain({"x.a", "x.b", "sub", "Recent", "-", "x.c"});
        QTest::newRow("none") << false << QStringList() << plain << QByteArray();
        QTest::newRow("hidden, another in its place") << false << QStringList({"hide x.a", "after x.a x.y"}) << QStringList({"x.y", "x.b", "sub", "Recent", "-", "x.c"}) << QByteArray();
        QTest::newRow("start and after menus") << false << QStringList({"start c x.y", "aftermenu sub x.z", "afterspecial recent x.w"}) << QStringList({"x.y", "x.a", "x.b", "sub", "x.z", "Recent", "x.w", "-", "x.c"}) << QByteArray();
        QTest::newRow("admin hides nothing") << true << QStringList({"hide x.a", "after x.a x.y"}) << QStringList({"(x.a)", "x.y", "x.b", "sub", "Recent", "-", "x.c"}) << QByteArray();
        QTest::newRow("unknown addition") << false << QStringList({"after x.b no.such"}) << plain << QByteArray("Zal::GApp::Menu::addCommand(78): error: no command for: no.such\n");
    }

    void profilesAddAndHide()
    {
        QFETCH(bool, admin);
        QFETCH(QStringList, rules);
        QFETCH(QStringList, expected);
        QFETCH(QByteArray, out);
        for (const char *name : {"x.a", "x.b", "x.c", "x.y", "x.z", "x.s", "x.w"})
            command(QString::fromLatin1(name));
        RecentFiles recent;
        _smgr->registerSpecialMenuProvider(QStringLiteral("recent"), &recent);
        auto *profile = new Cfg::ParsedProfile;
        for (const QString &rule : rules) {
            const QStringList w = rule.split(' ');
            if (w[0] == "hide") profile->hideCommand(w[1]);
            else if (w[0] == "after") profile->addCommandAfterCommand(w[1], w[2]);
            else if (w[0] == "start") profile->addCommandAtMenuStart(w[1], w[2]);
            else if (w[0] == "aftermenu") profile->addCommandAfterMenu(w[1], w[2]);
            else profile->addCommandAfterSpecialMenu(w[1], w[2]);
        }
        admin ? Cfg::AdministrationProfile::setInstance(profile) : Cfg::Profile::setInstance(profile);
        load("<menucolumn name='c' translate_section='s'><entry>x.a</entry><entry>x.b</entry><menu name='sub'>"
             "<entry>x.s</entry></menu><special_menu>recent</special_menu><sep/><entry>x.c</entry></menucolumn>");
        Menu *popup = nullptr;
        QCOMPARE(captureStdout([&] { popup = MenuDataContainer::getMenu(QStringLiteral("c"))->getPopupMenu(); }), out);
        popup->updateActions();
        QCOMPARE(texts(popup), expected);
    }

    void specialMenusAndLeakFreeRebuilds()
    {
        command(QStringLiteral("x.a"));
        Cfg::Profile::setInstance(new Cfg::ParsedProfile);
        Cfg::Profile::instance()->addCommandAfterSpecialMenu(QStringLiteral("nobody"), QStringLiteral("x.a"));
        RecentFiles recent;
        recent.files = QStringList({"one.insp", "two.insp"});
        _smgr->registerSpecialMenuProvider(QStringLiteral("recent"), &recent);
        load("<menucolumn name='c' translate_section='s'><special_menu>recent</special_menu><special_menu>nobody"
             "</special_menu><entry>x.a</entry><sep/><menu name='one'><menu name='two'><entry>x.a</entry></menu></menu></menucolumn>");
        MenuData *c = MenuDataContainer::getMenu(QStringLiteral("c"));
        Menu *popup = nullptr;
        QCOMPARE(captureStdout([&] { popup = c->getPopupMenu(); }),
                 QByteArray("Zal::GApp::MenuData::createMenuRecursive(294): Warning! No provider is registered for special menu nobody!\n"));
        QCOMPARE(texts(popup), QStringList({"Recent", "x.a", "-", "one"}));

        auto *special = qobject_cast<Menu *>(popup->actions().at(0)->menu<QMenu *>());
        QVERIFY(special && recent.isRegisteredMenu(special));
        QCOMPARE(_smgr->getSpecialMenuProvider(special), &recent);
        recent.registerMenu(special); // no second connection
        emit special->aboutToShow();
        emit special->aboutToShow(); // filled afresh, not appended
        QCOMPARE(texts(special), QStringList({"one.insp", "two.insp"}));
        QCOMPARE(recent.fills, 2);
        recent.visible = false;
        QVERIFY(!special->hasValidEntry());
        recent.deregisterMenu(special);
        emit special->aboutToShow();
        QCOMPARE(recent.fills, 2);
        // A rebuild destroys the old special menu, which leaves its provider,
        // and the other sub-menus: thousands of rebuilds leave no trace.
        recent.registerMenu(special);
        captureStdout([&] { c->refresh(); });
        QVERIFY(!recent.isRegisteredMenu(special));
        const qsizetype objects = popup->findChildren<QObject *>().size();
        captureStdout([&] { for (int i = 0; i < 2000; ++i) MenuDataContainer::refreshAllMenus(); });
        QCOMPARE(popup->findChildren<QObject *>().size(), objects);
        QCOMPARE(popup->findChildren<Menu *>().size(), 3);
        QCOMPARE(texts(popup), QStringList({"Recent", "x.a", "-", "one"}));
        QCOMPARE(c->getPopupMenu(), popup);
    }

    void emptySubMenusHideAndExecuteMenu()
    {
        TestCommand *hidden = command(QStringLiteral("x.h"), false);
        command(QStringLiteral("x.v"));
        load("<menucolumn name='c' translate_section='s'><entry>x.v</entry>"
             "<menu name='outer'><menu name='inner'><entry>x.h</entry></menu></menu></menucolumn>"
             "<menucolumn name='empty' translate_section='s'><entry>x.h</entry></menucolumn>");
        Menu *popup = MenuDataContainer::getMenu(QStringLiteral("c"))->getPopupMenu();
        QAction *outer = popup->actions().at(1);
        for (bool visible : {false, true}) {
            hidden->visible = visible;
            popup->popup(QPoint(50, 50));
            QCOMPARE(outer->isVisible(), visible);
            popup->hide();
        }
        hidden->visible = false;
        QCOMPARE(MenuDataContainer::getCursorPopupPosition(QStringLiteral("c")), actionOf("x.v"));
        QVERIFY(!MenuDataContainer::getCursorPopupPosition(QStringLiteral("empty")));
        QVERIFY(!MenuDataContainer::executeMenu(QStringLiteral("empty"), QPoint()));
        QVERIFY(!MenuDataContainer::getMenu(QStringLiteral("empty"))->getPopupMenu()->isVisible());
        QCOMPARE(captureStdout([] { QVERIFY(!MenuDataContainer::executeMenu(QStringLiteral("nope"), QPoint())); }),
                 QByteArray("Zal::GApp::MenuDataContainer::executeMenu(735): error: no menu definition for menu 'nope'\n"));
        QTimer::singleShot(0, [] {
            QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
            QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
        });
        QCOMPARE(MenuDataContainer::executeMenu(QStringLiteral("c"), QPoint(20, 20)), actionOf("x.v"));
    }

    // --- main menus in the window ---------------------------------------------------

    void modeSwitchRebuildsTheMenuBar()
    {
        MainWindow::smgr = nullptr;
        TestUtil::Environment env(layout(
            "<partial_menu name='edit' translate_section='s'><entry>sys.undo</entry></partial_menu>"
            "<menucolumn name='File' translate_section='s'><entry>file.open</entry></menucolumn>"
            "<menucolumn name='Edit' translate_section='s'><use_partial>edit</use_partial></menucolumn>"
            "<menucolumn name='Hidden' translate_section='s'><entry>x.invisible</entry></menucolumn>"
            "<menubar name='measure'><column>File</column><column>Edit</column></menubar>"
            "<menubar name='inspect'><column>File</column><column>Hidden</column></menubar>"
            "<menubar name='broken'><column>File</column><column>Missing</column></menubar>"));
        for (const char *name : {"file.open", "sys.undo", "sys.reset_toolbars", "sys.reset_views"})
            command(QString::fromLatin1(name));
        command(QStringLiteral("x.invisible"), false);
        QStringList args{QStringLiteral("prog")};
        auto *smgr = new AppStatusManager;
        std::unique_ptr<MainWindow> win(new MainWindow("menu test", smgr, InitLibrary(), args));
        smgr->setStatusData(1, new TestUtil::StubStatus(1, QStringLiteral("measure")));
        smgr->setStatusData(2, new TestUtil::StubStatus(2, QStringLiteral("inspect")));
        const auto bar = [&] {
            QStringList titles;
            for (QAction *a : win->menuBar()->actions())
                titles << a->text() + (a->isVisible() ? "" : "(hidden)");
            return titles;
        };
        for (unsigned int mode : {1, 2, 1}) {
            smgr->setAppMode(mode);
            QCOMPARE(bar(), mode == 1 ? QStringList({"File", "Edit"}) : QStringList({"File", "Hidden(hidden)"}));
        }
        QCOMPARE(MenuDataContainer::getCurrentMainMenuName(), QStringLiteral("measure"));
        try {
            MenuDataContainer::createMainMenu(QStringLiteral("broken"));
            QFAIL("no ProgError");
        } catch (const ProgError &e) {
            QCOMPARE(e.getMessage(), QStringLiteral("menu column 'Missing' not found"));
        }
        QCOMPARE(bar(), QStringList({"File"})); // cleared before the column check

        // The toolbar context menu lists the window's toolbars and toggles them.
        QToolBar *toolbar = win->addToolBar(QStringLiteral("Tools"));
        win->show();
        std::unique_ptr<QMenu> context(win->createPopupMenu());
        const QStringList entries = texts(context.get());
        QCOMPARE(entries.mid(entries.size() - 4), QStringList({"-", "sys.reset_toolbars", "-", "sys.reset_views"}));
        QAction *toggle = context->actions().at(entries.indexOf(QStringLiteral("Tools")));
        QVERIFY(toggle->isChecked());
        toggle->trigger();
        QVERIFY(toolbar->isHidden());
    }
};

QTEST_MAIN(TestMenu)
#include "tst_menu.moc"
