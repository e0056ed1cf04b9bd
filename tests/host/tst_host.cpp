#include "zal_dialogs.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_icon.h"
#include "zal_os.h"
#include "zal_string.h"
#include "zal_translate.h"
#include <QApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>
#include "test_util.h"
#include <cstdio>
#include <unistd.h>

using namespace Zal;
using TestUtil::captureStdout;
using TestUtil::writeFile;


class TestHost : public QObject
{
    Q_OBJECT
private slots:
    void cleanup()
    {
        Translator::setLanguage(0);
        GTools::ErrorMessageContainer::deleteAllErrorMessages();
        GTools::InfoMessageContainer::deleteAllInfoMessages();
        GIcon::Cache::clear();
    }

    void progErrorCarriesFunctionFileAndMessage()
    {
        try {
            throw ZAL_PROG_ERROR("Zal::GApp::CommandContainer::registerCommand",
                                 QStringLiteral("Command does already exist: a.b"));
        } catch (const Exception &e) {
            auto *pe = dynamic_cast<const ProgError *>(&e);
            QVERIFY(pe);
            QCOMPARE(pe->getFunction(), QStringLiteral("Zal::GApp::CommandContainer::registerCommand"));
            QCOMPARE(pe->getFile(), QStringLiteral("tst_host"));
            QCOMPARE(e.getText(), QStringLiteral("Command does already exist: a.b"));
            QCOMPARE(QString::fromUtf8(e.what()),
                     QStringLiteral("Zal::GApp::CommandContainer::registerCommand (tst_host): "
                                    "Command does already exist: a.b"));
        }
    }

    void streamExceptionIsAnException()
    {
        try {
            throw IO::StreamException(QStringLiteral("reading past the end"));
        } catch (const Exception &e) {
            QCOMPARE(e.getText(), QStringLiteral("reading past the end"));
            QCOMPARE(QByteArray(e.what()), QByteArray("reading past the end"));
        }
    }

    void errorLogEntriesEndAtTheMark()
    {
        ErrorLog log;
        QVERIFY(log.isEmpty());
        log << "cannot load toolbars: " << QStringLiteral("invalid file version") << END_LOG;
        log << "second" << END_LOG << "unfinished";
        QCOMPARE(log.getEntries(),
                 QStringList({QStringLiteral("cannot load toolbars: invalid file version"),
                              QStringLiteral("second")}));
        QCOMPARE(log.getText(), QStringLiteral("cannot load toolbars: invalid file version\n"
                                               "second\nunfinished"));
        log.clear();
        QVERIFY(log.isEmpty());
        QCOMPARE(log.getText(), QString());
    }

    void diagnosticLineFormat()
    {
        const QByteArray out = captureStdout([] {
            Debug::printLine("Zal::GApp::CommandContainer::registerCommand", 57,
                             QStringLiteral("draft command name: 'x_draft'"));
        });
        QCOMPARE(out, QByteArray("Zal::GApp::CommandContainer::registerCommand(57): "
                                 "draft command name: 'x_draft'\n"));
    }

    void zalStringRoundTripsLatin1()
    {
        const QString key = QStringLiteral("UserDirectory/Temp\u00e9Dir");
        const ZalString z(key);
        QCOMPARE(z.size(), size_t(key.size()));
        QCOMPARE(z.toQString(), key);
        QCOMPARE(ZalString("a/b"), ZalString(std::string("a/b")));
    }

