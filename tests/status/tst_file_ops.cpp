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

QString yes(bool b)
{
    return b ? QStringLiteral("true") : QStringLiteral("false");
}

QString joined(const std::vector<QString> &list)
{
    QStringList all;
    for (const QString &s : list)
        all << s;
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
    bool isAppModeChangePossible(unsigned int mode) override
    {
        note(QStringLiteral("possible(%1)").arg(mode));
        return changePossible;
    }
    void beforeModeChange(unsigned int mode) override { note(QStringLiteral("before(%1)").arg(mode)); }
    void afterModeChange(unsigned int mode) override { note(QStringLiteral("after(%1)").arg(mode)); }
    bool canExitProgram() override { return true; }
    void exitProgram() override {}
    void commitData() override {}
    bool cleanupInconsistentState() override
    {
        note(QStringLiteral("cleanup"));
        return false;
    }
    bool isEmpty() override
    {
        note(QStringLiteral("isEmpty"));
        return empty;
    }
    std::vector<const char *> getAdditionalSelectionNames() override
    {
        note(QStringLiteral("selectionNames"));
        return {"probe", "scan"};
    }
    std::vector<QString> getSelectedData(const char *selection) override
    {
        note(QStringLiteral("selected(%1)").arg(QLatin1String(selection)));
        return {tag("sel")};
    }
    std::vector<QString> getAllData() override
    {
        note(QStringLiteral("allData"));
        return {tag("a"), tag("b")};
    }
    bool isDataModified(const QString &name) const override
    {
        note(QStringLiteral("modified(%1)").arg(name));
        return true;
    }
    std::vector<QString> getAllFileNameExtensions() override { return extensions; }
    QString getFileName(const QString &name) override
    {
        note(QStringLiteral("fileName(%1)").arg(name));
        return tag("file");
    }
    bool isFileNameValid(const QString &fileName) const override
    {
        note(QStringLiteral("valid(%1)").arg(fileName));
        return true;
    }
    QString getFileNameExtension(const std::vector<QString> &names) override
    {
        note(QStringLiteral("extensionOfList(%1)").arg(names.size()));
        return tag("list");
    }
    QString getFileNameExtension(const QString &name) override
    {
        note(QStringLiteral("extension(%1)").arg(name));
        return tag("ext");
    }
    bool canOpenFile(const std::vector<char> &firstBytes) override
    {
        note(QStringLiteral("canOpen(%1)").arg(firstBytes.size()));
        return !magic.isEmpty() && checkMagicHeader(firstBytes, magic);
    }
    bool canOpenImage() const override
    {
        note(QStringLiteral("canOpenImage"));
        return opensImages;
    }
    bool openFile(const QString &fileName, QString *second, QString *errorCode, ErrorLog *) override
    {
        note(QStringLiteral("open(%1)").arg(QFileInfo(fileName).fileName()));
        *second = tag("second");
        *errorCode = tag("code");
        return true;
    }
    bool isSaveSensitive() const override { return noteTrue("saveSensitive"); }
    bool saveFile(const QString &name, const QString &fileName, QString *errorCode, ErrorLog *) override
    {
        note(QStringLiteral("save(%1,%2)").arg(name, fileName));
        *errorCode = tag("code");
        return true;
    }
    bool isSaveAsSensitive() const override { return noteTrue("saveAsSensitive"); }
    bool isExportC3DSensitive() const override { return noteTrue("exportSensitive"); }
    bool isSaveProjectAsSensitive() const override { return noteTrue("saveProjectSensitive"); }
    bool saveFileAsRecent(const std::vector<QString> &names, const QString &fileName, RenameType_t rename,
                          QString *recentName, QString *errorCode, ErrorLog *) override
    {
        note(QStringLiteral("saveAsRecent(%1,%2,%3)").arg(names.size()).arg(fileName).arg(int(rename)));
        *recentName = tag("recent");
        *errorCode = tag("code");
        return true;
    }
    bool isCloseSensitive() const override { return noteTrue("closeSensitive"); }
    bool closeData(const std::vector<QString> &names, QString *errorCode, ErrorLog *) override
    {
        note(QStringLiteral("close(%1)").arg(names.size()));
        *errorCode = tag("code");
        return true;
    }
    bool isCopyToClipboardSensitive() const override { return noteTrue("copySensitive"); }
    bool copyToClipboard(const std::vector<QString> &names, const std::vector<QString> &formats,
                         QString *errorCode, ErrorLog *) const override
    {
        note(QStringLiteral("copy(%1,%2)").arg(names.size()).arg(formats.size()));
        *errorCode = tag("code");
        return true;
    }
    bool pasteFromClipboard(const std::vector<QString> &files, const std::vector<QString> &second,
                            QString *third, QString *errorCode, ErrorLog *) override
    {
        note(QStringLiteral("paste(%1,%2)").arg(files.size()).arg(second.size()));
        *third = tag("third");
        *errorCode = tag("code");
        return true;
    }
    StageActive_t isStageActive(const QString &stage) override
    {
        note(QStringLiteral("stageActive(%1)").arg(stage));
        return stageAnswer;
    }
    std::vector<QString> getStageLoopStages(const QString &name, StageLoopStage_t stage) override
    {
        note(QStringLiteral("loopStages(%1,%2)").arg(name).arg(int(stage)));
        return loopStages;
    }
    StageIdentifier getActualStageIdentifier() override { return StageIdentifier(int(getLocalMode()) * 10); }
    std::vector<int> getStageNumbers(QString name, ExplorerPosition_t position, int index) override
    {
        note(QStringLiteral("stageNumbers(%1,%2,%3)").arg(name).arg(int(position)).arg(index));
        return {int(getLocalMode()), index};
    }

    bool changePossible = true;
    bool empty = true;
    bool opensImages = false;
    QString magic; // canOpenFile answers whether the file starts with it
    std::vector<QString> extensions;
    StageActive_t stageAnswer = STAGE_UNKNOWN;
    std::vector<QString> loopStages;

private:
    QString tag(const char *what) const { return QStringLiteral("%1:%2").arg(getLocalMode()).arg(QLatin1String(what)); }
    void note(const QString &what) const { _journal->append(QStringLiteral("%1:%2").arg(getLocalMode()).arg(what)); }
    bool noteTrue(const char *what) const
    {
        note(QLatin1String(what));
        return true;
    }
    QStringList *_journal;
};

