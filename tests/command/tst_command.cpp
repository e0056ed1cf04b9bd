#include "gapp_ccontainer.h"
#include "gapp_command.h"
#include "gapp_main_window.h"
#include "zal_cfg.h"
#include "zal_cfg_profile.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_icon.h"
#include "zal_parse.h"
#include "zal_variant.h"
#include "test_util.h"
#include <QApplication>
#include <QPointer>
#include <QSignalSpy>
#include <QToolBar>
#include <QToolButton>
#include <QtTest>
#include <memory>

using namespace Zal;
using namespace Zal::GApp;

Q_DECLARE_METATYPE(Zal::Variant)

namespace {

// A host command whose answers the tests set directly.
class TestCommand : public Command
{
public:
    TestCommand(const QString &name, bool menuFunction = false, bool toggle = false,
                const char *iconName = nullptr, const QString &menuName = QStringLiteral("Test"))
        : Command(menuFunction, toggle, name, menuName, QStringLiteral("help_") + name, iconName)
    {
    }

    bool isChecked() const override { return checked; }
    QString getMenuName() override { return menuName.isNull() ? Command::getMenuName() : menuName; }
    bool isMenuSensitive() const override { return sensitive; }
    bool isScriptSensitive() const override { return true; }
    QString getParameterString() override { return QString(); }
    bool parseParameterString(const QString &, bool, QString *, ErrorLog *) override
    {
        return true;
    }
    bool isVisible() const override { return visible; }
    Interactive_t isInteractive() override { return INTERACTIVE_NO; }
    bool executeMenu() override { return true; }
    std::vector<CmdGroup_t> getSynchronizedCmdGroups() override { return synchronizedGroups; }
    std::vector<CmdGroup_t> belongsToCmdGroups() override { return groups; }

    bool checked = false;
    bool sensitive = true;
    bool visible = true;
    QString menuName;
    std::vector<CmdGroup_t> synchronizedGroups;
    std::vector<CmdGroup_t> groups;
};

// A command with a string result for the variant conversion.
class ScriptCommand : public TestCommand
{
public:
    using Command::executeScript;
    using TestCommand::TestCommand;
    bool executeScript(QString *result, QString *errorCode, ErrorLog *) override
    {
        *result = text;
        if (!ok)
            *errorCode = QStringLiteral("GAPP-0013");
        return ok;
    }
    QString text;
    bool ok = true;
};

std::vector<Command::CmdGroup_t> groupsOf(const QList<int> &values)
{
    std::vector<Command::CmdGroup_t> groups;
    for (int v : values)
        groups.push_back(static_cast<Command::CmdGroup_t>(v));
    return groups;
}

} // namespace

class TestCommandRegistry : public QObject
{
    Q_OBJECT
private slots:
    void cleanup()
    {
        CommandContainer::deleteAllCommands();
        MainWindow::smgr = nullptr;
        MainWindow::cfg = nullptr;
    }

    // --- registry -------------------------------------------------------

    void registeredCommandIsFoundWithItsAction()
    {
        auto *b = new TestCommand(QStringLiteral("b.cmd"));
        auto *a = new TestCommand(QStringLiteral("a.cmd"));
        QCOMPARE(CommandContainer::getCommand(QStringLiteral("a.cmd")), a);
        QCOMPARE(CommandContainer::getCommand(QStringLiteral("b.cmd")), b);
        QVERIFY(!CommandContainer::getCommand(QStringLiteral("c.cmd")));
        QVERIFY(!CommandContainer::getCommandAction(QStringLiteral("c.cmd")));
        CommandAction *action = CommandContainer::getCommandAction(QStringLiteral("a.cmd"));
        QVERIFY(action);
        QCOMPARE(action->getCommand(), a);
        QVERIFY(!action->parent());

        QStringList names;
        for (auto it = CommandContainer::begin(); it != CommandContainer::end(); ++it)
            names << it->first;
        QCOMPARE(names, QStringList({QStringLiteral("a.cmd"), QStringLiteral("b.cmd")}));
    }

    void destroyedCommandLeavesWithItsAction()
    {
        auto *cmd = new TestCommand(QStringLiteral("sys.undo"));
        QPointer<CommandAction> action =
            CommandContainer::getCommandAction(QStringLiteral("sys.undo"));
        QVERIFY(action);
        delete cmd;
        QVERIFY(!CommandContainer::getCommand(QStringLiteral("sys.undo")));
        QVERIFY(!CommandContainer::getCommandAction(QStringLiteral("sys.undo")));
        QVERIFY(action.isNull());
    }

