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
#include <QSignalSpy>
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
    explicit TestCommand(const QString &name)
        : Command(false, false, name, name, QString(), nullptr)
    {
    }
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

TestCommand *command(const QString &name)
{
    if (auto *cmd = static_cast<TestCommand *>(CommandContainer::getCommand(name)))
        return cmd;
    return new TestCommand(name);
}

class RecentFiles : public SpecialMenuProvider
{
public:
    QString getMenuTitle() const override { return QStringLiteral("Recent"); }
    void fillMenu(Menu *menu) override
    {
        ++fills;
        for (const QString &file : files)
            menu->addAction(file);
    }
    bool isVisible() const override { return visible; }
    QStringList files;
    int fills = 0;
    bool visible = true;
};

class ModeStatus : public StatusData
{
public:
    ModeStatus(unsigned int mode, const QString &menu) : StatusData(mode, QString()), _menu(menu) {}
    QString getMainMenuName() override { return _menu; }
    bool isAppModeChangePossible(unsigned int) override { return true; }
    bool canExitProgram() override { return true; }
    void exitProgram() override {}
    void commitData() override {}
    bool isEmpty() override { return true; }
    std::vector<const char *> getAdditionalSelectionNames() override { return {}; }
    std::vector<QString> getSelectedData(const char *) override { return {}; }
    std::vector<QString> getAllData() override { return {}; }
    bool isDataModified(const QString &) const override { return false; }

private:
    QString _menu;
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

QByteArray layout(const QByteArray &sections)
{
    return "<layout>" + sections + "</layout>";
}

void load(const QByteArray &sections)
{
    QDomDocument doc;
    QVERIFY(doc.setContent(layout(sections)));
    MenuDataContainer::loadMenus(&doc);
}

QStringList texts(const QMenu *menu)
{
    QStringList list;
    for (const QAction *action : menu->actions())
        list << (action->isSeparator() ? QStringLiteral("-") : action->text());
    return list;
}

QStringList names(const std::vector<QString> &v)
{
    return QStringList(v.begin(), v.end());
}

// The menu tree of a column as text: "name", "-", "[sub: ...]", "*special".
QStringList tree(const MenuData *menu)
{
    QStringList list;
    for (const MenuDataItem &item : menu->getItems()) {
        switch (item.kind) {
        case MenuDataItem::COMMAND: list << item.name; break;
        case MenuDataItem::SEPARATOR: list << QStringLiteral("-"); break;
        case MenuDataItem::SUB_MENU:
            list << QStringLiteral("[%1: %2]").arg(item.sub_menu->getName(),
                                                    tree(item.sub_menu).join(QLatin1Char(' ')));
            break;
        default: list << QLatin1Char('*') + item.name;
        }
    }
    return list;
}

} // namespace

class TestMenu : public QObject
{
    Q_OBJECT

    AppStatusManager *_smgr = nullptr;

private slots:
    void init()
    {
        _smgr = new AppStatusManager;
        MainWindow::smgr = _smgr;
    }

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

