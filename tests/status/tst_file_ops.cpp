#include "tst_file_ops.h"
#include "gapp_status_data.h"
#include "gapp_status_mgr.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_image_type.h"
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>
#include <algorithm>
#include <functional>
#include <map>
#include <memory>

using namespace Zal;
using namespace Zal::GApp;

namespace {

// One call through the manager, its result written as text.
using Call = std::function<QString(AppStatusManager &)>;

using Names = std::vector<QString>;

QString yes(bool b) { return b ? QStringLiteral("true") : QStringLiteral("false"); }
QString text(const QString &s) { return s; }
QString text(const char *s) { return QLatin1String(s); }
QString text(int n) { return QString::number(n); }
template <class T> QString joined(const std::vector<T> &list)
{
    QStringList all;
    for (const T &item : list)
        all << text(item);
    return all.join(QLatin1Char(','));
}

// A status data that writes every call into a shared journal as
// "<mode>:<call>" and answers with texts that name its mode, so a test sees
// which type answered.
class RecordingStatus : public StatusData
{
public:
    RecordingStatus(unsigned int mode, QStringList *journal) : StatusData(mode, QString()), _journal(journal) {}

    QString getMainMenuName() override { return QString(); }
    bool isAppModeChangePossible(unsigned int mode) override { return said(changePossible, "possible(%1)", mode); }
    void beforeModeChange(unsigned int mode) override { said(0, "before(%1)", mode); }
    void afterModeChange(unsigned int mode) override { said(0, "after(%1)", mode); }
    bool canExitProgram() override { return true; }
    void exitProgram() override {}
    void commitData() override {}
    bool cleanupInconsistentState() override { return said(false, "cleanup"); }
    bool isEmpty() override { return said(empty, "isEmpty"); }
    std::vector<const char *> getAdditionalSelectionNames() override
    {
        said(0, "selectionNames");
        return {"probe", "scan"};
    }
    Names getSelectedData(const char *selection) override { return said(Names{tag("sel")}, "selected(%1)", selection); }
    Names getAllData() override { return said(Names{tag("a"), tag("b")}, "allData"); }
    bool isDataModified(const QString &name) const override { return said(true, "modified(%1)", name); }
    Names getAllFileNameExtensions() override { return extensions; }
    QString getFileName(const QString &name) override { return said(tag("file"), "fileName(%1)", name); }
    bool isFileNameValid(const QString &fileName) const override { return said(true, "valid(%1)", fileName); }
    QString getFileNameExtension(const Names &names) override
    {
        return said(tag("list"), "extensionOfList(%1)", names.size());
    }
    QString getFileNameExtension(const QString &name) override { return said(tag("ext"), "extension(%1)", name); }
    bool canOpenFile(const std::vector<char> &firstBytes) override
    {
        return said(!magic.isEmpty() && checkMagicHeader(firstBytes, magic), "canOpen(%1)", firstBytes.size());
    }
    bool canOpenImage() const override { return said(opensImages, "canOpenImage"); }
    bool openFile(const QString &fileName, QString *second, QString *errorCode, ErrorLog *) override
    {
        return coded(errorCode, second, "second") && said(true, "open(%1)", QFileInfo(fileName).fileName());
    }
    bool isSaveSensitive() const override { return said(true, "saveSensitive"); }
    bool saveFile(const QString &name, const QString &fileName, QString *errorCode, ErrorLog *) override
    {
        return coded(errorCode) && said(true, "save(%1,%2)", name, fileName);
    }
    bool isSaveAsSensitive() const override { return said(true, "saveAsSensitive"); }
    bool isExportC3DSensitive() const override { return said(true, "exportSensitive"); }
    bool isSaveProjectAsSensitive() const override { return said(true, "saveProjectSensitive"); }
    bool saveFileAsRecent(const std::vector<QString> &names, const QString &fileName, RenameType_t rename,
                          QString *recentName, QString *errorCode, ErrorLog *) override
    {
        return coded(errorCode, recentName, "recent")
               && said(true, "saveAsRecent(%1,%2,%3)", names.size(), fileName, int(rename));
    }
    bool isCloseSensitive() const override { return said(true, "closeSensitive"); }
    bool closeData(const std::vector<QString> &names, QString *errorCode, ErrorLog *) override
    {
        return coded(errorCode) && said(true, "close(%1)", names.size());
    }
    bool isCopyToClipboardSensitive() const override { return said(true, "copySensitive"); }
    bool copyToClipboard(const std::vector<QString> &names, const std::vector<QString> &formats,
                         QString *errorCode, ErrorLog *) const override
    {
        return coded(errorCode) && said(true, "copy(%1,%2)", names.size(), formats.size());
    }
    bool pasteFromClipboard(const std::vector<QString> &files, const std::vector<QString> &second,
                            QString *third, QString *errorCode, ErrorLog *) override
    {
        return coded(errorCode, third, "third") && said(true, "paste(%1,%2)", files.size(), second.size());
    }
    StageActive_t isStageActive(const QString &stage) override { return said(stageAnswer, "stageActive(%1)", stage); }
    Names getStageLoopStages(const QString &name, StageLoopStage_t stage) override
    {
        return said(loopStages, "loopStages(%1,%2)", name, int(stage));
    }
    StageIdentifier getActualStageIdentifier() override { return StageIdentifier(int(getLocalMode()) * 10); }
    std::vector<int> getStageNumbers(QString name, ExplorerPosition_t position, int index) override
    {
        return said(std::vector<int>{int(getLocalMode()), index}, "stageNumbers(%1,%2,%3)", name, int(position), index);
    }