    void dialogSeamAnswersEveryKind()
    {
        GTools::ErrorMessageContainer::registerError("GAPP-0003", QStringLiteral("the selected command is insensitive"),
                                                     QStringLiteral("the selected command is insensitive wt"));
        GTools::InfoMessageContainer::registerInfo("gapp_window_size_limited", QStringLiteral("limited"));
        GTools::ScriptedDialogs dialogs(0);
        dialogs.answer(0); // the error dialog's only button
        dialogs.answer(0); // ok of the first ok/cancel
        dialogs.answer(1); // refuse the second
        dialogs.answer(2); // cancel of yes/no/cancel
        dialogs.answer(0); // the ok dialog
        dialogs.answer(1); // info: do not show again

        GTools::ErrorDialog(QStringLiteral("GAPP-0003"), QStringLiteral("the command is not sensitive: a.b"));
        QVERIFY(GTools::OkCancelDialog(1, QStringLiteral("exit title"), QStringLiteral("t"), QString(),
                                       QStringLiteral("exit"), QStringLiteral("cancel")));
        QVERIFY(!GTools::OkCancelDialog(1, QStringLiteral("exit title"), QStringLiteral("t"), QString(),
                                        QStringLiteral("exit"), QStringLiteral("cancel")));
        QCOMPARE(GTools::YesNoCancelDialog(1, QStringLiteral("exit title"), QStringLiteral("t"), QString(),
                                           QStringLiteral("save session"), QStringLiteral("exit"),
                                           QStringLiteral("cancel")),
                 2);
        GTools::OkDialog(0, QStringLiteral("configuration error"), QStringLiteral("invalid"));
        GTools::InfoDialog("gapp_window_size_limited");
        GTools::InfoDialog("gapp_window_size_limited"); // switched off now: not asked
        GTools::InfoDialog("unknown_id");

        const auto &r = dialogs.requests();
        QCOMPARE(int(r.size()), 6);
        QCOMPARE(r[0].kind, QStringLiteral("error"));
        QCOMPARE(r[0].code, QStringLiteral("GAPP-0003"));
        QCOMPARE(r[0].text, QStringLiteral("the selected command is insensitive\nthe command is not sensitive: a.b"));
        QCOMPARE(r[1].kind, QStringLiteral("okcancel"));
        QCOMPARE(r[1].type, 1);
        QCOMPARE(r[1].buttons, QStringList({QStringLiteral("exit"), QStringLiteral("cancel")}));
        QCOMPARE(r[3].kind, QStringLiteral("yesnocancel"));
        QCOMPARE(r[3].buttons.size(), 3);
        QCOMPARE(r[4].kind, QStringLiteral("ok"));
        QCOMPARE(r[4].title, QStringLiteral("configuration error"));
        QCOMPARE(r[5].kind, QStringLiteral("info"));
        QCOMPARE(r[5].code, QStringLiteral("gapp_window_size_limited"));
        QVERIFY(!GTools::InfoMessageContainer::isEnabled(QStringLiteral("gapp_window_size_limited")));
    }

    void scriptedDialogsRestoreThePreviousHandler()
    {
        QVERIFY(!GTools::DialogSeam::hasHandler());
        {
            GTools::ScriptedDialogs outer(1);
            {
                GTools::ScriptedDialogs inner(0);
                QVERIFY(GTools::OkCancelDialog(0, "t", "x", QString(), "ok", "cancel"));
                QCOMPARE(int(outer.requests().size()), 0);
            }
            QVERIFY(!GTools::OkCancelDialog(0, "t", "x", QString(), "ok", "cancel"));
            QCOMPARE(int(outer.requests().size()), 1);
        }
        QVERIFY(!GTools::DialogSeam::hasHandler());
    }

    void errorCodesKeepRegistrationOrder()
    {
        const char *codes[] = {"GAPP-0002", "GAPP-0016", "GAPP-0009"};
        for (const char *c : codes)
            GTools::ErrorMessageContainer::registerError(c, QString::fromLatin1(c), QString());
        GTools::ErrorMessageContainer::registerError("GAPP-0002", QStringLiteral("again"), QString());
        QCOMPARE(GTools::ErrorMessageContainer::getCodes(),
                 QStringList({"GAPP-0002", "GAPP-0016", "GAPP-0009"}));
        QCOMPARE(GTools::ErrorMessageContainer::getText("GAPP-0002"), QStringLiteral("again"));
        QVERIFY(!GTools::ErrorMessageContainer::contains("GAPP-0099"));
    }