const QByteArray PNG_HEADER("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16);

} // namespace

Q_DECLARE_METATYPE(Call)

struct FileOpsFixture
{
    AppStatusManager manager;
    QStringList journal;
    QTemporaryDir dir;
    std::map<unsigned int, RecordingStatus *> types;

    // Registers the types; the manager owns them.
    void add(std::initializer_list<unsigned int> modes)
    {
        for (unsigned int mode : modes) {
            auto *status = new RecordingStatus(mode, &journal);
            types[mode] = status;
            manager.setStatusData(mode, status);
        }
    }
    // Makes `mode` active and forgets what the change wrote.
    void activate(unsigned int mode)
    {
        manager.setAppMode(mode);
        journal.clear();
    }
    QString file(const QString &name, const QByteArray &data)
    {
        const QString path = dir.filePath(name);
        QFile f(path);
        if (!f.open(QIODevice::WriteOnly) || f.write(data) != data.size())
            qFatal("cannot write %s", qPrintable(path));
        return path;
    }
    QStringList callsMatching(const QString &part) const { return journal.filter(part); }
};

static std::unique_ptr<FileOpsFixture> f;

void TestFileOps::init()
{
    f = std::make_unique<FileOpsFixture>();
}

void TestFileOps::cleanup()
{
    f.reset();
}

// --- forwarding, addressing, combining -------------------------------------------

