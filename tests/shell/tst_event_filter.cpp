#include "tst_event_filter.h"
#include "gapp_ccontainer.h"
#include "gapp_command.h"
#include "gapp_event_filter.h"
#include "gapp_init.h"
#include "gapp_main_window.h"
#include "gapp_safemode.h"
#include "gapp_shortcut.h"
#include "gapp_status_mgr.h"
#include "gapp_view_widget.h"
#include "test_util.h"
#include "zal_cfg_file.h"
#include "zal_cfg_profile.h"
#include "zal_dialogs.h"
#include "zal_gui_thread_event.h"
#include "zal_os.h"
#include "zal_semimodal_dialog.h"
#include "zal_stream.h"
#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>

using namespace Zal;
using namespace Zal::GApp;
using namespace Qt::StringLiterals;

namespace {

class Cmd : public Command
{
public:
    explicit Cmd(const QString &name) : Command(true, false, name, name, QString(), nullptr) {}
    bool isChecked() const override { return false; }
    bool isMenuSensitive() const override { return true; }
    bool isScriptSensitive() const override { return true; }
    QString getParameterString() override { return QString(); }
    bool parseParameterString(const QString &, bool, QString *, ErrorLog *) override { return true; }
    Interactive_t isInteractive() override { return INTERACTIVE_NO; }
    bool executeMenu() override { ++runs; return true; }
    int runs = 0;
};

class Creator : public ViewWidgetCreator
{
public:
    Creator() : ViewWidgetCreator(u"view3d"_s, u"3-D"_s, nullptr) {}
    QWidget *createWidget(QWidget *parent) override { return new QWidget(parent); }
};

// Counts the input that reaches it.
class Probe : public QLineEdit
{
public:
    explicit Probe(QWidget *parent, QRect geometry = QRect(0, 0, 60, 24)) : QLineEdit(parent) { setGeometry(geometry); }
    void mousePressEvent(QMouseEvent *e) override { ++presses; QLineEdit::mousePressEvent(e); }
    void keyPressEvent(QKeyEvent *e) override
    {
        keys += e->key() != Qt::Key_Control; // keyClick presses the modifier on its own
        QLineEdit::keyPressEvent(e);
    }
    int presses = 0, keys = 0;
};

class Drop : public DropInterface
{
public:
    void handleDrop(QList<QUrl> &dropped) override { urls = dropped; }
    QList<QUrl> urls;
};

class Flagging : public GUIThreadEvent
{
public:
    explicit Flagging(bool *flag) : _flag(flag) {}
    void execute() override { *_flag = true; }
    bool *_flag;
};

const char *const kLayout = R"(<layout><shortcutsection><map name="default">
  <entry key="Ctrl+O">file.open</entry>
  <entry key="F5" view="view3d">meas.distance</entry>
</map></shortcutsection></layout>)";

// The user's file adds Ctrl+U for sys.undo.
void writeUserShortcuts()
{
    IO::OutStream out(Cfg::UserFile::getSaveFileName(ZalInit::getApplicationName() + ".shortcuts"),
                      u"ShortcutData"_s, 9);
    out.beginBlock(4, 1);
    out.writeUInt(1);
    out.endBlock();
    out.beginBlock(IO::Stream::sizeOf(u"default"_s), 1);
    out.writeString(u"default"_s);
    out.endBlock();
    out.beginBlock(4 + IO::Stream::sizeOf(u"sys.undo"_s) + IO::Stream::sizeOf(QString()) + 4, 2);
    out.writeUInt(1);
    out.writeString(u"sys.undo"_s);
    out.writeString(QString());
    out.writeInt((Qt::CTRL | Qt::Key_U).toCombined());
    out.endBlock();
}

template <class F> QByteArray captureStderr(F fn)
{
    QTemporaryFile file;
    file.open();
    std::fflush(stderr);
    const int saved = dup(fileno(stderr));
    dup2(file.handle(), fileno(stderr));
    fn();
    std::fflush(stderr);
    dup2(saved, fileno(stderr));
    ::close(saved);
    file.seek(0);
    return file.readAll();
}

} // namespace

struct TestEventFilter::Fixture
{
    TestUtil::Environment env{kLayout};
    GTools::ScriptedDialogs dialogs;
    QStringList args{u"prog"_s};
    std::map<QString, Cmd *> cmds;
    MainWindow *window = nullptr;
    Probe *panel = nullptr, *inner = nullptr, *cancel = nullptr, *edit = nullptr;

