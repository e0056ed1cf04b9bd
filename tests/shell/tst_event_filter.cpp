#include "tst_event_filter.h"
#include "gapp_ccontainer.h"
#include "gapp_command.h"
#include "gapp_event_filter.h"
#include "gapp_init.h"
#include "gapp_main_window.h"
#include "gapp_shortcut.h"
#include "gapp_status_mgr.h"
#include "gapp_view_widget.h"
#include "test_util.h"
#include "zal_cfg_profile.h"
#include "zal_dialogs.h"
#include "zal_semimodal_dialog.h"
#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QToolBar>

using namespace Zal;
using namespace Zal::GApp;
using namespace Qt::StringLiterals;

namespace {

using Cmd = TestUtil::StubCommand;

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

const char *const kLayout = R"(<layout><shortcutsection><map name="default">
  <entry key="Ctrl+O">file.open</entry>
  <entry key="F5" view="view3d">meas.distance</entry>
</map></shortcutsection></layout>)";

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

void TestEventFilter::lockRule_data()
{
    QTest::addColumn<bool>("inputBlocked");
    QTest::addColumn<int>("target"); // inner child of the locked panel, the panel, cancel widget, modal dialog, close
    QTest::addColumn<bool>("delivered");
    QTest::newRow("child of locked widget") << false << 0 << false;
    QTest::newRow("locked widget itself") << false << 1 << true;
    QTest::newRow("cancel widget") << false << 2 << true;
    QTest::newRow("modal dialog") << false << 3 << true;
    QTest::newRow("close request") << false << 4 << false;
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
    Probe *probes[] = {_f->inner, _f->panel, _f->cancel, new Probe(&dialog)};
    if (target == 3)
        dialog.show();
    inputBlocked ? w->setInputBlocked(true) : w->lockGUI(_f->panel);
    if (!inputBlocked)
        QVERIFY_THROWS_EXCEPTION(ProgError, w->lockGUI(_f->panel));
    QVERIFY_THROWS_EXCEPTION(ProgError, w->unlockGUI(_f->edit));
    w->setCancelWidget(_f->cancel);
    if (target == 4) {
        QCloseEvent close; // the window's own handler runs the exit command
        QCoreApplication::sendEvent(w, &close);
        QTEST(_f->cmds[u"sys.exit_program"_s]->runs == 1, "delivered");
        QVERIFY(!close.isAccepted());
    } else {
        QTest::mouseClick(probes[target], Qt::LeftButton, {}, QPoint(5, 5));
        QTEST(probes[target]->presses == 1, "delivered");
    }
    w->unsetCancelWidget(_f->cancel);
    inputBlocked ? w->setInputBlocked(false) : w->unlockGUI(_f->panel);
    QVERIFY_THROWS_EXCEPTION(ProgError, w->unlockGUI(_f->panel));
    QTest::mouseClick(_f->inner, Qt::LeftButton, {}, QPoint(5, 5));
    QCOMPARE(_f->inner->presses, 1);
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
