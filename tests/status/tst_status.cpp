#include "gapp_ccontainer.h"
#include "gapp_command.h"
#include "gapp_main_window.h"
#include "gapp_menu_provider.h"
#include "gapp_status_data.h"
#include "gapp_status_mgr.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_gtools_flags.h"
#include "zal_unique_id.h"
#include "test_util.h"
#include "tst_file_ops.h"
#include <QApplication>
#include <QSignalSpy>
#include <functional>

using namespace Zal;
using namespace Zal::GApp;

namespace {

// Runs `fn` with the stream (stdout or stderr) redirected to a file and
// returns what was written to it.
template <class F> QByteArray capture(FILE *stream, F fn)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("out.txt"));
    std::fflush(stream);
    const int saved = dup(fileno(stream));
    FILE *f = std::fopen(QFile::encodeName(path).constData(), "w");
    dup2(fileno(f), fileno(stream));
    fn();
    std::fflush(stream);
    dup2(saved, fileno(stream));
    ::close(saved);
    std::fclose(f);
    return TestUtil::readFile(path);
}

// A status data that writes every call it gets into a shared journal.
class JournalStatus : public StatusData
{
public:
    JournalStatus(unsigned int mode, QStringList *journal) : StatusData(mode, QString()), _journal(journal) {}
    QString getMainMenuName() override { return QStringLiteral("menu%1").arg(getLocalMode()); }
    bool isAppModeChangePossible(unsigned int mode) override { return note(QStringLiteral("possible(%1)").arg(mode), true); }
    void beforeModeChange(unsigned int mode) override { note(QStringLiteral("before(%1)").arg(mode)); }
    void afterModeChange(unsigned int mode) override { note(QStringLiteral("after(%1)").arg(mode)); }
    bool canExitProgram() override { return note(QStringLiteral("canExit"), canExit); }
    void exitProgram() override { note(QStringLiteral("exit")); }
    void commitData() override { note(QStringLiteral("commit")); }
    bool isEmpty() override { return true; }
    std::vector<const char *> getAdditionalSelectionNames() override { return {}; }
    std::vector<QString> getSelectedData(const char *) override { return {}; }
    std::vector<QString> getAllData() override { return {}; }
    bool isDataModified(const QString &) const override { return false; }
    bool getSelectedDataName(QString *name, bool *modified) const override
    {
        if (selectedName.isEmpty())
            return false;
        *name = selectedName;
        *modified = selectedModified;
        return true;
    }
    QString getFileNameExtension(const QString &name) override
    {
        return note(QStringLiteral("extension(%1)").arg(name), QStringLiteral(".") + name);
    }
    using StatusData::getFileNameExtension;
    bool saveFileAs(const std::vector<QString> &names, const QString &fileName, RenameType_t rename,
                    QString *errorCode, ErrorLog *) override
    {
        *errorCode = QStringLiteral("code");
        return note(QStringLiteral("saveAs(%1,%2,%3)").arg(names.size()).arg(fileName).arg(int(rename)), true);
    }
    bool canExit = true, selectedModified = false;
    QString selectedName;

private:
    // Records "<mode>:<what>" and passes `answer` through.
    template <class T = bool> T note(const QString &what, T answer = T())
    {
        _journal->append(QStringLiteral("%1:%2").arg(getLocalMode()).arg(what));
        return answer;
    }
    QStringList *_journal;
};

// Adds one journalling type per mode, in the order given.
void addTypes(AppStatusManager &m, QStringList &journal, std::initializer_list<unsigned int> modes)
{
    for (unsigned int mode : modes)
        m.setStatusData(mode, new JournalStatus(mode, &journal));
}

class JournalNotifier : public ExitNotifier
{
public:
    JournalNotifier(const QString &name, QStringList *journal) : _name(name), _journal(journal) {}
    bool canExitProgram() override { _journal->append(_name + QStringLiteral(":canExit")); return canExit; }
    void exitProgram() override { _journal->append(_name + QStringLiteral(":exit")); if (onExit) onExit(); }
    bool canExit = true;
    std::function<void()> onExit;

private:
    QString _name;
    QStringList *_journal;
};

