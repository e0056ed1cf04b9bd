#include "gapp_ccontainer.h"
#include "gapp_command.h"
#include "gapp_shortcut.h"
#include "gapp_shortcut_file.h"
#include "gapp_status_data.h"
#include "gapp_status_mgr.h"
#include "gapp_view_widget.h"
#include "test_util.h"
#include "zal_cfg_file.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_os.h"
#include "zal_stream.h"
#include <QDomDocument>
#include <QKeyEvent>
#include <QtTest>
#include <memory>

using namespace Zal;
using namespace Zal::GApp;
using namespace Qt::StringLiterals;
using Shortcut = ShortcutData::Shortcut_t;

namespace {

class TestCommand : public Command
{
public:
    explicit TestCommand(const QString &name) : Command(true, false, name, name, QString(), nullptr) {}
    bool isChecked() const override { return false; }
    bool isMenuSensitive() const override { return true; }
    bool isScriptSensitive() const override { return true; }
    QString getParameterString() override { return QString(); }
    bool parseParameterString(const QString &, bool, QString *, ErrorLog *) override { return true; }
    Interactive_t isInteractive() override { return INTERACTIVE_NO; }
    bool executeMenu() override { return true; }
};

class Creator : public ViewWidgetCreator
{
public:
    explicit Creator(const QString &name) : ViewWidgetCreator(name, name, nullptr) {}
    QWidget *createWidget(QWidget *parent) override { return new QWidget(parent); }
};

class Status : public StatusData
{
public:
    Status() : StatusData(1, QString()) {}
    QString getMainMenuName() override { return QString(); }
    bool isAppModeChangePossible(unsigned int) override { return true; }
    bool canExitProgram() override { return true; }
    void exitProgram() override {}
    void commitData() override {}
    bool isEmpty() override { return true; }
    std::vector<const char *> getAdditionalSelectionNames() override { return {}; }
    std::vector<QString> getSelectedData(const char *) override { return {}; }
    std::vector<QString> getAllData() override { return {}; }
    bool isDataModified(const QString &) const override { return false; }
};

const QByteArray kMap = R"(
  <entry key="Ctrl+G">file.open</entry>
  <entry key="Ctrl+G">file.save</entry>
  <entry key="Ctrl+G" view="view3d">view.toggle_grid</entry>
  <entry key="F5" view="elements">meas.distance</entry>
  <entry key="F3" view="elements">file.save</entry>
  <entry key="Alt+M">sys.undo</entry>
  <entry key="Meta+M">sys.redo</entry>)";

void loadSection(const QByteArray &maps)
{
    QDomDocument doc;
    QVERIFY(doc.setContent("<layout><shortcutsection>" + maps + "</shortcutsection></layout>"));
    ShortcutContainer::loadInitialDefault(&doc);
}

QStringList describe(const std::vector<Shortcut> &list)
{
    QStringList out;
    for (const Shortcut &s : list)
        out << QKeySequence(s.key).toString() + '|' + s.view + '|' + s.command;
    return out;
}

ShortcutData *defaultMap()
{
    return ShortcutContainer::getData(u"default"_s);
}

QString userFile()
{
    return ShortcutFile::instance()->getSaveFileName();
}

// A shortcut file: the map names with one block each, entries (command, view, key).
struct FileSpec
{
    unsigned int fileVersion = 9, countVersion = 1, nameVersion = 1, mapVersion = 2;
    QString type = u"ShortcutData"_s;
    std::vector<std::pair<QString, std::vector<Shortcut>>> maps;
    int missingEntries = 0; // entries the map blocks claim but do not hold
};

void writeShortcutFile(const QString &path, const FileSpec &spec)
{
    IO::OutStream out(path, spec.type, spec.fileVersion);
    out.beginBlock(4, spec.countVersion);
    out.writeUInt(unsigned(spec.maps.size()));
    out.endBlock();
    for (const auto &map : spec.maps) {
        out.beginBlock(IO::Stream::sizeOf(map.first), spec.nameVersion);
        out.writeString(map.first);
        out.endBlock();
        unsigned int length = 4;
        for (const Shortcut &s : map.second)
            length += IO::Stream::sizeOf(s.command) + IO::Stream::sizeOf(s.view) + 4;
        out.beginBlock(length, spec.mapVersion);
        out.writeUInt(unsigned(map.second.size() + spec.missingEntries));
        for (const Shortcut &s : map.second) {
            out.writeString(s.command);
            out.writeString(s.view);
            out.writeInt(s.key);
        }
        out.endBlock();
    }
    out.close();
}

} // namespace