    void layoutErrorsThrowWithFunctionAndText_data()
    {
        QTest::addColumn<QByteArray>("sections");
        QTest::addColumn<QString>("function");
        QTest::addColumn<QString>("message");
        const QString c = QStringLiteral("Zal::GApp::MenuDataContainer::");
        const QByteArray col = "<menucolumn name='c' translate_section='s'>";
        QTest::newRow("column without name") << QByteArray("<menusection><menucolumn translate_section='s'/></menusection>") << c + "loadMenus" << "missing attribute 'name'";
        QTest::newRow("partial without section") << QByteArray("<menusection><partial_menu name='p'/></menusection>") << c + "loadMenus" << "missing attribute 'translate_section'";
        QTest::newRow("menubar without name") << QByteArray("<menusection><menubar name=''/></menusection>") << c + "loadMenus" << "missing attribute 'name'";
        QTest::newRow("name checked first") << QByteArray("<menusection><menucolumn/></menusection>") << c + "loadMenus" << "missing attribute 'name'";
        QTest::newRow("other tag") << QByteArray("<menusection><toolbar/></menusection>") << c + "loadMenus" << "invalid tag:toolbar";
        QTest::newRow("comment in section") << QByteArray("<menusection><!-- x --></menusection>") << c + "loadMenus" << "invalid tag:";
        QTest::newRow("comment in column") << QByteArray("<menusection>" + col + "<!-- x --></menucolumn></menusection>") << c + "fillMenuRecursive" << "menu item is null";
        QTest::newRow("unknown item") << QByteArray("<menusection>" + col + "<item/></menucolumn></menusection>") << c + "fillMenuRecursive" << "";
        QTest::newRow("text in menubar") << QByteArray("<menusection><menubar name='m'>x</menubar></menusection>") << c + "fillMainMenu" << "column item is null";
        QTest::newRow("tag in menubar") << QByteArray("<menusection><menubar name='m'><entry/></menubar></menusection>") << c + "fillMainMenu" << "tagname is not 'column' or 'toolbar'";
        QTest::newRow("second main menu") << QByteArray("<menusection><menubar name='m'/><menubar name='m'/></menusection>") << c + "registerMainMenu" << "main menu does already exist";
        QTest::newRow("second column") << QByteArray("<menusection>" + col + "</menucolumn>" + col + "</menucolumn></menusection>") << c + "registerMenu" << "menu column 'c' does already exist";
        QTest::newRow("second partial") << QByteArray("<menusection><partial_menu name='p' translate_section='s'/><partial_menu name='p' translate_section='s'/></menusection>") << c + "registerPartialMenuNode" << "partial menu 'p' does already exist";
        QTest::newRow("partial used before definition") << QByteArray("<menusection>" + col + "<use_partial>p</use_partial></menucolumn><partial_menu name='p' translate_section='s'/></menusection>") << c + "getPartialMenu" << "partial menu 'p' does not exist";
        QTest::newRow("partial of an earlier file") << QByteArray("<menusection>" + col + "<use_partial>q</use_partial></menucolumn></menusection>") << c + "getPartialMenu" << "partial menu 'q' does not exist";
        QTest::newRow("partial using itself") << QByteArray("<menusection><partial_menu name='p' translate_section='s'><use_partial>p</use_partial></partial_menu>" + col + "<use_partial>p</use_partial></menucolumn></menusection>") << c + "fillMenuRecursive" << "partial menu 'p' uses itself";
    }

    void layoutErrorsThrowWithFunctionAndText()
    {
        QFETCH(QByteArray, sections);
        QFETCH(QString, function);
        QFETCH(QString, message);
        // A partial menu left from an earlier load must not be usable.
        load("<menusection><partial_menu name='q' translate_section='s'/></menusection>");
        QDomDocument doc;
        QVERIFY(doc.setContent(layout(sections)));
        std::unique_ptr<ProgError> error;
        const QByteArray err = captureStderr([&] {
            try {
                MenuDataContainer::loadMenus(&doc);
            } catch (const ProgError &e) {
                error = std::make_unique<ProgError>(e);
            }
        });
        QVERIFY(error);
        QCOMPARE(error->getFunction(), function);
        QCOMPARE(error->getFile(), QStringLiteral("gapp_menu_data"));
        QCOMPARE(error->getMessage(), message);
        // Only an unknown item tag is also named on standard error.
        QCOMPARE(err, message.isEmpty() ? QByteArray("unknown tag:item\n") : QByteArray());
    }

    void apiMisuseThrows()
    {
        MenuData menu("m", "s");
        menu.insertSubMenu("sub", "s", QPixmap());
        menu.closeSubMenu();
        QVERIFY_THROWS_EXCEPTION(ProgError, menu.closeSubMenu());
        try {
            MenuDataContainer::getToolBarSuccessors(QStringLiteral("none"));
            QFAIL("no ProgError");
        } catch (const ProgError &e) {
            QCOMPARE(e.getFunction(), QStringLiteral("Zal::GApp::MenuDataContainer::getToolBarSuccessors"));
            QCOMPARE(e.getMessage(), QStringLiteral("no mainmenu with this identifier"));
        }
    }