    Fixture()
    {
        // The window's clean-up deletes the commands and the creator.
        for (const char *name : {"file.open", "sys.undo", "sys.exit_program", "meas.distance"})
            cmds[QString::fromLatin1(name)] = new Cmd(QString::fromLatin1(name));
        new Creator;
        writeUserShortcuts();
        window = new MainWindow("filter test", new AppStatusManager, InitLibrary(), args);
        panel = new Probe(window, QRect(10, 60, 200, 100));
        inner = new Probe(panel, QRect(10, 10, 80, 30));
        cancel = new Probe(window, QRect(300, 60, 80, 30));
        edit = new Probe(window, QRect(400, 60, 80, 30));
        ShortcutContainer::setActiveData(u"default"_s);
        window->show();
    }
    ~Fixture() { delete window; }
    int runs(const char *name)
    {
        QCoreApplication::sendPostedEvents(window, ExecuteCommandEvent::TYPE);
        return cmds[QString::fromLatin1(name)]->runs;
    }
};

void TestEventFilter::init()
{
    _f = new Fixture;
}

void TestEventFilter::cleanup()
{
    delete _f;
    _f = nullptr;
    QVERIFY(!EventFilter::instance());
    QVERIFY(ShortcutContainer::getAllDataNames().empty());
}

void TestEventFilter::startUpFillsTheDefaultMap()
{
    const ShortcutData *map = ShortcutContainer::getData(u"default"_s);
    QVERIFY(map);
    QCOMPARE(map->getTranslation(), u"default map name"_s);
    QCOMPARE(map->getDefaultShortcuts().size(), size_t(2));
    QCOMPARE(map->getShortcuts().size(), size_t(3));
    QCOMPARE(map->getShortcuts().back().command, u"sys.undo"_s);
}

void TestEventFilter::lockRule_data()
{
    QTest::addColumn<bool>("inputBlocked");
    QTest::addColumn<int>("target"); // 0 inner child of the locked panel, 1 the panel, 2 cancel widget, 3 modal dialog
    QTest::addColumn<bool>("delivered");
    QTest::newRow("child of locked widget") << false << 0 << false;
    QTest::newRow("locked widget itself") << false << 1 << true;
    QTest::newRow("cancel widget") << false << 2 << true;
    QTest::newRow("modal dialog") << false << 3 << true;
    QTest::newRow("blocked: child") << true << 0 << false;
    QTest::newRow("blocked: cancel widget") << true << 2 << true;
}

void TestEventFilter::lockRule()
{
    QFETCH(bool, inputBlocked);
    QFETCH(int, target);
    MainWindow *w = _f->window;
    QDialog dialog(w);
    dialog.setModal(true);
    auto *inDialog = new Probe(&dialog);
    if (target == 3)
        dialog.show();
    if (inputBlocked)
        w->setInputBlocked(true);
    else
        w->lockGUI(_f->panel);
    w->setCancelWidget(_f->cancel);
    Probe *probes[] = {_f->inner, _f->panel, _f->cancel, inDialog};
    QTest::mouseClick(probes[target], Qt::LeftButton, {}, QPoint(5, 5));
    QTEST(probes[target]->presses == 1, "delivered");

    w->unsetCancelWidget(_f->cancel);
    if (inputBlocked)
        w->setInputBlocked(false);
    else
        w->unlockGUI(_f->panel);
    QTest::mouseClick(_f->inner, Qt::LeftButton, {}, QPoint(5, 5));
    QCOMPARE(_f->inner->presses, 1);
}

void TestEventFilter::closeIsIgnoredWhileLocked()
{
    _f->window->lockGUI(_f->panel);
    QCloseEvent locked;
    QCoreApplication::sendEvent(_f->window, &locked);
    QVERIFY(!locked.isAccepted());
    QCOMPARE(_f->cmds[u"sys.exit_program"_s]->runs, 0);
    _f->window->unlockGUI(_f->panel);
    QCloseEvent unlocked;
    QCoreApplication::sendEvent(_f->window, &unlocked);
    QCOMPARE(_f->cmds[u"sys.exit_program"_s]->runs, 1);
}

void TestEventFilter::lockMisuse()
{
    MainWindow *w = _f->window;
    w->lockGUI(_f->panel);
    QVERIFY_THROWS_EXCEPTION(ProgError, w->lockGUI(_f->panel));
    try {
        w->unlockGUI(_f->edit);
        QFAIL("no exception");
    } catch (const ProgError &e) {
        QCOMPARE(e.getMessage(), u"the widget is not used for gui locking"_s);
    }
    w->unlockGUI(_f->panel);
    QVERIFY(!w->isGUILocked());

    w->setCancelWidget(_f->cancel);
    QVERIFY(captureStderr([&] { w->setCancelWidget(_f->edit); }).contains("cancel widget already set"));
    QCOMPARE(w->getCancelWidget(), static_cast<QWidget *>(_f->edit));
    QVERIFY(captureStderr([&] { w->unsetCancelWidget(_f->cancel); }).contains("try to unset a different cancel widget"));
    QVERIFY(!w->getCancelWidget());
}

