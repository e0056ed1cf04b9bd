#include "gapp_init.h"
#include "gapp_main_window.h"
#include "gapp_state_record.h"
#include "gapp_status_data.h"
#include "gapp_status_mgr.h"
#include "gapp_undo_check.h"
#include "test_util.h"
#include "zal_dialogs.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_record_manager.h"
#include "zal_script_object.h"
#include <QtTest>
#include <functional>
#include <map>
#include <memory>

using namespace Zal;
using namespace Zal::GApp;

Q_DECLARE_METATYPE(Zal::Value)

namespace {

// A script object whose tokens the test sets: `listed` is what the token
// interface lists, `data` the values by name (element i of an indexed token
// or indexed object at position i; a plain token at 0).
class TokenObject : public ScriptObject, public TokenInterface
{
public:
    explicit TokenObject(const QString &name, ScriptObject *parent = nullptr) : ScriptObject(name, parent) {}

    void set(const QString &name, const Value &value) { setIndexed(name, {value}, false); }
    void setIndexed(const QString &name, const std::vector<Value> &values, bool indexedToken = true)
    {
        if (!data.count(name))
            listed.push_back(indexedToken ? name + QStringLiteral("[]") : name);
        data[name] = values;
    }

    std::vector<QString> getTokens() const override
    {
        ++reads;
        return listed;
    }
    Value getTokenValue(const QString &name, const IndexIdentifier &index) const override
    {
        const auto it = data.find(name);
        const size_t i = index.isNoIndex() ? 0 : size_t(index.getIndex());
        return it != data.end() && i < it->second.size() ? it->second[i] : Value();
    }
    unsigned int getTokenIndexCount(const QString &name) const override
    {
        const auto it = data.find(name);
        return it == data.end() ? 0 : unsigned(it->second.size());
    }
    QString getCategoryName() const override { return category; }
    StageIdentifier getStageIdentifier() const override { return stage; }
    TokenInterface *getTokenInterface() override { return this; }
    bool isIndexed() const override { return indexed; }
    unsigned int getIndexCount() const override { return indexCount; }
    bool getIndexIdentifier(unsigned int i, IndexIdentifier *id) const override
    {
        if (int(i) == missingId)
            return false;
        *id = IndexIdentifier(int(i));
        return true;
    }

    std::vector<QString> listed;
    std::map<QString, std::vector<Value>> data;
    QString category;
    StageIdentifier stage;
    bool indexed = false;
    unsigned int indexCount = 0;
    int missingId = -1;
    mutable int reads = 0;
};

// An undo history of closures; every record advances the next record id.
class TestRecords : public RecordManagerBase
{
public:
    bool isBusy() const override { return busy; }
    void clearHistory() override
    {
        steps.clear();
        pos = 0;
    }
    bool isUndoRecordingOn() const override { return recording; }
    void undo() override
    {
        ++undos;
        lockedDuringUndo = MainWindow::main_win && MainWindow::main_win->isDrawingLocked();
        if (pos > 0)
            steps[--pos].first();
    }
    void redo() override
    {
        ++redos;
        if (pos < steps.size())
            steps[pos++].second();
    }
    void record(std::function<void()> undoStep, std::function<void()> redoStep)
    {
        steps.resize(pos);
        steps.emplace_back(std::move(undoStep), std::move(redoStep));
        ++pos;
        ++_next_record_id;
    }

    std::vector<std::pair<std::function<void()>, std::function<void()>>> steps;
    size_t pos = 0;
    bool busy = false, recording = true, lockedDuringUndo = false;
    int undos = 0, redos = 0;
};

// A script command that runs the test's action and declares itself undoable.
class UndoableCommand : public TestUtil::StubCommand
{
public:
    explicit UndoableCommand(const QString &name) : StubCommand(name) {}
    bool isUndoRedoPossible() const override { return undoable; }
    bool executeScript(QString *result, QString *, ErrorLog *) override
    {
        ++scriptRuns;
        *result = QStringLiteral("done");
        return action ? action() : true;
    }
    using Command::executeScript;