    void sectionsAreReadInOrderAndNestToAnyDepth()
    {
        load("<toolbarsection/><menusection>"
             "<partial_menu name='p' translate_section='s'><entry>x.p</entry><sep/></partial_menu>"
             "<menubar name='zeta'><column>c</column><toolbar>T1</toolbar><toolbar>T2</toolbar></menubar>"
             "</menusection><viewsection/><menusection>"
             "<menucolumn name='c' translate_section='s'><entry>x.a</entry>"
             "<menu name='one'><menu name='two'><menu name='three'><entry>x.deep</entry></menu></menu>"
             "<special_menu>recent_files</special_menu></menu><use_partial>p</use_partial><entry></entry></menucolumn>"
             "<menubar name='alpha'/></menusection>");
        MenuData *c = MenuDataContainer::getMenu(QStringLiteral("c"));
        QVERIFY(c);
        QCOMPARE(tree(c), QStringList({"x.a", "[one: [two: [three: x.deep]] *recent_files]", "x.p", "-", ""}));
        // Loading closed every sub-menu: inserts go to the root again.
        c->insertSeparator();
        QCOMPARE(tree(c).last(), QStringLiteral("-"));
        QCOMPARE(names(MenuDataContainer::getMainMenuNames()), QStringList({"alpha", "zeta"}));
        QCOMPARE(names(MenuDataContainer::getToolBarNames(QStringLiteral("zeta"))), QStringList({"T1", "T2"}));
        // Toolbars without a definition have no dock area and so no successor.
        QCOMPARE(names(MenuDataContainer::getToolBarSuccessors(QStringLiteral("zeta"))), QStringList({"", ""}));
        // Copies own their tree.
        { MenuData copy(*c); QCOMPARE(tree(&copy), tree(c)); }
        QCOMPARE(tree(c).size(), 6);
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
        // The inner partial applies only its own pair of prefixes: the outer
        // grp1. -> grp2. is not carried into it.
        load(QStringLiteral("<menusection>"
                            "<partial_menu name='in' translate_section='s' prefix='x.'><entry>grp1.c</entry></partial_menu>"
                            "<partial_menu name='p' translate_section='s' prefix='%1'><entry>grp1.a</entry>"
                            "<entry>other.b</entry><use_partial prefix='%3'>in</use_partial></partial_menu>"
                            "<menucolumn name='c' translate_section='s'><use_partial prefix='%2'>p</use_partial></menucolumn>"
                            "</menusection>")
                 .arg(partialPrefix, usePrefix, usePrefix.isEmpty() ? QString() : QStringLiteral("y."))
                 .toUtf8());
        QCOMPARE(tree(MenuDataContainer::getMenu(QStringLiteral("c"))), expected);
    }

    void layoutStringsRoundTripThroughConfig_data()
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

    void layoutStringsRoundTripThroughConfig()
    {
        QFETCH(QStringList, stored);
        QFETCH(bool, restored);
        std::unique_ptr<CfgNode> node(InitLibrary());
        MainWindow::cfg = node.get();
        load("<menusection><menubar name='b'><toolbar>t1</toolbar><toolbar>t2</toolbar></menubar>"
             "<menubar name='a'/></menusection>");
        auto *array = node->getArray<QString>(ZalString(CfgKeys::TOOLBARS3));
        array->setArray(std::vector<QString>(stored.begin(), stored.end()));
        MenuDataContainer::loadConfig();
        MenuDataContainer::saveConfig();
        MainWindow::cfg = nullptr;
        const QStringList expected =
            restored ? QStringList({"V6", "NEXT_MENU", "a", "la", "da", "NEXT_MENU", "b", "t1", "t2", "lb", "db"})
                     : QStringList({"V6", "NEXT_MENU", "a", "", "", "NEXT_MENU", "b", "t1", "t2", "", ""});
        QCOMPARE(names(array->getValues()), expected);
    }

    // --- building menus -------------------------------------------------------------

    void menuTitleAndRightClickOnEmptySpace()
    {
        Menu menu(QStringLiteral("Save && Close"), nullptr);
        QCOMPARE(menu.title(), QStringLiteral("Save && Close"));
        QCOMPARE(menu.objectName(), QStringLiteral("Save && Close"));
        QCOMPARE(menu.windowTitle(), QStringLiteral("Save & Close"));

        menu.addAction(QStringLiteral("entry"));
        menu.setMinimumHeight(200);
        for (Qt::MouseButton button : {Qt::RightButton, Qt::LeftButton}) {
            menu.popup(QPoint(100, 100));
            QVERIFY(QTest::qWaitForWindowExposed(&menu));
            QTest::mousePress(&menu, button, Qt::NoModifier, QPoint(12, 195));
            for (int i = 0; i < 8; ++i)
                QTest::mouseMove(&menu, QPoint(12 + i, 190));
            QTest::mouseRelease(&menu, button, Qt::NoModifier, QPoint(20, 190));
            // Only the right button is swallowed; the left one closes the menu.
            QCOMPARE(menu.isVisible(), button == Qt::RightButton);
            menu.hide();
        }
    }

