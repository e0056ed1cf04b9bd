#include "zal_cfg.h"
#include "zal_cfg_array.h"
#include "zal_cfg_file.h"
#include "zal_cfg_profile.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_stream.h"
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <map>
#include <memory>

using namespace Zal;

namespace {

const double INF = std::numeric_limits<double>::infinity();
const int INT_MIN_ = std::numeric_limits<int>::min();
const int INT_MAX_ = std::numeric_limits<int>::max();

std::unique_ptr<CfgNode> makeTree()
{
    auto root = std::make_unique<CfgNode>("App", "general");
    root->addBool("flag", "a flag", true);
    root->addInt("count", "a count", 0, 100, 10, 1);
    root->addUInt("big", "a big one", 0, 4294967295u, 0, 1, CfgItem::Hidden);
    root->addDbl("ratio", "a ratio", -1.0, 1.0, 0.5, 0.1, 1, CfgItem::Expert | CfgItem::Risky);
    root->addDbl("wide", "any double", -INF, INF, 0.0, 1.0, 3);
    root->addUnit("length", "a length", "mm", 0.0, 1000.0, 25.4, 0.1, 2);
    root->addList("choice", "a choice", {"a", "b", "c"}, 0);
    root->addFileName("path", "a path", "x", FM_OPEN_FILE);
    root->addNode("sub", "a child");
    root->addArray<QString>("sub/names", "names", QString(""), 0, false, CfgItem::Hidden);
    root->addArray<QString>("sub/pair", "a fixed pair", QString(), 2, true);
    root->addNode("sub/deep", "a grandchild");
    root->addInt("sub/deep/level", "a deep int", -5, 5, -5, 1);
    return root;
}

// Values that differ from every default of makeTree().
void setOtherValues(CfgNode &root)
{
    root.getBool("flag")->setValue(false);
    root.getInt("count")->setValue(42);
    root.getUInt("big")->setValue(4000000000u);
    root.getDbl("ratio")->setValue(-0.25);
    root.getDbl("wide")->setValue(0.1);
    root.getUnit("length")->setValue(3.5);
    root.getList("choice")->setValue(2);
    root.getFileName("path")->setValue("/tmp/some \"quoted\" dir\\");
    root.getArray<QString>("sub/names")->setArray({"n1", QString(), "", "two words"});
    root.getArray<QString>("sub/pair")->setArray({"left", "right"});
    root.getInt("sub/deep/level")->setValue(3);
}

// Every value of a tree as text, to compare whole trees.
QString describe(const CfgNode &root)
{
    QString text;
    QTextStream out(&text);
    root.save(out);
    out.flush();
    return text;
}
bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}
QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

template<class F>
QString progErrorMessage(F f, QString *function = nullptr, QString *file = nullptr)
{
    try {
        f();
    } catch (const ProgError &e) {
        if (function) *function = e.getFunction();
        if (file) *file = e.getFile();
        return e.getMessage();
    }
    return QString();
}
quint64 bits(double value)
{
    quint64 b = 0;
    std::memcpy(&b, &value, sizeof b);
    return b;
}

// Big-endian words, to build stream files by hand.
QByteArray words(std::initializer_list<quint32> values, const QString &text = QString())
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::BigEndian);
    for (quint32 v : values)
        out << v;
    if (!text.isNull())
        out << text;
    return bytes;
}
// The stream header: magic, layout, type name, file version.
QByteArray streamHeader(const QString &type = "T", quint32 magic = 0x5A424C4B, quint32 layout = 1)
{
    return words({magic, layout}, type) + words({3});
}

// Counts its updates; may delete another resource while being updated.
struct CountingResource : Cfg::Resource
{
    explicit CountingResource(const QString &name, CountingResource **victim = nullptr)
        : Cfg::Resource(name, "counting"), victim(victim) {}
    void update() override
    {
        ++updates;
        if (victim && *victim) {
            delete *victim;
            *victim = nullptr;
        }
    }
    int updates = 0;
    CountingResource **victim;
};

} // namespace

class TestHostCfg : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> _dir;

    QString path(const QString &name) const { return _dir->filePath(name); }
    QString levelDir(Cfg::Level level) const
    {
        return path(level == 0 ? "software/config" : level == 1 ? "shared" : "user");
    }
    // Saves a tree and loads the file into a fresh one.
    std::unique_ptr<CfgNode> reread(const CfgNode &written)
    {
        auto read = makeTree();
        const bool ok = written.save(path("rt.cfg")) && read->load(path("rt.cfg"));
        return ok ? std::move(read) : nullptr;
    }
    void createAtLevels(const QString &levels, const QString &name)
    {
        for (const QChar level : levels) {
            QVERIFY(QDir().mkpath(levelDir(level.digitValue())));
            QVERIFY(writeFile(levelDir(level.digitValue()) + "/" + name, "x"));
        }
    }