void TestEventFilter::escape()
{
    MainWindow *w = _f->window;
    QSignalSpy escapes(w, &MainWindow::escapePressedSignal);
    auto discarding = connect(w, &MainWindow::escapePressedSignal, this, [](QObject *, bool *discard) { *discard = true; });
    QTest::keyClick(_f->edit, Qt::Key_Escape);
    QCOMPARE(escapes.count(), 1);
    QCOMPARE(escapes.at(0).at(0).value<QObject *>(), static_cast<QObject *>(_f->edit));
    QCOMPARE(_f->edit->keys, 0);
    disconnect(discarding);

    QTest::keyClick(_f->edit, Qt::Key_Escape);
    QCOMPARE(_f->edit->keys, 1);

    GTools::SemiModalDialog dialog;
    dialog.show();
    QCOMPARE(GTools::getParentWidget(), static_cast<QWidget *>(&dialog));
    QSignalSpy rejected(&dialog, &QDialog::rejected);
    QTest::keyClick(_f->edit, Qt::Key_Escape);
    QCOMPARE(_f->edit->keys, 1);
    QCoreApplication::sendPostedEvents(&dialog, QEvent::KeyPress);
    QCOMPARE(rejected.count(), 1);
}

void TestEventFilter::cancelableBackgroundTurnsEscapeIntoAbort()
{
    MainWindow *w = _f->window;
    w->setCancelEnabled(true);
    QTest::keyClick(_f->edit, Qt::Key_Escape);
    QVERIFY(w->isAbortRequested());
    w->setAbortRequested(false);
    QTest::keyClick(_f->edit, Qt::Key_A);
    QCOMPARE(_f->edit->keys, 0);
    QVERIFY(!w->isAbortRequested());
    QToolButton *button = w->statusBar()->findChild<QToolButton *>();
    QMouseEvent release(QEvent::MouseButtonRelease, QPointF(2, 2), QPointF(2, 2), Qt::LeftButton, {}, {});
    QVERIFY(QCoreApplication::sendEvent(button, &release));
    QVERIFY(w->isAbortRequested());
    w->setCancelEnabled(false);
}

void TestEventFilter::f1RequestsHelp()
{
    QSignalSpy help(_f->window, &MainWindow::helpRequestedSignal);
    QTest::keyClick(_f->inner, Qt::Key_F1);
    QCOMPARE(help.count(), 1);
    QCOMPARE(help.at(0).at(0).value<QWidget *>(), static_cast<QWidget *>(_f->inner));
    QCOMPARE(_f->inner->keys, 0);
}

void TestEventFilter::shortcutDispatch_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<bool>("override");
    QTest::addColumn<bool>("hidden");
    QTest::addColumn<QString>("runs");
    QTest::newRow("widget in the window") << u"window"_s << false << false << u"file.open"_s;
    QTest::newRow("toolbar line edit") << u"toolbar"_s << false << false << QString();
    QTest::newRow("open menu") << u"menu"_s << false << false << QString();
    QTest::newRow("other top-level window") << u"top"_s << false << false << QString();
    QTest::newRow("override in toolbar") << u"toolbar"_s << true << false << u"sys.undo"_s;
    QTest::newRow("override in menu") << u"menu"_s << true << false << u"sys.undo"_s;
    QTest::newRow("hidden by profile") << u"window"_s << false << true << QString();
}

void TestEventFilter::shortcutDispatch()
{
    QFETCH(QString, target);
    QFETCH(QString, runs);
    QFETCH(bool, override);
    QFETCH(bool, hidden);
    QToolBar *bar = _f->window->addToolBar(u"bar"_s);
    auto *barEdit = new Probe(nullptr);
    bar->addWidget(barEdit);
    QMenu menu(_f->window);
    Probe top(nullptr);
    if (override) {
        (new ShortcutData(u"override"_s, QString()))->setShortcuts({{u"sys.undo"_s, QString(), (Qt::CTRL | Qt::Key_O).toCombined()}});
        ShortcutContainer::setOverrideData(u"override"_s);
    }
    auto *profile = new Cfg::ParsedProfile;
    if (hidden)
        profile->hideCommand(u"file.open"_s);
    Cfg::Profile::setInstance(profile);
    QWidget *targets[] = {_f->edit, barEdit, &menu, &top};
    const int index = QStringList{u"window"_s, u"toolbar"_s, u"menu"_s, u"top"_s}.indexOf(target);
    QTest::keyClick(targets[index], Qt::Key_O, Qt::ControlModifier);
    Cfg::Profile::clear();
    QCOMPARE(_f->runs("file.open"), runs == u"file.open"_s ? 1 : 0);
    QCOMPARE(_f->runs("sys.undo"), runs == u"sys.undo"_s ? 1 : 0);
    if (index != 2) // the key passes on when nothing was dispatched
        QCOMPARE(static_cast<Probe *>(targets[index])->keys, runs.isEmpty() ? 1 : 0);
}