    bool changePossible = true;
    bool empty = true;
    bool opensImages = false;
    QString magic; // canOpenFile answers whether the file starts with it
    Names extensions;
    StageActive_t stageAnswer = STAGE_UNKNOWN;
    Names loopStages;

private:
    QString tag(const char *what) const { return QStringLiteral("%1:%2").arg(getLocalMode()).arg(QLatin1String(what)); }
    // Notes the call, its arguments filled in one by one, and gives back the answer.
    template <class T, class... A> T said(T answer, const char *call, const A &...args) const
    {
        QString line = QLatin1String(call);
        ((line = line.arg(args)), ...);
        _journal->append(QStringLiteral("%1:").arg(getLocalMode()) + line);
        return answer;
    }
    bool coded(QString *errorCode, QString *out = nullptr, const char *what = nullptr) const
    {
        if (out)
            *out = tag(what);
        *errorCode = tag("code");
        return true;
    }
    QStringList *_journal;
};

const QByteArray PNG_HEADER("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16);

// The manager's operations, each row named by its function: forwarded to the active type 2 of types 1..3
// (or, when addressed, to type 1) they give `result` and journal `called` (a null result: not tested so);
// with no status data for the type they throw unless they answer without (answersWithoutActiveStatusData).
struct Operation
{
    const char *name;
    Call call;
    QString called, result;
    bool throws = true;
};

// A call that also gives back an error code: "<result> <code>".
Call coded(std::function<bool(AppStatusManager &, QString *, ErrorLog *)> fn)
{
    return [fn](AppStatusManager &m) {
        QString code;
        ErrorLog log;
        const bool result = fn(m, &code, &log);
        return yes(result) + " " + code;
    };
}

QString unidentified(const QString &path)
{
    return QStringLiteral("cannot identify file type for file ") + QDir::toNativeSeparators(path);
}

} // namespace

Q_DECLARE_METATYPE(Call)

struct FileOpsFixture
{
    AppStatusManager manager;
    QStringList journal;
    QTemporaryDir dir;
    std::map<unsigned int, RecordingStatus *> types;
    QString second, code; // what openFile and pasteFromClipboard gave back
    ErrorLog log;