class TestShortcut : public QObject
{
    Q_OBJECT
    std::unique_ptr<TestUtil::Environment> _env;
    std::vector<std::unique_ptr<QWidget>> _views;

private slots:
    void initTestCase()
    {
        for (const char *name : {"file.open", "file.save", "view.toggle_grid", "meas.distance", "sys.undo",
                                 "sys.redo", "sys.set_mode", "sys.exit_program"})
            new TestCommand(QString::fromLatin1(name));
        for (const char *name : {"view3d", "elements"}) {
            new Creator(QString::fromLatin1(name));
            _views.emplace_back(ViewWidgetContainer::createWidget(nullptr, QString::fromLatin1(name)));
        }
    }

    void init()
    {
        _env = std::make_unique<TestUtil::Environment>();
        new ShortcutFile;
        ShortcutContainer::deleteAllData();
        new ShortcutData(u"default"_s, u"Default"_s);
        loadSection("<map name=\"default\">" + kMap + "</map>");
        ViewWidgetContainer::setActiveView(QString());
    }

    void cleanup()
    {
        delete ShortcutFile::instance();
        _env.reset();
    }

    void cleanupTestCase() { ShortcutContainer::deleteAllData(); }

    void layoutErrors_data()
    {
        QTest::addColumn<QByteArray>("maps");
        QTest::addColumn<QString>("function");
        QTest::addColumn<QString>("message");
        const QString fill = u"Zal::GApp::ShortcutData::fillShortcuts"_s;
        const QString load = u"Zal::GApp::ShortcutContainer::loadInitialDefault"_s;
        QTest::newRow("chord") << QByteArray(R"(<m name="default"><entry key="Ctrl+K, Ctrl+C">file.open</entry></m>)")
                               << fill << u"invalid key sequence for command:file.open"_s;
        QTest::newRow("empty key") << QByteArray(R"(<m name="default"><entry key="">file.save</entry></m>)") << fill
                                   << u"invalid key sequence for command:file.save"_s;
        QTest::newRow("unknown view") << QByteArray(R"(<m name="default"><entry key="F2" view="x">sys.undo</entry></m>)")
                                      << fill << u"invalid view widget for command:sys.undo"_s;
        QTest::newRow("other tag") << QByteArray(R"(<m name="default"><item/></m>)") << fill << u"unknown tag:item"_s;
        QTest::newRow("comment in map") << QByteArray(R"(<m name="default"><!-- c --></m>)") << fill
                                        << u"Shortcut item is null!"_s;
        QTest::newRow("comment in section") << QByteArray("<!-- c -->") << load << u"shortcut element is null"_s;
        QTest::newRow("no name") << QByteArray("<m/>") << load << u"Missing attribute: 'name'"_s;
        QTest::newRow("unknown map") << QByteArray(R"(<m name="nope"/>)") << load << u"Invalid shortcut data 'nope'"_s;
    }

    void layoutErrors()
    {
        QFETCH(QByteArray, maps);
        try {
            loadSection(maps);
            QFAIL("no exception");
        } catch (const ProgError &e) {
            QTEST(e.getFunction(), "function");
            QTEST(e.getMessage(), "message");
            QCOMPARE(e.getFile(), u"gapp_shortcut"_s);
        }
    }

    void layoutEntriesBecomeBindingsAndDefaults()
    {
        const QByteArray out = TestUtil::captureStdout([] {
            loadSection(R"(<m name="default"><entry key="F12">no.such</entry><entry key="Shift+F12">sys.undo</entry></m>)");
        });
        QCOMPARE(out, QByteArray("Zal::GApp::ShortcutData::fillShortcuts(235): error: command does not exist:no.such\n"));
        const QStringList bindings = describe(defaultMap()->getShortcuts());
        QCOMPARE(bindings.size(), 8);
        QCOMPARE(bindings.first(), u"Ctrl+G||file.open"_s);
        QCOMPARE(bindings.last(), u"Shift+F12||sys.undo"_s);
        QCOMPARE(describe(defaultMap()->getDefaultShortcuts()), bindings);
    }

