#include "gapp_application.h"
#include "tst_background.h"
#include "tst_callback_thread.h"
#include "tst_shell_command.h"
#include "tst_execute.h"
#include "tst_event_filter.h"
#include "gapp_config_keys_p.h"
#include "gapp_init.h"
#include "gapp_main_window.h"
#include "gapp_safemode.h"
#include "gapp_status_data.h"
#include "gapp_status_mgr.h"
#include "zal_cfg.h"
#include "zal_cfg_array.h"
#include "zal_dialogs.h"
#include "zal_get_selection.h"
#include "zal_os.h"
#include "zal_services.h"
#include "zal_translate.h"
#include "test_util.h"
#include <QDateTime>
#include <QProcess>
#include <optional>
#include <set>

using namespace Zal;
using TestUtil::captureStdout;
using TestUtil::writeFile;
using namespace Zal::GApp;

namespace {

QStringList keysOf(const CfgNode *node)
{
    QStringList keys;
    for (const auto &entry : node->getItems())
        keys << entry.first.toQString();
    return keys;
}

// One application type whose answers the tests set.
class FakeStatus : public StatusData
{
public:
    FakeStatus(unsigned int mode, int *commitCount) : StatusData(mode, QString()), commits(commitCount) {}
    QString getMainMenuName() override { return QString(); }
    bool isAppModeChangePossible(unsigned int) override { return true; }
    bool canExitProgram() override { return canExit; }
    void exitProgram() override {}
    void commitData() override { ++*commits; }
    bool isEmpty() override { return data.empty(); }
    std::vector<const char *> getAdditionalSelectionNames() override { return {}; }
    std::vector<QString> getSelectedData(const char *) override { return data; }
    std::vector<QString> getAllData() override { return data; }
    bool isDataModified(const QString &name) const override { return modified.count(name) != 0; }
    bool canExit = true;
    std::vector<QString> data;
    std::set<QString> modified;
    int *commits;
};

// The ProgError that `fn` throws, none when it returns.
template <class F> std::optional<ProgError> thrown(F fn)
{
    try {
        fn();
    } catch (const ProgError &e) {
        return e;
    }
    return std::nullopt;
}

template <class F> QString thrownMessage(F fn)
{
    const auto e = thrown(fn);
    return e ? e->getMessage() : QStringLiteral("<no ProgError>");
}

struct SessionSaver : SaveSessionHandler
{
    explicit SessionSaver(bool canSave = true, bool saveSucceeds = true) : can(canSave), succeeds(saveSucceeds) {}
    bool canSaveSession() override { return can; }
    bool saveSession() override { ++saves; return succeeds; }
    bool can, succeeds;
    int saves = 0;
};

} // namespace

class TestShell : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> _userDir, _softwareDir, _workDir;
    QString _oldCwd;
    int _commits = 0; // commitData() calls of the FakeStatus types

    // A type registered with the open window's status manager.
    FakeStatus *addType(unsigned int mode)
    {
        auto *status = new FakeStatus(mode, &_commits);
        MainWindow::smgr->setStatusData(mode, status);
        return status;
    }

    QString userFile(const QString &suffix) const { return _userDir->filePath(ZalInit::getApplicationName() + suffix); }
    QString layoutIn(const QString &sub) const { return _softwareDir->filePath(sub + "/" + ZalInit::getApplicationName() + ".xml"); }

    // A main window on a fresh library node; the arguments stay readable.
    MainWindow *openWindow(QStringList &args) { return new MainWindow("shell test", new AppStatusManager, InitLibrary(), args); }
    MainWindow *openWindow(QStringList &&args = {"prog"}) { return openWindow(args); }