    // Registers the types; the manager owns them.
    void add(std::initializer_list<unsigned int> modes)
    {
        for (unsigned int mode : modes)
            manager.setStatusData(mode, types[mode] = new RecordingStatus(mode, &journal));
    }
    // Makes `mode` active and forgets what the change wrote.
    void activate(unsigned int mode)
    {
        manager.setAppMode(mode);
        journal.clear();
    }
    // Types 1 (active, perhaps refusing to change) and 2, which reads files starting with "ZAL".
    void activeAndReader(bool activeRefuses = false)
    {
        add({1, 2});
        types[2]->magic = QStringLiteral("ZAL");
        types[1]->changePossible = !activeRefuses;
        activate(1);
    }
    QString file(const QString &name, const QByteArray &data)
    {
        const QString path = dir.filePath(name);
        QFile f(path);
        if (!f.open(QIODevice::WriteOnly) || f.write(data) != data.size())
            qFatal("cannot write %s", qPrintable(path));
        return path;
    }
    bool open(const QString &path) { return manager.openFile(path, &second, &code, &log); }
    bool paste(const std::vector<QString> &files, const std::vector<QString> &more = {})
    {
        return manager.pasteFromClipboard(files, more, &second, &code, &log);
    }
    QStringList callsMatching(const QString &part) const { return journal.filter(part); }
};

static std::unique_ptr<FileOpsFixture> f;

void TestFileOps::init() { f = std::make_unique<FileOpsFixture>(); }
void TestFileOps::cleanup() { f.reset(); }

// --- forwarding, addressing, combining -------------------------------------------

static std::vector<Operation> operations()
{
    const Names two{"p", "q"};
    using Flag = bool (AppStatusManager::*)() const;
    const std::tuple<const char *, Flag, const char *> flags[] = {
        {"isSaveSensitive", &AppStatusManager::isSaveSensitive, "2:saveSensitive"},
        {"isSaveAsSensitive", &AppStatusManager::isSaveAsSensitive, "2:saveAsSensitive"},
        {"isExportC3DSensitive", &AppStatusManager::isExportC3DSensitive, "2:exportSensitive"},
        {"isSaveProjectAsSensitive", &AppStatusManager::isSaveProjectAsSensitive, "2:saveProjectSensitive"},
        {"isCloseSensitive", &AppStatusManager::isCloseSensitive, "2:closeSensitive"},
        {"isCopyToClipboardSensitive", &AppStatusManager::isCopyToClipboardSensitive, "2:copySensitive"}};
    std::vector<Operation> ops;
    for (const auto &[name, fn, called] : flags)
        ops.push_back({name, [fn = fn](AppStatusManager &m) { return yes((m.*fn)()); }, called, "true"});
    ops.insert(ops.end(), {
        {"saveFile", coded([](auto &m, auto c, auto l) { return m.saveFile("part", "part.gap", c, l); }),
         "2:save(part,part.gap)", "true 2:code"},
        {"closeData", coded([two](auto &m, auto c, auto l) { return m.closeData(two, c, l); }), "2:close(2)",
         "true 2:code"},
        {"copyToClipboard", coded([two](auto &m, auto c, auto l) { return m.copyToClipboard(two, {"csv"}, c, l); }),
         "2:copy(2,1)", "true 2:code"},
        // The active type's saveFileAsRecent, which gives back the recent-files name too.
        {"saveFileAs", coded([two](auto &m, auto c, auto l) {
             QString recent;
             const bool result = m.saveFileAs(two, "a.gap", RENAME_COPY, &recent, c, l);
             *c = recent + " " + *c;
             return result;
         }), "2:saveAsRecent(2,a.gap,2)", "true 2:recent 2:code"},
        {"getSelectedData", [](auto &m) { return joined(m.getSelectedData("probe")); }, "2:selected(probe)", "2:sel"},
        {"getAdditionalSelectionNames", [](auto &m) { return joined(m.getAdditionalSelectionNames()); },
         "2:selectionNames", "probe,scan"},
        {"cleanupInconsistentState", [](auto &m) { return yes(m.cleanupInconsistentState()); }, "2:cleanup", "false",
         false},
        {"getStageNumbers", [](auto &m) { return joined(m.getStageNumbers("s", StatusData::EXPLORER_AFTER, 5)); },
         "2:stageNumbers(s,2,5)", "2,5", false},
        {"getActualStageIdentifier", [](auto &m) { return QString::number(m.getActualStageIdentifier().getValue()); },
         "", "20", false},
        // Addressed to type 1 while type 2 is active.
        {"isDataModified", [](auto &m) { return yes(m.isDataModified(1, "part")); }, "1:modified(part)", "true"},
        {"getFileName", [](auto &m) { return m.getFileName(1, "part"); }, "1:fileName(part)", "1:file"},
        {"isFileNameValid", [](auto &m) { return yes(m.isFileNameValid(1, "x.gap")); }, "1:valid(x.gap)", "true"},
        {"getFileNameExtension of a name", [](auto &m) { return m.getFileNameExtension(1, QStringLiteral("part")); },
         "1:extension(part)", "1:ext"},
        {"getFileNameExtension of a list", [two](auto &m) { return m.getFileNameExtension(1, two); },
         "1:extensionOfList(2)", "1:list"},
        {"getAllData", [](auto &m) { return joined(m.getAllData(1)); }, "1:allData", "1:a,1:b"},
        // A file that type 2 reads: the mode change asks the missing active type.
        {"openFile", coded([](auto &m, auto c, auto l) {
             QString second;
             return m.openFile(f->file("one.dat", "ONE"), &second, c, l);
         }), {}, {}},
        {"pasteFromClipboard", coded([](auto &m, auto c, auto l) {
             QString third;
             return m.pasteFromClipboard({f->file("one.dat", "ONE")}, {}, &third, c, l);
         }), {}, {}},
    });
    return ops;
}

void TestFileOps::forwardsToTheActiveType_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QString>("called");
    QTest::addColumn<QString>("result");
    for (const Operation &op : operations())
        if (!op.result.isNull())
            QTest::newRow(op.name) << op.call << op.called << op.result;
}