    void keyResolution_data()
    {
        QTest::addColumn<QString>("view");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QString>("command");
        const int ctrl = Qt::ControlModifier;
        QTest::newRow("last global wins") << QString() << int(Qt::Key_G) << ctrl << u"file.save"_s;
        QTest::newRow("view binding wins") << u"view3d"_s << int(Qt::Key_G) << ctrl << u"view.toggle_grid"_s;
        QTest::newRow("other view: global") << u"elements"_s << int(Qt::Key_G) << ctrl << u"file.save"_s;
        QTest::newRow("view key, no view") << QString() << int(Qt::Key_F5) << 0 << QString();
        QTest::newRow("view key, its view") << u"elements"_s << int(Qt::Key_F5) << 0 << u"meas.distance"_s;
        QTest::newRow("meta is not alt") << QString() << int(Qt::Key_M) << int(Qt::MetaModifier) << u"sys.redo"_s;
        QTest::newRow("alt") << QString() << int(Qt::Key_M) << int(Qt::AltModifier) << u"sys.undo"_s;
        QTest::newRow("keypad ignored") << QString() << int(Qt::Key_G) << int(ctrl | Qt::KeypadModifier)
                                        << u"file.save"_s;
        QTest::newRow("extra shift") << QString() << int(Qt::Key_G) << int(ctrl | Qt::ShiftModifier) << QString();
    }

    void keyResolution()
    {
        QFETCH(QString, view);
        QFETCH(int, key);
        QFETCH(int, modifiers);
        ViewWidgetContainer::setActiveView(view);
        const QKeyEvent event(QEvent::KeyPress, key, Qt::KeyboardModifiers(modifiers));
        QTEST(defaultMap()->find(&event), "command");
    }

    void commandResolutionAndActionKey()
    {
        ShortcutData *map = defaultMap();
        QCOMPARE(map->find(u"view.toggle_grid"_s), 0);
        QCOMPARE(map->find(u"file.save"_s), (Qt::CTRL | Qt::Key_G).toCombined());
        ViewWidgetContainer::setActiveView(u"elements"_s);
        QCOMPARE(map->find(u"file.save"_s), int(Qt::Key_F3));
        ViewWidgetContainer::setActiveView(QString());

        CommandAction *action = CommandContainer::getCommandAction(u"file.save"_s);
        ShortcutContainer::setActiveData(u"default"_s);
        action->updateAction(true);
        QCOMPARE(action->shortcut(), QKeySequence(u"Ctrl+G"_s));
        QCOMPARE(action->shortcutContext(), Qt::WidgetShortcut);
        auto *over = new ShortcutData(u"override"_s, QString());
        over->setShortcuts({{u"file.save"_s, QString(), int(Qt::Key_F9)}});
        ShortcutContainer::setOverrideData(u"override"_s);
        action->updateAction(true);
        QCOMPARE(action->shortcut(), QKeySequence(Qt::Key_F9));
        ShortcutContainer::clearOverrideData();
        ShortcutContainer::setActiveData(QString());
        action->updateAction(true);
        QVERIFY(action->shortcut().isEmpty());
    }

    void registryErrors_data()
    {
        QTest::addColumn<int>("operation");
        QTest::addColumn<QString>("function");
        QTest::addColumn<QString>("message");
        QTest::newRow("second map") << 0 << u"Zal::GApp::ShortcutContainer::registerData"_s
                                    << u"the shortcut data 'default' exists"_s;
        QTest::newRow("active") << 1 << u"Zal::GApp::ShortcutContainer::setActiveData"_s << u"invalid shortcut data:x"_s;
        QTest::newRow("override") << 2 << u"Zal::GApp::ShortcutContainer::setOverrideData"_s
                                  << u"invalid shortcut data:x"_s;
    }

    void registryErrors()
    {
        QFETCH(int, operation);
        ShortcutContainer::setActiveData(u"default"_s);
        try {
            if (operation == 0)
                new ShortcutData(u"default"_s, QString());
            else if (operation == 1)
                ShortcutContainer::setActiveData(u"x"_s);
            else
                ShortcutContainer::setOverrideData(u"x"_s);
            QFAIL("no exception");
        } catch (const ProgError &e) {
            QTEST(e.getFunction(), "function");
            QTEST(e.getMessage(), "message");
        }
        QCOMPARE(ShortcutContainer::getActiveData(), defaultMap());
        QCOMPARE(ShortcutContainer::getAllDataNames(), std::vector<QString>{u"default"_s});
    }