    void addCommandReportsUnknownNames()
    {
        Menu menu(QStringLiteral("m"), nullptr);
        QAction *result = reinterpret_cast<QAction *>(1);
        const QByteArray out = captureStdout([&] { result = menu.addCommand(QStringLiteral("no.such")); });
        QCOMPARE(out, QByteArray("Zal::GApp::Menu::addCommand(78): error: no command for: no.such\n"));
        QVERIFY(!result);
        QVERIFY(menu.actions().isEmpty());
        command(QStringLiteral("x.a"));
        QCOMPARE(menu.addCommand(QStringLiteral("x.a")),
                 static_cast<QAction *>(CommandContainer::getCommandAction(QStringLiteral("x.a"))));
    }

    void profilesAddAndHide_data()
    {
        QTest::addColumn<bool>("admin");
        QTest::addColumn<QStringList>("rules");
        QTest::addColumn<QStringList>("expected");
        const QStringList plain({"x.a", "x.b", "sub", "Recent", "-", "x.c"});
        QTest::newRow("none") << false << QStringList() << plain;
        QTest::newRow("hide x.a, x.y after it") << false << QStringList({"hide x.a", "after x.a x.y"}) << QStringList({"x.y", "x.b", "sub", "Recent", "-", "x.c"});
        QTest::newRow("menu start and after menus") << false << QStringList({"start c x.y", "aftermenu sub x.z", "afterspecial recent x.w"}) << QStringList({"x.y", "x.a", "x.b", "sub", "x.z", "Recent", "x.w", "-", "x.c"});
        QTest::newRow("admin hides nothing") << true << QStringList({"hide x.a", "after x.a x.y"}) << QStringList({"(x.a)", "x.y", "x.b", "sub", "Recent", "-", "x.c"});
        QTest::newRow("unknown addition") << false << QStringList({"after x.b no.such"}) << plain;
    }

    void profilesAddAndHide()
    {
        QFETCH(bool, admin);
        QFETCH(QStringList, rules);
        QFETCH(QStringList, expected);
        for (const char *name : {"x.a", "x.b", "x.c", "x.y", "x.z", "x.s", "x.w"})
            command(QString::fromLatin1(name));
        RecentFiles recent;
        _smgr->registerSpecialMenuProvider(QStringLiteral("recent"), &recent);
        auto *profile = new Cfg::ParsedProfile;
        for (const QString &rule : rules) {
            const QStringList w = rule.split(QLatin1Char(' '));
            if (w[0] == QLatin1String("hide")) profile->hideCommand(w[1]);
            else if (w[0] == QLatin1String("after")) profile->addCommandAfterCommand(w[1], w[2]);
            else if (w[0] == QLatin1String("start")) profile->addCommandAtMenuStart(w[1], w[2]);
            else if (w[0] == QLatin1String("aftermenu")) profile->addCommandAfterMenu(w[1], w[2]);
            else profile->addCommandAfterSpecialMenu(w[1], w[2]);
        }
        if (admin)
            Cfg::AdministrationProfile::setInstance(profile);
        else
            Cfg::Profile::setInstance(profile);
        load("<menusection><menucolumn name='c' translate_section='s'><entry>x.a</entry><entry>x.b</entry>"
             "<menu name='sub'><entry>x.s</entry></menu><special_menu>recent</special_menu><sep/><entry>x.c</entry>"
             "</menucolumn></menusection>");
        Menu *popup = nullptr;
        captureStdout([&] { popup = MenuDataContainer::getMenu(QStringLiteral("c"))->getPopupMenu(); });
        popup->updateActions();
        QCOMPARE(texts(popup), expected);
    }

    void specialMenus()
    {
        command(QStringLiteral("x.a"));
        load("<menusection><menucolumn name='c' translate_section='s'><special_menu>recent</special_menu>"
             "<special_menu>nobody</special_menu><entry>x.a</entry></menucolumn></menusection>");
        auto *profile = new Cfg::ParsedProfile;
        profile->addCommandAfterSpecialMenu(QStringLiteral("nobody"), QStringLiteral("x.a"));
        Cfg::Profile::setInstance(profile);
        RecentFiles recent;
        recent.files = QStringList({"one.insp", "two.insp"});
        _smgr->registerSpecialMenuProvider(QStringLiteral("recent"), &recent);
        MenuData *c = MenuDataContainer::getMenu(QStringLiteral("c"));
        Menu *popup = nullptr;
        const QByteArray out = captureStdout([&] { popup = c->getPopupMenu(); });
        QCOMPARE(out, QByteArray("Zal::GApp::MenuData::createMenuRecursive(294): Warning! No provider is registered for special menu nobody!\n"));
        QCOMPARE(texts(popup), QStringList({"Recent", "x.a"}));

        auto *special = qobject_cast<Menu *>(popup->actions().at(0)->menu<QMenu *>());
        QVERIFY(special && recent.isRegisteredMenu(special));
        QCOMPARE(_smgr->getSpecialMenuProvider(special), &recent);
        recent.registerMenu(special);
        // Each opening fills the menu afresh.
        for (int i = 1; i <= 2; ++i) {
            emit special->aboutToShow();
            QCOMPARE(texts(special), QStringList({"one.insp", "two.insp"}));
            QCOMPARE(recent.fills, i);
        }
        recent.visible = false;
        QVERIFY(!special->hasValidEntry());
        recent.deregisterMenu(special);
        emit special->aboutToShow();
        QCOMPARE(recent.fills, 2);
        // A rebuild destroys the old special menu, which leaves its provider.
        recent.registerMenu(special);
        captureStdout([&] { c->refresh(); });
        QVERIFY(!recent.isRegisteredMenu(special));
    }