void TestFileOps::forwardsToTheActiveType()
{
    QFETCH(Call, call);
    QFETCH(QString, called);
    QFETCH(QString, result);
    f->add({1, 2, 3});
    f->activate(2);
    QCOMPARE(call(f->manager), result);
    QCOMPARE(f->journal, called.isEmpty() ? QStringList() : QStringList{called});
}

void TestFileOps::unregisteredTypeThrowsNamingTheOperation_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QString>("function");
    for (const Operation &op : operations())
        if (op.throws)
            QTest::newRow(op.name) << op.call << QString::fromLatin1(op.name).section(QLatin1Char(' '), 0, 0);
}

void TestFileOps::unregisteredTypeThrowsNamingTheOperation()
{
    QFETCH(Call, call);
    QFETCH(QString, function);
    // Types 2 and 3 exist; the active mode 0 (as constructed) and the addressed type 1 have none.
    f->add({2, 3});
    f->types[2]->magic = QStringLiteral("ONE");
    try {
        call(f->manager);
        QFAIL("no ProgError");
    } catch (const ProgError &e) {
        QCOMPARE(e.getFunction(), QStringLiteral("Zal::GApp::AppStatusManager::") + function);
        QCOMPARE(e.getFile(), QStringLiteral("gapp_status_mgr"));
        QCOMPARE(e.getMessage(), QStringLiteral("invalid application type"));
    }
    QCOMPARE(f->manager.getAppMode(), 0u);
    QVERIFY(f->callsMatching(QStringLiteral("before(")).isEmpty());
}

void TestFileOps::answersWithoutActiveStatusData()
{
    f->add({1, 2});
    AppStatusManager &m = f->manager; // active mode 0 has no status data
    QVERIFY(m.cleanupInconsistentState());
    QCOMPARE(m.getActualStageIdentifier(), StageIdentifier::NO_STAGE);
    QVERIFY(m.getStageNumbers(QStringLiteral("s"), StatusData::EXPLORER_AT, 1).empty());
    QVERIFY(f->journal.isEmpty());
    // With no type at all, the stage answer falls back to "inactive".
    AppStatusManager bare;
    QCOMPARE(bare.isStageActive(QStringLiteral("s")), StatusData::STAGE_INACTIVE);
    QVERIFY(bare.getStageLoopStages(QStringLiteral("s"), StatusData::STAGE_LOOP_ALL).empty());
    QVERIFY(bare.isStatusDataEmpty());
    QVERIFY(bare.getAllFileNameExtensions().empty());
}

void TestFileOps::emptyOnlyWhenEveryTypeIsEmpty()
{
    f->add({1, 2, 3});
    QVERIFY(f->manager.isStatusDataEmpty());
    QCOMPARE(f->journal, QStringList({"1:isEmpty", "2:isEmpty", "3:isEmpty"}));
    f->journal.clear();
    f->types[2]->empty = false;
    QVERIFY(!f->manager.isStatusDataEmpty());
    QCOMPARE(f->journal, QStringList({"1:isEmpty", "2:isEmpty"}));
}