class MenuProvider : public SpecialMenuProvider
{
public:
    explicit MenuProvider(const Menu *menu = nullptr) : _menu(menu) {}
    bool isRegisteredMenu(const Menu *menu) const override { return menu && menu == _menu; }
    QString getMenuTitle() const override { return QString(); }
    void fillMenu(Menu *) override {}

private:
    const Menu *_menu;
};

class NoProfileMenus : public ProfileMenuProvider
{ std::vector<QString> getProfileNames() const override { return {}; } };

struct PlainCommand : TestUtil::StubCommand
{
    explicit PlainCommand(const QString &name) : StubCommand(name, false) {}
};

const Menu *fakeMenu(int i)
{
    // Only compared, never dereferenced.
    static const char places[4] = {};
    return reinterpret_cast<const Menu *>(&places[i]);
}

} // namespace

class TestStatus : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        MainWindow::debug_views = MainWindow::debug_signals = false;
        _journal.clear();
    }

    void cleanup()
    {
        delete std::exchange(_win, nullptr); // also deletes its status manager
        _env.reset();
        CommandContainer::deleteAllCommands();
        GTools::remote_ctrl_command_active = false;
    }

    void checkMagicHeader_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("magic");
        QTest::addColumn<bool>("match");
        QTest::newRow("empty bytes") << QByteArray() << "GAP" << false;
        QTest::newRow("empty magic") << QByteArray("xyz") << "" << true;
        QTest::newRow("both empty") << QByteArray() << "" << true;
        QTest::newRow("exact") << QByteArray("GAP") << "GAP" << true;
        QTest::newRow("longer file") << QByteArray("GAP\x01\x02") << "GAP" << true;
        QTest::newRow("shorter prefix") << QByteArray("GA") << "GAP" << false;
        QTest::newRow("differs") << QByteArray("GAX") << "GAP" << false;
        QTest::newRow("case") << QByteArray("gap") << "GAP" << false;
        QTest::newRow("latin1") << QByteArray("\xe9t\xe9") << QString::fromLatin1("\xe9t\xe9") << true;
    }
    void checkMagicHeader()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, magic);
        const TestUtil::StubStatus status(3, QString(), QStringLiteral("view3"));
        QTEST(status.checkMagicHeader(std::vector<char>(bytes.begin(), bytes.end()), magic), "match");
    }

    void unofferedOperationsAnswerNotInThisMode_data()
    {
        QTest::addColumn<int>("operation");
        int operation = 0;
        for (const char *name : {"saveFile", "saveFileAs", "closeData", "copyToClipboard", "pasteFromClipboard",
                                 "saveFileAsRecent"})
            QTest::newRow(name) << operation++;
    }
    void unofferedOperationsAnswerNotInThisMode()
    {
        QFETCH(int, operation);
        TestUtil::StubStatus s(3, QString(), QStringLiteral("view3"));
        QString code, other;
        ErrorLog log;
        const std::vector<QString> names{QStringLiteral("a")};
        bool ok = true;
        switch (operation) {
        case 0: ok = s.saveFile(QStringLiteral("a"), QStringLiteral("f"), &code, &log); break;
        case 1: ok = s.saveFileAs(names, QStringLiteral("f"), RENAME_NONE, &code, &log); break;
        case 2: ok = s.closeData(names, &code, &log); break;
        case 3: ok = s.copyToClipboard(names, names, &code, &log); break;
        case 4: ok = s.pasteFromClipboard(names, names, &other, &code, &log); break;
        case 5: ok = s.saveFileAsRecent(names, QStringLiteral("f"), RENAME_NONE, &other, &code, &log); break;
        }
        QVERIFY(!ok);
        QCOMPARE(code, QStringLiteral("GAPP-0016"));
        QVERIFY(log.isEmpty());
    }

    void defaultAnswers()
    {
        TestUtil::StubStatus s(3, QString(), QStringLiteral("view3"));
        QVERIFY(!s.isReadOnly());
        QCOMPARE(s.getLocalModeName(), QString());
        QVERIFY(s.cleanupInconsistentState());
        QString name = QStringLiteral("untouched");
        bool modified = true;
        QVERIFY(!s.getSelectedDataName(&name, &modified));
        QCOMPARE(int(s.isStageActive(QStringLiteral("s"))), 2);
        QVERIFY(s.getActualStageIdentifier() == StageIdentifier::NO_STAGE);
        QVERIFY(s.getStageNumbers(QString(), StatusData::EXPLORER_AT, StatusData::EXPLORER_INDEX_UNUSED).empty());
        QVERIFY(s.getFileNameExtension(std::vector<QString>{QStringLiteral("x")}).isEmpty());
        QCOMPARE(StatusData::EXPLORER_INDEX_UNUSED, 2147483647);
        QCOMPARE(StatusData::STAGE_UNUSED, -1);
        QCOMPARE(QString::fromLatin1(StatusData::DEFAULT_SELECTION), QString());
    }

    // saveFileAsRecent records the name and saves as; the extension of a list is its first name's.
    void defaultForwardingMethods()
    {
        JournalStatus s(1, &_journal);
        QString recent, code;
        const std::vector<QString> names{QStringLiteral("a"), QStringLiteral("b")};
        QVERIFY(s.saveFileAsRecent(names, QStringLiteral("f.gap"), RENAME_COPY, &recent, &code, nullptr));
        QCOMPARE(recent, QStringLiteral("f.gap"));
        QCOMPARE(code, QStringLiteral("code"));
        QCOMPARE(_journal, QStringList{QStringLiteral("1:saveAs(2,f.gap,2)")});
        _journal.clear();
        QCOMPARE(s.getFileNameExtension(std::vector<QString>()), QString());
        QVERIFY(_journal.isEmpty());
        QCOMPARE(s.getFileNameExtension(std::vector<QString>{QStringLiteral("x"), QStringLiteral("y")}),
                 QStringLiteral(".x"));
        QCOMPARE(_journal, QStringList{QStringLiteral("1:extension(x)")});
    }

    void itemIndexForms()
    {
        const ItemIndex byNumber(7u);
        const ItemIndex byName(QStringLiteral("plane"));
        ItemIndex byTuple(std::vector<int>{1, 2});
        // Each form leaves the other two fields empty.
        for (const auto &[index, type, number, name, tuple] :
             {std::make_tuple(byNumber, 0, 7u, QString(), std::vector<int>()),
              std::make_tuple(byName, 1, 0u, QStringLiteral("plane"), std::vector<int>()),
              std::make_tuple(byTuple, 2, 0u, QString(), std::vector<int>{1, 2})}) {
            QCOMPARE(int(index.getType()), type);
            QCOMPARE(index.getIndex(), number);
            QCOMPARE(index.getName(), name);
            QVERIFY(index.getTuple() == tuple);
        }
        byTuple = byName;
        QCOMPARE(int(byTuple.getType()), 1);
        QCOMPARE(byTuple.getName(), QStringLiteral("plane"));
        QVERIFY(byTuple.getTuple().empty());
    }

    void objectPointCopiesShareAdditionalData()
    {
        const ObjectPointDescriptor none;
        QCOMPARE(int(none.additional_type), 0);
        QCOMPARE(none.point.id, -1);
        QVERIFY(none.point == BaPoint3d<double>(0, 0, 0, -1));
        QVERIFY(none.normal == BaVec3d<double>(0, 0, 0));
        QVERIFY(!none.flag && !none.additional_data);
        struct Tracked : ObjectPointAdditionalData {
            explicit Tracked(bool *alive) : _alive(alive) { *alive = true; }
            ~Tracked() override { *_alive = false; }
            bool *_alive;
        };
        bool alive = false;
        auto data = std::make_unique<Tracked>(&alive);
        ObjectPointDescriptor p(BaPoint3d<double>(1, 2, 3), QStringLiteral("sphere"), BaVec3d<double>(0, 0, 1), true);
        QCOMPARE(int(p.additional_type), 0);
        p.setAdditionalData(ObjectPointDescriptor::ADDITIONAL_MESH_DATA, data.get());
        {
            const ObjectPointDescriptor copy(p);
            QCOMPARE(copy.additional_data, data.get());
            QCOMPARE(copy.additional_type, ObjectPointDescriptor::ADDITIONAL_MESH_DATA);
            QCOMPARE(copy.name, QStringLiteral("sphere"));
            QVERIFY(copy.flag);
            ObjectPointDescriptor assigned;
            assigned = p;
            QCOMPARE(assigned.additional_data, data.get());
        }
        QVERIFY(alive);
    }

    void uniqueIdsRoundTrip()
    {
        UniqueIdCreator ids;
        QVERIFY(!ids.existUniqueId(QStringLiteral("measure")));
        const unsigned int m = ids.getUniqueId(QStringLiteral("measure"));
        const unsigned int i = ids.getUniqueId(QStringLiteral("inspect"));
        QVERIFY(m != i);
        QCOMPARE(ids.getUniqueId(QStringLiteral("measure")), m);
        QVERIFY(ids.existUniqueId(QStringLiteral("measure")));
        QCOMPARE(ids.getUniqueIdText(i), QStringLiteral("inspect"));
        QCOMPARE(ids.getUniqueIdText(999), QString());
    }

    void progErrorTexts_data()
    {
        QTest::addColumn<int>("misuse");
        QTest::addColumn<QString>("function");
        QTest::addColumn<QString>("message");
        const QString f = QStringLiteral("Zal::GApp::AppStatusManager::");
        QTest::newRow("duplicate type") << 0 << f + "setStatusData" << "duplicated application type";
        QTest::newRow("unknown type") << 1 << f + "getStatus" << "invalid application type";
        QTest::newRow("menu function twice") << 2 << f + "setMenuFunctionActive" << "second menu function is active";
        QTest::newRow("menu function off") << 3 << f + "setMenuFunctionActive" << "second menu function is active";
        QTest::newRow("figure flag") << 4 << f + "setFigureOperationInCommandEnabled" << "Flag has never been set before";
        QTest::newRow("pop empty") << 5 << f + "popActiveCommand" << "no active command left";
        QTest::newRow("second provider") << 6 << f + "registerSpecialMenuProvider" << "cannot register second provider for special menu.";
        QTest::newRow("notifier twice") << 7 << f + "registerExitNotifier" << "Exit notifier already registered";
        QTest::newRow("unknown notifier") << 8 << f + "unregisterExitNotifier" << "Exit notifier not registered";
        QTest::newRow("mode change query") << 9 << f + "getStatus" << "invalid application type";
    }
    void progErrorTexts()
    {
        QFETCH(int, misuse);
        AppStatusManager m;
        m.setStatusData(1, new JournalStatus(1, &_journal));
        MenuProvider provider;
        JournalNotifier notifier(QStringLiteral("n"), &_journal), stranger(QStringLiteral("s"), &_journal);
        m.registerSpecialMenuProvider(QStringLiteral("recent"), &provider);
        m.registerExitNotifier(&notifier);
        m.setMenuFunctionActive(true);
        auto *extra = new JournalStatus(1, &_journal);
        try {
            switch (misuse) {
            case 0: m.setStatusData(1, extra); break;
            case 1: m.getStatus(2); break;
            case 2: m.setMenuFunctionActive(true); break;
            case 3: m.setMenuFunctionActive(false), m.setMenuFunctionActive(false); break;
            case 4: m.setFigureOperationInCommandEnabled(false); break;
            case 5: m.popActiveCommand(); break;
            case 6: m.registerSpecialMenuProvider(QStringLiteral("recent"), &provider); break;
            case 7: m.registerExitNotifier(&notifier); break;
            case 8: m.unregisterExitNotifier(&stranger); break;
            case 9: m.isAppModeChangePossible(1); break; // the active mode 0 is unregistered
            }
            QFAIL("no ProgError");
        } catch (const ProgError &e) {
            QTEST(e.getFunction(), "function");
            QCOMPARE(e.getFile(), QStringLiteral("gapp_status_mgr"));
            QTEST(e.getMessage(), "message");
        }
        delete extra;
        // State is unchanged by the refused operation.
        QCOMPARE(m.getAppModes(), std::vector<unsigned int>{1});
        QCOMPARE(m.getSpecialMenuProvider(QStringLiteral("recent")), &provider);
        QVERIFY(_journal.isEmpty());
    }

    void modesAreListedInAscendingOrder()
    {
        AppStatusManager m;
        addTypes(m, _journal, {5, 1, 3});
        QCOMPARE(m.getAppModes(), (std::vector<unsigned int>{1, 3, 5}));
        QCOMPARE(m.getStatus(3)->getLocalMode(), 3u);
        QCOMPARE(m.getAppMode(), 0u);
        const unsigned int id = m.getUniqueId(QStringLiteral("measure"));
        QVERIFY(m.existUniqueId(QStringLiteral("measure")));
        QCOMPARE(m.getUniqueIdText(id), QStringLiteral("measure"));
    }

    void modeChangeTellsEveryTypeInOrder()
    {
        AppStatusManager m;
        addTypes(m, _journal, {4, 2, 7});
        m.setAppMode(2);
        QCOMPARE(m.getAppMode(), 2u);
        QCOMPARE(_journal, QStringList({"2:before(2)", "4:before(2)", "7:before(2)", "2:after(0)", "4:after(0)", "7:after(0)"}));
        _journal.clear();
        m.setAppMode(7);
        QCOMPARE(_journal, QStringList({"2:before(7)", "4:before(7)", "7:before(7)", "2:after(2)", "4:after(2)", "7:after(2)"}));
        _journal.clear();
        QVERIFY(m.isAppModeChangePossible(4));
        QCOMPARE(_journal, QStringList{"7:possible(4)"});
    }

    void modeChangeToUnregisteredModeThrowsAfterTellingAll()
    {
        AppStatusManager m;
        addTypes(m, _journal, {1, 2});
        try {
            m.setAppMode(9);
            QFAIL("no ProgError");
        } catch (const ProgError &e) {
            QCOMPARE(e.getMessage(), QStringLiteral("invalid application type"));
        }
        QCOMPARE(m.getAppMode(), 9u);
        QCOMPARE(_journal, QStringList({"1:before(9)", "2:before(9)", "1:after(0)", "2:after(0)"}));
    }

    void modeChangeDebugLines()
    {
        AppStatusManager m;
        const unsigned int measure = m.getUniqueId(QStringLiteral("measure"));
        const unsigned int inspect = m.getUniqueId(QStringLiteral("inspect"));
        addTypes(m, _journal, {measure, inspect});
        MainWindow::debug_views = true;
        const QByteArray out = capture(stdout, [&] { m.setAppMode(inspect); });
        MainWindow::debug_views = false;
        QCOMPARE(out, QByteArray("Before mode change 'measure'\nBefore mode change 'measure' ok\n"
                                 "Before mode change 'inspect'\nBefore mode change 'inspect' ok\n"
                                 "After mode change 'measure'\nAfter mode change 'measure' ok\n"
                                 "After mode change 'inspect'\nAfter mode change 'inspect' ok\n"));
        QCOMPARE(capture(stdout, [&] { m.setAppMode(measure); }), QByteArray());
    }

    void figureOperationsFollowTheCommandLevel()
    {
        AppStatusManager m;
        PlainCommand outer(QStringLiteral("a.outer")), inner(QStringLiteral("a.inner"));
        QVERIFY(m.isFigureOperationInCommandEnabled());
        m.pushActiveCommand(&outer);
        QVERIFY(!m.isFigureOperationInCommandEnabled());
        m.setFigureOperationInCommandEnabled(true);
        QVERIFY(m.isFigureOperationInCommandEnabled());
        m.pushActiveCommand(&inner);
        QVERIFY(!m.isFigureOperationInCommandEnabled());
        m.popActiveCommand();
        QVERIFY(m.isFigureOperationInCommandEnabled());
        m.setFigureOperationInCommandEnabled(false);
        QVERIFY(!m.isFigureOperationInCommandEnabled());
        m.popActiveCommand();
        QVERIFY(m.isFigureOperationInCommandEnabled());
    }

    void startModeCounterDrivesRemoteFlag()
    {
        AppStatusManager m;
        QCOMPARE(m.getCommandStartMode(), AppStatusManager::START_NORMAL);
        m.increaseStartModeFlag();
        m.increaseStartModeFlag();
        QCOMPARE(m.getCommandStartMode(), AppStatusManager::START_REMOTE);
        QVERIFY(GTools::remote_ctrl_command_active);
        m.decreaseStartModeFlag();
        QVERIFY(GTools::remote_ctrl_command_active);
        m.decreaseStartModeFlag();
        QCOMPARE(m.getCommandStartMode(), AppStatusManager::START_NORMAL);
        QVERIFY(!GTools::remote_ctrl_command_active);
    }

    void activeCommandStack()
    {
        AppStatusManager m;
        PlainCommand a(QStringLiteral("a.a")), b(QStringLiteral("a.b"));
        Command *top = &a;
        QVERIFY(!m.getActiveCommand(&top));
        QCOMPARE(top, &a); // left alone without a command
        QVERIFY(!m.isCommandActive());
        m.pushActiveCommand(&a);
        m.pushActiveCommand(&b);
        for (Command *expected : {&b, &a}) {
            top = nullptr;
            QVERIFY(m.getActiveCommand(&top));
            QCOMPARE(top, expected);
            m.popActiveCommand();
        }
        QVERIFY(!m.isCommandActive());
    }

    void preSignalsComeFirst()
    {
        AppStatusManager m;
        QStringList order;
        auto log = [&](const char *what) {
            return [&order, what](uint app, auto detail) {
                order << QStringLiteral("%1 %2 %3").arg(QLatin1String(what)).arg(app).arg(uint(detail));
            };
        };
        connect(&m, &AppStatusManager::selectionChangedSignal, this, log("selection"));
        connect(&m, &AppStatusManager::selectionPreChangedSignal, this, log("pre-selection"));
        connect(&m, &AppStatusManager::dataChangedSignal, this, log("data"));
        connect(&m, &AppStatusManager::dataPreChangedSignal, this, log("pre-data"));
        m.emitSelectionChanged(3, SELECTION_ADDED);
        m.emitDataChanged(4, 17);
        QCOMPARE(order, QStringList({"pre-selection 3 1", "selection 3 1", "pre-data 4 17", "data 4 17"}));
    }

    void commandEmitsForTheActiveMode()
    {
        auto *m = new AppStatusManager;
        m->setStatusData(2, new JournalStatus(2, &_journal));
        m->setAppMode(2);
        MainWindow::smgr = m;
        PlainCommand cmd(QStringLiteral("a.cmd"));
        QSignalSpy selection(m, &AppStatusManager::selectionChangedSignal);
        QSignalSpy data(m, &AppStatusManager::dataChangedSignal);
        cmd.emitSelectionChanged(SELECTION_CLEARED);
        cmd.emitDataChanged(8);
        MainWindow::smgr = nullptr;
        delete m;
        QCOMPARE(selection.count(), 1);
        QCOMPARE(selection.at(0).at(0).toUInt(), 2u);
        QCOMPARE(selection.at(0).at(1).value<SelectionMode_t>(), SELECTION_CLEARED);
        QCOMPARE(data.count(), 1);
        QCOMPARE(data.at(0).at(0).toUInt(), 2u);
        QCOMPARE(data.at(0).at(1).toUInt(), 8u);
    }

    void pointDescriptorsTravelWithTheSignal()
    {
        AppStatusManager m;
        QSignalSpy points(&m, &AppStatusManager::objectPointNormalSelectedSignal);
        m.emitObjectPointNormalSelected(
            {ObjectPointDescriptor(BaPoint3d<double>(1, 2, 3), QStringLiteral("p"), BaVec3d<double>(), false)});
        QCOMPARE(points.count(), 1);
        const auto sent = points.at(0).at(0).value<std::vector<ObjectPointDescriptor>>();
        QCOMPARE(sent.size(), size_t(1));
        QCOMPARE(sent[0].name, QStringLiteral("p"));
    }

    void visualizationDebugLinesFrameTheSignal()
    {
        AppStatusManager m;
        connect(&m, &AppStatusManager::visualizationChangedSignal, this, [&] { std::printf("receiver\n"); });
        MainWindow::debug_signals = true;
        const QByteArray out = capture(stdout, [&] { m.emitVisualizationChanged(0, 0); });
        MainWindow::debug_signals = false;
        QCOMPARE(out, QByteArray("Signal: visualizationChangedSignal\nreceiver\n"
                                 "Signal: visualizationChangedSignal ok\n"));
    }

    void destroyedProviderLeavesOnlyItsEntry()
    {
        AppStatusManager m;
        auto *recent = new MenuProvider;
        MenuProvider windows;
        m.registerSpecialMenuProvider(QStringLiteral("recent"), recent);
        m.registerSpecialMenuProvider(QStringLiteral("windows"), &windows);
        delete recent;
        QVERIFY(!m.getSpecialMenuProvider(QStringLiteral("recent")));
        QCOMPARE(m.getSpecialMenuProvider(QStringLiteral("windows")), &windows);
        // The name is free again.
        MenuProvider again;
        m.registerSpecialMenuProvider(QStringLiteral("recent"), &again);
        QCOMPARE(m.getSpecialMenuProvider(QStringLiteral("recent")), &again);
    }

    void providerOfMenuIsFirstInNameOrder()
    {
        AppStatusManager m;
        MenuProvider b(fakeMenu(1)), a(fakeMenu(1)), c(fakeMenu(2));
        m.registerSpecialMenuProvider(QStringLiteral("b"), &b);
        m.registerSpecialMenuProvider(QStringLiteral("a"), &a);
        m.registerSpecialMenuProvider(QStringLiteral("c"), &c);
        m.registerSpecialMenuProvider(QStringLiteral("0"), nullptr);
        QCOMPARE(m.getSpecialMenuProvider(fakeMenu(1)), &a);
        QCOMPARE(m.getSpecialMenuProvider(fakeMenu(2)), &c);
        QVERIFY(!m.getSpecialMenuProvider(fakeMenu(3)));
        QVERIFY(!m.getSpecialMenuProvider(QStringLiteral("unknown")));
    }

    void secondProfileProviderIsReportedAndReplaces()
    {
        AppStatusManager m;
        NoProfileMenus first, second;
        QCOMPARE(capture(stderr, [&] { m.registerProfileMenuProvider(&first); }), QByteArray());
        QCOMPARE(m.getProfileMenuProvider(), &first);
        const QByteArray report = capture(stderr, [&] { m.registerProfileMenuProvider(&second); });
        QVERIFY(report.contains("Zal::GApp::AppStatusManager::registerProfileMenuProvider"));
        QVERIFY(report.contains("only one provider possible"));
        QCOMPARE(m.getProfileMenuProvider(), &second);
    }

    void exitQuestionsStopAtFirstRefusal_data()
    {
        QTest::addColumn<bool>("typeAgrees");
        QTest::addColumn<bool>("notifierAgrees");
        QTest::addColumn<bool>("result");
        QTest::addColumn<QStringList>("asked");
        const QStringList all{"1:canExit", "2:canExit", "n:canExit"};
        QTest::newRow("all agree") << true << true << true << all;
        QTest::newRow("type refuses") << false << true << false << QStringList{"1:canExit"};
        QTest::newRow("notifier refuses") << true << false << false << all;
    }
    void exitQuestionsStopAtFirstRefusal()
    {
        QFETCH(bool, typeAgrees);
        QFETCH(bool, notifierAgrees);
        AppStatusManager m;
        addTypes(m, _journal, {2, 1});
        static_cast<JournalStatus *>(m.getStatus(1))->canExit = typeAgrees;
        JournalNotifier notifier(QStringLiteral("n"), &_journal);
        notifier.canExit = notifierAgrees;
        m.registerExitNotifier(&notifier);
        QTEST(m.callCanExitProgram(), "result");
        QTEST(_journal, "asked");
    }

    void exitReachesTypesThenNotifiers()
    {
        AppStatusManager m;
        addTypes(m, _journal, {2, 1});
        JournalNotifier leaving(QStringLiteral("n"), &_journal);
        leaving.onExit = [&] { m.unregisterExitNotifier(&leaving); };
        m.registerExitNotifier(&leaving);
        m.callExitProgram();
        QCOMPARE(_journal, QStringList({"1:exit", "2:exit", "n:exit"}));
        _journal.clear();
        m.callExitProgram(); // the notifier left
        QCOMPARE(_journal, QStringList({"1:exit", "2:exit"}));
        _journal.clear();
        m.callCommitData();
        QCOMPARE(_journal, QStringList({"1:commit", "2:commit"}));
    }

    void lastPopFinishesTheMenuCommand()
    {
        AppStatusManager *m = createMainWindow();
        PlainCommand outer(QStringLiteral("a.outer")), inner(QStringLiteral("a.inner"));
        QSignalSpy finished(_win, &MainWindow::menuCommandFinishedSignal);
        m->pushActiveCommand(&outer);
        m->pushActiveCommand(&inner);
        m->popActiveCommand();
        QCOMPARE(finished.count(), 0);
        m->popActiveCommand();
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished.at(0).at(0).toString(), QStringLiteral("a.outer"));
        m->pushActiveCommand(nullptr);
        m->popActiveCommand();
        QCOMPARE(finished.count(), 2);
        QCOMPARE(finished.at(1).at(0).toString(), QString());
    }

    void requestedExitWaitsForTheLastPop()
    {
        AppStatusManager *m = createMainWindow();
        m->setStatusData(0, new JournalStatus(0, &_journal));
        PlainCommand outer(QStringLiteral("a.outer")), inner(QStringLiteral("a.inner"));
        m->pushActiveCommand(&outer);
        m->pushActiveCommand(&inner);
        _win->setExitRequested();
        m->popActiveCommand();
        QVERIFY(!_win->isExiting());
        QVERIFY(_journal.isEmpty());
        m->popActiveCommand();
        QVERIFY(_win->isExiting());
        QCOMPARE(_journal, QStringList{"0:exit"});
    }

    void signalsRefreshActionsAndCaptionAfterReceivers()
    {
        AppStatusManager *m = createMainWindow();
        auto *status = new JournalStatus(0, &_journal);
        m->setStatusData(0, status);
        QStringList order;
        connect(m, &AppStatusManager::dataChangedSignal, this, [&] {
            order << QStringLiteral("receiver");
            status->selectedName = QStringLiteral("part.gap");
            status->selectedModified = true;
        });
        connect(_win, &MainWindow::setMenuSensitiveSignal, this, [&] { order << QStringLiteral("sensitivity"); });
        m->emitDataChanged(0, 1);
        QCOMPARE(order, QStringList({"receiver", "sensitivity"}));
        QVERIFY(_win->windowTitle().startsWith(QStringLiteral("part.gap(*)")));
        status->selectedModified = false;
        m->emitSelectionChanged(0, SELECTION_CHANGED);
        QVERIFY(_win->windowTitle().startsWith(QStringLiteral("part.gap - ")));
    }

private:
    // A main window on its own status manager, without configuration, in a
    // private environment; both go in cleanup().
    AppStatusManager *createMainWindow()
    {
        _env = std::make_unique<TestUtil::Environment>();
        QStringList args{QStringLiteral("tst_status")};
        _win = new MainWindow("Test", new AppStatusManager, nullptr, args);
        return MainWindow::smgr;
    }

    std::unique_ptr<TestUtil::Environment> _env;
    MainWindow *_win = nullptr;
    QStringList _journal; // what the JournalStatus and JournalNotifier objects were asked
};

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    app.setAttribute(Qt::AA_Use96Dpi, true);
    TestStatus status;
    TestFileOps fileOps;
    int failed = QTest::qExec(&status, argc, argv);
    failed += QTest::qExec(&fileOps, argc, argv);
    return failed;
}
#include "tst_status.moc"