    void translationUsesTheCompiledCatalogue()
    {
        QVERIFY(Translator::installTranslator(QStringLiteral("ZalGApplication")));
        std::vector<QString> codes, names;
        Translator::getAllLanguages(codes, names);
        QCOMPARE(codes.size(), names.size());
        QCOMPARE(codes.front(), QStringLiteral("en"));
        const auto de = std::find(codes.begin(), codes.end(), QStringLiteral("de"));
        QVERIFY(de != codes.end());

        QVERIFY(Translator::setLanguage(int(de - codes.begin())));
        QCOMPARE(Translator::getLanguageCode(), QStringLiteral("de"));
        QCOMPARE(translate("GAPPCommand", "command: %1 %2"), QStringLiteral("Befehl: %1 %2"));
        QCOMPARE(translate("GTools", "error"), QStringLiteral("Fehler"));
        // Unknown texts and contexts fall back to the English key.
        QCOMPARE(translate("GTools", "no such text"), QStringLiteral("no such text"));
        QCOMPARE(translate("NoContext", "error"), QStringLiteral("error"));

        QVERIFY(Translator::setLanguage(0));
        QCOMPARE(translate("GTools", "error"), QStringLiteral("error"));
        QVERIFY(!Translator::setLanguage(99));
        QCOMPARE(Translator::getLanguage(), 0);
    }

    void defaultLanguageFollowsTheEnvironment()
    {
        qputenv("ZAL_LANGUAGE", "de");
        const int de = Translator::getDefaultLanguage();
        qputenv("ZAL_LANGUAGE", "xx");
        const int fallback = Translator::getDefaultLanguage();
        qunsetenv("ZAL_LANGUAGE");
        std::vector<QString> codes, names;
        Translator::getAllLanguages(codes, names);
        QCOMPARE(codes[size_t(de)], QStringLiteral("de"));
        QCOMPARE(fallback, 0);
    }

    void osFileHelpersOnRealFiles()
    {
        QTemporaryDir dir;
        const QString a = dir.filePath("a.txt"), b = dir.filePath("b.txt"), c = dir.filePath("c.txt");
        QFile f(a);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("payload");
        f.close();

        QVERIFY(OS::copyFile(a, b));
        QVERIFY(OS::copyFile(a, b)); // an existing target is replaced
        QVERIFY(!OS::copyFile(dir.filePath("missing"), c));
        QVERIFY(!OS::rename(a, b)); // never silently replaces
        QVERIFY(OS::unlink(b));
        QVERIFY(OS::rename(a, b));
        QVERIFY(!QFile::exists(a));

        std::FILE *in = OS::openStdStream(b, "rb");
        QVERIFY(in);
        char buf[16] = {};
        QCOMPARE(std::fread(buf, 1, sizeof buf, in), size_t(7));
        std::fclose(in);
        QCOMPARE(QByteArray(buf), QByteArray("payload"));
        QVERIFY(!OS::openStdStream(dir.filePath("missing"), "rb"));
        QVERIFY(!OS::unlink(dir.filePath("missing")));

        QVERIFY(FileInfo::isWritableDir(dir.path()));
        QVERIFY(!FileInfo::isWritableDir(b));
        QVERIFY(!FileInfo::isWritableDir(QString()));
    }

    void osEnvironmentAndProcess()
    {
        qputenv("ZAL_TEST_EMPTY", "");
        QString v = QStringLiteral("unchanged");
        QVERIFY(OS::getEnv("ZAL_TEST_EMPTY", &v)); // set, even if empty
        QCOMPARE(v, QString());
        qunsetenv("ZAL_TEST_EMPTY");
        QVERIFY(!OS::getEnv("ZAL_TEST_EMPTY"));

        QProcess child;
        child.start(QStringLiteral(ZAL_TEST_HELPER), {QStringLiteral("pid")});
        QVERIFY(child.waitForFinished(30000));
        const int childPid = child.readAllStandardOutput().trimmed().toInt();
        QVERIFY(childPid > 0);
        QVERIFY(childPid != OS::getPID());
        QVERIFY(OS::processCanBeTerminated(childPid));
    }