void TestFileOps::extensionsOnceInOrderOfFirstAppearance()
{
    f->add({1, 2, 3});
    f->types[3]->extensions = {".gap", ".stl", ".GAP"};
    f->types[1]->extensions = {".stl", ".pts"};
    f->types[2]->extensions = {".pts", ".ply", ".stl"};
    QCOMPARE(joined(f->manager.getAllFileNameExtensions()), QStringLiteral(".stl,.pts,.ply,.gap,.GAP"));
}

void TestFileOps::stageActiveAsksTheActiveTypeFirst_data()
{
    QTest::addColumn<int>("active");
    QTest::addColumn<QList<int>>("answers"); // of types 1, 2, 3
    QTest::addColumn<int>("expected");
    QTest::addColumn<QStringList>("asked");
    QTest::newRow("active type answers") << 2 << QList<int>{1, 0, 1} << 0 << QStringList{"2"};
    QTest::newRow("active type asked again in its turn")
        << 2 << QList<int>{2, 2, 1} << 1 << QStringList{"2", "1", "2", "3"};
    QTest::newRow("first answer of the loop wins") << 3 << QList<int>{2, 1, 2} << 1 << QStringList{"3", "1", "2"};
    QTest::newRow("nobody knows the stage") << 1 << QList<int>{2, 2, 2} << 0 << QStringList{"1", "1", "2", "3"};
    QTest::newRow("active mode without status data") << 0 << QList<int>{2, 1, 0} << 1 << QStringList{"1", "2"};
}

void TestFileOps::stageActiveAsksTheActiveTypeFirst()
{
    QFETCH(int, active);
    QFETCH(QList<int>, answers);
    QFETCH(int, expected);
    QFETCH(QStringList, asked);
    f->add({1, 2, 3});
    if (active)
        f->activate(unsigned(active));
    for (unsigned int mode = 1; mode <= 3; ++mode)
        f->types[mode]->stageAnswer = StatusData::StageActive_t(answers.at(int(mode) - 1));
    QCOMPARE(int(f->manager.isStageActive(QStringLiteral("probe"))), expected);
    QStringList who;
    for (const QString &call : f->journal)
        who << call.section(QLatin1Char(':'), 0, 0);
    QCOMPARE(who, asked);
}

void TestFileOps::stageLoopStagesFallBackToTheFirstNonEmptyList()
{
    f->add({1, 2, 3});
    f->activate(3);
    f->types[2]->loopStages = {"s2"};
    f->types[3]->loopStages = {"s3a", "s3b"};
    QCOMPARE(joined(f->manager.getStageLoopStages(QStringLiteral("n"), StatusData::STAGE_LOOP_ACTIVE)),
             QStringLiteral("s3a,s3b"));
    QCOMPARE(f->journal, QStringList{"3:loopStages(n,1)"});
    f->journal.clear();
    f->types[3]->loopStages.clear();
    QCOMPARE(joined(f->manager.getStageLoopStages(QStringLiteral("n"), StatusData::STAGE_LOOP_ALL)),
             QStringLiteral("s2"));
    QCOMPARE(f->journal, QStringList({"3:loopStages(n,0)", "1:loopStages(n,0)", "2:loopStages(n,0)"}));
}

// --- files ---------------------------------------------------------------------

void TestFileOps::readFileContentsReadsAtMostTheFirstBlock_data()
{
    QTest::addColumn<qint64>("size");
    QTest::addColumn<int>("expected");
    QTest::newRow("empty") << qint64(0) << 0;
    QTest::newRow("one byte") << qint64(1) << 1;
    QTest::newRow("one short of a block") << qint64(1023) << 1023;
    QTest::newRow("one block") << qint64(1024) << 1024;
    QTest::newRow("one more") << qint64(1025) << 1024;
    // Sparse: takes no room on disk, but reading all of it would.
    QTest::newRow("huge") << qint64(1) * 1024 * 1024 * 1024 << 1024;
}