    void renameChangesBindingsNotDefaults()
    {
        auto *other = new ShortcutData(u"aaa"_s, QString());
        other->setShortcuts({{u"file.save"_s, QString(), int(Qt::Key_F2)}});
        ShortcutContainer::renameCommand(u"file.save"_s, u"file.store"_s);
        QCOMPARE(other->getShortcuts()[0].command, u"file.store"_s);
        QCOMPARE(defaultMap()->getShortcuts()[1].command, u"file.store"_s);
        QCOMPARE(defaultMap()->getDefaultShortcuts()[1].command, u"file.save"_s);
        QCOMPARE(ShortcutContainer::getAllDataNames(), (std::vector<QString>{u"aaa"_s, u"default"_s}));
    }

    void modeChangeActivatesDefault()
    {
        ShortcutContainer::setActiveData(QString());
        AppStatusManager manager;
        manager.setStatusData(1, new Status);
        manager.setAppMode(1);
        QCOMPARE(ShortcutContainer::getActiveData(), defaultMap());
    }

    void differenceFileRoundTrip()
    {
        std::vector<Shortcut> changed = defaultMap()->getShortcuts();
        changed[5].command = u"sys.set_mode"_s;                           // Alt+M rebound
        changed.erase(changed.begin() + 3);                               // F5 in elements deleted
        changed.push_back({u"sys.exit_program"_s, QString(), (Qt::CTRL | Qt::Key_E).toCombined()});
        defaultMap()->setShortcuts(changed);
        ErrorLog log;
        QVERIFY(ShortcutContainer::save(&log));

        IO::InStream in(userFile(), u"ShortcutData"_s);
        QCOMPARE(in.getVersion(), 9u);
        unsigned int count = 0;
        QString name;
        in.openBlock();
        in.readUInt(count);
        in.closeBlock();
        in.openBlock();
        in.readString(name);
        in.closeBlock();
        QCOMPARE(count, 1u);
        QCOMPARE(name, u"default"_s);
        in.openBlock();
        QCOMPARE(in.getBlockVersion(), 2u);
        QCOMPARE(in.getBlockRemaining(), 4 + 3 * 4 + IO::Stream::sizeOf(u"sys.set_mode"_s) +
                                             IO::Stream::sizeOf(u"sys.exit_program"_s) + IO::Stream::sizeOf(u"elements"_s) +
                                             3 * IO::Stream::sizeOf(QString()));
        std::vector<Shortcut> entries(3);
        in.readUInt(count);
        for (Shortcut &s : entries) {
            in.readString(s.command);
            in.readString(s.view);
            in.readInt(s.key);
        }
        QCOMPARE(count, 3u);
        QCOMPARE(describe(entries), (QStringList{u"Alt+M||sys.set_mode"_s, u"Ctrl+E||sys.exit_program"_s,
                                                 u"F5|elements|"_s}));

        defaultMap()->restoreDefault();
        QVERIFY(ShortcutContainer::load(&log));
        QCOMPARE(describe(defaultMap()->getShortcuts()), describe(changed));
        QVERIFY(log.isEmpty());
    }

    void version1KeysAreConverted_data()
    {
        QTest::addColumn<int>("stored");
        QTest::addColumn<int>("key");
        QTest::newRow("ctrl+escape") << 0x00401000 << 0x05000000;
        QTest::newRow("shift+a") << 0x00200041 << (Qt::SHIFT | Qt::Key_A).toCombined();
        QTest::newRow("meta+f") << 0x00100046 << (Qt::META | Qt::Key_F).toCombined();
        QTest::newRow("alt+return") << 0x00801004 << (Qt::ALT | Qt::Key_Return).toCombined();
        QTest::newRow("plain f1") << 0x00001030 << int(Qt::Key_F1);
    }

    void version1KeysAreConverted()
    {
        QFETCH(int, stored);
        FileSpec spec;
        spec.fileVersion = 8;
        spec.mapVersion = 1;
        spec.maps = {{u"default"_s, {{u"conv"_s, QString(), stored}}}};
        writeShortcutFile(userFile(), spec);
        ErrorLog log;
        QVERIFY(ShortcutContainer::load(&log));
        QCOMPARE(defaultMap()->getShortcuts().back().command, u"conv"_s);
        QTEST(defaultMap()->getShortcuts().back().key, "key");
    }

