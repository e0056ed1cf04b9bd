#include "gapp_ccontainer.h"
#include "gapp_command.h"
#include "gapp_shortcut.h"
#include "gapp_shortcut_file.h"
#include "gapp_view_widget.h"
#include "test_util.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
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

using TestCommand = TestUtil::StubCommand;

class Creator : public ViewWidgetCreator
{
public:
    explicit Creator(const QString &name) : ViewWidgetCreator(name, name, nullptr) {}
    QWidget *createWidget(QWidget *parent) override { return new QWidget(parent); }
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

// A shortcut file; the map blocks may claim entries they do not hold.
struct FileSpec
{
    unsigned int fileVersion = 9, countVersion = 1, mapVersion = 2, missingEntries = 0;
    std::vector<std::pair<QString, std::vector<Shortcut>>> maps;
};

void writeShortcutFile(const QString &path, const FileSpec &spec)
{
    IO::OutStream out(path, u"ShortcutData"_s, spec.fileVersion);
    out.beginBlock(4, spec.countVersion);
    out.writeUInt(unsigned(spec.maps.size()));
    out.endBlock();
    for (const auto &[name, entries] : spec.maps) {
        out.beginBlock(IO::Stream::sizeOf(name), 1);
        out.writeString(name);
        out.endBlock();
        unsigned int length = 4;
        for (const Shortcut &s : entries)
            length += IO::Stream::sizeOf(s.command) + IO::Stream::sizeOf(s.view) + 4;
        out.beginBlock(length, spec.mapVersion);
        out.writeUInt(unsigned(entries.size()) + spec.missingEntries);
        for (const Shortcut &s : entries)
            out.writeString(s.command), out.writeString(s.view), out.writeInt(s.key);
        out.endBlock();
    }
    out.close();
}

// The entries of the only map block of the user file, and the block's length.
std::vector<Shortcut> readUserEntries(unsigned int *length)
{
    IO::InStream in(userFile(), u"ShortcutData"_s);
    unsigned int count = 0;
    in.openBlock(), in.readUInt(count), in.closeBlock();
    QString name;
    in.openBlock(), in.readString(name), in.closeBlock();
    if (count != 1 || name != u"default"_s || in.getVersion() != 9)
        return {};
    in.openBlock();
    *length = in.getBlockRemaining();
    in.readUInt(count);
    std::vector<Shortcut> entries(count);
    for (Shortcut &s : entries)
        in.readString(s.command), in.readString(s.view), in.readInt(s.key);
    return entries;
}

} // namespace

Q_DECLARE_METATYPE(FileSpec)

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
        QCOMPARE(defaultMap()->find(u"view.toggle_grid"_s), 0);
        CommandAction *action = CommandContainer::getCommandAction(u"file.save"_s);
        ShortcutContainer::setActiveData(u"default"_s);
        ViewWidgetContainer::setActiveView(u"elements"_s);
        action->updateAction(true);
        QCOMPARE(action->shortcut(), QKeySequence(Qt::Key_F3)); // its view's binding
        ViewWidgetContainer::setActiveView(QString());
        action->updateAction(true);
        QCOMPARE(action->shortcut(), QKeySequence(u"Ctrl+G"_s));
        (new ShortcutData(u"override"_s, QString()))->setShortcuts({{u"file.save"_s, QString(), int(Qt::Key_F9)}});
        ShortcutContainer::setOverrideData(u"override"_s);
        action->updateAction(true);
        QCOMPARE(action->shortcut(), QKeySequence(Qt::Key_F9));
    }

    void differenceFileRoundTrip()
    {
        std::vector<Shortcut> changed = defaultMap()->getShortcuts();
        changed[5].command = u"sys.set_mode"_s; // Alt+M rebound
        changed.erase(changed.begin() + 3);     // F5 in elements deleted
        changed.push_back({u"sys.exit_program"_s, QString(), (Qt::CTRL | Qt::Key_E).toCombined()});
        defaultMap()->setShortcuts(changed);
        ErrorLog log;
        QVERIFY(ShortcutContainer::save(&log));
        unsigned int length = 0;
        QCOMPARE(describe(readUserEntries(&length)),
                 (QStringList{u"Alt+M||sys.set_mode"_s, u"Ctrl+E||sys.exit_program"_s, u"F5|elements|"_s}));
        QCOMPARE(length, 4 + 3 * 4 + IO::Stream::sizeOf(u"sys.set_mode"_s) + IO::Stream::sizeOf(u"sys.exit_program"_s) +
                             IO::Stream::sizeOf(u"elements"_s) + 3 * IO::Stream::sizeOf(QString()));
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
        FileSpec spec{8, 1, 1, 0, {{u"default"_s, {{u"conv"_s, QString(), stored}}}}};
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
    }

    void badFilesFailAndRestoreDefaults_data()
    {
        QTest::addColumn<FileSpec>("spec");
        QTest::addColumn<QString>("message");
        const std::vector<std::pair<QString, std::vector<Shortcut>>> maps{
            {u"default"_s, {{u"sys.set_mode"_s, QString(), (Qt::ALT | Qt::Key_M).toCombined()}}}};
        QTest::newRow("version 7") << FileSpec{7, 1, 2, 0, maps} << u"invalid file version"_s;
        QTest::newRow("count block") << FileSpec{9, 2, 2, 0, maps} << u"invalid map count block version"_s;
        QTest::newRow("map block") << FileSpec{9, 1, 3, 0, maps} << u"invalid map block version"_s;
        QTest::newRow("entries missing") << FileSpec{9, 1, 2, 1000000, maps} << QString();
    }

    void badFilesFailAndRestoreDefaults()
    {
        QFETCH(FileSpec, spec);
        QFETCH(QString, message);
        writeShortcutFile(userFile(), spec);
        ErrorLog log;
        QVERIFY(!ShortcutContainer::load(&log));
        QCOMPARE(log.getEntries().size(), 1);
        QVERIFY(log.getEntries()[0].startsWith(u"cannot load shortcut data: "_s + message));
        QCOMPARE(describe(defaultMap()->getShortcuts()), describe(defaultMap()->getDefaultShortcuts()));
        QCOMPARE(defaultMap()->getShortcuts()[5].command, u"sys.undo"_s);
    }

    // Random damage of a real file, the same every run: a refused reading
    // leaves the defaults, and the intact file reads back afterwards.
    void randomlyDamagedFilesAreAnsweredCleanly()
    {
        std::vector<Shortcut> changed = defaultMap()->getShortcuts();
        changed[5].command = u"sys.set_mode"_s;
        changed.erase(changed.begin() + 3);
        changed.push_back({u"sys.exit_program"_s, QString(), (Qt::CTRL | Qt::Key_E).toCombined()});
        defaultMap()->setShortcuts(changed);
        ErrorLog log;
        QVERIFY(ShortcutContainer::save(&log));
        const QByteArray good = TestUtil::readFile(userFile());
        TestUtil::readDamagedCopies(userFile(), good, 400, [](ErrorLog *l) { return ShortcutContainer::load(l); }, [] {
            QCOMPARE(describe(defaultMap()->getShortcuts()), describe(defaultMap()->getDefaultShortcuts()));
        });
        QVERIFY(ShortcutContainer::load(&log));
        QCOMPARE(describe(defaultMap()->getShortcuts()), describe(changed));
    }
};

QTEST_MAIN(TestShortcut)
#include "tst_shortcut.moc"