void TestEventFilter::maximiseNoticeWaitsForTheMenuFunction()
{
    MainWindow *w = _f->window;
    w->setMaximumWidth(300);
    MainWindow::smgr->pushActiveCommand(_f->cmds[u"file.open"_s]);
    w->setWindowState(Qt::WindowMaximized);
    QCoreApplication::sendPostedEvents(w);
    QVERIFY(_f->dialogs.requests().empty());
    MainWindow::smgr->popActiveCommand();
    QVERIFY(!_f->dialogs.requests().empty());
    QCOMPARE(_f->dialogs.requests()[0].code, u"gapp_window_size_limited"_s);
}

void TestEventFilter::postedEvents()
{
    bool executed = false;
    GTools::SemiModalDialog dialog;
    QList<GTools::SemiModalDialog *> shown;
    connect(_f->window, &MainWindow::dialogShowSignal, this, [&](GTools::SemiModalDialog *d) { shown << d; });
    QCoreApplication::postEvent(_f->window, new Flagging(&executed));
    QCoreApplication::postEvent(_f->window, new GTools::DialogShowEvent(&dialog));
    QCoreApplication::sendPostedEvents(_f->window);
    QVERIFY(executed);
    QCOMPARE(shown, QList<GTools::SemiModalDialog *>{&dialog});
}

void TestEventFilter::dragAndDrop()
{
    QMimeData mime;
    mime.setUrls({QUrl(u"file:///tmp/a.txt"_s)});
    auto enter = [&] {
        QDragEnterEvent e(QPoint(5, 5), Qt::CopyAction | Qt::MoveAction, &mime, Qt::LeftButton, {});
        QCoreApplication::sendEvent(_f->window, &e);
        return e.isAccepted() && e.dropAction() == Qt::CopyAction;
    };
    QVERIFY(!enter()); // no drop interface
    Drop drop;
    QVERIFY(enter());
    _f->window->setSelectCommandMode(Command::SelectCommandMode_t(1));
    QVERIFY(!enter());
    _f->window->setSelectCommandMode(Command::SelectCommandMode_t(0));
    QDropEvent e(QPointF(5, 5), Qt::CopyAction | Qt::MoveAction, &mime, Qt::LeftButton, {});
    QCoreApplication::sendEvent(_f->window, &e);
    QCOMPARE(e.dropAction(), Qt::CopyAction);
    QCOMPARE(drop.urls, mime.urls());
}

void TestEventFilter::eventTypeNames_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QByteArray>("name");
    const std::pair<int, const char *> rows[] = {
        {0, "None"}, {2, "MouseBtnPress"}, {23, "Unknown"}, {51, "ShortcutOverride"}, {81, "DeactivateCtrl"},
        {90, "LayoutDir.Change"}, {106, "Unknown"}, {117, "Shortcut"}, {132, "WinEventAct"}, {133, "Unknown"},
        {155, "GS MouseMove"}, {178, "ContentsRectChang"}, {179, "MacGLWindowChange"}, {1000, "User"},
        {1001, "Unknown"}, {65535, "MaxUser"}};
    for (const auto &row : rows)
        QTest::addRow("%d", row.first) << row.first << QByteArray(row.second);
}

void TestEventFilter::eventTypeNames()
{
    QFETCH(int, type);
    QTEST(QByteArray(EventFilter::getEventTypeName(type)), "name");
}

void TestEventFilter::eventTrace()
{
    QObject plain;
    QObject parent;
    parent.setObjectName(u"p"_s);
    QObject child(&parent);
    child.setObjectName(u"c"_s);
    QTimerEvent timer(1);
    QChildEvent added(QEvent::ChildAdded, &child);
    QEvent user(QEvent::Type(1001));
    MainWindow::debug_events = true;
    const QByteArray out = TestUtil::captureStdout([&] {
        QCoreApplication::sendEvent(&plain, &timer);
        QCoreApplication::sendEvent(&parent, &added);
        QCoreApplication::sendEvent(&child, &user);
    });
    MainWindow::debug_events = false;
    const auto address = [](QObject *o) { return QString::asprintf("%p", static_cast<void *>(o)).toLatin1(); };
    QCOMPARE(out, "Event type 1 (Timer) widget 'QObject' address (" + address(&plain) + ") custom 0 no parent\n"
                  "Event type 68 (ChildAdded) widget 'QObject::p' address (" + address(&parent) +
                      ") custom 0 no parent child 'QObject::c' address (" + address(&child) + ")\n"
                  "Event type 1001 (Unknown) widget 'QObject::c' address (" + address(&child) +
                      ") custom 1 parent 'QObject::p' address (" + address(&parent) + ")\n");
}