    void subMenusFollowTheVisibilityOfTheirCommands()
    {
        TestCommand *hidden = command(QStringLiteral("x.h"));
        command(QStringLiteral("x.v"));
        hidden->visible = false;
        load("<menusection><menucolumn name='c' translate_section='s'><entry>x.v</entry>"
             "<menu name='outer'><menu name='inner'><entry>x.h</entry></menu></menu></menucolumn>"
             "<menucolumn name='empty' translate_section='s'><entry>x.h</entry></menucolumn></menusection>");
        Menu *popup = MenuDataContainer::getMenu(QStringLiteral("c"))->getPopupMenu();
        QAction *outer = popup->actions().at(1);
        QSignalSpy shown(popup, &QMenu::aboutToShow);
        popup->popup(QPoint(50, 50));
        QCOMPARE(shown.count(), 1);
        QVERIFY(!outer->isVisible());
        popup->hide();
        hidden->visible = true;
        popup->popup(QPoint(50, 50));
        QVERIFY(outer->isVisible());
        popup->hide();

        hidden->visible = false;
        QVERIFY(!MenuDataContainer::executeMenu(QStringLiteral("empty"), QPoint()));
        QVERIFY(!MenuDataContainer::getMenu(QStringLiteral("empty"))->getPopupMenu()->isVisible());
        QCOMPARE(captureStdout([] { QVERIFY(!MenuDataContainer::executeMenu(QStringLiteral("nope"), QPoint())); }),
                 QByteArray("Zal::GApp::MenuDataContainer::executeMenu(735): error: no menu definition for menu 'nope'\n"));

        QTimer::singleShot(0, [] {
            QWidget *active = QApplication::activePopupWidget();
            QTest::keyClick(active, Qt::Key_Down);
            QTest::keyClick(active, Qt::Key_Return);
        });
        QCOMPARE(MenuDataContainer::executeMenu(QStringLiteral("c"), QPoint(20, 20)),
                 static_cast<QAction *>(CommandContainer::getCommandAction(QStringLiteral("x.v"))));
    }

    void cursorPositionCountsItemsNotActions()
    {
        command(QStringLiteral("x.fast"))->setCommandForDialogFastCreation(true);
        command(QStringLiteral("x.hidden"))->visible = false;
        command(QStringLiteral("x.v"));
        command(QStringLiteral("x.p"));
        auto *profile = new Cfg::ParsedProfile;
        profile->addCommandAtMenuStart(QStringLiteral("c"), QStringLiteral("x.p"));
        Cfg::Profile::setInstance(profile);
        load("<menusection><menucolumn name='c' translate_section='s'><entry>x.fast</entry><entry>x.hidden</entry>"
             "<sep/><menu name='sub'><entry>x.v</entry></menu><entry>x.v</entry></menucolumn></menusection>");
        MenuData *c = MenuDataContainer::getMenu(QStringLiteral("c"));
        // Without a popup the sub-menu gives nothing and the command wins.
        QCOMPARE(MenuDataContainer::getCursorPopupPosition(QStringLiteral("c")),
                 static_cast<QAction *>(CommandContainer::getCommandAction(QStringLiteral("x.v"))));
        Menu *popup = c->getPopupMenu();
        // Item 3 is the sub-menu; the position is an item index, so the
        // profile's x.p at the start makes it name the separator.
        QCOMPARE(c->getCursorPopupPosition(), popup->actions().at(3));
        QVERIFY(popup->actions().at(3)->isSeparator());
        QVERIFY(!MenuDataContainer::getCursorPopupPosition(QStringLiteral("nope")));
    }