    std::function<bool()> action;
    bool undoable = true;
    int scriptRuns = 0;
};

// The host side of a checked command: a main window with two application
// types, a record manager and a script object tree with one part.
struct Host
{
    TestUtil::Environment env{"<layout><menusection><menubar name='main'/></menusection></layout>"};
    GTools::ScriptedDialogs dialogs;
    QStringList args{QStringLiteral("prog")};
    TestRecords records;
    MainWindow *window = nullptr;
    unsigned int measure = 0, inspect = 0;
    TokenObject app{QStringLiteral("app")};
    TokenObject *part = new TokenObject(QStringLiteral("part"), &app);
    QByteArray printed; // by the last run
    bool ok = false;    // what the last run's execute answered

    Host()
    {
        auto *smgr = new AppStatusManager;
        measure = smgr->getUniqueId(QStringLiteral("measure"));
        inspect = smgr->getUniqueId(QStringLiteral("inspect"));
        smgr->setStatusData(measure, new TestUtil::StubStatus(measure));
        smgr->setStatusData(inspect, new TestUtil::StubStatus(inspect));
        window = new MainWindow("undo check test", smgr, InitLibrary(), args);
        smgr->setAppMode(inspect);
        part->set(QStringLiteral("x"), Value(1.0));
        ScriptObject::setApplicationScriptObject(&app);
        MainWindow::debug_undo = true;
    }
    ~Host()
    {
        MainWindow::debug_undo = false;
        MainWindow::debug_commands = false;
        ScriptObject::setApplicationScriptObject(nullptr);
        delete window;
    }

    // A command that sets x and records a step whose undo and redo
    // put back what `undoTo` and `redoTo` say.
    void setX(UndoableCommand &cmd, double to, std::function<double(double)> undoTo,
              std::function<double(double)> redoTo = nullptr)
    {
        cmd.action = [this, to, undoTo, redoTo] {
            const double old = x();
            part->set(QStringLiteral("x"), Value(to));
            records.record([=] { part->set(QStringLiteral("x"), Value(undoTo(old))); },
                           [=] { part->set(QStringLiteral("x"), Value(redoTo ? redoTo(to) : to)); });
            return true;
        };
    }
    double x() const { return part->data.at(QStringLiteral("x"))[0].getDouble(); }

    // Runs the command through the script path; answers the ProgError's message (empty when none).
    QString run(UndoableCommand &cmd)
    {
        QString message;
        ok = false;
        printed = TestUtil::captureStdout([&] {
            QString code;
            ErrorLog log(false);
            Variant result;
            try {
                ok = window->execute(&cmd, QString(), &result, &code, &log, true);
            } catch (const ProgError &e) {
                message = e.getMessage();
            }
        });
        return message;
    }
};

QStringList differencesOf(const QString &command, TokenObject &a, TokenObject &b)
{
    QStringList differences;
    ObjectStateRecord(&a).compare(command, ObjectStateRecord(&b), &differences);
    return differences;
}

std::vector<QString> keysOf(const ObjectStateRecord &record)
{
    std::vector<QString> keys;
    for (const auto &token : record.getTokens())
        keys.push_back(token.first);
    return keys;
}

// Runs fn, which must throw a ProgError, and answers its message.
template <class F> QString progErrorOf(F fn)
{
    try {
        fn();
    } catch (const ProgError &e) {
        return e.getMessage();
    }
    return QStringLiteral("<nothing thrown>");
}

using Change = std::function<void(TokenObject &)>;
using Step = std::function<double(double)>;
using HostSetup = std::function<void(Host &, UndoableCommand &)>;

} // namespace

Q_DECLARE_METATYPE(Change)
Q_DECLARE_METATYPE(Step)
Q_DECLARE_METATYPE(HostSetup)

class TestDebug : public QObject
{
    Q_OBJECT

private slots:
    // --- comparing single values ------------------------------------------------------

    void tokenValues_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("key");
        QTest::addColumn<Value>("a");
        QTest::addColumn<Value>("b");
        QTest::addColumn<QString>("difference"); // empty: equal