void TestFileOps::forwardsToTheActiveType_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QString>("called");
    QTest::addColumn<QString>("result");
    const std::vector<QString> two{QStringLiteral("p"), QStringLiteral("q")};
    const std::vector<QString> one{QStringLiteral("csv")};

    QTest::newRow("isSaveSensitive") << Call([](AppStatusManager &m) { return yes(m.isSaveSensitive()); })
                                     << "2:saveSensitive" << "true";
    QTest::newRow("saveFile") << Call([](AppStatusManager &m) {
        QString code;
        ErrorLog log;
        return yes(m.saveFile(QStringLiteral("part"), QStringLiteral("part.gap"), &code, &log)) + " " + code;
    }) << "2:save(part,part.gap)" << "true 2:code";
    QTest::newRow("isSaveAsSensitive") << Call([](AppStatusManager &m) { return yes(m.isSaveAsSensitive()); })
                                       << "2:saveAsSensitive" << "true";
    QTest::newRow("isExportC3DSensitive")
        << Call([](AppStatusManager &m) { return yes(m.isExportC3DSensitive()); }) << "2:exportSensitive"
        << "true";
    QTest::newRow("isSaveProjectAsSensitive")
        << Call([](AppStatusManager &m) { return yes(m.isSaveProjectAsSensitive()); }) << "2:saveProjectSensitive"
        << "true";
    QTest::newRow("isCloseSensitive") << Call([](AppStatusManager &m) { return yes(m.isCloseSensitive()); })
                                      << "2:closeSensitive" << "true";
    QTest::newRow("closeData") << Call([two](AppStatusManager &m) {
        QString code;
        ErrorLog log;
        return yes(m.closeData(two, &code, &log)) + " " + code;
    }) << "2:close(2)" << "true 2:code";
    QTest::newRow("isCopyToClipboardSensitive")
        << Call([](AppStatusManager &m) { return yes(m.isCopyToClipboardSensitive()); }) << "2:copySensitive"
        << "true";
    QTest::newRow("copyToClipboard") << Call([two, one](AppStatusManager &m) {
        QString code;
        ErrorLog log;
        return yes(m.copyToClipboard(two, one, &code, &log)) + " " + code;
    }) << "2:copy(2,1)" << "true 2:code";
    QTest::newRow("saveFileAs goes to saveFileAsRecent") << Call([two](AppStatusManager &m) {
        QString recent, code;
        ErrorLog log;
        return yes(m.saveFileAs(two, QStringLiteral("a.gap"), RENAME_COPY, &recent, &code, &log)) + " " + recent
               + " " + code;
    }) << "2:saveAsRecent(2,a.gap,2)" << "true 2:recent 2:code";
    QTest::newRow("getSelectedData")
        << Call([](AppStatusManager &m) { return joined(m.getSelectedData("probe")); }) << "2:selected(probe)"
        << "2:sel";
    QTest::newRow("getAdditionalSelectionNames") << Call([](AppStatusManager &m) {
        QStringList names;
        for (const char *n : m.getAdditionalSelectionNames())
            names << QLatin1String(n);
        return names.join(QLatin1Char(','));
    }) << "2:selectionNames" << "probe,scan";
    QTest::newRow("cleanupInconsistentState")
        << Call([](AppStatusManager &m) { return yes(m.cleanupInconsistentState()); }) << "2:cleanup" << "false";
    QTest::newRow("getStageNumbers") << Call([](AppStatusManager &m) {
        QStringList numbers;
        for (int n : m.getStageNumbers(QStringLiteral("s"), StatusData::EXPLORER_AFTER, 5))
            numbers << QString::number(n);
        return numbers.join(QLatin1Char(','));
    }) << "2:stageNumbers(s,2,5)" << "2,5";
    QTest::newRow("getActualStageIdentifier") << Call([](AppStatusManager &m) {
        return QString::number(m.getActualStageIdentifier().getValue());
    }) << QString() << "20";
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

void TestFileOps::addressedOperationsReachTheNamedType()
{
    f->add({1, 2});
    f->activate(2);
    AppStatusManager &m = f->manager;
    QVERIFY(m.isDataModified(1, QStringLiteral("part")));
    QCOMPARE(m.getFileName(1, QStringLiteral("part")), QStringLiteral("1:file"));
    QVERIFY(m.isFileNameValid(1, QStringLiteral("x.gap")));
    QCOMPARE(m.getFileNameExtension(1, QStringLiteral("part")), QStringLiteral("1:ext"));
    QCOMPARE(m.getFileNameExtension(1, std::vector<QString>{QStringLiteral("a"), QStringLiteral("b")}),
             QStringLiteral("1:list"));
    QCOMPARE(joined(m.getAllData(1)), QStringLiteral("1:a,1:b"));
    QCOMPARE(f->journal, QStringList({"1:modified(part)", "1:fileName(part)", "1:valid(x.gap)", "1:extension(part)",
                                      "1:extensionOfList(2)", "1:allData"}));
}