    void unknownMapsAreSkipped()
    {
        FileSpec spec;
        spec.maps = {{u"aaa_gone"_s, {{u"a.b"_s, QString(), 1}, {u"c.d"_s, u"v"_s, 2}}},
                     {u"default"_s, {{u"sys.set_mode"_s, QString(), int(Qt::Key_F12)}}}};
        writeShortcutFile(userFile(), spec);
        ErrorLog log;
        QVERIFY(ShortcutContainer::load(&log));
        QCOMPARE(describe({defaultMap()->getShortcuts().back()}), QStringList{u"F12||sys.set_mode"_s});
        QCOMPARE(ShortcutContainer::getAllDataNames().size(), size_t(1));
    }

    void badFilesFailAndRestoreDefaults_data()
    {
        QTest::addColumn<int>("fault");
        QTest::addColumn<QString>("message");
        QTest::newRow("version 7") << 0 << u"cannot load shortcut data: invalid file version"_s;
        QTest::newRow("count block") << 1 << u"cannot load shortcut data: invalid map count block version"_s;
        QTest::newRow("name block") << 2 << u"cannot load shortcut data: invalid map name block version"_s;
        QTest::newRow("map block") << 3 << u"cannot load shortcut data: invalid map block version"_s;
        QTest::newRow("entries missing") << 4 << QString();
        QTest::newRow("foreign type") << 5 << QString();
    }

    void badFilesFailAndRestoreDefaults()
    {
        QFETCH(int, fault);
        QFETCH(QString, message);
        FileSpec spec;
        spec.maps = {{u"default"_s, {{u"sys.set_mode"_s, QString(), (Qt::ALT | Qt::Key_M).toCombined()}}}};
        spec.fileVersion = fault == 0 ? 7 : 9;
        spec.countVersion = fault == 1 ? 2 : 1;
        spec.nameVersion = fault == 2 ? 3 : 1;
        spec.mapVersion = fault == 3 ? 3 : 2;
        spec.missingEntries = fault == 4 ? 1000000 : 0;
        spec.type = fault == 5 ? u"ToolBars"_s : u"ShortcutData"_s;
        writeShortcutFile(userFile(), spec);
        ErrorLog log;
        QVERIFY(!ShortcutContainer::load(&log));
        QCOMPARE(log.getEntries().size(), 1);
        if (message.isEmpty())
            QVERIFY(log.getEntries()[0].startsWith(u"cannot load shortcut data: "_s));
        else
            QCOMPARE(log.getEntries()[0], message);
        QCOMPARE(describe(defaultMap()->getShortcuts()), describe(defaultMap()->getDefaultShortcuts()));
        QCOMPARE(defaultMap()->getShortcuts()[5].command, u"sys.undo"_s);
    }

    void sharedLevelBecomesDefault()
    {
        FileSpec spec;
        spec.maps = {{u"default"_s, {{u"sys.set_mode"_s, QString(), (Qt::ALT | Qt::Key_M).toCombined()}}}};
        QDir().mkpath(Cfg::UserFile::getDirectory(Cfg::LEVEL_SHARED));
        writeShortcutFile(Cfg::UserFile::getDirectory(Cfg::LEVEL_SHARED) + '/' + ShortcutFile::instance()->getBaseName(),
                          spec);
        ErrorLog log;
        QVERIFY(ShortcutContainer::load(&log));
        QCOMPARE(defaultMap()->getDefaultShortcuts()[5].command, u"sys.set_mode"_s);
        QVERIFY(ShortcutContainer::save(&log));
        IO::InStream in(userFile());
        for (int block = 0; block < 3; ++block)
            in.openBlock(), in.closeBlock();
        QVERIFY(in.atEnd());
    }

    void saveFailureIsLogged()
    {
        const QString blocker = _env->work.filePath(u"file"_s);
        TestUtil::writeFile(blocker, "x");
        qputenv("ZAL_USER_CONFIG_DIR", (blocker + "/user").toLocal8Bit());
        ErrorLog log;
        QVERIFY(!ShortcutContainer::save(&log));
        QCOMPARE(log.getEntries().size(), 1);
        QVERIFY(log.getEntries()[0].startsWith(u"cannot save shortcut data: "_s));
    }
};

QTEST_MAIN(TestShortcut)
#include "tst_shortcut.moc"