void TestFileOps::readFileContentsReadsAtMostTheFirstBlock()
{
    QFETCH(qint64, size);
    QFETCH(int, expected);
    QByteArray pattern(int(qMin<qint64>(size, 2048)), Qt::Uninitialized);
    for (int i = 0; i < pattern.size(); ++i)
        pattern[i] = char(i % 251);
    const QString path = f->file(QStringLiteral("data.bin"), pattern);
    if (size > pattern.size())
        QVERIFY(QFile::resize(path, size));
    std::vector<char> bytes{'x'};
    QVERIFY(f->manager.readFileContents(path, &bytes, &f->log));
    QVERIFY(f->log.isEmpty());
    QCOMPARE(int(bytes.size()), expected);
    QVERIFY(std::equal(bytes.begin(), bytes.end(), pattern.constBegin()));
}

// A path of the given kind that cannot be read: "missing", "directory" or "locked" (no permission).
static QString unreadablePath(const QString &kind)
{
    if (kind == QLatin1String("directory")) {
        const QString path = f->dir.filePath(QStringLiteral("folder"));
        return QDir().mkpath(path) ? path : QString();
    }
    if (kind == QLatin1String("locked")) {
        const QString path = f->file(QStringLiteral("locked.dat"), "ONE");
        QFile::setPermissions(path, QFileDevice::Permissions());
        return path;
    }
    return f->dir.filePath(QStringLiteral("nowhere/part.zal"));
}

void TestFileOps::unreadableFilesAreReportedNotRead_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind : {"missing", "directory", "locked"})
        QTest::newRow(kind) << kind;
}

void TestFileOps::unreadableFilesAreReportedNotRead()
{
    QFETCH(QString, kind);
    const QString path = unreadablePath(kind);
    QVERIFY(!path.isEmpty());
    if (kind == QLatin1String("locked") && QFile(path).open(QIODevice::ReadOnly))
        QSKIP("this user reads every file");
    std::vector<char> bytes{'x'};
    QVERIFY(!f->manager.readFileContents(path, &bytes, &f->log));
    QCOMPARE(f->log.getEntries(),
             QStringList{QStringLiteral("cannot open file for reading: ") + QDir::toNativeSeparators(path)});
    QCOMPARE(bytes, std::vector<char>{'x'});
}

void TestFileOps::openChoosesTheTypeThatReadsTheFile_data()
{
    QTest::addColumn<QString>("readers"); // the modes whose type reads the file
    QTest::addColumn<uint>("active");
    QTest::addColumn<uint>("chosen");
    QTest::newRow("the active type reads it") << "123" << 2u << 2u;
    QTest::newRow("a lower type reads it") << "13" << 2u << 1u;
    QTest::newRow("only a higher type reads it") << "3" << 1u << 3u;
    QTest::newRow("the active type is the higher reader") << "13" << 3u << 3u;
    QTest::newRow("of two others the lower") << "23" << 1u << 2u;
}

void TestFileOps::openChoosesTheTypeThatReadsTheFile()
{
    QFETCH(QString, readers);
    QFETCH(uint, active);
    QFETCH(uint, chosen);
    f->add({1, 2, 3});
    for (unsigned int mode = 1; mode <= 3; ++mode)
        f->types[mode]->magic = readers.contains(QString::number(mode)) ? QStringLiteral("ZAL") : QStringLiteral("NOT");
    f->activate(active);
    QVERIFY(f->open(f->file(QStringLiteral("part.zal"), "ZAL points\n1 2 3\n")));
    QCOMPARE(f->manager.getAppMode(), chosen);
    QCOMPARE(f->second, QStringLiteral("%1:second").arg(chosen));
    QCOMPARE(f->code, QStringLiteral("%1:code").arg(chosen));
    QVERIFY(f->log.isEmpty());
    QCOMPARE(f->journal.last(), QStringLiteral("%1:open(part.zal)").arg(chosen));
    QCOMPARE(f->callsMatching(QStringLiteral(":possible(")).size(), chosen == active ? 0 : 1);
}