    void duplicateNameThrowsAndKeepsFirst()
    {
        auto *first = new TestCommand(QStringLiteral("sys.redo"));
        CommandAction *action = CommandContainer::getCommandAction(QStringLiteral("sys.redo"));
        try {
            TestCommand second(QStringLiteral("sys.redo"));
            QFAIL("a second command of the same name was accepted");
        } catch (const ProgError &e) {
            QCOMPARE(e.getMessage(), QStringLiteral("Command does already exist: sys.redo"));
            QCOMPARE(e.getFunction(),
                     QStringLiteral("Zal::GApp::CommandContainer::registerCommand"));
            QCOMPARE(e.getFile(), QStringLiteral("gapp_ccontainer"));
        }
        QCOMPARE(CommandContainer::getCommand(QStringLiteral("sys.redo")), first);
        QCOMPARE(CommandContainer::getCommandAction(QStringLiteral("sys.redo")), action);
        QCOMPARE(std::distance(CommandContainer::begin(), CommandContainer::end()), 1);
    }

    void unregisteringUnknownCommandThrows()
    {
        auto *cmd = new TestCommand(QStringLiteral("file.open"));
        CommandContainer::unregisterCommand(cmd);
        QVERIFY(!CommandContainer::getCommandAction(QStringLiteral("file.open")));
        try {
            CommandContainer::unregisterCommand(cmd);
            QFAIL("unregistering twice did not throw");
        } catch (const ProgError &e) {
            QCOMPARE(e.getMessage(), QStringLiteral("command 'file.open' not registered"));
            QCOMPARE(e.getFunction(),
                     QStringLiteral("Zal::GApp::CommandContainer::unregisterCommand"));
            QCOMPARE(e.getFile(), QStringLiteral("gapp_ccontainer"));
        }
        // The destructor only reports that its command is gone already.
        delete cmd;
        QCOMPARE(std::distance(CommandContainer::begin(), CommandContainer::end()), 0);
    }

    void deleteAllCommandsEmptiesTheRegistry()
    {
        CommandContainer::deleteAllCommands();
        QVERIFY(CommandContainer::begin() == CommandContainer::end());
        QPointer<CommandAction> action;
        for (int i = 0; i < 5; ++i)
            new TestCommand(QStringLiteral("g.c%1").arg(i));
        action = CommandContainer::getCommandAction(QStringLiteral("g.c3"));
        CommandContainer::deleteAllCommands();
        QVERIFY(CommandContainer::begin() == CommandContainer::end());
        QVERIFY(!CommandContainer::getCommandAction(QStringLiteral("g.c3")));
        QVERIFY(action.isNull());
    }

    void removedCommandReplacesEarlierEntry()
    {
        CommandContainer::registerRemovedCommand(QStringLiteral("old.a"), QStringLiteral("new.a"));
        CommandContainer::registerRemovedCommand(QStringLiteral("old.b"), QStringLiteral("x"));
        CommandContainer::registerRemovedCommand(QStringLiteral("old.a"), QStringLiteral("new.a2"));
        QStringList entries;
        for (auto it = CommandContainer::removedBegin(); it != CommandContainer::removedEnd(); ++it)
            entries << it->first + QLatin1Char('=') + it->second;
        QCOMPARE(entries, QStringList({QStringLiteral("old.a=new.a2"), QStringLiteral("old.b=x")}));
    }