void TestFileOps::unregisteredTypeThrowsNamingTheOperation_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QString>("function");
    // Types 1 and 2 exist; the active mode 0 (as constructed) has none, and
    // the addressed operations ask for type 7.
    const std::vector<QString> none;
    QTest::newRow("isSaveSensitive") << Call([](AppStatusManager &m) { return yes(m.isSaveSensitive()); })
                                     << "isSaveSensitive";
    QTest::newRow("saveFile") << Call([](AppStatusManager &m) {
        QString code;
        return yes(m.saveFile(QString(), QString(), &code, nullptr));
    }) << "saveFile";
    QTest::newRow("isSaveAsSensitive") << Call([](AppStatusManager &m) { return yes(m.isSaveAsSensitive()); })
                                       << "isSaveAsSensitive";
    QTest::newRow("isExportC3DSensitive")
        << Call([](AppStatusManager &m) { return yes(m.isExportC3DSensitive()); }) << "isExportC3DSensitive";
    QTest::newRow("isSaveProjectAsSensitive")
        << Call([](AppStatusManager &m) { return yes(m.isSaveProjectAsSensitive()); }) << "isSaveProjectAsSensitive";
    QTest::newRow("isCloseSensitive") << Call([](AppStatusManager &m) { return yes(m.isCloseSensitive()); })
                                      << "isCloseSensitive";
    QTest::newRow("closeData") << Call([none](AppStatusManager &m) {
        QString code;
        return yes(m.closeData(none, &code, nullptr));
    }) << "closeData";
    QTest::newRow("isCopyToClipboardSensitive")
        << Call([](AppStatusManager &m) { return yes(m.isCopyToClipboardSensitive()); })
        << "isCopyToClipboardSensitive";
    QTest::newRow("copyToClipboard") << Call([none](AppStatusManager &m) {
        QString code;
        return yes(m.copyToClipboard(none, none, &code, nullptr));
    }) << "copyToClipboard";
    QTest::newRow("saveFileAs") << Call([none](AppStatusManager &m) {
        QString recent, code;
        return yes(m.saveFileAs(none, QString(), RENAME_NONE, &recent, &code, nullptr));
    }) << "saveFileAs";
    QTest::newRow("getSelectedData") << Call([](AppStatusManager &m) { return joined(m.getSelectedData("")); })
                                     << "getSelectedData";
    QTest::newRow("getAdditionalSelectionNames") << Call([](AppStatusManager &m) {
        return QString::number(m.getAdditionalSelectionNames().size());
    }) << "getAdditionalSelectionNames";
    QTest::newRow("isDataModified") << Call([](AppStatusManager &m) { return yes(m.isDataModified(7, "a")); })
                                    << "isDataModified";
    QTest::newRow("getFileName") << Call([](AppStatusManager &m) { return m.getFileName(7, "a"); })
                                 << "getFileName";
    QTest::newRow("isFileNameValid") << Call([](AppStatusManager &m) { return yes(m.isFileNameValid(7, "a")); })
                                     << "isFileNameValid";
    QTest::newRow("getFileNameExtension of a name")
        << Call([](AppStatusManager &m) { return m.getFileNameExtension(7, QStringLiteral("a")); })
        << "getFileNameExtension";
    QTest::newRow("getFileNameExtension of a list")
        << Call([none](AppStatusManager &m) { return m.getFileNameExtension(7, none); }) << "getFileNameExtension";
    QTest::newRow("getAllData") << Call([](AppStatusManager &m) { return joined(m.getAllData(7)); })
                                << "getAllData";
    // A file that type 1 reads: the mode change asks the missing active type.
    QTest::newRow("openFile") << Call([](AppStatusManager &m) {
        QString second, code;
        return yes(m.openFile(f->file(QStringLiteral("one.dat"), "ONE"), &second, &code, nullptr));
    }) << "openFile";
    QTest::newRow("pasteFromClipboard") << Call([none](AppStatusManager &m) {
        QString third, code;
        const std::vector<QString> files{f->file(QStringLiteral("one.dat"), "ONE")};
        return yes(m.pasteFromClipboard(files, none, &third, &code, nullptr));
    }) << "pasteFromClipboard";
}