    void osMemoryFiguresAreConsistent()
    {
        const int total = OS::getSizeOfMemory();
        QVERIFY(total > 0);
        QVERIFY(OS::getSizeOfFreeSystemMemory() <= total);
        QVERIFY(OS::getSizeOfFreeSwap() >= 0);
        QVERIFY(OS::getSizeOfProcess() > 0u);

        // A generous limit applies; "no limit" lifts it again.
        QVERIFY(OS::setMaxVirtualMemorySize(2000000000));
        QCOMPARE(OS::getMaxVirtualMemorySize(), 2000000000);
        QVERIFY(OS::setMaxVirtualMemorySize(2147483647));
        QCOMPARE(OS::getMaxVirtualMemorySize(), 2147483647);
    }

    void configDirectoriesHonourTheEnvironment()
    {
        qputenv("ZAL_USER_CONFIG_DIR", "/tmp/zal-user");
        qputenv("ZAL_SHARED_CONFIG_DIR", "/tmp/zal-shared/");
        qputenv("ZAL_SOFTWARE_DIR", "/opt/zal");
        QCOMPARE(ZalInit::getConfigDirectory(2), QStringLiteral("/tmp/zal-user"));
        QCOMPARE(ZalInit::getConfigDirectory(1), QStringLiteral("/tmp/zal-shared"));
        QCOMPARE(ZalInit::getConfigDirectory(0), QStringLiteral("/opt/zal/config"));
        qunsetenv("ZAL_USER_CONFIG_DIR");
        qunsetenv("ZAL_SHARED_CONFIG_DIR");
        qunsetenv("ZAL_SOFTWARE_DIR");
        QVERIFY(ZalInit::getConfigDirectory(2).endsWith(ZalInit::getApplicationName()));
    }

    void iconCacheFindsBundledAndFallsBack()
    {
        QCOMPARE(GIcon::Cache::getIconSize(0), 16);
        QCOMPARE(GIcon::Cache::getIconSize(7), 16);
        const QPixmap sensor = GIcon::Cache::getSmallIcon(GIcon::ST_SENSOR);
        QVERIFY(!sensor.isNull());
        QCOMPARE(sensor.width(), 16);
        QCOMPARE(GIcon::Cache::getIcon(GIcon::ACT_CANCEL, 1).width(), 24);
        const QIcon both = GIcon::Cache::getIconSet(GIcon::ACT_TB_GROUP_MENU, 0, 1);
        QCOMPARE(both.availableSizes().size(), 2);

        QVERIFY(GIcon::Cache::getSmallIcon("no_such_icon").isNull());
        QVERIFY(GIcon::Cache::getIconSet("no_such_icon", 0, 1).isNull());
        QVERIFY(GIcon::Cache::getIconSet("../st_sensor", 0).isNull());
        QVERIFY(GIcon::Cache::getIconSet(nullptr, 0).isNull());
        // An unknown application falls back to the default application icon.
        QVERIFY(!GIcon::Cache::getAppIcon(QStringLiteral("nobody")).isNull());
    }

    void iconCacheHostFoldersComeFirst()
    {
        QTemporaryDir dir;
        QPixmap red(32, 32);
        red.fill(Qt::red);
        QVERIFY(red.save(dir.filePath("st_sensor.png")));
        QVERIFY(!GIcon::Cache::getSmallIcon(GIcon::ST_SENSOR).isNull()); // fills the cache
        GIcon::Cache::addSearchPath(dir.path());
        const QImage img = GIcon::Cache::getSmallIcon(GIcon::ST_SENSOR).toImage();
        QCOMPARE(QColor(img.pixel(8, 8)), QColor(Qt::red));
    }
};

QTEST_MAIN(TestHost)
#include "tst_host.moc"