void TestFileOps::openTellsEveryTypeBeforeTheChosenOneOpens()
{
    f->activeAndReader();
    QSignalSpy data(&f->manager, &AppStatusManager::dataChangedSignal);
    QSignalSpy selection(&f->manager, &AppStatusManager::selectionChangedSignal);
    QVERIFY(f->open(f->file(QStringLiteral("short.zal"), "ZAL!")));
    // A short file is judged by all of its bytes.
    QCOMPARE(f->journal, QStringList({"1:canOpen(4)", "2:canOpen(4)", "1:possible(2)", "1:before(2)", "2:before(2)",
                                      "1:after(1)", "2:after(1)", "2:open(short.zal)"}));
    // The mode change itself says nothing; the type that opened tells of its data.
    QCOMPARE(data.count(), 0);
    QCOMPARE(selection.count(), 0);
}

void TestFileOps::openFailures_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("message");
    const QString unreadable = QStringLiteral("cannot open file for reading %1");
    const QString unknown = QStringLiteral("cannot identify file type for file %1");
    QTest::newRow("missing") << "missing" << QByteArray() << "GAPP-0014" << unreadable;
    QTest::newRow("directory") << "directory" << QByteArray() << "GAPP-0014" << unreadable;
    QTest::newRow("unknown") << "file" << QByteArray("what is this") << "GAPP-0007" << unknown;
    QTest::newRow("empty") << "file" << QByteArray() << "GAPP-0007" << unknown;
    QTest::newRow("image nobody opens") << "file" << PNG_HEADER << "GAPP-0007"
                                        << "cannot identify image type for file %1";
    QTest::newRow("active type refuses the change") << "file" << QByteArray("ZAL points") << "GAPP-0008"
                                                    << "open file %1";
}

void TestFileOps::openFailures()
{
    QFETCH(QString, kind);
    QFETCH(QByteArray, content);
    QFETCH(QString, code);
    QFETCH(QString, message);
    f->activeAndReader(true);
    const QString path = kind == QLatin1String("file") ? f->file(QStringLiteral("part.zal"), content)
                                                        : unreadablePath(kind);
    QVERIFY(!path.isEmpty());
    QVERIFY(!f->open(path));
    QCOMPARE(f->code, code);
    QCOMPARE(f->log.getEntries(), QStringList{message.arg(QDir::toNativeSeparators(path))});
    QCOMPARE(f->manager.getAppMode(), 1u);
    QVERIFY(f->callsMatching(QStringLiteral(":open(")).isEmpty());
    QVERIFY(f->callsMatching(QStringLiteral(":before(")).isEmpty());
    if (kind == QLatin1String("file") && content.isEmpty())
        QCOMPARE(f->journal, QStringList({"1:canOpen(0)", "2:canOpen(0)"}));
}

void TestFileOps::imagesGoToTypesThatOpenImages()
{
    f->add({1, 2, 3});
    f->types[2]->opensImages = true;
    f->types[3]->opensImages = true;
    f->types[1]->magic = QString::fromLatin1(PNG_HEADER.left(4));
    f->activate(1);
    const QString path = f->file(QStringLiteral("photo.bin"), PNG_HEADER);
    QVERIFY(f->open(path));
    QCOMPARE(f->manager.getAppMode(), 2u);
    // Images never reach the byte test, even of a type that would say yes.
    QVERIFY(f->callsMatching(QStringLiteral(":canOpen(")).isEmpty());
    QCOMPARE(f->journal.last(), QStringLiteral("2:open(photo.bin)"));
    // The active type that opens images keeps them; the questioning stops there.
    f->activate(3);
    QVERIFY(f->open(path));
    QCOMPARE(f->manager.getAppMode(), 3u);
    QCOMPARE(f->journal, QStringList({"1:canOpenImage", "2:canOpenImage", "3:canOpenImage", "3:open(photo.bin)"}));
}

void TestFileOps::fileTypeIsAnsweredWithoutModeChange()
{
    f->activeAndReader();
    QVERIFY(f->manager.getFileType(f->file(QStringLiteral("a.zal"), "ZAL"), &f->log));
    const QString unknown = f->file(QStringLiteral("b.txt"), "text");
    QVERIFY(!f->manager.getFileType(unknown, &f->log));
    QCOMPARE(f->manager.getAppMode(), 1u);
    QVERIFY(f->callsMatching(QStringLiteral(":possible(")).isEmpty());
    QCOMPARE(f->log.getEntries(), QStringList{unidentified(unknown)});
}