void TestFileOps::unregisteredTypeThrowsNamingTheOperation()
{
    QFETCH(Call, call);
    QFETCH(QString, function);
    f->add({1, 2});
    f->types[1]->magic = QStringLiteral("ONE");
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
    ErrorLog log;
    QVERIFY(f->manager.readFileContents(path, &bytes, &log));
    QVERIFY(log.isEmpty());
    QCOMPARE(int(bytes.size()), expected);
    QVERIFY(std::equal(bytes.begin(), bytes.end(), pattern.constBegin()));
}

void TestFileOps::unreadableFilesAreReportedNotRead_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("missing") << "missing";
    QTest::newRow("directory") << "directory";
    QTest::newRow("no permission") << "locked";
}

void TestFileOps::unreadableFilesAreReportedNotRead()
{
    QFETCH(QString, kind);
    QString path = f->dir.filePath(QStringLiteral("sub/none.dat"));
    if (kind == QLatin1String("directory")) {
        path = f->dir.filePath(QStringLiteral("folder"));
        QVERIFY(QDir().mkpath(path));
    } else if (kind == QLatin1String("locked")) {
        path = f->file(QStringLiteral("locked.dat"), "ONE");
        QFile::setPermissions(path, QFileDevice::Permissions());
        if (QFile(path).open(QIODevice::ReadOnly))
            QSKIP("this user reads every file");
    }
    std::vector<char> bytes{'x'};
    ErrorLog log;
    QVERIFY(!f->manager.readFileContents(path, &bytes, &log));
    QCOMPARE(log.getEntries(),
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
    const QString path = f->file(QStringLiteral("part.zal"), "ZAL points\n1 2 3\n");

    QString second, code;
    ErrorLog log;
    QVERIFY(f->manager.openFile(path, &second, &code, &log));
    QCOMPARE(f->manager.getAppMode(), chosen);
    QCOMPARE(second, QStringLiteral("%1:second").arg(chosen));
    QCOMPARE(code, QStringLiteral("%1:code").arg(chosen));
    QVERIFY(log.isEmpty());
    QCOMPARE(f->journal.last(), QStringLiteral("%1:open(part.zal)").arg(chosen));
    QCOMPARE(f->callsMatching(QStringLiteral(":possible(")).size(), chosen == active ? 0 : 1);
}

void TestFileOps::openTellsEveryTypeBeforeTheChosenOneOpens()
{
    f->add({1, 2});
    f->types[2]->magic = QStringLiteral("ZAL");
    f->activate(1);
    const QString path = f->file(QStringLiteral("short.zal"), "ZAL!");
    QSignalSpy data(&f->manager, &AppStatusManager::dataChangedSignal);
    QSignalSpy selection(&f->manager, &AppStatusManager::selectionChangedSignal);
    QString second, code;
    ErrorLog log;
    QVERIFY(f->manager.openFile(path, &second, &code, &log));
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
    QTest::newRow("missing") << "missing" << QByteArray() << "GAPP-0014" << "cannot open file for reading %1";
    QTest::newRow("directory") << "directory" << QByteArray() << "GAPP-0014" << "cannot open file for reading %1";
    QTest::newRow("unknown") << "file" << QByteArray("what is this") << "GAPP-0007"
                             << "cannot identify file type for file %1";
    QTest::newRow("empty") << "file" << QByteArray() << "GAPP-0007" << "cannot identify file type for file %1";
    QTest::newRow("image nobody opens") << "file" << PNG_HEADER << "GAPP-0007"
                                        << "cannot identify image type for file %1";
    QTest::newRow("active type refuses the change")
        << "file" << QByteArray("ZAL points") << "GAPP-0008" << "open file %1";
}

void TestFileOps::openFailures()
{
    QFETCH(QString, kind);
    QFETCH(QByteArray, content);
    QFETCH(QString, code);
    QFETCH(QString, message);
    f->add({1, 2});
    f->types[2]->magic = QStringLiteral("ZAL");
    f->types[1]->changePossible = false;
    f->activate(1);
    QString path = f->dir.filePath(QStringLiteral("nowhere/part.zal"));
    if (kind == QLatin1String("directory")) {
        path = f->dir.filePath(QStringLiteral("folder"));
        QVERIFY(QDir().mkpath(path));
    } else if (kind == QLatin1String("file")) {
        path = f->file(QStringLiteral("part.zal"), content);
    }

    QString second, errorCode;
    ErrorLog log;
    QVERIFY(!f->manager.openFile(path, &second, &errorCode, &log));
    QCOMPARE(errorCode, code);
    QCOMPARE(log.getEntries(), QStringList{message.arg(QDir::toNativeSeparators(path))});
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
    QString second, code;
    ErrorLog log;
    QVERIFY(f->manager.openFile(path, &second, &code, &log));
    QCOMPARE(f->manager.getAppMode(), 2u);
    // Images never reach the byte test, even of a type that would say yes.
    QVERIFY(f->callsMatching(QStringLiteral(":canOpen(")).isEmpty());
    QCOMPARE(f->journal.last(), QStringLiteral("2:open(photo.bin)"));

    // The active type that opens images keeps them; the questioning stops there.
    f->activate(3);
    QVERIFY(f->manager.openFile(path, &second, &code, &log));
    QCOMPARE(f->manager.getAppMode(), 3u);
    QCOMPARE(f->journal, QStringList({"1:canOpenImage", "2:canOpenImage", "3:canOpenImage", "3:open(photo.bin)"}));
}

void TestFileOps::fileTypeIsAnsweredWithoutModeChange()
{
    f->add({1, 2});
    f->types[2]->magic = QStringLiteral("ZAL");
    f->activate(1);
    ErrorLog log;
    QVERIFY(f->manager.getFileType(f->file(QStringLiteral("a.zal"), "ZAL"), &log));
    const QString unknown = f->file(QStringLiteral("b.txt"), "text");
    QVERIFY(!f->manager.getFileType(unknown, &log));
    QCOMPARE(f->manager.getAppMode(), 1u);
    QVERIFY(f->callsMatching(QStringLiteral(":possible(")).isEmpty());
    QCOMPARE(log.getEntries(),
             QStringList{QStringLiteral("cannot identify file type for file ") + QDir::toNativeSeparators(unknown)});
}

void TestFileOps::pasteChoosesByTheFirstFile()
{
    f->add({1, 2});
    f->types[2]->magic = QStringLiteral("ZAL");
    f->activate(1);
    const std::vector<QString> files{f->file(QStringLiteral("a.zal"), "ZAL"), f->file(QStringLiteral("b.txt"), "?")};
    QString third, code;
    ErrorLog log;
    QVERIFY(f->manager.pasteFromClipboard(files, {QStringLiteral("x")}, &third, &code, &log));
    QCOMPARE(f->manager.getAppMode(), 2u);
    QCOMPARE(third, QStringLiteral("2:third"));
    QCOMPARE(code, QStringLiteral("2:code"));
    QCOMPARE(f->journal.last(), QStringLiteral("2:paste(2,1)"));

    // A first file nobody reads is not pasted, whatever follows it.
    const std::vector<QString> reversed{files[1], files[0]};
    QVERIFY(!f->manager.pasteFromClipboard(reversed, {}, &third, &code, &log));
    QCOMPARE(code, QStringLiteral("GAPP-0007"));
    QCOMPARE(log.getEntries(),
             QStringList{QStringLiteral("cannot identify file type for file ") + QDir::toNativeSeparators(files[1])});
}

void TestFileOps::pasteRefusedWithoutLogLine()
{
    f->add({1, 2});
    f->types[2]->magic = QStringLiteral("ZAL");
    f->types[1]->changePossible = false;
    f->activate(1);
    QString third, code;
    ErrorLog log;
    QVERIFY(!f->manager.pasteFromClipboard({f->file(QStringLiteral("a.zal"), "ZAL")}, {}, &third, &code, &log));
    QCOMPARE(code, QStringLiteral("GAPP-0008"));
    QVERIFY(log.isEmpty());
    QCOMPARE(f->manager.getAppMode(), 1u);
    QVERIFY(f->callsMatching(QStringLiteral(":paste(")).isEmpty());
}

void TestFileOps::pasteWithoutFilesIsAProgrammingError()
{
    f->add({1});
    f->activate(1);
    QString third, code;
    try {
        f->manager.pasteFromClipboard({}, {}, &third, &code, nullptr);
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