    void rebuildingKeepsTheObjectCountFlat()
    {
        command(QStringLiteral("x.a"));
        RecentFiles recent;
        _smgr->registerSpecialMenuProvider(QStringLiteral("recent"), &recent);
        load("<menusection><menucolumn name='c' translate_section='s'><entry>x.a</entry><sep/>"
             "<menu name='one'><menu name='two'><entry>x.a</entry><sep/></menu></menu>"
             "<special_menu>recent</special_menu></menucolumn></menusection>");
        MenuData *c = MenuDataContainer::getMenu(QStringLiteral("c"));
        Menu *popup = c->getPopupMenu();
        const QStringList before = texts(popup);
        const qsizetype objects = popup->findChildren<QObject *>().size();
        for (int i = 0; i < 2000; ++i)
            MenuDataContainer::refreshAllMenus();
        QCOMPARE(popup->findChildren<QObject *>().size(), objects);
        QCOMPARE(popup->findChildren<Menu *>().size(), 3);
        QCOMPARE(texts(popup), before);
        QCOMPARE(c->getPopupMenu(), popup);
    }

    // --- main menus in the window ---------------------------------------------------

    void modeSwitchRebuildsTheMenuBar()
    {
        MainWindow::smgr = nullptr;
        TestUtil::Environment env(layout(
            "<menusection><partial_menu name='edit' translate_section='s'><entry>sys.undo</entry></partial_menu>"
            "<menucolumn name='File' translate_section='s'><entry>file.open</entry></menucolumn>"
            "<menucolumn name='Edit' translate_section='s'><use_partial>edit</use_partial></menucolumn>"
            "<menucolumn name='Hidden' translate_section='s'><entry>x.invisible</entry></menucolumn>"
            "<menucolumn name='Measure' translate_section='s'><entry>meas.distance</entry></menucolumn>"
            "<menubar name='measure'><column>File</column><column>Edit</column><column>Measure</column></menubar>"
            "<menubar name='inspect'><column>File</column><column>Hidden</column></menubar>"
            "<menubar name='broken'><column>File</column><column>Missing</column></menubar>"
            "</menusection>"));
        for (const char *name : {"file.open", "sys.undo", "meas.distance", "sys.reset_toolbars", "sys.reset_views"})
            command(QString::fromLatin1(name));
        command(QStringLiteral("x.invisible"))->visible = false;
        QStringList args{QStringLiteral("prog")};
        auto *smgr = new AppStatusManager;
        std::unique_ptr<MainWindow> win(new MainWindow("menu test", smgr, InitLibrary(), args));
        smgr->setStatusData(1, new ModeStatus(1, QStringLiteral("measure")));
        smgr->setStatusData(2, new ModeStatus(2, QStringLiteral("inspect")));
        const auto bar = [&] {
            QStringList titles;
            for (QAction *a : win->menuBar()->actions())
                titles << a->text() + (a->isVisible() ? QString() : QStringLiteral("(hidden)"));
            return titles;
        };
        smgr->setAppMode(1);
        QCOMPARE(bar(), QStringList({"File", "Edit", "Measure"}));
        smgr->setAppMode(2);
        QCOMPARE(bar(), QStringList({"File", "Hidden(hidden)"}));
        QCOMPARE(MenuDataContainer::getCurrentMainMenuName(), QStringLiteral("inspect"));
        smgr->setAppMode(1);
        QCOMPARE(bar(), QStringList({"File", "Edit", "Measure"}));

        QVERIFY_THROWS_EXCEPTION(ProgError, MenuDataContainer::createMainMenu(QStringLiteral("none")));
        try {
            MenuDataContainer::createMainMenu(QStringLiteral("broken"));
            QFAIL("no ProgError");
        } catch (const ProgError &e) {
            QCOMPARE(e.getMessage(), QStringLiteral("menu column 'Missing' not found"));
            QCOMPARE(e.getFile(), QStringLiteral("gapp_menu_data"));
        }
        QCOMPARE(bar(), QStringList({"File"}));

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
        // The command entries carry no widget and leave the toolbars alone.
        toggle->setChecked(true);
        context->actions().at(entries.indexOf(QStringLiteral("sys.reset_toolbars")))->trigger();
        QVERIFY(toolbar->isHidden());
        context.reset();
        win.reset();
    }
};

QTEST_MAIN(TestMenu)
#include "tst_menu.moc"