void TestFileOps::pasteChoosesByTheFirstFile()
{
    f->activeAndReader();
    const std::vector<QString> files{f->file(QStringLiteral("a.zal"), "ZAL"), f->file(QStringLiteral("b.txt"), "?")};
    QVERIFY(f->paste(files, {QStringLiteral("x")}));
    QCOMPARE(f->manager.getAppMode(), 2u);
    QCOMPARE(f->second, QStringLiteral("2:third"));
    QCOMPARE(f->code, QStringLiteral("2:code"));
    QCOMPARE(f->journal.last(), QStringLiteral("2:paste(2,1)"));
    // A first file nobody reads is not pasted, whatever follows it.
    QVERIFY(!f->paste({files[1], files[0]}));
    QCOMPARE(f->code, QStringLiteral("GAPP-0007"));
    QCOMPARE(f->log.getEntries(), QStringList{unidentified(files[1])});
}

void TestFileOps::pasteRefusedWithoutLogLine()
{
    f->activeAndReader(true);
    QVERIFY(!f->paste({f->file(QStringLiteral("a.zal"), "ZAL")}));
    QCOMPARE(f->code, QStringLiteral("GAPP-0008"));
    QVERIFY(f->log.isEmpty());
    QCOMPARE(f->manager.getAppMode(), 1u);
    QVERIFY(f->callsMatching(QStringLiteral(":paste(")).isEmpty());
}

void TestFileOps::pasteWithoutFilesIsAProgrammingError()
{
    f->add({1});
    f->activate(1);
    try {
        f->manager.pasteFromClipboard({}, {}, &f->second, &f->code, nullptr);
        QFAIL("no ProgError");
    } catch (const ProgError &e) {
        QCOMPARE(e.getFunction(), QStringLiteral("Zal::GApp::AppStatusManager::pasteFromClipboard"));
        QCOMPARE(e.getMessage(), QStringLiteral("no file to paste"));
    }
    QVERIFY(f->journal.isEmpty());
}

// --- the host's image detection ---------------------------------------------------

void TestFileOps::imageSignatures_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("type");
    QTest::newRow("png") << PNG_HEADER << int(Image::TYPE_PNG);
    QTest::newRow("jpeg") << QByteArray("\xff\xd8\xff\xe0\0\x10JFIF", 10) << int(Image::TYPE_JPEG);
    QTest::newRow("gif87") << QByteArray("GIF87a\x01\0") << int(Image::TYPE_GIF);
    QTest::newRow("gif89") << QByteArray("GIF89a\x01\0") << int(Image::TYPE_GIF);
    QTest::newRow("bmp") << QByteArray("BM\x46\0\0\0\0\0\0\0\x36\0", 12) << int(Image::TYPE_BMP);
    QTest::newRow("tiff little endian") << QByteArray("II*\0\x08\0\0\0", 8) << int(Image::TYPE_TIFF);
    QTest::newRow("tiff big endian") << QByteArray("MM\0*\0\0\0\x08", 8) << int(Image::TYPE_TIFF);
    QTest::newRow("text starting with BM") << QByteArray("BMW 320 probe log\n") << int(Image::TYPE_UNKNOWN);
    QTest::newRow("text like a portable pixmap") << QByteArray("P3 2 2 255\n") << int(Image::TYPE_UNKNOWN);
    QTest::newRow("truncated png") << PNG_HEADER.left(5) << int(Image::TYPE_UNKNOWN);
    QTest::newRow("empty") << QByteArray() << int(Image::TYPE_UNKNOWN);
}

void TestFileOps::imageSignatures()
{
    QFETCH(QByteArray, content);
    QFETCH(int, type);
    Image::FileType_t found = Image::TYPE_PNG;
    QCOMPARE(Image::getFileType(f->file(QStringLiteral("image.bin"), content), &found), type != Image::TYPE_UNKNOWN);
    QCOMPARE(int(found), type);
    // Not a file at all: no answer, no blocking.
    QVERIFY(!Image::getFileType(f->dir.path(), &found));
    QVERIFY(!Image::getFileType(f->dir.filePath(QStringLiteral("missing.png")), &found));
}
