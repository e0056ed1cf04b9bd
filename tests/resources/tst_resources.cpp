#include "gapp_ccontainer.h"
#include "gapp_container_widget.h"
#include "gapp_documentation.h"
#include "gapp_icon_set.h"
#include "gapp_init.h"
#include "gapp_main_window.h"
#include "gapp_status_mgr.h"
#include "gapp_view_widget.h"
#include "test_util.h"
#include "zal_cfg_file.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_os.h"
#include "zal_stream.h"
#include <QIcon>
#include <QImage>
#include <QMenu>
#include <QToolBar>
#include <QToolButton>
#include <QtTest>
#include <functional>
#include <memory>

using namespace Zal;
using namespace Zal::GApp;
using namespace Qt::StringLiterals;

namespace {

using Cmd = TestUtil::StubCommand;

// A command that names an icon of the bundled set.
class IconCommand : public Command
{
public:
    explicit IconCommand(const QString &name) : Command(true, false, name, name, QString(), "act_open") {}
    bool isChecked() const override { return false; }
    bool isMenuSensitive() const override { return true; }
    bool isScriptSensitive() const override { return true; }
    QString getParameterString() override { return QString(); }
    bool parseParameterString(const QString &, bool, QString *, ErrorLog *) override { return true; }
    Interactive_t isInteractive() override { return INTERACTIVE_NO; }
    bool executeMenu() override { return true; }
};

QString iconFile(Cfg::Level level)
{
    return Cfg::UserFile::getDirectory(level) + '/' + ZalInit::getApplicationName() + ".icons";
}

// A small image with an opaque, a transparent and a half-transparent pixel.
QPixmap samplePixmap(QRgb first = qRgba(255, 0, 0, 255))
{
    QImage image(3, 2, QImage::Format_ARGB32);
    image.fill(qRgba(0, 255, 0, 255));
    image.setPixel(0, 0, first);
    image.setPixel(1, 0, qRgba(0, 0, 0, 0));
    image.setPixel(2, 1, qRgba(0, 0, 255, 128));
    return QPixmap::fromImage(image);
}

// Pixmaps keep premultiplied pixels; compared that way, a stored and
// reloaded pixmap must be identical to the original.
QImage pixels(const QPixmap &pixmap)
{
    return pixmap.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

// Writes an icon file block by block, so tests can damage any part of it.
struct Writer
{
    explicit Writer(const QString &path, unsigned int version = 3, const QString &type = u"GAppIconSets"_s)
        : out(path, type, version) {}
    void count(unsigned int n, unsigned int version = 1)
    {
        out.beginBlock(4, version), out.writeUInt(n), out.endBlock();
    }
    void name(const QString &n, unsigned int version = 2)
    {
        out.beginBlock(IO::Stream::sizeOf(n), version), out.writeString(n), out.endBlock();
    }
    // A pixmap block of w x h of one colour; `colours` may say fewer than w x h.
    void pixmap(unsigned int w, unsigned int h, unsigned int version = 1, qint64 colours = -1,
                IO::Color colour = {10, 20, 30, 255})
    {
        const quint64 n = colours < 0 ? quint64(w) * h : quint64(colours);
        out.beginBlock(unsigned(n * 4 + 8), version);
        out.writeUInt(w);
        out.writeUInt(h);
        for (quint64 i = 0; i < n; ++i)
            out.writeColor(colour);
        out.endBlock();
    }
    // A whole file of one icon, `name`, of w x h.
    void one(const QString &n, unsigned int w, unsigned int h) { count(1), name(n), pixmap(w, h); }
    IO::OutStream out;
};

// A main window on an empty layout, deleted (with the library's static data)
// at the end of the scope.
struct Window
{
    explicit Window(const std::function<void()> &before = {})
    {
        if (before)
            before();
        QStringList args{u"prog"_s};
        win = new MainWindow("resources test", new AppStatusManager, InitLibrary(), args);
    }
    ~Window() { delete win; }
    MainWindow *win = nullptr;
};

class Creator : public ViewWidgetCreator
{
public:
    Creator(const QString &name, const QString &helpId) : ViewWidgetCreator(name, name, helpId, nullptr) {}
    QWidget *createWidget(QWidget *parent) override { return new QWidget(parent); }
};

} // namespace

class TestResources : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        IconSetContainer::deleteAllIconSets();
        CommandContainer::deleteAllCommands();
        ViewWidgetContainer::deleteAllCreators();
        if (GTools::Documentation::instance())
            Documentation::deinitialize();
    }
    void commandActionAndButtonFollowTheUserIcon()
    {
        auto *cmd = new Cmd(u"meas.point"_s);
        CommandAction *action = CommandContainer::getCommandAction(u"meas.point"_s);
        QToolBar bar;
        cmd->createToolBarWidget(&bar, false);
        auto *button = qobject_cast<QToolButton *>(bar.widgetForAction(action));
        QVERIFY(button);
        const QIcon *own = cmd->getIconSet();
        QVERIFY(cmd->isDefaultIconSet());
        QVERIFY(action->icon().isNull()); // menus leave the generated icon out

        // Replaced twice in a row: each new icon must show, even where the
        // allocator hands out the old icon's address again.
        for (QRgb colour : {qRgba(255, 0, 0, 255), qRgba(0, 0, 255, 255)}) {
            IconSetContainer::setIcon(u"meas.point"_s, samplePixmap(colour));
            const QIcon *user = IconSetContainer::getIconSet(u"meas.point"_s);
            QVERIFY(user && cmd->getIconSet() == user);
            QVERIFY(!cmd->isDefaultIconSet());
            QCOMPARE(action->icon().cacheKey(), user->cacheKey());
            QCOMPARE(button->icon().cacheKey(), user->cacheKey());
        }
        IconSetContainer::clearIcon(u"meas.point"_s);
        QVERIFY(!IconSetContainer::getIconSet(u"meas.point"_s));
        QCOMPARE(cmd->getIconSet(), own);
        QVERIFY(cmd->isDefaultIconSet());
        QVERIFY(action->icon().isNull());
        QCOMPARE(button->icon().cacheKey(), own->cacheKey());
        IconSetContainer::clearIcon(u"meas.point"_s); // nothing left to clear
    }
    void iconNamedCommandGoesBackToItsOwnIcon()
    {
        // The command's own icon is made only after the user's icon is gone,
        // possibly at the address the user's icon had.
        IconSetContainer::setIcon(u"file.open"_s, samplePixmap());
        auto *cmd = new IconCommand(u"file.open"_s);
        CommandAction *action = CommandContainer::getCommandAction(u"file.open"_s);
        QCOMPARE(action->icon().cacheKey(), IconSetContainer::getIconSet(u"file.open"_s)->cacheKey());
        IconSetContainer::deleteAllIconSets();
        QCOMPARE(action->icon().cacheKey(), cmd->getIconSet()->cacheKey());
        QVERIFY(!cmd->isDefaultIconSet());
    }
    void roundTripKeepsNamesPixelsAndNullPixmaps()
    {
        TestUtil::Environment env;
        IconSetContainer::setIcon(u"b.second"_s, samplePixmap(qRgba(9, 8, 7, 255)));
        IconSetContainer::setIcon(u"a.first"_s, samplePixmap());
        IconSetContainer::setIcon(u"c.null"_s, QPixmap());
        ErrorLog log;
        QVERIFY(IconSetContainer::saveStandard(&log));
        QVERIFY(QFile::exists(iconFile(Cfg::LEVEL_USER)));
        IconSetContainer::setIcon(u"d.unsaved"_s, samplePixmap());

        QVERIFY(IconSetContainer::loadStandard(&log));
        QVERIFY(log.isEmpty());
        QVERIFY(!IconSetContainer::getIconSet(u"d.unsaved"_s));
        QCOMPARE(pixels(IconSetContainer::getIconSet(u"a.first"_s)->pixmap(QSize(3, 2))), pixels(samplePixmap()));
        QCOMPARE(pixels(IconSetContainer::getIconSet(u"b.second"_s)->pixmap(QSize(3, 2))),
                 pixels(samplePixmap(qRgba(9, 8, 7, 255))));
        QVERIFY(IconSetContainer::getIconSet(u"c.null"_s)->isNull());
    }
    void fileHoldsTheDocumentedBlocks()
    {
        TestUtil::Environment env;
        QImage image(2, 1, QImage::Format_ARGB32);
        image.setPixel(0, 0, qRgba(1, 2, 3, 255));
        image.setPixel(1, 0, qRgba(0, 0, 0, 0));
        IconSetContainer::setIcon(u"z.last"_s, QPixmap::fromImage(image));
        IconSetContainer::setIcon(u"a.null"_s, QPixmap());
        ErrorLog log;
        QVERIFY(IconSetContainer::saveStandard(&log));

        IO::InStream in(iconFile(Cfg::LEVEL_USER));
        QCOMPARE(in.getTypeName(), u"GAppIconSets"_s);
        QCOMPARE(in.getVersion(), 3u);
        const auto block = [&in](unsigned int version, unsigned int size) {
            in.openBlock();
            QCOMPARE(in.getBlockVersion(), version);
            QCOMPARE(in.getBlockRemaining(), size);
        };
        unsigned int u = 0, w = 0, h = 0;
        QString s;
        block(1, 4);
        in.readUInt(u);
        QCOMPARE(u, 2u);
        in.closeBlock();
        // Names in order; the null pixmap is W = H = 0 and nothing else.
        for (const QString &name : {u"a.null"_s, u"z.last"_s}) {
            block(2, IO::Stream::sizeOf(name));
            in.readString(s);
            QCOMPARE(s, name);
            in.closeBlock();
            block(1, name == u"a.null"_s ? 8u : 2u * 1u * 4u + 8u);
            if (name == u"a.null"_s)
                in.closeBlock();
        }
        in.readUInt(w);
        in.readUInt(h);
        QCOMPARE(QSize(w, h), QSize(2, 1));
        IO::Color c;
        in.readColor(c);
        QVERIFY((c == IO::Color{1, 2, 3, 255}));
        in.readColor(c);
        QCOMPARE(c.alpha, quint8(0));
        in.closeBlock();
        QVERIFY(in.atEnd());
    }
    void emptyContainerSavesACountOfZero()
    {
        TestUtil::Environment env;
        ErrorLog log;
        QVERIFY(IconSetContainer::saveStandard(&log));
        IO::InStream in(iconFile(Cfg::LEVEL_USER));
        in.openBlock();
        unsigned int n = 99;
        in.readUInt(n);
        QCOMPARE(n, 0u);
        IconSetContainer::setIcon(u"x.y"_s, samplePixmap());
        QVERIFY(IconSetContainer::loadStandard(&log));
        QVERIFY(!IconSetContainer::getIconSet(u"x.y"_s));
    }
    void oldNameBlocksSkipTheirSecondPixmap()
    {
        TestUtil::Environment env;
        {
            Writer w(iconFile(Cfg::LEVEL_USER));
            w.count(2);
            w.name(u"a.old"_s, 1);
            w.pixmap(2, 2);
            w.pixmap(5, 5, 1, -1, {200, 200, 200, 255}); // read and dropped
            w.name(u"b.new"_s);
            w.pixmap(1, 1);
        }
        ErrorLog log;
        QVERIFY2(IconSetContainer::loadStandard(&log), qPrintable(log.getText()));
        QCOMPARE(IconSetContainer::getIconSet(u"a.old"_s)->availableSizes(), QList<QSize>({QSize(2, 2)}));
        QCOMPARE(IconSetContainer::getIconSet(u"b.new"_s)->availableSizes(), QList<QSize>({QSize(1, 1)}));
        QCOMPARE(pixels(IconSetContainer::getIconSet(u"a.old"_s)->pixmap(QSize(2, 2))).pixel(1, 1), qRgb(10, 20, 30));
    }
    void damagedFilesLeaveTheCommandsDefaults_data()
    {
        QTest::addColumn<QString>("damage");
        QTest::addColumn<bool>("result");
        QTest::addColumn<QString>("logged");
        const QString prefix = u"cannot load icons:"_s;
        QTest::newRow("version 2 is read as empty") << "version 2" << true << QString();
        QTest::newRow("version 4") << "version 4" << false << prefix + "invalid file version";
        QTest::newRow("version 0") << "version 0" << false << prefix + "invalid file version";
        QTest::newRow("count block version") << "count version" << false << prefix + "invalid icon count block version";
        QTest::newRow("name block version") << "name version" << false << prefix + "invalid icon name block version";
        QTest::newRow("pixmap block version") << "pixmap version" << false << prefix + "invalid icon block version";
        QTest::newRow("short pixmap block") << "short block" << false << prefix;
        QTest::newRow("huge size field") << "huge size" << false << prefix;
        QTest::newRow("huge block size") << "huge block" << false << prefix;
        QTest::newRow("count beyond the file") << "count" << false << prefix;
        QTest::newRow("truncated") << "truncated" << false << prefix;
        QTest::newRow("foreign file type") << "foreign" << false << prefix;
        QTest::newRow("garbage") << "garbage" << false << prefix;
        QTest::newRow("no file") << "missing" << false << prefix;
        QTest::newRow("damage after a good icon") << "second" << false << prefix + "invalid icon block version";
    }
    void damagedFilesLeaveTheCommandsDefaults()
    {
        QFETCH(QString, damage);
        QFETCH(bool, result);
        QFETCH(QString, logged);
        TestUtil::Environment env;
        auto *cmd = new Cmd(u"meas.point"_s);
        CommandAction *action = CommandContainer::getCommandAction(u"meas.point"_s);
        IconSetContainer::setIcon(u"meas.point"_s, samplePixmap());
        const QString path = iconFile(Cfg::LEVEL_USER);
        if (damage == "garbage") {
            TestUtil::writeFile(path, QByteArray(64, '\xff'));
        } else if (damage == "foreign") {
            Writer(path, 3, u"ToolBars"_s).count(0);
        } else if (damage == "truncated") {
            Writer(path).one(u"meas.point"_s, 16, 16);
            const QByteArray whole = TestUtil::readFile(path);
            TestUtil::writeFile(path, whole.left(whole.size() - 100));
        } else if (damage == "huge block") { // a block header announcing 4 GiB
            {
                Writer w(path);
                w.count(1);
                w.name(u"meas.point"_s);
            }
            const QByteArray header = QByteArray::fromHex("fffffff000000001");
            TestUtil::writeFile(path, TestUtil::readFile(path) + header + QByteArray(16, '\0'));
        } else if (damage != "missing") {
            Writer w(path, damage == "version 2" ? 2 : damage == "version 4" ? 4 : damage == "version 0" ? 0 : 3);
            w.count(damage == "count" ? 4000000000u : damage == "second" ? 2 : 1, damage == "count version" ? 2 : 1);
            if (damage == "second") {
                w.name(u"a.good"_s);
                w.pixmap(2, 2);
            }
            if (damage != "count") {
                w.name(u"meas.point"_s, damage == "name version" ? 3 : 2);
                if (damage == "short block")
                    w.pixmap(16, 16, 1, 10);
                else if (damage == "huge size") // 2^16 x 2^16 pixels in a 16-byte block
                    w.pixmap(65536, 65536, 1, 2);
                else
                    w.pixmap(4, 4, damage == "pixmap version" || damage == "second" ? 2 : 1);
            }
        }
        ErrorLog log;
        QCOMPARE(IconSetContainer::loadStandard(&log), result);
        QCOMPARE(log.getEntries().size(), result ? 0 : 1);
        if (!result)
            QVERIFY2(log.getText().startsWith(logged), qPrintable(log.getText()));
        QVERIFY(!IconSetContainer::getIconSet(u"meas.point"_s));
        QVERIFY(cmd->isDefaultIconSet());
        QVERIFY(action->icon().isNull());
        QCOMPARE(IconSetContainer::getIconSet(u"a.good"_s) != nullptr, damage == "second");
    }
    // Random damage of a real file, the same every run: every reading ends
    // with an answer that agrees with its log, and the intact file reads back.
    void randomlyDamagedFilesAreAnsweredCleanly()
    {
        TestUtil::Environment env;
        IconSetContainer::setIcon(u"a.first"_s, samplePixmap());
        IconSetContainer::setIcon(u"b.second"_s, samplePixmap(qRgba(9, 8, 7, 255)));
        ErrorLog log;
        QVERIFY(IconSetContainer::saveStandard(&log));
        const QString path = iconFile(Cfg::LEVEL_USER);
        const QByteArray good = TestUtil::readFile(path);
        TestUtil::readDamagedCopies(path, good, 400, [](ErrorLog *l) { return IconSetContainer::loadStandard(l); },
                                    [] {});
        QVERIFY(IconSetContainer::loadStandard(&log));
        QCOMPARE(pixels(IconSetContainer::getIconSet(u"b.second"_s)->pixmap(QSize(3, 2))),
                 pixels(samplePixmap(qRgba(9, 8, 7, 255))));
    }
    void userLevelWinsOverSharedLevel()
    {
        TestUtil::Environment env;
        Writer(iconFile(Cfg::LEVEL_SHARED)).one(u"shared.icon"_s, 1, 1);
        ErrorLog log;
        QVERIFY(IconSetContainer::loadStandard(&log));
        QVERIFY(IconSetContainer::getIconSet(u"shared.icon"_s));
        // Saving writes the user level only; from then on that file is read.
        IconSetContainer::setIcon(u"user.icon"_s, samplePixmap());
        IconSetContainer::clearIcon(u"shared.icon"_s);
        const QByteArray shared = TestUtil::readFile(iconFile(Cfg::LEVEL_SHARED));
        QVERIFY(IconSetContainer::saveStandard(&log));
        QCOMPARE(TestUtil::readFile(iconFile(Cfg::LEVEL_SHARED)), shared);
        QVERIFY(IconSetContainer::loadStandard(&log));
        QVERIFY(IconSetContainer::getIconSet(u"user.icon"_s));
        QVERIFY(!IconSetContainer::getIconSet(u"shared.icon"_s));
        QVERIFY(log.isEmpty());
    }
    void saveFailureIsLogged()
    {
        TestUtil::Environment env;
        // A folder where the file should go: nothing can be written there.
        QVERIFY(QDir().mkpath(iconFile(Cfg::LEVEL_USER)));
        IconSetContainer::setIcon(u"x.y"_s, samplePixmap());
        ErrorLog log;
        QVERIFY(!IconSetContainer::saveStandard(&log));
        QCOMPARE(log.getEntries().size(), 1);
        QVERIFY2(log.getText().startsWith(u"cannot save icons:"_s), qPrintable(log.getText()));
        QVERIFY(QFileInfo(iconFile(Cfg::LEVEL_USER)).isDir());
        QVERIFY(IconSetContainer::getIconSet(u"x.y"_s));
    }
    void mainWindowReadsTheIconFileAndCleanUpEmptiesIt()
    {
        TestUtil::Environment env;
        Cmd *cmd = nullptr;
        {
            Window w([&] {
                cmd = new Cmd(u"meas.point"_s);
                Writer(iconFile(Cfg::LEVEL_USER)).one(u"meas.point"_s, 2, 2);
            });
            QVERIFY(IconSetContainer::getIconSet(u"meas.point"_s));
            QCOMPARE(cmd->getIconSet(), IconSetContainer::getIconSet(u"meas.point"_s));
        }
        QVERIFY(!IconSetContainer::getIconSet(u"meas.point"_s));
        // A damaged file does not keep the window from starting.
        TestUtil::writeFile(iconFile(Cfg::LEVEL_USER), "damaged");
        Window w;
        QVERIFY(MainWindow::main_win);
    }
    void programmingErrors_data()
    {
        QTest::addColumn<QString>("call");
        QTest::addColumn<QString>("function");
        QTest::addColumn<QString>("message");
        QTest::newRow("second instance") << "initialize" << "Zal::GApp::Documentation::Documentation"
                                         << "Singleton, may be just created once";
        QTest::newRow("deinitialize without instance") << "deinitialize" << "Zal::GApp::Documentation::deinitialize"
                                                       << "Documentation not initialized";
        QTest::newRow("widget without instance") << "registerId" << "Zal::GApp::Documentation::registerId"
                                                 << "Documentation singleton not yet initialized";
        QTest::newRow("menu without instance") << "registerMenuId" << "Zal::GApp::Documentation::registerMenuId"
                                               << "Documentation singleton not yet initialized";
    }
    void programmingErrors()
    {
        QFETCH(QString, call);
        QFETCH(QString, function);
        QFETCH(QString, message);
        QWidget widget;
        QMenu menu;
        GTools::Documentation *first = nullptr;
        if (call == "initialize") {
            Documentation::initialize();
            first = GTools::Documentation::instance();
        }
        try {
            if (call == "initialize")
                Documentation::initialize();
            else if (call == "deinitialize")
                Documentation::deinitialize();
            else if (call == "registerId")
                Documentation::registerId(&widget, u"page"_s);
            else
                Documentation::registerMenuId(&menu, menu.addAction(u"x"_s), u"page"_s);
            QFAIL("no error thrown");
        } catch (const ProgError &e) {
            QCOMPARE(e.getFunction(), function);
            QCOMPARE(e.getFile(), u"gapp_documentation"_s);
            QCOMPARE(e.getMessage(), message);
        }
        QCOMPARE(GTools::Documentation::instance(), first);
        QVERIFY(Documentation::getId(&widget).isEmpty());
    }
    void widgetIdsLastAsLongAsTheirWidget()
    {
        Documentation::initialize();
        auto widget = std::make_unique<QWidget>();
        const QWidget *address = widget.get();
        // Code that knows only the GUI tools' base registers through it.
        GTools::Documentation::instance()->registerIdInstance(widget.get(), u"first"_s);
        Documentation::registerId(widget.get(), u"second"_s);
        QCOMPARE(Documentation::getId(widget.get()), u"second"_s);
        QWidget other;
        QVERIFY(Documentation::getId(&other).isEmpty());
        Documentation::registerId(&other, u"other"_s);
        Documentation::unregisterId(&other);
        QVERIFY(Documentation::getId(&other).isEmpty());

        // Bindings outlive the singleton, and still leave with their widget;
        // a new singleton is possible after the old one.
        auto gone = std::make_unique<QWidget>();
        const QWidget *goneAddress = gone.get();
        Documentation::registerId(gone.get(), u"gone"_s);
        Documentation::deinitialize();
        QCOMPARE(Documentation::getId(widget.get()), u"second"_s);
        QCOMPARE(Documentation::getId(gone.get()), u"gone"_s);
        gone.reset();
        QVERIFY(Documentation::getId(goneAddress).isEmpty());
        Documentation::initialize();
        Documentation::registerId(widget.get(), u"third"_s);
        widget.reset();
        QVERIFY(Documentation::getId(address).isEmpty());
    }
    void menuIdsLastAsLongAsTheirMenu()
    {
        Documentation::initialize();
        auto menu = std::make_unique<QMenu>();
        QAction *open = menu->addAction(u"open"_s);
        QAction *save = menu->addAction(u"save"_s);
        QAction *quit = menu->addAction(u"quit"_s);
        Documentation::registerMenuId(menu.get(), open, u"open-page"_s);
        Documentation::registerMenuId(menu.get(), save, u"old"_s);
        Documentation::registerMenuId(menu.get(), save, u"save-page"_s);
        QCOMPARE(Documentation::getMenuId(menu.get(), open), u"open-page"_s);
        QCOMPARE(Documentation::getMenuId(menu.get(), save), u"save-page"_s);
        QVERIFY(Documentation::getMenuId(menu.get(), quit).isEmpty());
        QMenu other;
        QVERIFY(Documentation::getMenuId(&other, open).isEmpty());

        const QMenu *address = menu.get();
        menu.reset();
        QVERIFY(Documentation::getMenuId(address, open).isEmpty());
        // A menu made afterwards, wherever it lands, starts without bindings.
        QMenu later;
        QVERIFY(Documentation::getMenuId(&later, open).isEmpty());
        Documentation::registerMenuId(&later, later.addAction(u"a"_s), u"a"_s);
        Documentation::unregisterMenuId(&later);
        QVERIFY(Documentation::getMenuId(&later, later.actions().value(0)).isEmpty());
    }
    void viewWidgetsAndContainersCarryTheirIds()
    {
        TestUtil::Environment env;
        new Creator(u"list"_s, u"list-page"_s);
        new Creator(u"plain"_s, QString());
        auto *editors = new ContainerWidgetCreator(u"editors"_s, u"Editors"_s, nullptr, {u"list"_s, u"plain"_s});
        Window w;
        QWidget *list = ViewWidgetContainer::createWidget(w.win, u"plain"_s);
        QVERIFY(Documentation::getId(list).isEmpty());
        delete list;

        auto *container = qobject_cast<ContainerWidget *>(ViewWidgetContainer::createWidget(w.win, u"editors"_s));
        QVERIFY(container);
        QCOMPARE(Documentation::getId(container->getWidget(0)), u"list-page"_s);
        QCOMPARE(Documentation::getId(container), u"list-page"_s);
        container->showWidget(1);
        QVERIFY(Documentation::getId(container).isEmpty());
        container->showWidget(0);
        QCOMPARE(Documentation::getId(container), u"list-page"_s);
        delete container;

        // The container creator's own id replaces the inner widget's.
        editors->setHelpId(u"editors-page"_s);
        container = qobject_cast<ContainerWidget *>(ViewWidgetContainer::createWidget(w.win, u"editors"_s));
        QCOMPARE(Documentation::getId(container), u"editors-page"_s);
    }
    void f1ReachesTheWidgetsId()
    {
        TestUtil::Environment env;
        new Creator(u"list"_s, u"list-page"_s);
        Window w;
        QVERIFY(GTools::Documentation::instance());
        QWidget *list = ViewWidgetContainer::createWidget(w.win, u"list"_s);
        list->setGeometry(10, 60, 100, 100);
        w.win->show();
        QString asked;
        connect(w.win, &MainWindow::helpRequestedSignal, this,
                [&asked](QWidget *widget) { asked = Documentation::getId(widget); });
        QTest::keyClick(list, Qt::Key_F1);
        QCOMPARE(asked, u"list-page"_s);
    }
    void mainWindowOwnsTheSingleton()
    {
        TestUtil::Environment env;
        {
            Window w;
            QVERIFY(GTools::Documentation::instance());
        }
        QVERIFY(!GTools::Documentation::instance());
        // A registry made by someone else keeps the window from starting
        // and stays in place; the next window starts once it is gone.
        Documentation::initialize();
        GTools::Documentation *foreign = GTools::Documentation::instance();
        QVERIFY_THROWS_EXCEPTION(ProgError, Window());
        QVERIFY(!MainWindow::main_win);
        QCOMPARE(GTools::Documentation::instance(), foreign);
        Documentation::deinitialize();
        Window w;
        QVERIFY(MainWindow::main_win && GTools::Documentation::instance());
    }
};

QTEST_MAIN(TestResources)
#include "tst_resources.moc"