private slots:
    void init()
    {
        _dir = std::make_unique<QTemporaryDir>();
        QVERIFY(_dir->isValid());
        qputenv("ZAL_SOFTWARE_DIR", path("software").toLocal8Bit());
        qputenv("ZAL_SHARED_CONFIG_DIR", path("shared").toLocal8Bit());
        qputenv("ZAL_USER_CONFIG_DIR", path("user").toLocal8Bit());
        ResourceContainer::setSystemLevelSkippedForResources({});
        Cfg::Profile::clear();
        Cfg::AdministrationProfile::clear();
    }

    // --- configuration tree ---
    void itemsKeepOrderAndAreFoundByPath()
    {
        auto root = makeTree();
        QStringList keys;
        for (const auto &entry : root->getItems())
            keys << entry.first.toQString();
        QCOMPARE(keys, QString("flag count big ratio wide length choice path sub").split(' '));
        QCOMPARE(root->getNode("sub")->getItems().size(), size_t(3));
        QCOMPARE(root->getItem("sub/deep/level"), root->getNode("sub")->getItem("deep/level"));
        // Null for missing keys, paths through items and items of other types.
        for (const char *key : {"nothing", "flag/x", "sub/", "sub/deep/none"})
            QVERIFY(!root->getItem(key));
        QVERIFY(!root->getBool("count") && !root->getUInt("count") && !root->getNode("flag"));
        QVERIFY(!root->getUnit("ratio") && !root->getFileName("choice") && !root->getList("sub"));
        // A unit is a double with a label.
        QCOMPARE(root->getDbl("length"), root->getUnit("length"));
    }

    void addWithBadKeyThrowsAndAddsNothing_data()
    {
        QTest::addColumn<QString>("key"); QTest::addColumn<QString>("message");
        QTest::newRow("empty") << "" << "Invalid key ''";
        QTest::newRow("leading slash") << "/x" << "Invalid key '/x'";
        QTest::newRow("empty part") << "sub//x" << "Invalid key 'sub//x'";
        QTest::newRow("trailing slash") << "sub/" << "Invalid key 'sub/'";
        QTest::newRow("missing node") << "none/x" << "Missing node 'none'";
        QTest::newRow("item is no node") << "flag/x" << "Missing node 'flag'";
        QTest::newRow("duplicate") << "count" << "Duplicate key 'count'";
        QTest::newRow("duplicate below") << "sub/deep/level" << "Duplicate key 'sub/deep/level'";
    }
    void addWithBadKeyThrowsAndAddsNothing()
    {
        QFETCH(QString, key); QFETCH(QString, message);
        auto root = makeTree();
        const QString before = describe(*root);
        QString function;
        QCOMPARE(progErrorMessage([&] { root->addBool(ZalString(key), "d", false); }, &function), message);
        QCOMPARE(function, QString("Zal::CfgNode::addItem"));
        QCOMPARE(describe(*root), before);
    }

    void everyItemTypeRoundTripsThroughAFile()
    {
        auto written = makeTree();
        setOtherValues(*written);
        auto read = reread(*written);
        QVERIFY(read);
        // Human-readable, one item a line, paths relative to the node.
        const QString text = QString::fromUtf8(readFile(path("rt.cfg")));
        QVERIFY(text.startsWith("ZalConfig 1\n"));
        QVERIFY(text.contains("\nsub/names array 4 \"n1\" null \"\" \"two words\"\n"));
        QCOMPARE(describe(*read), describe(*written));
        QCOMPARE(read->getUInt("big")->getValue(), 4000000000u);
        QCOMPARE(read->getFileName("path")->getValue(), QString("/tmp/some \"quoted\" dir\\"));
        const auto &names = read->getArray<QString>("sub/names")->getValues();
        QVERIFY(names[1].isNull() && !names[2].isNull());
        QCOMPARE(read->getArray<QString>("sub/names")->getLoadedValues(), names);
    }

    void doublesRoundTripBitForBit()
    {
        auto written = makeTree();
        for (double value : {0.1, 1.0 / 3.0, 1e-300, -0.0, std::numeric_limits<double>::denorm_min(),
                             std::numeric_limits<double>::lowest(), INF, -INF}) {
            written->getDbl("wide")->setValue(value);
            auto read = reread(*written);
            QVERIFY(read);
            QCOMPARE(bits(read->getDbl("wide")->getValue()), bits(value));
        }
    }

    void stringsRoundTripExactly_data()
    {
        QTest::addColumn<QString>("value");
        QTest::newRow("null") << QString();
        QTest::newRow("empty") << QString("");
        QTest::newRow("the word null") << QString("null");
        QTest::newRow("quotes and backslashes") << QString("a \"b\" \\c\\ \\u0041");
        QTest::newRow("line breaks and tabs") << QString("one\ntwo\r\nthree\tfour");
        QTest::newRow("controls") << QString(QChar(1)) + QChar(0x1f) + QChar(0x7f) + QChar(0x85);
        QTest::newRow("non-Latin") << QString::fromUtf8("Größe € 測定");
        QTest::newRow("surrogate pair") << QString::fromUtf8("\xF0\x9F\x98\x80");
        QTest::newRow("lone high surrogate") << QString(QChar(0xd800)) + "x";
        QTest::newRow("lone low surrogate") << "x" + QString(QChar(0xdc00));
        QTest::newRow("noncharacters, BOM") << QString(QChar(0xfeff)) + QChar(0xfffe) + QChar(0xffff);
    }
    void stringsRoundTripExactly()
    {
        QFETCH(QString, value);
        auto written = makeTree();
        written->getFileName("path")->setValue(value);
        written->getArray<QString>("sub/names")->setArray({value, value});
        auto read = reread(*written);
        QVERIFY(read);
        // Still one line per item, whatever the string holds.
        QCOMPARE(QString::fromUtf8(readFile(path("rt.cfg"))).count('\n'), 13);
        QCOMPARE(read->getFileName("path")->getValue(), value);
        QCOMPARE(read->getFileName("path")->getValue().isNull(), value.isNull());
        QCOMPARE(read->getArray<QString>("sub/names")->getValues(), std::vector<QString>(2, value));
    }

    void damagedDocumentLeavesTreeUnchanged_data()
    {
        QTest::addColumn<QByteArray>("document");
        // Valid changes first: a reader that applied lines one by one would leave them behind.
        const QByteArray head = "ZalConfig 1\ncount int 7\nsub/names array 1 \"new\"\nflag bool true\n";
        QTest::newRow("empty file") << QByteArray();
        QTest::newRow("no header") << QByteArray("count int 7\n");
        QTest::newRow("newer version") << QByteArray("ZalConfig 2\ncount int 7\n");
        QTest::newRow("binary") << QByteArray("\x7f" "ELF\x02\x01\x01\0\0\0", 10);
        QTest::newRow("invalid UTF-8") << head + "path file \"\xff\xfe\"\n";
        QTest::newRow("type mismatch") << head + "flag int 1\n";
        QTest::newRow("array for a string") << head + "path array 1 \"x\"\n";
        QTest::newRow("bool word") << head + "choice list 1\nflag bool yes\n";
        QTest::newRow("trailing word") << head + "count int 8 9\n";
        QTest::newRow("not a number") << head + "count int 12abc\n";
        QTest::newRow("int overflow") << head + "count int 99999999999\n";
        QTest::newRow("negative uint") << head + "big uint -1\n";
        QTest::newRow("double overflow") << head + "wide dbl 1e400\n";
        QTest::newRow("quoted number") << head + "ratio dbl \"0.5\"\n";
        QTest::newRow("list index too big") << head + "choice list 3\n";
        QTest::newRow("unterminated quote") << head + "path file \"open\n";
        QTest::newRow("unknown escape") << head + "path file \"a\\qb\"\n";
        QTest::newRow("short unicode escape") << head + "path file \"\\u12\"\n";
        QTest::newRow("bare string") << head + "path file somewhere\n";
        QTest::newRow("raw control") << head + "path file \"a\tb\"\n";
        QTest::newRow("huge array count") << head + "sub/names array 4000000000 \"a\"\n";
        QTest::newRow("count above elements") << head + "sub/names array 2 \"a\"\n";
        QTest::newRow("bare array element") << head + "sub/names array 1 word\n";
        QTest::newRow("fixed size mismatch") << head + "sub/pair array 3 \"a\" \"b\" \"c\"\n";
        QTest::newRow("node given a value") << head + "sub int 3\n";
        QTest::newRow("duplicate key") << head + "count int 8\n";
        QTest::newRow("key without value") << head + "lonely\n";
        QTest::newRow("damage in unknown key") << head + "unknown file \"x\n";
    }
    void damagedDocumentLeavesTreeUnchanged()
    {
        QFETCH(QByteArray, document);
        auto root = makeTree();
        setOtherValues(*root);
        auto *names = root->getArray<QString>("sub/names");
        names->setModified(false);
        const QString before = describe(*root);
        QVERIFY(writeFile(path("bad.cfg"), document));
        QVERIFY(!root->load(path("bad.cfg")));
        QCOMPARE(describe(*root), before);
        QVERIFY(!names->isModified() && names->getLoadedValues().empty());
    }

    void unknownKeysAreIgnored()
    {
        auto root = makeTree();
        QVERIFY(writeFile(path("new.cfg"), "ZalConfig 1\n# written by a later version\n\ngone int 5\n"
                                           "sub/gone/deeper newtype \"whatever\" 1 2\nflag/child bool false\n"
                                           "\"sp ace\" bool true\n\"\xe2\x82\xac\" bool true\n"
                                           "   count int 9  \r\nsub/deep/level int 4\n"));
        QVERIFY(root->load(path("new.cfg")));
        QCOMPARE(root->getInt("count")->getValue(), 9);
        QCOMPARE(root->getInt("sub/deep/level")->getValue(), 4);
        // Items that the document does not mention keep their values.
        QCOMPARE(root->getBool("flag")->getValue(), true);
    }

    void numbersOutsideTheRangeAreClamped_data()
    {
        QTest::addColumn<QByteArray>("line"); QTest::addColumn<QString>("key");
        QTest::addColumn<double>("expected");
        QTest::newRow("int above") << QByteArray("count int 150") << "count" << 100.0;
        QTest::newRow("int below") << QByteArray("count int -3") << "count" << 0.0;
        QTest::newRow("deep int below") << QByteArray("sub/deep/level int -6") << "sub/deep/level" << -5.0;
        QTest::newRow("double above") << QByteArray("ratio dbl 1.5") << "ratio" << 1.0;
        QTest::newRow("minus infinity") << QByteArray("ratio dbl -inf") << "ratio" << -1.0;
        QTest::newRow("NaN is the minimum") << QByteArray("ratio dbl nan") << "ratio" << -1.0;
        QTest::newRow("unit above") << QByteArray("length dbl 1001") << "length" << 1000.0;
    }
    void numbersOutsideTheRangeAreClamped()
    {
        QFETCH(QByteArray, line); QFETCH(QString, key); QFETCH(double, expected);
        auto root = makeTree();
        QVERIFY(writeFile(path("range.cfg"), "ZalConfig 1\n" + line + "\n"));
        QVERIFY(root->load(path("range.cfg")));
        // The setters keep the same rule as the file.
        if (CfgInt *item = root->getInt(ZalString(key))) {
            QCOMPARE(double(item->getValue()), expected);
            item->setValue(item->getMax() + 1);
            QCOMPARE(item->getValue(), item->getMax());
        } else {
            CfgDbl *dbl = root->getDbl(ZalString(key));
            QCOMPARE(dbl->getValue(), expected);
            dbl->setValue(std::nan(""));
            QCOMPARE(dbl->getValue(), dbl->getMin());
        }
    }

    void oversizedFilesAreRejected()
    {
        auto root = makeTree();
        QVERIFY(writeFile(path("line.cfg"), "ZalConfig 1\npath file \"" + QByteArray(4 << 20, 'a') + "\"\n"));
        QVERIFY(!root->load(path("line.cfg")));
        QByteArray many = "ZalConfig 1\n";
        while (many.size() <= 16 << 20)
            many += "#" + QByteArray(1023, 'c') + "\n";
        QVERIFY(writeFile(path("big.cfg"), many + "count int 5\n"));
        QVERIFY(!root->load(path("big.cfg")));
        QVERIFY(!root->load(path("missing.cfg")));
        QVERIFY(!root->load(_dir->path()));
        QCOMPARE(root->getInt("count")->getValue(), 10);
    }

    void saveToUnwritablePathFailsAndKeepsOldFile()
    {
        auto root = makeTree();
        QVERIFY(!root->save(path("no/such/dir/app.cfg")));
        QVERIFY(!root->save(_dir->path()));
        // An item that breaks its line must not replace a good file.
        struct BrokenItem : CfgItem
        {
            BrokenItem() : CfgItem("broken", "writes two lines", {}) {}
            bool load(QTextStream &, int) override { return true; }
            void save(QTextStream &out) const override { out << "text one\ntwo"; }
            void reset() override {}
        };
        QVERIFY(writeFile(path("keep.cfg"), "old"));
        root->addItem(new BrokenItem);
        QVERIFY(!root->save(path("keep.cfg")));
        QCOMPARE(readFile(path("keep.cfg")), QByteArray("old"));
    }

    void resetRestoresEveryDefaultBelowTheNode()
    {
        auto root = makeTree();
        const QString defaults = describe(*root);
        setOtherValues(*root);
        root->getNode("sub")->reset();
        QCOMPARE(root->getInt("sub/deep/level")->getValue(), -5);
        QCOMPARE(root->getArray<QString>("sub/pair")->getValues(), std::vector<QString>(2));
        QCOMPARE(root->getInt("count")->getValue(), 42);
        root->reset();
        QCOMPARE(describe(*root), defaults);
    }

    void listIndexOutsideEntriesThrows()
    {
        auto root = makeTree();
        CfgList *list = root->getList("choice");
        QString function;
        QCOMPARE(progErrorMessage([&] { list->setValue(3); }, &function), "Range error: Index");
        QCOMPARE(function, QString("Zal::CfgList::setValue"));
        QCOMPARE(progErrorMessage([&] { list->setValue(-1); }), "Range error: Index");
        QCOMPARE(list->getValue(), 0);
        QCOMPARE(progErrorMessage([&] { root->addList("l", "d", {}, 0); }), "Range error: Index");
        QVERIFY(!root->getItem("l"));
    }

    void arrayMisuseThrowsAndChangesNothing_data()
    {
        QTest::addColumn<bool>("fixed"); QTest::addColumn<QString>("operation");
        QTest::addColumn<int>("index"); QTest::addColumn<QString>("message");
        const QString index = "Range error: Index";
        const QString fixedSize = "Range error: Fixed size";
        QTest::newRow("set below") << false << "setValue" << -1 << index;
        QTest::newRow("set past end") << false << "setValue" << 2 << index;
        QTest::newRow("get past end") << false << "getValue" << 2 << index;
        QTest::newRow("delete past end") << false << "deleteValue" << 2 << index;
        QTest::newRow("delete below") << false << "deleteValue" << -1 << index;
        QTest::newRow("delete fixed") << true << "deleteValue" << 0 << fixedSize;
        QTest::newRow("add fixed") << true << "addValue" << 0 << fixedSize;
        QTest::newRow("clear fixed") << true << "clear" << 0 << fixedSize;
        QTest::newRow("other size") << true << "setArray" << 3 << "Range error: Array size";
        QTest::newRow("negative size") << false << "CfgArray" << -1 << "Range error: Array size";
    }
    void arrayMisuseThrowsAndChangesNothing()
    {
        QFETCH(bool, fixed); QFETCH(QString, operation); QFETCH(int, index); QFETCH(QString, message);
        CfgArray<QString> array("App/a", "d", "e", 2, fixed);
        const std::map<QString, std::function<void()>> operations{
            {"setValue", [&] { array.setValue(index, "x"); }},
            {"getValue", [&] { array.getValue(index); }},
            {"deleteValue", [&] { array.deleteValue(index); }},
            {"addValue", [&] { array.addValue("x"); }},
            {"clear", [&] { array.clear(); }},
            {"setArray", [&] { array.setArray(std::vector<QString>(size_t(index), "x")); }},
            {"CfgArray", [&] { CfgArray<QString>("k", "d", "e", index, fixed); }}};
        QString function, file;
        const auto run = operations.at(operation);
        QCOMPARE(progErrorMessage(run, &function, &file), message);
        QCOMPARE(function, "Zal::CfgArray::" + operation);
        QCOMPARE(file, QString("zal_cfg_array"));
        QCOMPARE(array.getValues(), std::vector<QString>(2, "e"));
    }

    void arrayEditsAndFullKey()
    {
        auto root = makeTree();
        auto *names = root->getArray<QString>("sub/names");
        QCOMPARE(names->getKey(), ZalString("App/sub/names"));
        names->setModified(false);
        for (const char *value : {"a", "b", "c"})
            names->addValue(value);
        names->deleteValue(1);
        names->setValue(1, "z");
        QCOMPARE(names->getValues(), std::vector<QString>({"a", "z"}));
        QVERIFY(names->isModified());
        // An array made by the caller with its full key lands under the node.
        auto *own = new CfgArray<QString>("App/sub/extra", "d", "v", 3, false);
        QCOMPARE(root->addItem(own), static_cast<CfgItem *>(own));
        QCOMPARE(root->getArray<QString>("sub/extra"), own);
        own->clear();
        own->reset();
        QCOMPARE(own->getValues(), std::vector<QString>(3, "v"));
    }

    void getArrayOfAnotherTypeThrows()
    {
        auto root = makeTree();
        QVERIFY(!root->getArray<QString>("absent") && !root->getArray<QString>("sub/deep/absent"));
        QString function, file;
        QCOMPARE(progErrorMessage([&] { root->getArray<QString>("sub/deep/level"); }, &function, &file),
                 "Invalid Type Array 'sub/deep/level'");
        QCOMPARE(function, QString("Zal::CfgNode::getArray"));
        QCOMPARE(file, QString("zal_cfg_array"));
        QCOMPARE(progErrorMessage([&] { root->getArray<QString>("sub"); }), "Invalid Type Array 'sub'");
    }

    // --- levels and user files ---
    void loadFilesAreExistingFilesLowestLevelFirst_data()
    {
        QTest::addColumn<QString>("existing"); QTest::addColumn<bool>("alwaysSkipped");
        QTest::addColumn<bool>("skippedByName"); QTest::addColumn<QString>("expected");
        QTest::newRow("all levels") << "210" << false << false << "012";
        QTest::newRow("system always skipped") << "012" << true << false << "12";
        QTest::newRow("system skipped by name") << "012" << false << true << "12";
        QTest::newRow("shared only") << "1" << false << false << "1";
        QTest::newRow("skipped system only") << "0" << true << false << "";
        QTest::newRow("none") << "" << false << false << "";
    }
    void loadFilesAreExistingFilesLowestLevelFirst()
    {
        QFETCH(QString, existing); QFETCH(bool, alwaysSkipped); QFETCH(bool, skippedByName);
        QFETCH(QString, expected);
        createAtLevels(existing, "app.toolbars");
        Cfg::File file("app.toolbars", "custom toolbar");
        file.setSystemLevelAlwaysSkipped(alwaysSkipped);
        if (skippedByName)
            ResourceContainer::setSystemLevelSkippedForResources({"x", "app.toolbars"});
        std::vector<std::pair<Cfg::Level, QString>> wanted;
        for (const QChar level : expected)
            wanted.emplace_back(level.digitValue(), levelDir(level.digitValue()) + "/app.toolbars");
        QCOMPARE(file.getLoadFiles(), wanted);
        QCOMPARE(file.getSaveFileName(), path("user/app.toolbars"));
        QVERIFY(QFileInfo(path("user")).isDir());
        // A directory of the file's name is no file.
        QVERIFY(QDir().mkpath(path("shared/app.other")));
        QVERIFY(Cfg::File("app.other", "d").getLoadFiles().empty());
    }

    void sameDirectoryOnTwoLevelsIsListedOnce()
    {
        qputenv("ZAL_SHARED_CONFIG_DIR", path("user").toLocal8Bit());
        createAtLevels("2", "app.shortcuts");
        const std::vector<std::pair<Cfg::Level, QString>> wanted{{2, path("user/app.shortcuts")}};
        QCOMPARE(Cfg::File("app.shortcuts", "shortcuts").getLoadFiles(), wanted);
    }

    void userFileNames_data()
    {
        QTest::addColumn<QString>("existing"); QTest::addColumn<int>("loadLevel");
        QTest::newRow("every level") << "012" << 2;
        QTest::newRow("no user file") << "01" << 1;
        QTest::newRow("system only") << "0" << 0;
        QTest::newRow("system and user") << "02" << 2;
        QTest::newRow("nowhere") << "" << 2;
    }
    void userFileNames()
    {
        QFETCH(QString, existing); QFETCH(int, loadLevel);
        createAtLevels(existing, "App.cfg");
        QCOMPARE(Cfg::UserFile::getLoadFileName("App.cfg"), levelDir(loadLevel) + "/App.cfg");
        QCOMPARE(Cfg::UserFile::getSaveFileName("App.cfg"), path("user/App.cfg"));
        QVERIFY(QFileInfo(path("user")).isDir());
    }

    void resourcesAreUpdatedWhileRegistered()
    {
        const size_t before = ResourceContainer::getResources().size();
        CountingResource *second = nullptr;
        auto first = std::make_unique<CountingResource>("first", &second);
        second = new CountingResource("second");
        auto third = std::make_unique<CountingResource>("third");
        QCOMPARE(ResourceContainer::getResources().size(), before + 3);
        // The first update deletes the second resource, which is then passed over.
        ResourceContainer::update();
        QVERIFY(!second);
        QCOMPARE(first->updates + third->updates, 2);
        third.reset();
        ResourceContainer::update();
        QCOMPARE(first->updates, 2);
        QCOMPARE(ResourceContainer::getResources().size(), before + 1);
    }

    // --- profiles ---
    void profileAnswersTheFiveQuestions()
    {
        Cfg::ParsedProfile profile;
        ErrorLog log;
        QVERIFY(profile.parseText("ZalProfile 1\r\n# the user's profile\nhide sys.undo \"odd name\"\n"
                                  "menu-start File file.new file.open\n\nmenu-start File file.recent\n"
                                  "after-command sys.undo sys.redo\nafter-menu \"Edit menu\" edit.extra\n"
                                  "after-special-menu recent_files file.clear_recent\n", &log));
        QVERIFY(log.isEmpty());
        QVERIFY(profile.isCommandHidden("sys.undo") && profile.isCommandHidden("odd name"));
        QVERIFY(!profile.isCommandHidden("sys.redo"));
        std::vector<QString> commands{"stale"};
        profile.getCommandsAtMenuStart("File", &commands);
        QCOMPARE(commands, std::vector<QString>({"file.new", "file.open", "file.recent"}));
        profile.getCommandsAtMenuStart("Edit menu", &commands);
        QVERIFY(commands.empty());
        profile.getCommandsAfterCommand("sys.undo", &commands);
        QCOMPARE(commands, std::vector<QString>({"sys.redo"}));
        profile.getCommandsAfterMenu("Edit menu", &commands);
        QCOMPARE(commands, std::vector<QString>({"edit.extra"}));
        profile.getCommandsAfterSpecialMenu("recent_files", &commands);
        QCOMPARE(commands, std::vector<QString>({"file.clear_recent"}));
    }

    void damagedProfileIsRejectedWithItsLine_data()
    {
        QTest::addColumn<QString>("text"); QTest::addColumn<int>("line");
        QTest::newRow("empty") << "" << 1;
        QTest::newRow("header after a blank") << "\nZalProfile 1\n" << 1;
        QTest::newRow("newer version") << "ZalProfile 2\n" << 1;
        QTest::newRow("hide nothing") << "ZalProfile 1\nhide\n" << 2;
        QTest::newRow("unknown directive") << "ZalProfile 1\nhide a\nshow b\n" << 3;
        QTest::newRow("menu without command") << "ZalProfile 1\nmenu-start File\n" << 2;
        QTest::newRow("empty name") << "ZalProfile 1\nafter-menu \"\" x\n" << 2;
        QTest::newRow("open quote") << "ZalProfile 1\nhide \"open\n" << 2;
        QTest::newRow("quoted directive") << "ZalProfile 1\n\"hide\" a\n" << 2;
    }
    void damagedProfileIsRejectedWithItsLine()
    {
        QFETCH(QString, text); QFETCH(int, line);
        Cfg::ParsedProfile profile;
        profile.hideCommand("kept");
        ErrorLog log;
        QVERIFY(!profile.parseText(text, &log, "p.profile"));
        QCOMPARE(log.getEntries().size(), 1);
        QVERIFY2(log.getText().contains(QString("p.profile, line %1:").arg(line)), qPrintable(log.getText()));
        QVERIFY(profile.isCommandHidden("kept") && !profile.isCommandHidden("a"));
    }

    void activeProfilesAreNullUntilLoaded()
    {
        QVERIFY(!Cfg::Profile::instance() && !Cfg::AdministrationProfile::instance());
        QVERIFY(writeFile(path("user.profile"), "ZalProfile 1\nhide a.b\n"));
        QVERIFY(writeFile(path("bad.profile"), "ZalProfile 1\nhide\n"));
        ErrorLog log;
        QVERIFY(Cfg::Profile::load(path("user.profile"), &log));
        Cfg::ParsedProfile *active = Cfg::Profile::instance();
        QVERIFY(active && active->isCommandHidden("a.b"));
        QVERIFY(!Cfg::AdministrationProfile::instance());
        // A failed load keeps the active profile.
        QVERIFY(!Cfg::Profile::load(path("bad.profile"), &log));
        QVERIFY(!Cfg::Profile::load(path("missing.profile"), &log));
        QCOMPARE(log.getEntries().size(), 2);
        QCOMPARE(Cfg::Profile::instance(), active);
        Cfg::AdministrationProfile::setInstance(new Cfg::ParsedProfile);
        Cfg::Profile::clear();
        QVERIFY(!Cfg::Profile::instance() && Cfg::AdministrationProfile::instance());
    }

    // --- block streams ---
    void streamRoundTripsEveryValue()
    {
        using IO::Stream;
        const std::vector<int> ints{INT_MIN_, -1, 0, INT_MAX_};
        const std::vector<QString> strings{QString(), "", "héllo €", QString(QChar(0xd800)),
                                           QString::fromUtf8("\xF0\x9F\x98\x80")};
        const IO::Color color{255, 0, 128, 0};
        unsigned int stringBytes = 0;
        for (const QString &s : strings)
            stringBytes += Stream::sizeOf(s);
        {
            IO::OutStream out(path("values.bin"), "RoundTrip", 7);
            out.beginBlock(4 * Stream::SIZE_INT + Stream::SIZE_UINT + 2 * Stream::SIZE_BOOL, 1);
            for (int v : ints)
                out.writeInt(v);
            out.writeUInt(4294967295u);
            for (bool b : {true, false})
                out.writeBool(b);
            out.endBlock();
            out.beginBlock(stringBytes, 2);
            for (const QString &s : strings)
                out.writeString(s);
            out.endBlock();
            out.beginBlock(Stream::SIZE_COLOR + Stream::SIZE_INT, 4000000000u);
            out.writeColor(color);
            out.writeInt(99);
            out.endBlock();
            out.beginBlock(0, 5);
            out.endBlock();
        }
        IO::InStream in(path("values.bin"), "RoundTrip");
        QCOMPARE(in.getTypeName(), QString("RoundTrip"));
        QCOMPARE(in.getVersion(), 7u);
        in.openBlock();
        QCOMPARE(in.getBlockVersion(), 1u);
        std::vector<int> readInts(4);
        for (int &v : readInts)
            in.readInt(v);
        QCOMPARE(readInts, ints);
        unsigned int u = 0;
        bool b[2] = {false, true};
        in.readUInt(u);
        for (bool &v : b)
            in.readBool(v);
        QVERIFY(u == 4294967295u && b[0] && !b[1]);
        in.closeBlock();
        in.openBlock();
        for (const QString &expected : strings) {
            QString s("filled");
            in.readString(s);
            QCOMPARE(s, expected);
            QCOMPARE(s.isNull(), expected.isNull());
        }
        QCOMPARE(in.getBlockRemaining(), 0u);
        in.closeBlock();
        in.openBlock();
        QCOMPARE(in.getBlockVersion(), 4000000000u);
        IO::Color c;
        in.readColor(c);
        QVERIFY(c == color);
        // The unread int is passed over by closeBlock().
        in.closeBlock();
        QVERIFY(!in.atEnd());
        in.openBlock();
        QCOMPARE(in.getBlockVersion(), 5u);
        in.closeBlock();
        QVERIFY(in.atEnd());
    }

    void sizeOfIsTheWrittenStringSize_data()
    {
        QTest::addColumn<QString>("text"); QTest::addColumn<unsigned int>("size");
        QTest::newRow("null") << QString() << 4u;
        QTest::newRow("empty") << QString("") << 4u;
        QTest::newRow("command name") << QString("a.b") << 10u;
        QTest::newRow("euro sign") << QString::fromUtf8("€") << 6u;
        QTest::newRow("outside the BMP") << QString::fromUtf8("\xF0\x9F\x98\x80") << 8u;
    }
    void sizeOfIsTheWrittenStringSize()
    {
        QFETCH(QString, text); QFETCH(unsigned int, size);
        QCOMPARE(IO::Stream::sizeOf(text), size);
        {
            IO::OutStream out(path("s.bin"), "T", 1);
            out.beginBlock(size, 1);
            out.writeString(text);
            out.endBlock();
        }
        // Header, block frame (size, version), payload.
        QCOMPARE(QFileInfo(path("s.bin")).size(), qint64(streamHeader().size() + 8 + size));
    }

    void writerMisuseThrowsAndKeepsOldFile_data()
    {
        QTest::addColumn<QString>("script");
        QTest::newRow("payload short of the size") << "b8 i e";
        QTest::newRow("payload beyond the size") << "b4 i o";
        QTest::newRow("string beyond the size") << "b5 s";
        QTest::newRow("value outside a block") << "i";
        QTest::newRow("block in a block") << "b4 b4";
        QTest::newRow("end without block") << "e";
        QTest::newRow("close with block open") << "b4 i c";
    }
    void writerMisuseThrowsAndKeepsOldFile()
    {
        QFETCH(QString, script);
        QVERIFY(writeFile(path("old.bin"), "old"));
        QString text;
        try {
            IO::OutStream out(path("old.bin"), "T", 1);
            for (const QString &step : script.split(' ')) {
                switch (step.at(0).toLatin1()) {
                case 'b': out.beginBlock(step.mid(1).toUInt(), 1); break;
                case 'i': out.writeInt(1); break;
                case 'o': out.writeBool(true); break;
                case 's': out.writeString("ab"); break;
                case 'e': out.endBlock(); break;
                default: out.close();
                }
            }
        } catch (const IO::StreamException &e) {
            text = e.getText();
        }
        QVERIFY(text.contains("old.bin"));
        QCOMPARE(readFile(path("old.bin")), QByteArray("old"));
        QVERIFY_THROWS_EXCEPTION(IO::StreamException, IO::OutStream(path("no/dir/x.bin"), "T", 1));
    }

    void hostileStreamFilesThrow_data()
    {
        QTest::addColumn<QByteArray>("bytes"); QTest::addColumn<QString>("script");
        const QByteArray header = streamHeader();
        QTest::newRow("missing file") << QByteArray("<none>") << "";
        QTest::newRow("empty file") << QByteArray() << "";
        QTest::newRow("text file") << QByteArray("ZalConfig 1\ncount int 1\n") << "";
        QTest::newRow("wrong magic") << streamHeader("T", 0x12345678) << "";
        QTest::newRow("unknown layout") << streamHeader("T", 0x5A424C4B, 2) << "";
        QTest::newRow("truncated header") << header.left(10) << "";
        QTest::newRow("no file version") << header.chopped(4) << "";
        QTest::newRow("absurd type name") << words({0x5A424C4B, 1, 0x7ffffffe, 3}) << "";
        QTest::newRow("odd type name") << words({0x5A424C4B, 1, 3, 3}) << "";
        QTest::newRow("wrong type name") << streamHeader("Other") << "";
        QTest::newRow("no block left") << header << "o";
        QTest::newRow("block larger than file") << header + words({1000, 1, 5}) << "o";
        QTest::newRow("block of 4 GiB") << header + words({0xffffffff, 1, 5}) << "o";
        QTest::newRow("absurd string length") << header + words({8, 1, 0x7ffffffe, 0}) << "o s";
        QTest::newRow("string beyond block") << header + words({8, 1, 6, 0, 0, 0}) << "o s";
        QTest::newRow("odd string length") << header + words({8, 1, 3, 0}) << "o s";
        QTest::newRow("read past block") << header + words({4, 1, 5, 4, 1, 5}) << "o i i";
        QTest::newRow("colour past block") << header + words({2, 1, 0}) << "o k";
        QTest::newRow("invalid bool") << header + words({1, 1}) + QByteArray(1, 7) << "o b";
        QTest::newRow("value outside block") << header + words({4, 1, 5}) << "u";
        QTest::newRow("block in block") << header + words({0, 1, 0, 1}) << "o o";
        QTest::newRow("close without block") << header << "c";
    }
    void hostileStreamFilesThrow()
    {
        QFETCH(QByteArray, bytes); QFETCH(QString, script);
        if (bytes != "<none>")
            QVERIFY(writeFile(path("hostile.bin"), bytes));
        QString text;
        try {
            IO::InStream in(path("hostile.bin"), "T");
            int i = 0;
            unsigned int u = 0;
            bool b = false;
            QString s;
            IO::Color c;
            for (const QString &step : script.split(' ', Qt::SkipEmptyParts)) {
                switch (step.at(0).toLatin1()) {
                case 'o': in.openBlock(); break;
                case 'c': in.closeBlock(); break;
                case 'i': in.readInt(i); break;
                case 'u': in.readUInt(u); break;
                case 'b': in.readBool(b); break;
                case 's': in.readString(s); break;
                default: in.readColor(c);
                }
            }
        } catch (const Exception &e) {
            // Caught as the base class, as the library's loaders do.
            QVERIFY(dynamic_cast<const IO::StreamException *>(&e));
            text = e.getText();
        }
        QVERIFY2(text.contains("hostile.bin"), qPrintable(text));
    }
};

QTEST_GUILESS_MAIN(TestHostCfg)
#include "tst_host_cfg.moc"