        const QString plain = QStringLiteral("test.plain");
        const QString props = QStringLiteral("cad.set_properties");
        QTest::newRow("equal doubles") << plain << "d" << Value(1.5) << Value(1.5) << "";
        QTest::newRow("exact doubles differ")
            << plain << "d" << Value(1.5) << Value(2.5) << "Value of token 'd' differs (1.5 != 2.5, difference = 1)";
        QTest::newRow("texts differ in quotes")
            << plain << "s" << Value("a") << Value("b") << "Value of token 's' differs (\"a\" != \"b\")";
        QTest::newRow("equal ints") << plain << "i" << Value(3) << Value(3) << "";
        QTest::newRow("ints differ")
            << plain << "i" << Value(3) << Value(4) << "Value of token 'i' differs (\"3\" != \"4\")";
        QTest::newRow("value types differ")
            << plain << "v" << Value(1) << Value(1.0) << "Value-type of token 'v' differs";
        QTest::newRow("properties: last digit noise") << props << "d" << Value(0.30000001) << Value(0.3) << "";
        QTest::newRow("properties: near zero with epsilon") << props << "d" << Value(5e-8) << Value(0.0) << "";
        QTest::newRow("properties: differ as string")
            << props << "d" << Value(1.5) << Value(2.5)
            << "Value of token 'd' differs (1.5 != 2.5, difference = 1, compared as string (1.5 != 2.5))";
        QTest::newRow("properties: near zero beyond epsilon")
            << props << "d" << Value(0.0) << Value(0.5)
            << "Value of token 'd' differs (0 != 0.5, difference = 0.5, compared with epsilon = 1e-07)";
        QTest::newRow("normal within epsilon") << plain << "nx[0]" << Value(0.5) << Value(0.50000015) << "";
        QTest::newRow("normal with two-digit index") << plain << "nz[12]" << Value(0.5) << Value(0.50000015) << "";
        QTest::newRow("normal beyond epsilon")
            << plain << "ny[3]" << Value(0.5) << Value(0.75)
            << "Value of token 'ny[3]' differs (0.5 != 0.75, difference = 0.25, compared with epsilon = 1.8e-07)";
        QTest::newRow("normal after deleting points")
            << "cad.delete_selected_points" << "nx[0]" << Value(0.5) << Value(-7.0) << "";
        QTest::newRow("normal after deleting triangles")
            << "cad.delete_selected_triangles" << "nz[0]" << Value(1.0) << Value(0.0) << "";
        QTest::newRow("not a normal key is exact")
            << plain << "nx" << Value(0.5) << Value(0.50000015)
            << "Value of token 'nx' differs (0.5 != 0.500000149999999977, difference = 1.4999999997655777e-07)";
        QTest::newRow("texts under deleting points still compared")
            << "cad.delete_selected_points" << "nx[0]" << Value("a") << Value("b")
            << "Value of token 'nx[0]' differs (\"a\" != \"b\")";
    }

    void tokenValues()
    {
        QFETCH(QString, command);
        QFETCH(QString, key);
        QFETCH(Value, a);
        QFETCH(Value, b);
        QFETCH(QString, difference);
        // The key is stored as given: an indexed key through an indexed token.
        TokenObject oa(QStringLiteral("o")), ob(QStringLiteral("o"));
        const int bracket = key.indexOf(QLatin1Char('['));
        if (bracket > 0) {
            const int index = key.mid(bracket + 1, key.size() - bracket - 2).toInt();
            std::vector<Value> va(size_t(index) + 1, Value(0.0)), vb(size_t(index) + 1, Value(0.0));
            va.back() = a;
            vb.back() = b;
            oa.setIndexed(key.left(bracket), va);
            ob.setIndexed(key.left(bracket), vb);
        } else {
            oa.set(key, a);
            ob.set(key, b);
        }
        QCOMPARE(differencesOf(command, oa, ob), difference.isEmpty() ? QStringList() : QStringList{difference});
    }

    void skippedTokensNeverDiffer()
    {
        TokenObject a(QStringLiteral("o")), b(QStringLiteral("o"));
        for (const char *name : {"selected", "col_r", "col_g", "col_b"}) {
            a.set(QString::fromLatin1(name), Value(true));
            b.set(QString::fromLatin1(name), Value(0.25));
        }
        a.set(QStringLiteral("x"), Value(1));
        b.set(QStringLiteral("x"), Value(1));
        QCOMPARE(ObjectStateRecord(&a).getTokens().size(), size_t(1));
        QCOMPARE(differencesOf(QStringLiteral("test.select"), a, b), QStringList());
    }

    void objectShapeDifferences_data()
    {
        QTest::addColumn<Change>("change");
        QTest::addColumn<QStringList>("differences");
        QTest::newRow("category") << Change([](TokenObject &o) { o.category = QStringLiteral("planes"); })
                                  << QStringList{"Object name differs ('o' != 'category 'planes'')"};
        QTest::newRow("stage") << Change([](TokenObject &o) { o.stage = StageIdentifier(4); })
                               << QStringList{"Object stage_id differs (-1 != 4)"};
        // A changed count hides the changed values behind it.
        QTest::newRow("token count") << Change([](TokenObject &o) {
            o.set(QStringLiteral("x"), Value(9));
            o.set(QStringLiteral("z"), Value(3));
        }) << QStringList{"Number of tokens differs (2 != 3)"};
        QTest::newRow("all three") << Change([](TokenObject &o) {
            o.category = QStringLiteral("c");
            o.stage = StageIdentifier(0);
            o.set(QStringLiteral("z"), Value(3));
        }) << QStringList{"Object name differs ('o' != 'category 'c'')", "Object stage_id differs (-1 != 0)",
                          "Number of tokens differs (2 != 3)"};
        QTest::newRow("two values") << Change([](TokenObject &o) {
            o.set(QStringLiteral("x"), Value(2));
            o.set(QStringLiteral("y"), Value("b"));
        }) << QStringList{"Value of token 'x' differs (\"1\" != \"2\")", "Value of token 'y' differs (\"a\" != \"b\")"};
    }

    void objectShapeDifferences()
    {
        QFETCH(Change, change);
        QFETCH(QStringList, differences);
        TokenObject a(QStringLiteral("o")), b(QStringLiteral("o"));
        for (TokenObject *o : {&a, &b}) {
            o->set(QStringLiteral("x"), Value(1));
            o->set(QStringLiteral("y"), Value("a"));
        }
        change(b);
        QCOMPARE(differencesOf(QStringLiteral("test.cmd"), a, b), differences);
    }

    void firstDifferentKeyEndsTheComparison()
    {
        TokenObject a(QStringLiteral("o")), b(QStringLiteral("o"));
        for (const char *key : {"x", "y", "z"})
            a.set(QLatin1String(key), Value(1));
        b.set(QStringLiteral("x"), Value(2));
        b.set(QStringLiteral("w"), Value(1));
        b.set(QStringLiteral("z"), Value(2));
        QCOMPARE(differencesOf(QStringLiteral("test.cmd"), a, b),
                 QStringList({"Value of token 'x' differs (\"1\" != \"2\")", "Key of token #1 differs ('y' != 'w')"}));
    }

    // --- capturing objects and application states ---------------------------------------

    void tokenKeysOfIndexedTokensAndObjects()
    {
        TokenObject plain(QStringLiteral("plain"));
        plain.set(QStringLiteral("count"), Value(2));
        plain.setIndexed(QStringLiteral("nx"), {Value(0.5), Value(0.25)});
        QCOMPARE(keysOf(ObjectStateRecord(&plain)), std::vector<QString>({"count", "nx[0]", "nx[1]"}));
        // On an indexed object every token is stored per element, element first.
        TokenObject points(QStringLiteral("points"));
        points.indexed = true;
        points.indexCount = 2;
        points.setIndexed(QStringLiteral("x"), {Value(1.0), Value(2.0)});
        points.setIndexed(QStringLiteral("y"), {Value(3.0), Value(4.0)});
        const ObjectStateRecord record(&points);
        QCOMPARE(keysOf(record), std::vector<QString>({"0:x", "0:y", "1:x", "1:y"}));
        QCOMPARE(record.getTokens()[2].second, Value(2.0));
    }

    void capturingFailures_data()
    {
        QTest::addColumn<Change>("setup");
        QTest::addColumn<QString>("message");
        QTest::newRow("unparsable token") << Change([](TokenObject &o) { o.listed.push_back(QStringLiteral("a b")); })
                                          << "Cannot parse token 'a b'";
        QTest::newRow("unknown plain token") << Change([](TokenObject &o) { o.set(QStringLiteral("t"), Value()); })
                                             << "Token 't' is 'UNKNOWN' for script object 'obj'";
        QTest::newRow("unknown element of an indexed token")
            << Change([](TokenObject &o) { o.setIndexed(QStringLiteral("t"), {Value(1), Value()}); })
            << "Indexed token 't' is 'UNKNOWN' for script object 'obj' (index 1)";
        QTest::newRow("element without identifier") << Change([](TokenObject &o) {
            o.indexed = true;
            o.indexCount = 3;
            o.missingId = 2;
            o.setIndexed(QStringLiteral("t"), {Value(1), Value(2), Value(3)});
        }) << "No index identifier for indexed script object 'obj' (index 2 of 3)";
        QTest::newRow("plain token on an indexed object") << Change([](TokenObject &o) {
            o.indexed = true;
            o.indexCount = 1;
            o.set(QStringLiteral("t"), Value(1));
        }) << "Token 't' is not indexed for indexed script object 'obj'";
        QTest::newRow("unknown element of an indexed object") << Change([](TokenObject &o) {
            o.indexed = true;
            o.indexCount = 2;
            o.category = QStringLiteral("points");
            o.setIndexed(QStringLiteral("t"), {Value(1)});
        }) << "Token 't' is 'UNKNOWN' for indexed script object 'category 'points'' (index 1 of 2)";
    }

    void capturingFailures()
    {
        QFETCH(Change, setup);
        QFETCH(QString, message);
        TokenObject o(QStringLiteral("obj"));
        setup(o);
        QString function;
        try {
            ObjectStateRecord record(&o);
        } catch (const ProgError &e) {
            QCOMPARE(e.getMessage(), message);
            function = e.getFunction();
        }
        QCOMPARE(function, QStringLiteral("Zal::GApp::ObjectStateRecord::storeTokens"));
    }

    void noApplicationObjectThrows()
    {
        ScriptObject::setApplicationScriptObject(nullptr);
        QCOMPARE(progErrorOf([] { ApplicationStateRecord record(QStringLiteral("before_command")); }),
                 QStringLiteral("No application script object"));
    }

    void recordHoldsObjectsOfEveryApplicationType()
    {
        // Each application type has its subtree; a category object stands for
        // a kind of data and an indexed one for its elements.
        TokenObject app(QStringLiteral("app"));
        auto *planes = new TokenObject(QStringLiteral("planes"), new TokenObject(QStringLiteral("measure"), &app));
        planes->category = QStringLiteral("plane");
        planes->stage = StageIdentifier(2);
        planes->set(QStringLiteral("count"), Value(1u));
        auto *inspect = new TokenObject(QStringLiteral("inspect"), &app);
        auto *deviations = new TokenObject(QStringLiteral("deviations"), inspect);
        deviations->indexed = true;
        deviations->indexCount = 2;
        deviations->setIndexed(QStringLiteral("dev"), {Value(0.1), Value(0.2)});
        new ScriptObject(QStringLiteral("settings"), inspect);
        ScriptObject::setApplicationScriptObject(&app);

        const ApplicationStateRecord record(QStringLiteral("before_command"));
        ScriptObject::setApplicationScriptObject(nullptr);
        QStringList keys;
        for (const auto &entry : record.getObjects())
            keys << entry.first + QLatin1Char('=') + entry.second.getName();
        QCOMPARE(keys, QStringList({"app=app", "app.inspect=inspect", "app.inspect.deviations=deviations",
                                    "app.inspect.settings=settings", "app.measure=measure",
                                    "app.measure.planes=category 'plane'"}));
        QCOMPARE(record.getObjects().at(QStringLiteral("app.measure.planes")).getStageId(), StageIdentifier(2));
        QCOMPARE(record.getObjects().at(QStringLiteral("app.inspect.deviations")).getTokens().size(), size_t(2));
        QVERIFY(record.getObjects().at(QStringLiteral("app.inspect.settings")).getTokens().empty());
    }

    void objectsOnlyOnOneSide()
    {
        TokenObject app(QStringLiteral("app"));
        auto *kept = new TokenObject(QStringLiteral("kept"), &app);
        kept->set(QStringLiteral("x"), Value(1));
        auto *gone = new TokenObject(QStringLiteral("gone"), &app);
        gone->category = QStringLiteral("sphere");
        ScriptObject::setApplicationScriptObject(&app);
        const ApplicationStateRecord before(QStringLiteral("before_command"));
        delete gone;
        new TokenObject(QStringLiteral("new"), &app);
        kept->set(QStringLiteral("x"), Value(2));
        const ApplicationStateRecord after(QStringLiteral("after_undo"));
        ScriptObject::setApplicationScriptObject(nullptr);

        QStringList differences;
        QVERIFY(!before.compare(QStringLiteral("test.cmd"), after, &differences));
        // Objects of the first record are named by their name, the others by their key.
        QCOMPARE(differences, QStringList({"Only in 'before_command': Object 'category 'sphere''",
                                           "Object 'kept': Value of token 'x' differs (\"1\" != \"2\")",
                                           "Only in 'after_undo': Object 'app.new'"}));
        differences.clear();
        QVERIFY(before.compare(QStringLiteral("test.cmd"), before, &differences));
        QVERIFY(differences.isEmpty());
    }

    // --- the undo history and the check around execution ---------------------------------

    void undoHistory_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<unsigned int>("before");
        QTest::addColumn<unsigned int>("after");
        QTest::addColumn<QString>("error"); // empty: answers false without throwing, or true for one record
        const QString more = QStringLiteral("DEBUG_UNDO: More than one undo record created by command: ");
        const QString none = QStringLiteral("DEBUG_UNDO: No undo record created by command: ");
        QTest::newRow("one record") << "cad.move" << 7u << 8u << "";
        QTest::newRow("two records") << "cad.move" << 7u << 9u << more + "cad.move";
        QTest::newRow("none") << "cad.move" << 7u << 7u << none + "cad.move";
        for (const char *name : {"selection3d.select_single_point", "selection3d.select_triangle",
                                 "selection3d.select_boundary", "selection3d.deselect_single_point",
                                 "selection3d.deselect_triangle", "selection3d.deselect_boundary"})
            QTest::newRow(name) << QString::fromLatin1(name) << 3u << 3u << "";
        QTest::newRow("selection with two records")
            << "selection3d.select_triangle" << 3u << 5u << more + "selection3d.select_triangle";
        QTest::newRow("similar name is not exempt")
            << "selection3d.select_triangles" << 3u << 3u << none + "selection3d.select_triangles";
    }

    void undoHistory()
    {
        QFETCH(QString, command);
        QFETCH(unsigned int, before);
        QFETCH(unsigned int, after);
        QFETCH(QString, error);
        if (error.isEmpty())
            QCOMPARE(DebugUndoRedoTools::checkUndoHistory(command, before, after), after == before + 1);
        else
            QCOMPARE(progErrorOf([&] { DebugUndoRedoTools::checkUndoHistory(command, before, after); }), error);
    }

    void restoringCommandPassesSilently()
    {
        Host host;
        UndoableCommand cmd(QStringLiteral("cad.move"));
        host.setX(cmd, 5.0, [](double old) { return old; });
        QSignalSpy changed(MainWindow::smgr, &AppStatusManager::dataChangedSignal);
        QCOMPARE(host.run(cmd), QString());
        QVERIFY(host.ok);
        QCOMPARE(host.printed, QByteArray());
        QCOMPARE(host.x(), 5.0); // redone: the state after the command
        QCOMPARE(host.records.undos, 1);
        QCOMPARE(host.records.redos, 1);
        QVERIFY(host.records.lockedDuringUndo);
        QVERIFY(!host.window->isDrawingLocked());
        QCOMPARE(changed.count(), 2);
        QCOMPARE(changed.at(0).at(0).toUInt(), host.inspect);
        QCOMPARE(changed.at(0).at(1).toUInt(), 0u);
        QVERIFY(host.dialogs.requests().empty());
        // Command tracing names the undo and redo.
        MainWindow::debug_commands = true;
        host.run(cmd);
        QVERIFY2(host.printed.contains("\nexecuting undo+redo for cad.move\n"), host.printed.constData());
    }

    void wrongUndoOrRedoIsReported_data()
    {
        QTest::addColumn<Step>("undoTo");
        QTest::addColumn<Step>("redoTo");
        QTest::addColumn<double>("x"); // after the check
        QTest::addColumn<QByteArray>("printed");
        QTest::newRow("undo") << Step([](double old) { return old + 0.5; }) << Step() << 5.0
                              << QByteArray("1 differences comparing application state 'before_command' to "
                                            "'after_undo':\n* Object 'part': Value of token 'x' differs "
                                            "(1 != 1.5, difference = 0.5)\n");
        QTest::newRow("redo") << Step([](double old) { return old; }) << Step([](double to) { return to * 2; }) << 10.0
                              << QByteArray("1 differences comparing application state 'before_undo+redo' to "
                                            "'after_undo+redo':\n* Object 'part': Value of token 'x' differs "
                                            "(5 != 10, difference = 5)\n");
    }

    void wrongUndoOrRedoIsReported()
    {
        QFETCH(Step, undoTo);
        QFETCH(Step, redoTo);
        QFETCH(double, x);
        QFETCH(QByteArray, printed);
        Host host;
        UndoableCommand cmd(QStringLiteral("cad.scale"));
        host.setX(cmd, 5.0, undoTo, redoTo);
        new TokenObject(QStringLiteral("other"), &host.app); // unchanged, so not reported
        QCOMPARE(host.run(cmd), QStringLiteral("DEBUG_UNDO: 1 errors found after executing command: cad.scale"));
        QCOMPARE(host.printed, "command: cad.scale:\n" + printed);
        // Undo and redo stay done, and execution is back at rest.
        QCOMPARE(host.x(), x);
        QVERIFY(!host.window->isScriptCommandRunning());
        QVERIFY(!host.window->isDrawingLocked());
        QCOMPARE(host.window->getStatusText(), QString());
        QVERIFY(host.dialogs.requests().empty());
    }

    void twoRecordsFailBeforeAnyUndo()
    {
        Host host;
        UndoableCommand cmd(QStringLiteral("cad.twice"));
        cmd.action = [&] {
            host.records.record([] {}, [] {});
            host.records.record([] {}, [] {});
            return true;
        };
        QCOMPARE(host.run(cmd), QStringLiteral("DEBUG_UNDO: More than one undo record created by command: cad.twice"));
        QCOMPARE(host.records.undos, 0);
        QVERIFY(!host.window->isScriptCommandRunning());
    }

    void commandsThatRecordNothing()
    {
        Host host;
        UndoableCommand select(QStringLiteral("selection3d.select_triangle"));
        QCOMPARE(host.run(select), QString());
        QVERIFY(host.ok);
        QCOMPARE(host.records.undos, 0);
        UndoableCommand other(QStringLiteral("cad.nothing"));
        QCOMPARE(host.run(other), QStringLiteral("DEBUG_UNDO: No undo record created by command: cad.nothing"));
        QCOMPARE(other.scriptRuns, 1);
        QCOMPARE(host.records.undos, 0);
    }

    void noCheckWithout_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<HostSetup>("setup");
        QTest::newRow("debug switch off") << "cad.scale" << HostSetup([](Host &, UndoableCommand &) {
            MainWindow::debug_undo = false;
        });
        QTest::newRow("manager busy") << "cad.scale" << HostSetup([](Host &h, auto &) { h.records.busy = true; });
        QTest::newRow("undo recording off")
            << "cad.scale" << HostSetup([](Host &h, auto &) { h.records.recording = false; });
        QTest::newRow("command not undoable")
            << "cad.scale" << HostSetup([](auto &, UndoableCommand &c) { c.undoable = false; });
        QTest::newRow("exempt name") << "sys.undo" << HostSetup([](auto &, auto &) {});
        QTest::newRow("exempt prefix") << "view.zoom" << HostSetup([](auto &, auto &) {});
    }

    void noCheckWithout()
    {
        QFETCH(QString, command);
        QFETCH(HostSetup, setup);
        Host host;
        UndoableCommand cmd(command);
        host.setX(cmd, 5.0, [](double old) { return old + 1; });
        setup(host, cmd);
        // Without a check there is nothing to record: no object is read at all.
        ScriptObject::setApplicationScriptObject(nullptr);
        QCOMPARE(host.run(cmd), QString());
        QVERIFY(host.ok);
        QCOMPARE(cmd.scriptRuns, 1);
        QCOMPARE(host.records.undos, 0);
        QCOMPARE(host.part->reads, 0);
    }

    void failedCommandIsNotChecked()
    {
        Host host;
        UndoableCommand cmd(QStringLiteral("cad.fail"));
        cmd.action = [] { return false; };
        QCOMPARE(host.run(cmd), QString());
        QVERIFY(!host.ok);
        QCOMPARE(host.records.undos, 0);
        QCOMPARE(host.part->reads, 1); // only the state before the command
    }
};

QTEST_MAIN(TestDebug)
#include "tst_debug.moc"