    void draftNameWarns_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("output");
        const QByteArray prefix(
            "Zal::GApp::CommandContainer::registerCommand(57): draft command name: '");
        QTest::newRow("suffix") << "meas.distance_draft" << prefix + "meas.distance_draft'\n";
        QTest::newRow("inside") << "meas._draftx" << prefix + "meas._draftx'\n";
        QTest::newRow("other case") << "meas.distance_Draft" << QByteArray();
        QTest::newRow("plain") << "meas.distance" << QByteArray();
    }
    void draftNameWarns()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, output);
        TestCommand *cmd = nullptr;
        QCOMPARE(TestUtil::captureStdout([&] { cmd = new TestCommand(name); }), output);
        QCOMPARE(CommandContainer::getCommand(name), cmd);
    }

    // --- the shared action ------------------------------------------------

    void newActionShowsMenuNameAndToggle()
    {
        new TestCommand(QStringLiteral("view.grid"), false, true, nullptr, QStringLiteral("Grid"));
        new TestCommand(QStringLiteral("file.open"), false, false, "act_open",
                        QStringLiteral("Open"));
        CommandAction *grid = CommandContainer::getCommandAction(QStringLiteral("view.grid"));
        CommandAction *open = CommandContainer::getCommandAction(QStringLiteral("file.open"));
        QCOMPARE(grid->text(), QStringLiteral("Grid"));
        QVERIFY(grid->isCheckable());
        QVERIFY(!open->isCheckable());
        // The generated text icon stays out of menus; a real icon is shown.
        QVERIFY(grid->icon().isNull());
        QVERIFY(!open->icon().isNull());
    }

    void refreshWithoutChangeEmitsNothing()
    {
        QToolBar bar;
        auto *cmd = new TestCommand(QStringLiteral("view.grid"), false, true);
        CommandAction *action = CommandContainer::getCommandAction(cmd->getName());
        bar.addAction(action);
        bar.show();
        action->updateAction(false); // brings in the overridden menu name
        QSignalSpy spy(action, &QAction::changed);
        action->updateAction(false);
        CommandContainer::updateAllActions();
        QCOMPARE(spy.count(), 0);
    }

    void refreshWithChangesEmitsOnce_data()
    {
        QTest::addColumn<bool>("checked");
        QTest::addColumn<bool>("sensitive");
        QTest::addColumn<QString>("menuName");
        QTest::newRow("checked") << true << true << "Test";
        QTest::newRow("disabled") << false << false << "Test";
        QTest::newRow("text") << false << true << "Other";
        QTest::newRow("all three") << true << false << "Other";
    }
    void refreshWithChangesEmitsOnce()
    {
        QFETCH(bool, checked);
        QFETCH(bool, sensitive);
        QFETCH(QString, menuName);
        QToolBar bar;
        auto *cmd = new TestCommand(QStringLiteral("view.grid"), false, true);
        CommandAction *action = CommandContainer::getCommandAction(cmd->getName());
        bar.addAction(action);
        bar.show();
        QSignalSpy spy(action, &QAction::changed);
        cmd->checked = checked;
        cmd->sensitive = sensitive;
        cmd->menuName = menuName;
        CommandContainer::updateAllActions();
        QCOMPARE(spy.count(), 1);
        QCOMPARE(action->isChecked(), checked);
        QCOMPARE(action->isEnabled(), sensitive);
        QCOMPARE(action->text(), menuName);
        QVERIFY(!action->signalsBlocked());
    }

    void refreshKeepsCallersSignalBlock()
    {
        QToolBar bar;
        auto *cmd = new TestCommand(QStringLiteral("view.grid"), false, true);
        CommandAction *action = CommandContainer::getCommandAction(cmd->getName());
        bar.addAction(action);
        bar.show();
        QSignalSpy spy(action, &QAction::changed);
        action->blockSignals(true);
        cmd->checked = true;
        action->updateAction(false);
        QVERIFY(action->signalsBlocked());
        action->blockSignals(false);
        QCOMPARE(spy.count(), 0);
        QVERIFY(action->isChecked());
    }

    void invisibleActionWaitsForForcedRefresh()
    {
        auto *cmd = new TestCommand(QStringLiteral("view.grid"), false, true);
        CommandAction *action = CommandContainer::getCommandAction(cmd->getName());
        QToolBar hiddenBar;
        hiddenBar.addAction(action); // associated, but never shown
        cmd->checked = true;
        cmd->visible = false;
        CommandContainer::updateAllActions();
        QVERIFY(!action->isChecked());
        QVERIFY(action->isVisible());
        QSignalSpy spy(action, &QAction::changed);
        action->updateAction(true);
        QVERIFY(action->isChecked());
        QVERIFY(!action->isVisible());
        QCOMPARE(spy.count(), 1);
    }

    void toolbarButtonShowsGeneratedIcon()
    {
        QToolBar bar;
        auto *cmd = new TestCommand(QStringLiteral("meas.distance"));
        CommandAction *action = CommandContainer::getCommandAction(cmd->getName());
        bar.addAction(action);
        bar.show();
        auto *button = qobject_cast<QToolButton *>(bar.widgetForAction(action));
        QVERIFY(button);
        action->updateAction(true);
        QVERIFY(action->icon().isNull());
        QVERIFY(!button->icon().isNull());
        QCOMPARE(button->icon().cacheKey(), cmd->getIconSet()->cacheKey());
    }

    void toolBarWidgetIsTextOnlyOrShowsIcon()
    {
        QToolBar bar;
        auto *text = new TestCommand(QStringLiteral("a.text"));
        auto *icon = new TestCommand(QStringLiteral("a.icon"), false, false, "act_open");
        text->createToolBarWidget(&bar, true);
        icon->createToolBarWidget(&bar, false);
        auto *textButton = qobject_cast<QToolButton *>(
            bar.widgetForAction(CommandContainer::getCommandAction(QStringLiteral("a.text"))));
        auto *iconButton = qobject_cast<QToolButton *>(
            bar.widgetForAction(CommandContainer::getCommandAction(QStringLiteral("a.icon"))));
        QVERIFY(textButton && iconButton);
        QCOMPARE(textButton->toolButtonStyle(), Qt::ToolButtonTextOnly);
        QCOMPARE(iconButton->icon().cacheKey(), icon->getIconSet()->cacheKey());
    }

    void profileHiddenCommandShowsInParentheses()
    {
        QToolBar bar;
        auto *hidden = new TestCommand(QStringLiteral("sys.hidden"));
        auto *shown = new TestCommand(QStringLiteral("sys.shown"));
        bar.addAction(CommandContainer::getCommandAction(hidden->getName()));
        bar.addAction(CommandContainer::getCommandAction(shown->getName()));
        bar.show();
        auto *profile = new Cfg::ParsedProfile;
        profile->hideCommand(QStringLiteral("sys.hidden"));
        Cfg::AdministrationProfile::setInstance(profile);
        CommandContainer::updateAllActions();
        Cfg::AdministrationProfile::clear();
        QCOMPARE(CommandContainer::getCommandAction(QStringLiteral("sys.hidden"))->text(),
                 QStringLiteral("(Test)"));
        QCOMPARE(CommandContainer::getCommandAction(QStringLiteral("sys.shown"))->text(),
                 QStringLiteral("Test"));
        QVERIFY(CommandContainer::getCommandAction(QStringLiteral("sys.hidden"))->isVisible());
        // Without the profile the plain text comes back.
        CommandContainer::updateAllActions();
        QCOMPARE(CommandContainer::getCommandAction(QStringLiteral("sys.hidden"))->text(),
                 QStringLiteral("Test"));
    }

    // --- icons --------------------------------------------------------------

    void generatedIconIsDefaultBeforeAndAfter()
    {
        auto *cmd = new TestCommand(QStringLiteral("meas.angle"));
        QVERIFY(cmd->isDefaultIconSet());
        const QIcon *icon = cmd->getIconSet();
        QVERIFY(icon && !icon->isNull());
        QVERIFY(cmd->isDefaultIconSet());
        QCOMPARE(cmd->getIconSet(), icon); // cached

        const int s = GIcon::Cache::getIconSize(0);
        const QImage image = icon->pixmap(s, s).toImage().convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(image.size(), QSize(s, s));
        int opaque = 0;
        int transparent = 0;
        for (int y = 0; y < s; ++y) {
            for (int x = 0; x < s; ++x) {
                const QRgb p = image.pixel(x, y);
                if (qAlpha(p) == 0)
                    ++transparent;
                else if (qAlpha(p) > 128 && qGray(p) < 64)
                    ++opaque;
            }
        }
        QVERIFY(transparent > 0); // the background
        QVERIFY(opaque > 0);      // dark text (edges are antialiased)
    }

    void namedIconIsNeverDefault()
    {
        auto *cmd = new TestCommand(QStringLiteral("file.open"), false, false, "act_open");
        QVERIFY(!cmd->isDefaultIconSet());
        QVERIFY(!cmd->getIconSet()->isNull());
        QVERIFY(!cmd->isDefaultIconSet());
    }

    // --- menu semaphore ---------------------------------------------------

    void menuSemaphore_data()
    {
        QTest::addColumn<bool>("menuFunction");
        QTest::addColumn<bool>("active");
        QTest::addColumn<QList<int>>("declared");
        QTest::addColumn<QList<int>>("own");
        QTest::addColumn<bool>("needed");
        QTest::addColumn<bool>("synchronized");
        QTest::addColumn<int>("group");
        QTest::newRow("no menu function") << false << true << QList<int>{3, 5} << QList<int>{5} << false << false << -1;
        QTest::newRow("nothing active") << true << false << QList<int>{} << QList<int>{5} << true << false << -1;
        QTest::newRow("nothing declared") << true << true << QList<int>{} << QList<int>{5} << true << false << -1;
        QTest::newRow("no own groups") << true << true << QList<int>{3, 5} << QList<int>{} << true << false << -1;
        QTest::newRow("common group") << true << true << QList<int>{3, 5} << QList<int>{5} << false << true << 5;
        QTest::newRow("first declared wins")
            << true << true << QList<int>{3, 5} << QList<int>{5, 3} << false << true << 3;
        QTest::newRow("no common group") << true << true << QList<int>{3, 5} << QList<int>{4} << true << false << -1;
    }
    void menuSemaphore()
    {
        QFETCH(bool, menuFunction);
        QFETCH(bool, active);
        QFETCH(QList<int>, declared);
        QFETCH(QList<int>, own);
        QFETCH(bool, needed);
        QFETCH(bool, synchronized);
        QFETCH(int, group);
        AppStatusManager smgr;
        MainWindow::smgr = &smgr;
        TestCommand running(QStringLiteral("a.running"), true);
        running.synchronizedGroups = groupsOf(declared);
        TestCommand cmd(QStringLiteral("a.cmd"), menuFunction);
        cmd.groups = groupsOf(own);
        if (active)
            smgr.pushActiveCommand(&running);
        bool sync = !synchronized;
        auto reported = static_cast<Command::CmdGroup_t>(-1);
        QCOMPARE(cmd.needsMenuSemaphore(&sync, &reported), needed);
        QCOMPARE(sync, synchronized);
        QCOMPARE(int(reported), group);
        MainWindow::smgr = nullptr;
    }

    // --- script results -----------------------------------------------------

    void scriptResultBecomesVariant_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("isList");
        QTest::addColumn<QStringList>("elements");
        QTest::addColumn<bool>("ok");
        QTest::newRow("failed list") << "[1, 2]" << true << QStringList{"1", "2"} << false;
        QTest::newRow("list") << "[a, b, c]" << true << QStringList{"a", "b", "c"} << true;
        QTest::newRow("nested") << "[1, [2, 3], \"x, y\"]" << true << QStringList{"1", "[2, 3]", "\"x, y\""} << true;
        QTest::newRow("empty list") << "[]" << true << QStringList{} << true;
        QTest::newRow("one element") << "[7]" << true << QStringList{"7"} << true;
        QTest::newRow("single bracket") << "[" << false << QStringList{} << true;
        QTest::newRow("only closing") << "]" << false << QStringList{} << true;
        QTest::newRow("no closing") << "[a, b" << false << QStringList{} << true;
        QTest::newRow("no opening") << "a, b]" << false << QStringList{} << true;
        QTest::newRow("inner brackets") << "x[a]y" << false << QStringList{} << true;
        QTest::newRow("plain") << "42.5" << false << QStringList{} << true;
        QTest::newRow("empty") << "" << false << QStringList{} << true;
    }
    void scriptResultBecomesVariant()
    {
        QFETCH(QString, text);
        QFETCH(bool, isList);
        QFETCH(QStringList, elements);
        QFETCH(bool, ok);
        ScriptCommand cmd(QStringLiteral("a.script"));
        cmd.text = text;
        cmd.ok = ok;
        Variant result(123);
        QString code;
        ErrorLog log;
        // The result is set whether the command succeeded or not.
        QCOMPARE(cmd.executeScript(&result, &code, &log), ok);
        QCOMPARE(code, ok ? QString() : QStringLiteral("GAPP-0013"));
        if (!isList) {
            QCOMPARE(result.getType(), Variant::TYPE_STRING);
            QCOMPARE(result.getString(), text);
            return;
        }
        QCOMPARE(result.getType(), Variant::TYPE_LIST);
        QStringList got;
        for (const Variant &v : result.getList()) {
            QCOMPARE(v.getType(), Variant::TYPE_STRING);
            got << v.getString();
        }
        QCOMPARE(got, elements);
    }

    void stringScriptFormMustBeOverloaded()
    {
        TestCommand cmd(QStringLiteral("a.plain"));
        QString result;
        QString code;
        try {
            cmd.executeScriptInteractive(&result, &code, nullptr);
            QFAIL("the default string form did not throw");
        } catch (const ProgError &e) {
            QCOMPARE(e.getMessage(),
                     QStringLiteral("executeScript () must be overloaded if called directly"));
            QCOMPARE(e.getFunction(), QStringLiteral("Zal::GApp::Command::executeScript"));
            QCOMPARE(e.getFile(), QStringLiteral("gapp_command"));
        }
    }

    void stageOperationsReportInvalidStageCommand()
    {
        TestCommand cmd(QStringLiteral("a.plain"));
        QString code;
        QVERIFY(!cmd.parseParameterStringStage(QString(), QString(), true, true, &code, nullptr));
        QCOMPARE(code, QStringLiteral("GAPP-0015"));
        code.clear();
        std::vector<QString> results;
        std::vector<bool> success;
        QVERIFY(!cmd.executeScriptStage(AppStatusManager::MACRO_ERROR_STOP, &results, &success,
                                        &code, nullptr));
        QCOMPARE(code, QStringLiteral("GAPP-0015"));
    }

    void errorStringNamesTheCommand()
    {
        TestCommand cmd(QStringLiteral("meas.distance"));
        QCOMPARE(cmd.createErrorString(QStringLiteral("no points")),
                 QStringLiteral("command: meas.distance no points"));
    }

    // --- change log ----------------------------------------------------------

    void changeLogKeepsKindsAndLists()
    {
        CommandUpdateInformation info;
        info.addNameChange("a", "b");
        info.addNewParameter("c", "d");
        info.addRemovedParameter("e", "f");
        info.addParameterChange("g", "h", "i");
        info.addSystemElemSupport("j", {"k", "l"}, {"m"});
        const std::vector<ChangeLogEntry> log = info.getChangeLog();
        QCOMPARE(log.size(), size_t(5));
        const int kinds[] = {0, 1, 2, 3, 4};
        const char *texts[] = {"a", "c", "e", "g", "j"};
        const std::vector<ZalString> first[] = {{"b"}, {""}, {"f"}, {"h"}, {"k", "l"}};
        const std::vector<ZalString> second[] = {{""}, {"d"}, {""}, {"i"}, {"m"}};
        for (size_t i = 0; i < log.size(); ++i) {
            QCOMPARE(int(log[i].type), kinds[i]);
            QCOMPARE(log[i].text, ZalString(texts[i]));
            QVERIFY(log[i].list1 == first[i]);
            QVERIFY(log[i].list2 == second[i]);
        }
        const ChangeLogEntry empty;
        QCOMPARE(int(empty.type), 0);
        QVERIFY(empty.text.empty() && empty.list1.empty() && empty.list2.empty());
    }

    // --- configured parameters ------------------------------------------------

    void configuredRangesAndValues()
    {
        CfgNode node("gapp", QStringLiteral("library"));
        node.addDbl("dist", QStringLiteral("distance"), 0.0, 10.0, 2.5, 0.1, 2);
        node.addUnit("len", QStringLiteral("length"), QStringLiteral("mm"), -1.0, 1.0, 0.25, 0.1,
                     2);
        node.addInt("count", QStringLiteral("count"), -3, 3, -2, 1);
        node.addUInt("points", QStringLiteral("points"), 1, 9, 4, 1);
        node.addBool("fast", QStringLiteral("fast"), true);
        MainWindow::cfg = &node;

        QString params = QStringLiteral("d=9.5 l=-0.5 c=3 p=1");
        QCOMPARE(Command::getCfgDouble(params, QStringLiteral("d"), "dist"), 9.5);
        QCOMPARE(Command::getCfgUnit(params, QStringLiteral("l"), "len"), -0.5);
        QCOMPARE(Command::getCfgInt(params, QStringLiteral("c"), "count"), 3);
        QCOMPARE(Command::getCfgUInt(params, QStringLiteral("p"), "points"), 1u);
        QVERIFY(params.isEmpty());

        QCOMPARE(Command::createCfgDouble(QStringLiteral("d"), "dist"), QStringLiteral("d=2.5"));
        QCOMPARE(Command::createCfgUnit(QStringLiteral("l"), "len"), QStringLiteral("l=0.25"));
        QCOMPARE(Command::createCfgInt(QStringLiteral("c"), "count"), QStringLiteral("c=-2"));
        QCOMPARE(Command::createCfgUInt(QStringLiteral("p"), "points"), QStringLiteral("p=4"));
        QCOMPARE(Command::createCfgBool(QStringLiteral("f"), "fast"), QStringLiteral("f=true"));

        params = QStringLiteral("d=10.5");
        QVERIFY_THROWS_EXCEPTION(ParseError,
                                 Command::getCfgDouble(params, QStringLiteral("d"), "dist"));
        QCOMPARE(params, QStringLiteral("d=10.5"));
        QVERIFY_THROWS_EXCEPTION(ProgError,
                                 Command::getCfgDouble(params, QStringLiteral("d"), "missing"));
        QVERIFY_THROWS_EXCEPTION(ProgError,
                                 Command::getCfgInt(params, QStringLiteral("d"), "dist"));
        MainWindow::cfg = nullptr;
        QVERIFY_THROWS_EXCEPTION(ProgError, Command::createCfgBool(QStringLiteral("f"), "fast"));
        QCOMPARE(Command::createCfgBool(&node, QStringLiteral("f"), "fast"),
                 QStringLiteral("f=true"));
    }

    // --- parameter strings ------------------------------------------------------

    void readersConsumeTheirEntry_data()
    {
        QTest::addColumn<QString>("params");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("rest");
        QTest::newRow("first") << "a=1 b=2" << "1" << "b=2";
        QTest::newRow("last") << "b=2 a=1" << "1" << "b=2";
        QTest::newRow("middle") << "b=2  a=1   c=3" << "1" << "b=2  c=3";
        QTest::newRow("quoted") << "a=\"x y=1\" b=2" << "x y=1" << "b=2";
        QTest::newRow("escaped") << "a=\"q\\\"r\\\\\"" << "q\"r\\" << "";
        QTest::newRow("vector") << "a=[1, \"]\", [2]] b=2" << "[1, \"]\", [2]]" << "b=2";
        QTest::newRow("inside quotes is no key") << "b=\"a=5\" a=1" << "1" << "b=\"a=5\"";
        QTest::newRow("keyless vector") << "[a=5] a=1" << "1" << "[a=5]";
    }
    void readersConsumeTheirEntry()
    {
        QFETCH(QString, params);
        QFETCH(QString, value);
        QFETCH(QString, rest);
        QCOMPARE(Parse::getString(params, QStringLiteral("a")), value);
        QCOMPARE(params, rest);
    }

    void invalidValuesThrowAndKeepTheString_data()
    {
        QTest::addColumn<QString>("params");
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("message");
        QTest::newRow("missing") << "b=1" << "double" << "missing parameter 'a'";
        QTest::newRow("no value") << "a b=1" << "int" << "missing value for parameter 'a'";
        QTest::newRow("empty value") << "a= b=1" << "int" << "missing value for parameter 'a'";
        QTest::newRow("not a number") << "a=x" << "double" << "invalid number for parameter 'a': x";
        QTest::newRow("not finite") << "a=inf" << "double" << "invalid number for parameter 'a': inf";
        QTest::newRow("above") << "a=11" << "double" << "parameter 'a' out of range [0, 10]: 11";
        QTest::newRow("int fraction") << "a=1.5" << "int" << "invalid integer for parameter 'a': 1.5";
        QTest::newRow("int below") << "a=-1" << "int" << "parameter 'a' out of range [0, 10]: -1";
        QTest::newRow("uint sign") << "a=-1" << "uint" << "invalid unsigned integer for parameter 'a': -1";
        QTest::newRow("uint overflow") << "a=4294967296" << "uint"
                                       << "invalid unsigned integer for parameter 'a': 4294967296";
        QTest::newRow("bool") << "a=yes" << "bool" << "invalid boolean for parameter 'a': yes";
    }
    void invalidValuesThrowAndKeepTheString()
    {
        QFETCH(QString, params);
        QFETCH(QString, kind);
        QFETCH(QString, message);
        const QString before = params;
        const QString key = QStringLiteral("a");
        try {
            if (kind == QLatin1String("double"))
                Parse::getDouble(params, key, 0, 10);
            else if (kind == QLatin1String("int"))
                Parse::getInt(params, key, 0, 10);
            else if (kind == QLatin1String("uint"))
                Parse::getUInt(params, key, 0, 10);
            else
                Parse::getBool(params, key);
            QFAIL("no ParseError");
        } catch (const ParseError &e) {
            QCOMPARE(e.getText(), message);
        }
        QCOMPARE(params, before);
    }

    void createdEntriesReadBack()
    {
        const double values[] = {0.1, -2.5e-12, 1.0 / 3.0, 12345678.9};
        for (double v : values) {
            QString p = Parse::createDouble(QStringLiteral("x"), v);
            QCOMPARE(Parse::getDouble(p, QStringLiteral("x"), -1e9, 1e9), v);
        }
        QString p = Parse::createInt(QStringLiteral("i"), -7) + QLatin1Char(' ')
                    + Parse::createUInt(QStringLiteral("u"), 4000000000u) + QLatin1Char(' ')
                    + Parse::createBool(QStringLiteral("b"), false) + QLatin1Char(' ')
                    + Parse::createString(QStringLiteral("s"), QStringLiteral("a \"b\" \\ c"));
        QCOMPARE(p, QStringLiteral("i=-7 u=4000000000 b=false s=\"a \\\"b\\\" \\\\ c\""));
        QCOMPARE(Parse::getInt(p, QStringLiteral("i"), -10, 10), -7);
        QCOMPARE(Parse::getUInt(p, QStringLiteral("u"), 0, 4294967295u), 4000000000u);
        QCOMPARE(Parse::getBool(p, QStringLiteral("b")), false);
        QCOMPARE(Parse::getString(p, QStringLiteral("s")), QStringLiteral("a \"b\" \\ c"));
        QVERIFY(p.isEmpty());
    }

    void decomposeVectorSplitsTopLevel_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("elements");
        QTest::newRow("flat") << "[a, b ,c]" << QStringList{"a", "b", "c"};
        QTest::newRow("blank") << "[ ]" << QStringList{};
        QTest::newRow("empty middle") << "[a,,b]" << QStringList{"a", "", "b"};
        QTest::newRow("nested") << "[[1, 2], [3]]" << QStringList{"[1, 2]", "[3]"};
        QTest::newRow("quoted comma") << "[\"a, b\", c]" << QStringList{"\"a, b\"", "c"};
        QTest::newRow("escaped quote") << "[\"a\\\", b\", c]" << QStringList{"\"a\\\", b\"", "c"};
        QTest::newRow("no brackets") << "a, b" << QStringList{"a", "b"};
        QTest::newRow("two vectors") << "[a], [b]" << QStringList{"[a]", "[b]"};
        QTest::newRow("unbalanced open") << "[a, [b, c" << QStringList{"[a, [b, c"};
        QTest::newRow("unbalanced close") << "a], b" << QStringList{"a]", "b"};
        QTest::newRow("open quote") << "[\"a, b]" << QStringList{"[\"a, b]"};
    }
    void decomposeVectorSplitsTopLevel()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, elements);
        QStringList got;
        for (const QString &e : Parse::decomposeVector(text))
            got << e;
        QCOMPARE(got, elements);
    }

    void hostileParameterStringsAreHarmless()
    {
        // Deep nesting and unterminated quotes must neither crash nor loop.
        const QString deep = QString(100000, QLatin1Char('[')) + QStringLiteral("x");
        QString params = QStringLiteral("a=") + deep + QStringLiteral(" b=1");
        QVERIFY(!Parse::hasKey(params, QStringLiteral("b"))); // swallowed by the open vector
        QCOMPARE(Parse::decomposeVector(deep).size(), size_t(1));
        params = QStringLiteral("a=\"unterminated b=1");
        QCOMPARE(Parse::getString(params, QStringLiteral("a")), QStringLiteral("unterminated b=1"));
        params = QStringLiteral("= == =a \" [");
        QVERIFY(!Parse::hasKey(params, QStringLiteral("a")));
    }

    void variantTextForms_data()
    {
        QTest::addColumn<Variant>("value");
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("text");
        QTest::newRow("bool") << Variant(true) << 0 << "true";
        QTest::newRow("int") << Variant(-4) << 1 << "-4";
        QTest::newRow("uint") << Variant(7u) << 2 << "7";
        QTest::newRow("double") << Variant(0.1) << 3 << "0.1";
        QTest::newRow("point") << Variant(BaPoint3d<double>(1, 2.5, -3)) << 4 << "[1, 2.5, -3]";
        QTest::newRow("string") << Variant(QStringLiteral("a b")) << 5 << "a b";
        QTest::newRow("vector") << Variant(BaVec3d<double>(0, 0, 1)) << 6 << "[0, 0, 1]";
        QTest::newRow("name") << Variant::fromName(QStringLiteral("plane 1")) << 7 << "plane 1";
        QTest::newRow("list") << Variant(std::vector<Variant>{Variant(1), Variant("x")}) << 8 << "[1, x]";
        QTest::newRow("none") << Variant::NONE << 9 << "";
    }
    void variantTextForms()
    {
        QFETCH(Variant, value);
        QFETCH(int, type);
        QFETCH(QString, text);
        QCOMPARE(int(value.getType()), type);
        QCOMPARE(value.toString(), text);
    }
};

QTEST_MAIN(TestCommandRegistry)
#include "tst_command.moc"