private slots:
    void init()
    {
        _userDir = std::make_unique<QTemporaryDir>();
        qputenv("ZAL_USER_CONFIG_DIR", _userDir->path().toLocal8Bit());
        qputenv("ZAL_SHARED_CONFIG_DIR", QByteArray("/nonexistent-shared"));
        QDir(_userDir->path()).mkpath(QStringLiteral("tmp"));
        // The layout file below the software directory, the last place searched.
        _softwareDir = std::make_unique<QTemporaryDir>();
        qputenv("ZAL_SOFTWARE_DIR", _softwareDir->path().toLocal8Bit());
        QDir(_softwareDir->path()).mkpath(QStringLiteral("layout"));
        QDir(_softwareDir->path()).mkpath(QStringLiteral("config"));
        writeFile(layoutIn(QStringLiteral("layout")), "<layout><software/></layout>");
        _workDir = std::make_unique<QTemporaryDir>();
        _oldCwd = QDir::currentPath();
        QDir::setCurrent(_workDir->path());
        ZalInit::_app = 0;
        _commits = 0;
    }
    void cleanup()
    {
        delete MainWindow::main_win;
        OS::setMaxVirtualMemorySize(2147483647);
        QDir::setCurrent(_oldCwd);
        _userDir.reset(), _softwareDir.reset(), _workDir.reset();
    }
    void initLibraryAddsTheItemsInOrder()
    {
        std::unique_ptr<CfgNode> node(InitLibrary());
        QCOMPARE(node->getKey().toQString(), ZalInit::getApplicationName());
        QCOMPARE(keysOf(node.get()),
                 QStringList({QString::fromLatin1(CFG_LEVEL_ENTRY), "Language", "UnitEntry", "UserDirectory",
                              "ImageFileFormat", "VideoFileFormat", "UseLargeIcons", "VirtualMemoryLimit",
                              "IgnoredSystemTemplates", "MainWinLayout", "RemoteControl", "RenderOptions"}));
        QCOMPARE(keysOf(node->getNode("UserDirectory")),
                 QStringList({"RecentFileNames2", "RecentFileCommands2", "RecentFileParams2", "RecentFileAppModes2",
                              "RecentFileVersion", "ProjectBase", "TempDir", "ClipboardDir"}));
        QCOMPARE(keysOf(node->getNode("MainWinLayout")), QStringList({"MainArea", "Toolbars3"}));
        QCOMPARE(node->getNode("RemoteControl")->getItems().size(), size_t(15));
        QVERIFY(node->getNode("RenderOptions")->getItems().empty());
    }
    void initLibraryDefaults()
    {
        std::unique_ptr<CfgNode> node(InitLibrary());
        CfgInt *level = node->getInt(CFG_LEVEL_ENTRY);
        QCOMPARE(level->getValue(), 0);
        QCOMPARE(level->getMax(), 1);
        QCOMPARE(int(level->getFlags()), 0);
        QCOMPARE(node->getList("Language")->getValue(), Translator::getDefaultLanguage());
        QVERIFY(node->getBool(CFG_UNIT_NODE)->getValue());
        for (const char *key : {CFG_RECENT_FILE_NAMES, CFG_RECENT_FILE_COMMANDS, CFG_RECENT_FILE_PARAMS,
                                CFG_RECENT_FILE_APPMODES, "MainWinLayout/MainArea", "MainWinLayout/Toolbars3"}) {
            auto *array = node->getArray<QString>(key);
            QVERIFY2(array, key);
            QCOMPARE(array->size(), 0);
            QVERIFY(!array->isFixedSize());
            QCOMPARE(int(array->getFlags()), 2);
        }
        QCOMPARE(node->getUInt("UserDirectory/RecentFileVersion")->getMax(), 4294967295u);
        QCOMPARE(node->getFileName(CFG_PROJECT_BASE)->getValue(), Dir::documentsPath());
        QCOMPARE(node->getFileName(CFG_TEMP_DIR)->getValue(), _userDir->path() + "/tmp");
        QCOMPARE(node->getFileName(CFG_CLIPBOARD_DIR)->getValue(), _userDir->path());
        QCOMPARE(node->getList(CFG_IMAGE_FILE_FORMAT)->getValue(), 2);
        QCOMPARE(node->getList(CFG_IMAGE_FILE_FORMAT)->getEntries(), std::vector<QString>({"TIFF", "JPEG", "PNG"}));
        QCOMPARE(node->getList(CFG_VIDEO_FILE_FORMAT)->getValue(), 1);
        QVERIFY(!node->getBool("UseLargeIcons")->getValue());
        CfgDbl *vm = node->getDbl("VirtualMemoryLimit");
        QCOMPARE(vm->getValue(), 0.0);
        QCOMPARE(vm->getMax(), 100.0);
        QCOMPARE(int(vm->getFlags()), 5);
        QCOMPARE(int(node->getArray<QString>(CFG_IGNORED_SYSTEM_TEMPLATES)->getFlags()), 0);
        QCOMPARE(node->getInt("RemoteControl/MeasurementKeycode")->getValue(), 0x01000017);
        QCOMPARE(node->getInt("RemoteControl/UndoKeycode")->getValue(), 0x01000016);
        QCOMPARE(node->getInt("RemoteControl/ReferenceKeycode")->getValue(), 0x2E);
        QCOMPARE(node->getFileName("RemoteControl/OkSound2")->getValue(), QStringLiteral("sounds/ok.wav"));
        QCOMPARE(node->getFileName("RemoteControl/CreateSound2")->getValue(), QStringLiteral("sounds/create.wav"));
        QCOMPARE(int(node->getFileName("RemoteControl/CreateSound2")->getMode()), 2);
    }
    void applicationTypeDecidesLevelFlagAndVideoFormats()
    {
        ZalInit::_app = 9;
        std::unique_ptr<CfgNode> node(InitLibrary());
        QCOMPARE(int(node->getInt(CFG_LEVEL_ENTRY)->getFlags()), 1);
        QVERIFY(!node->getList(CFG_VIDEO_FILE_FORMAT));
        ZalInit::_app = 11;
        node.reset(InitLibrary());
        QVERIFY(node->getList(CFG_VIDEO_FILE_FORMAT));
    }
    void initLibraryRegistersErrorCodesAndInfo()
    {
        std::unique_ptr<CfgNode> node(InitLibrary());
        QCOMPARE(GTools::ErrorMessageContainer::getCodes(),
                 QStringList({"GAPP-0002", "GAPP-0003", "GAPP-0004", "GAPP-0016", "GAPP-0009", "GAPP-0007",
                              "GAPP-0008", "GAPP-0011", "GAPP-0012", "GAPP-0013", "GAPP-0014", "GAPP-0015"}));
        QCOMPARE(GTools::ErrorMessageContainer::getText("GAPP-0002"), QStringLiteral("another fuction is active"));
        QCOMPARE(GTools::ErrorMessageContainer::getTextWt("GAPP-0016"),
                 QStringLiteral("command not allowed in this application mode wt"));
        QCOMPARE(GTools::InfoMessageContainer::getText("gapp_window_size_limited"),
                 QStringLiteral("the currently active renderer does not allow the window to be fully maximized."));
    }
    void libraryTextsComeFromTheCatalogue()
    {
        std::vector<QString> codes, names;
        Translator::getAllLanguages(codes, names);
        const int german = int(std::find(codes.begin(), codes.end(), QStringLiteral("de")) - codes.begin());
        QVERIFY(Translator::setLanguage(german));
        std::unique_ptr<CfgNode> node(InitLibrary());
        const QString text = GTools::ErrorMessageContainer::getText("GAPP-0011");
        const QString description = node->getBool("UseLargeIcons")->getDescription();
        QVERIFY(Translator::setLanguage(0));
        QCOMPARE(text, QStringLiteral("Abbruch durch den Benutzer"));
        QCOMPARE(description, QStringLiteral("Große Symbole verwenden"));
        // The list of languages is the entries of the language item.
        QCOMPARE(node->getList("Language")->getEntries(), names);
    }
    void arguments_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QStringList>("left");
        QTest::addColumn<QString>("configFile");
        QTest::addColumn<bool>("safemode");
        using L = QStringList;
        QTest::newRow("both") << L{"prog", "-config", "my.cfg", "-safemode"} << L{"prog"} << "my.cfg" << true;
        QTest::newRow("config last") << L{"prog", "-safemode", "-config"} << L{"prog", "-config"} << QString() << true;
        QTest::newRow("first only") << L{"prog", "-config", "a.cfg", "-config", "b.cfg"} << L{"prog", "-config", "b.cfg"}
                                    << "a.cfg" << false;
        QTest::newRow("program name is no option") << L{"-safemode"} << L{"-safemode"} << QString() << false;
    }
    void arguments()
    {
        QFETCH(QStringList, args);
        GTools::ScriptedDialogs dialogs;
        MainWindow *w = openWindow(args);
        QTEST(args, "left");
        QTEST(w->getConfigFileName(), "configFile");
        QTEST(w->isSafemode(), "safemode");
    }
    void secondMainWindowThrows()
    {
        openWindow();
        std::unique_ptr<CfgNode> node(InitLibrary());
        auto smgr = std::make_unique<AppStatusManager>();
        QStringList args{"prog"};
        QCOMPARE(thrownMessage([&] { MainWindow second("second", smgr.get(), node.get(), args); }),
                 QStringLiteral("trying to create second main window"));
        QVERIFY(MainWindow::main_win);
        QCOMPARE(MainWindow::main_win->getCaption(), QStringLiteral("shell test"));
    }
    void layoutSearchOrder()
    {
        auto absolute = [](const QString &path) { return QFileInfo(path).absoluteFilePath(); };
        QCOMPARE(absolute(openWindow()->getLayoutFileName()), absolute(layoutIn("layout")));
        delete MainWindow::main_win;
        writeFile(layoutIn("config"), "<layout/>");
        QCOMPARE(absolute(openWindow()->getLayoutFileName()), absolute(layoutIn("config")));
        delete MainWindow::main_win;
        writeFile(ZalInit::getApplicationName() + ".xml", "<layout/>");
        QCOMPARE(openWindow()->getLayoutFileName(), ZalInit::getApplicationName() + ".xml");
    }
    void layoutErrors()
    {
        QVERIFY(QFile::remove(layoutIn("layout")));
        const auto missing = thrown([&] { openWindow(); });
        QVERIFY(missing);
        QCOMPARE(missing->getMessage(), QStringLiteral("cannot read menu layout file"));
        QCOMPARE(missing->getFunction(), QStringLiteral("Zal::GApp::MainWindow::readLayout"));
        QVERIFY(!MainWindow::main_win);
        writeFile(layoutIn("layout"), "<layout>\n<menusection>\n  <menu </menusection>\n</layout>\n");
        const QString broken = thrownMessage([&] { openWindow(); });
        const QRegularExpression form(
            QStringLiteral("^cannot set contents of menu layout file: .+ in line 3 in column \\d+$"));
        QVERIFY2(form.match(broken).hasMatch(), qPrintable(broken));
        QVERIFY(!MainWindow::main_win);
    }
    void freshStartKeepsDefaults()
    {
        GTools::ScriptedDialogs dialogs;
        MainWindow *w = openWindow();
        QVERIFY(w->loadConfiguration());
        w->checkConfiguration();
        QVERIFY(dialogs.requests().empty());
        QVERIFY(!QFile::exists(userFile(".cfg.bad")));
    }
    void damagedFileIsKeptAndDefaultsStand()
    {
        writeFile(userFile(".cfg"), QByteArray("\x01\x02 not a configuration\n"));
        GTools::ScriptedDialogs dialogs;
        MainWindow *w = openWindow();
        QCOMPARE(TestUtil::readFile(userFile(".cfg.bad")), QByteArray("\x01\x02 not a configuration\n"));
        QCOMPARE(MainWindow::cfg->getInt(CFG_LEVEL_ENTRY)->getValue(), 0);
        QVERIFY(!MainWindow::cfg->getBool("UseLargeIcons")->getValue());
        w->checkConfiguration();
        QCOMPARE(int(dialogs.requests().size()), 1);
        QCOMPARE(dialogs.requests()[0].title, QStringLiteral("configuration error"));
        QCOMPARE(dialogs.requests()[0].text,
                 QStringLiteral("the configuration file is invalid. default values will be used."));
    }
    void saveWritesAFileThatLoadsBack()
    {
        MainWindow *w = openWindow();
        MainWindow::cfg->getBool("UseLargeIcons")->setValue(true);
        MainWindow::cfg->getInt(CFG_LEVEL_ENTRY)->setValue(1);
        MainWindow::cfg->getArray<QString>(CFG_RECENT_FILE_NAMES)->addValue(QStringLiteral("/data/part | 1.stl"));
        QSignalSpy saved(w, &MainWindow::saveConfigSignal);
        QVERIFY(w->saveConfiguration());
        QCOMPARE(saved.count(), 1);
        QVERIFY(!QFile::exists(ConfigFile::tempFileName(userFile(".cfg"))));
        std::unique_ptr<CfgNode> fresh(InitLibrary());
        bool found = false;
        QVERIFY(ConfigFile::load(fresh.get(), userFile(".cfg"), &found));
        QVERIFY(found);
        QVERIFY(fresh->getBool("UseLargeIcons")->getValue());
        QCOMPARE(fresh->getArray<QString>(CFG_RECENT_FILE_NAMES)->getValues(),
                 std::vector<QString>({"/data/part | 1.stl"}));
        // The editing level always starts at 0, whatever was saved.
        delete w;
        QVERIFY(openWindow());
        QCOMPARE(MainWindow::cfg->getInt(CFG_LEVEL_ENTRY)->getValue(), 0);
        QVERIFY(MainWindow::cfg->getBool("UseLargeIcons")->getValue());
    }
    void failedSaveLeavesNoTemporaryFile()
    {
        std::unique_ptr<CfgNode> node(InitLibrary());
        const QString missingDir = _userDir->filePath("no/such/dir/app.cfg");
        QVERIFY(!ConfigFile::save(node.get(), missingDir));
        QVERIFY(!QFile::exists(ConfigFile::tempFileName(missingDir)));
        // A directory in the file's place cannot be replaced: it stays.
        const QString blocked = _userDir->filePath("blocked.cfg");
        QVERIFY(QDir().mkpath(blocked));
        QVERIFY(!ConfigFile::save(node.get(), blocked));
        QVERIFY(QFileInfo(blocked).isDir());
        QVERIFY(!QFile::exists(ConfigFile::tempFileName(blocked)));
    }
    void twoProcessesUseDifferentTemporaryFiles()
    {
        const QString file = userFile(".cfg");
        QProcess child;
        child.start(QStringLiteral(ZAL_TEST_HELPER), {QStringLiteral("cfg-temp-name"), file});
        QVERIFY(child.waitForFinished(30000));
        const QList<QByteArray> out = child.readAllStandardOutput().trimmed().split(' ');
        QCOMPARE(out.size(), 2);
        const QString childTemp = QString::fromLocal8Bit(out[1]);
        QCOMPARE(childTemp, file + QStringLiteral("-tmp-") + QString::fromLatin1(out[0]));
        QVERIFY(childTemp != ConfigFile::tempFileName(file));
        QCOMPARE(ConfigFile::tempFileName(file), file + QStringLiteral("-tmp-%1").arg(OS::getPID()));
    }
    void processKilledWhileSavingLeavesALoadableFile()
    {
        const QString file = userFile(".cfg");
        {
            std::unique_ptr<CfgNode> node(InitLibrary());
            node->getBool("UseLargeIcons")->setValue(true);
            QVERIFY(ConfigFile::save(node.get(), file));
        }
        for (int round = 0; round < 3; ++round) {
            QProcess child;
            child.start(QStringLiteral(ZAL_TEST_HELPER), {QStringLiteral("cfg-save-loop"), file});
            QVERIFY(child.waitForStarted(30000));
            // The child announces every save it starts; kill it in the middle of one.
            QByteArray seen;
            while (!seen.contains("saving 2") && child.waitForReadyRead(30000))
                seen += child.readAllStandardOutput();
            QVERIFY(seen.contains("saving 2"));
            child.kill();
            QVERIFY(child.waitForFinished(30000));
            std::unique_ptr<CfgNode> node(InitLibrary());
            QVERIFY(node->load(file));
            QVERIFY(node->getBool("UseLargeIcons")->getValue());
        }
    }
    void recentFileLists_data()
    {
        QTest::addColumn<int>("names");
        QTest::addColumn<int>("commands");
        QTest::addColumn<unsigned>("version");
        QTest::addColumn<bool>("cleared");
        QTest::newRow("unequal") << 3 << 2 << 100u << true;
        QTest::newRow("old version") << 2 << 2 << 0u << true;
        QTest::newRow("consistent") << 2 << 2 << 100u << false;
    }
    void recentFileLists()
    {
        QFETCH(int, names);
        QFETCH(int, commands);
        QFETCH(unsigned, version);
        MainWindow *w = openWindow();
        CfgNode *cfg = MainWindow::cfg;
        for (int i = 0; i < names; ++i)
            for (const char *key : {CFG_RECENT_FILE_NAMES, CFG_RECENT_FILE_PARAMS, CFG_RECENT_FILE_APPMODES})
                cfg->getArray<QString>(key)->addValue(QString::number(i));
        for (int i = 0; i < commands; ++i)
            cfg->getArray<QString>(CFG_RECENT_FILE_COMMANDS)->addValue(QString::number(i));
        cfg->getUInt("UserDirectory/RecentFileVersion")->setValue(version);
        w->applyConfiguration(ZalString(WHOLE_CONFIG_CHANGED));
        QFETCH(bool, cleared);
        QCOMPARE(cfg->getArray<QString>(CFG_RECENT_FILE_NAMES)->size(), cleared ? 0 : names);
        QCOMPARE(cfg->getArray<QString>(CFG_RECENT_FILE_COMMANDS)->size(), cleared ? 0 : commands);
        QCOMPARE(cfg->getUInt("UserDirectory/RecentFileVersion")->getValue(), 100u);
    }
    void memoryLimit_data()
    {
        QTest::addColumn<double>("factor");
        QTest::addColumn<int>("memory");
        QTest::addColumn<int>("limit");
        QTest::newRow("off") << 0.0 << 8000000 << 2147483647;
        QTest::newRow("tiny") << 1e-60 << 8000000 << 2147483647;
        QTest::newRow("raised to the floor") << 0.001 << 8000000 << 65536;
        QTest::newRow("half") << 0.5 << 8000000 << 4000000;
        QTest::newRow("beyond int") << 100.0 << 2000000000 << 2147483647;
    }
    void memoryLimit()
    {
        QFETCH(double, factor);
        QFETCH(int, memory);
        QTEST(virtualMemoryLimit(factor, memory), "limit");
    }
    void applyPassesTheLimitAndTheSounds()
    {
        MainWindow *w = openWindow();
        QSignalSpy applied(w, &MainWindow::applyConfigSignal);
        MainWindow::cfg->getDbl("VirtualMemoryLimit")->setValue(50.0);
        MainWindow::cfg->getFileName("RemoteControl/UndoSound2")->setValue(QStringLiteral("/abs/undo.wav"));
        MainWindow::cfg->getFileName("RemoteControl/CreateSound2")->setValue(QString());
        MainWindow::cfg->getInt("RemoteControl/ReferenceKeycode")->setValue(0x41);
        w->applyConfiguration(ZalString("VirtualMemoryLimit"));
        QCOMPARE(applied.count(), 1);
        QCOMPARE(OS::getMaxVirtualMemorySize(), virtualMemoryLimit(50.0, OS::getSizeOfMemory()));
        QCOMPARE(Sound::getSoundFileName(0), ZalInit::getSoftwareDirectory() + "/config/sounds/ok.wav");
        QCOMPARE(Sound::getSoundFileName(10), QStringLiteral("/abs/undo.wav"));
        QCOMPARE(Sound::getSoundFileName(11), QString());
        QCOMPARE(RemoteKeyboardHandler::getReferenceKey(), 0x41);
        QCOMPARE(RemoteKeyboardHandler::getMeasurementKey(), 0x01000017);
        QCOMPARE(Token::getTempDir(), _userDir->path() + "/tmp");
    }
    void safemodeDisablesTheMemoryLimit()
    {
        auto saveHalfLimit = [&] {
            std::unique_ptr<CfgNode> node(InitLibrary());
            node->getDbl("VirtualMemoryLimit")->setValue(0.5);
            QVERIFY(ConfigFile::save(node.get(), userFile(".cfg")));
        };
        saveHalfLimit();
        const QByteArray out = captureStdout([&] { openWindow({"prog", "-safemode"}); });
        QVERIFY2(out.contains("): Safemode: disabling virtual memory limit\n"), out.constData());
        QCOMPARE(MainWindow::cfg->getDbl("VirtualMemoryLimit")->getValue(), 0.0);
        QCOMPARE(OS::getMaxVirtualMemorySize(), 2147483647);
        delete MainWindow::main_win; // saves the factor 0 back
        saveHalfLimit();
        const QByteArray quiet = captureStdout([&] { openWindow(); });
        QVERIFY(!quiet.contains("Safemode"));
        QCOMPARE(OS::getMaxVirtualMemorySize(), virtualMemoryLimit(0.5, OS::getSizeOfMemory()));
    }
    void missingTemporaryDirectoryIsReported()
    {
        GTools::ScriptedDialogs dialogs;
        MainWindow *w = openWindow();
        MainWindow::cfg->getFileName(CFG_TEMP_DIR)->setValue(_userDir->filePath("missing"));
        w->checkConfiguration();
        QCOMPARE(int(dialogs.requests().size()), 1);
        QCOMPARE(dialogs.requests()[0].text,
                 QStringLiteral("the configured temporary directory does not exist. set an existing and "
                                "writable directory in the preferences "));
    }
    void temporaryFilesOlderThan21DaysGo()
    {
        QTemporaryDir dir;
        const QDateTime now = QDateTime::currentDateTime();
        auto touch = [&](const QString &name, const QDateTime &when) {
            const QString path = dir.filePath(name);
            writeFile(path, "x");
            QFile f(path);
            QVERIFY(f.open(QIODevice::ReadWrite));
            QVERIFY(f.setFileTime(when, QFileDevice::FileModificationTime));
        };
        // Creation times are now; the cleaning looks 22 days ahead, so
        // "now" is as old as a file created 22 days ago.
        const QDateTime later = now.addDays(22);
        touch("old.tmp", now.addDays(-30));
        touch("recent.tmp", now.addDays(1)); // modified 21 days before `later`
        touch("readonly.tmp", now.addDays(-30));
        QFile::setPermissions(dir.filePath("readonly.tmp"), QFileDevice::ReadOwner);
        QVERIFY(QDir(dir.path()).mkpath("sub"));
        touch("sub/inner.tmp", now.addDays(-30));
        cleanTemporaryDirectory(dir.path(), later);
        QVERIFY(!QFile::exists(dir.filePath("old.tmp")));
        for (const char *kept : {"recent.tmp", "readonly.tmp", "sub/inner.tmp"})
            QVERIFY2(QFile::exists(dir.filePath(kept)), kept);
    }
    void singletonsRefuseASecondInstance()
    {
        struct Resolver : ResolveInterface { QString resolve(const QString &p) override { return p + "!"; } };
        struct Drop : DropInterface { void handleDrop(QList<QUrl> &) override {} };
        {
            SessionSaver first;
            QCOMPARE(thrownMessage([] { SessionSaver second; }), "trying to register second save session handler");
            QCOMPARE(SaveSessionHandler::ssh, static_cast<SaveSessionHandler *>(&first));
        }
        QVERIFY(!SaveSessionHandler::ssh);
        {
            QCOMPARE(ResolveInterface::resolveParameterString("a=1"), QStringLiteral("a=1"));
            Resolver first;
            QCOMPARE(thrownMessage([] { Resolver second; }), "ResolveInterface is a singleton class");
            QCOMPARE(ResolveInterface::resolveParameterString("a=1"), QStringLiteral("a=1!"));
            ResolveInterface::setResolveItems(false);
            QCOMPARE(ResolveInterface::resolveParameterString("a=1"), QStringLiteral("a=1"));
            ResolveInterface::setResolveItems(true);
        }
        auto *drop = new Drop;
        QCOMPARE(thrownMessage([] { Drop second; }), "Instance exists already");
        QCOMPARE(DropInterface::instance(), static_cast<DropInterface *>(drop));
        delete drop;
        Drop again;
        QCOMPARE(DropInterface::instance(), static_cast<DropInterface *>(&again));
        QCOMPARE(thrownMessage([] { Safemode::registerCallback(nullptr); }), "NULL callback");
    }
    void applicationSetsFontSubstitutions()
    {
        // Qt keeps substitutes in lower case.
        QCOMPARE(QFont::substitute(QStringLiteral("Luxi Sans")), QStringLiteral("arial"));
        QCOMPARE(QFont::substitute(QStringLiteral("Luxi Mono")), QStringLiteral("courier new"));
        QCOMPARE(QFont::substitute(QStringLiteral("Luxi Serif")), QStringLiteral("times new roman"));
        QVERIFY(!QApplication::desktopSettingsAware());
        auto *app = qobject_cast<Application *>(qApp);
        QVERIFY(app);
        QCOMPARE(app->myMouseButtons(), QFlags<Qt::MouseButton>(Qt::NoButton));
    }
    // The log-off decision: which dialog is asked, what the session manager gets.
    void logOff_data()
    {
        QTest::addColumn<bool>("modified");
        QTest::addColumn<bool>("interaction");
        QTest::addColumn<int>("handler");    // 0 none, 1 can save, 2 cannot save, 3 save fails
        QTest::addColumn<int>("answer");     // scripted button
        QTest::addColumn<QString>("dialog"); // kind asked, empty for none
        QTest::addColumn<int>("result");
        QTest::addColumn<int>("commits");
        QTest::addColumn<int>("saves");
        const int leave = Application::SESSION_LEAVE_ALONE, release = Application::SESSION_RELEASE,
                  cancel = Application::SESSION_CANCEL;
        QTest::newRow("nothing unsaved") << false << true << 1 << 0 << QString() << leave << 2 << 0;
        QTest::newRow("no interaction") << true << false << 1 << 0 << QString() << cancel << 0 << 0;
        QTest::newRow("no handler, exit") << true << true << 0 << 0 << "okcancel" << release << 2 << 0;
        QTest::newRow("no handler, cancel") << true << true << 0 << 1 << "okcancel" << cancel << 0 << 0;
        QTest::newRow("handler cannot save") << true << true << 2 << 1 << "okcancel" << cancel << 0 << 0;
        QTest::newRow("save session") << true << true << 1 << 0 << "yesnocancel" << release << 2 << 1;
        QTest::newRow("save session fails") << true << true << 3 << 0 << "yesnocancel" << cancel << 0 << 1;
        QTest::newRow("exit anyway") << true << true << 1 << 1 << "yesnocancel" << release << 2 << 0;
        QTest::newRow("cancel") << true << true << 1 << 2 << "yesnocancel" << cancel << 0 << 0;
    }
    void logOff()
    {
        QFETCH(bool, modified);
        QFETCH(int, handler);
        QFETCH(int, answer);
        openWindow();
        addType(1);
        FakeStatus *second = addType(2);
        second->data = {"part.stl", "scan.asc"};
        if (modified)
            second->modified.insert("scan.asc");
        std::unique_ptr<SessionSaver> saver(handler ? new SessionSaver(handler != 2, handler != 3) : nullptr);
        GTools::ScriptedDialogs dialogs(answer);
        QFETCH(bool, interaction);
        QTEST(int(qobject_cast<Application *>(qApp)->logOffAnswer(interaction)), "result");
        QTEST(_commits, "commits");
        QFETCH(QString, dialog);
        QCOMPARE(int(dialogs.requests().size()), dialog.isEmpty() ? 0 : 1);
        if (!dialog.isEmpty()) {
            QCOMPARE(dialogs.requests()[0].kind, dialog);
            QCOMPARE(dialogs.requests()[0].type, 1);
            QCOMPARE(dialogs.requests()[0].title, QStringLiteral("exit title"));
            QCOMPARE(dialogs.requests()[0].text,
                     QStringLiteral("there are unsaved data sets! do you really want to exit the program?"));
        }
        if (saver)
            QTEST(saver->saves, "saves");
    }
    void parserSelectionComesFromTheActiveType()
    {
        openWindow();
        addType(0)->data = {"plane 1", "circle 2"}; // the manager starts in mode 0
        GetSelectionInterface *parser = GetSelectionInterface::getInterface();
        QVERIFY(parser);
        QCOMPARE(parser->getSelectedData("elements"), std::vector<QString>({"plane 1", "circle 2"}));
        const auto e = thrown([] { MainWindow::smgr->getAllData(7); });
        QVERIFY(e);
        QCOMPARE(e->getFunction(), QStringLiteral("Zal::GApp::AppStatusManager::getAllData"));
        QCOMPARE(e->getMessage(), QStringLiteral("invalid application type"));
        delete MainWindow::main_win;
        QVERIFY(!GetSelectionInterface::getInterface());
    }
    void logOffRefusedWhileBusyOrObjected()
    {
        openWindow();
        FakeStatus *status = addType(1);
        GTools::ScriptedDialogs dialogs;
        auto *app = qobject_cast<Application *>(qApp);
        MainWindow::smgr->setMenuFunctionActive(true);
        QCOMPARE(app->logOffAnswer(true), Application::SESSION_CANCEL);
        MainWindow::smgr->setMenuFunctionActive(false);
        status->canExit = false;
        QCOMPARE(app->logOffAnswer(true), Application::SESSION_CANCEL);
        QVERIFY(dialogs.requests().empty());
        QCOMPARE(_commits, 0);
    }
    void qtMessagesGoToStandardError()
    {
        QProcess child;
        child.start(QStringLiteral(ZAL_TEST_HELPER), {QStringLiteral("qt-messages")});
        QVERIFY(child.waitForFinished(30000));
        const QByteArray err = child.readAllStandardError();
        QVERIFY2(err.contains("Qt Warning: careful\n"), err.constData());
        QVERIFY(err.contains("Qt Fatal: boom\n"));
        QVERIFY(err.indexOf("Qt Warning") < err.indexOf("Qt Fatal"));
        QCOMPARE(child.exitStatus(), QProcess::CrashExit); // aborted
    }
};

int main(int argc, char **argv)
{
    Application app(argc, argv);
    TestShell shell;
    TestExecution execution;
    TestEventFilter filter;
    TestBackground background;
    TestCallbackThread callbacks;
    TestShellCommand commands;
    int failed = QTest::qExec(&shell, argc, argv);
    failed += QTest::qExec(&execution, argc, argv);
    failed += QTest::qExec(&filter, argc, argv);
    failed += QTest::qExec(&background, argc, argv);
    failed += QTest::qExec(&callbacks, argc, argv);
    failed += QTest::qExec(&commands, argc, argv);
    return failed;
}

#include "tst_shell.moc"
