#include "tst_background.h"
#include "gapp_init.h"
#include "gapp_main_window.h"
#include "gapp_progress_event.h"
#include "gapp_status_mgr.h"
#include "test_util.h"
#include "zal_dialogs.h"
#include "zal_progress.h"
#include "zal_thread.h"
#include <QApplication>
#include <QEventLoop>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QSemaphore>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTimer>
#include <QToolButton>
#include <atomic>
#include <functional>
#include <new>
#include <stdexcept>

using namespace Zal;
using namespace Zal::GApp;

namespace {

// A worker that runs `body`, then waits until the test opens its gate.
class GatedThread : public Thread
{
public:
    explicit GatedThread(LockGUI_t lock = DONT_LOCK_GUI) : Thread(lock, "GatedThread", __FILE__, __LINE__) {}
    ~GatedThread() override { wait(); }

    QSemaphore gate;
    bool waitForGate = true;
    std::function<void()> body;
    std::atomic<bool> sawRunning{false};
    std::atomic<bool> sawAbort{false};

protected:
    void run() override
    {
        sawRunning = MainWindow::main_win->executeBgRunning();
        if (body)
            body();
        if (waitForGate)
            gate.acquire();
        sawAbort = Progress::getAbortFlag();
    }
};

// Runs `fn` from inside the nested loop of the execution about to start.
void whileRunning(std::function<void()> fn)
{
    QTimer::singleShot(0, MainWindow::main_win, std::move(fn));
}

QProgressBar *progressBar(MainWindow *w)
{
    return w->statusBar()->findChild<QProgressBar *>();
}

QToolButton *cancelButton(MainWindow *w)
{
    return w->statusBar()->findChild<QToolButton *>();
}

int runningLoops(MainWindow *w)
{
    return int(w->findChildren<QEventLoop *>().size());
}

// What the input flags say at one moment.
struct Flags
{
    bool inputBlocked, cancelEnabled, escapeSuppressed, abortRequested;
    static Flags of(const MainWindow *w)
    {
        return {w->isInputBlocked(), w->isCancelEnabled(), w->isEscapeSuppressed(), w->isAbortRequested()};
    }
    bool operator==(const Flags &o) const
    {
        return inputBlocked == o.inputBlocked && cancelEnabled == o.cancelEnabled
               && escapeSuppressed == o.escapeSuppressed && abortRequested == o.abortRequested;
    }
};

char *toString(const Flags &f)
{
    return qstrdup(QByteArray("blocked ") + QByteArray::number(f.inputBlocked) + " cancel "
                   + QByteArray::number(f.cancelEnabled) + " escape " + QByteArray::number(f.escapeSuppressed)
                   + " abort " + QByteArray::number(f.abortRequested));
}

// Counts the GUI-thread events that reach an object.
class EventCounter : public QObject
{
public:
    int count = 0;
    bool eventFilter(QObject *, QEvent *e) override
    {
        count += e->type() == GUIThreadEvent::eventType();
        return false;
    }
};

} // namespace

struct TestBackground::Fixture
{
    TestUtil::Environment env;
    GTools::ScriptedDialogs dialogs;
    QStringList args{QStringLiteral("prog")};
    MainWindow *window;
    Fixture() : window(new MainWindow("background test", new AppStatusManager, InitLibrary(), args)) {}
    ~Fixture()
    {
        delete window;
        Progress::setCreateGUIEvents(false);
        Progress::setAbortFlag(false);
        Progress::reset();
    }
};

void TestBackground::init()
{
    _f = new Fixture;
}

void TestBackground::cleanup()
{
    delete _f;
    _f = nullptr;
}

void TestBackground::finishedRunReturnsTrueAndRestoresState_data()
{
    QTest::addColumn<bool>("cancelable");
    QTest::addColumn<bool>("locksDrawing");
    QTest::newRow("cancelable") << true << false;
    QTest::newRow("not cancelable") << false << false;
    QTest::newRow("cancelable, drawing locked") << true << true;
}

void TestBackground::finishedRunReturnsTrueAndRestoresState()
{
    QFETCH(bool, cancelable);
    QFETCH(bool, locksDrawing);
    MainWindow *w = _f->window;
    GatedThread thread(locksDrawing ? Thread::LOCK_GUI : Thread::DONT_LOCK_GUI);
    thread.setRequiresUndo(true); // a run starts without undo

    Flags during{};
    bool running = false, guiLocked = false, buttonEnabled = false, drawingLocked = false, events = false;
    int loops = 0;
    Qt::CursorShape cursor = Qt::ArrowCursor;
    whileRunning([&] {
        during = Flags::of(w);
        running = w->executeBgRunning();
        guiLocked = w->isGUILocked();
        buttonEnabled = cancelButton(w)->isEnabled();
        drawingLocked = w->isDrawingLocked();
        events = Progress::isCreateGUIEventAllowed();
        loops = runningLoops(w);
        cursor = QApplication::overrideCursor() ? QApplication::overrideCursor()->shape() : Qt::ArrowCursor;
        thread.gate.release();
    });
    QVERIFY(w->executeBackground(&thread, cancelable));

    QCOMPARE(during, (Flags{true, cancelable, false, false}));
    QVERIFY(running && guiLocked && events && thread.sawRunning);
    QCOMPARE(buttonEnabled, cancelable);
    QCOMPARE(drawingLocked, locksDrawing);
    QCOMPARE(loops, 1);
    QCOMPARE(cursor, Qt::WaitCursor);
    QVERIFY(!thread.requiresUndo());

    QCOMPARE(Flags::of(w), (Flags{false, false, false, false}));
    QVERIFY(thread.isFinished());
    QVERIFY(!w->executeBgRunning());
    QVERIFY(!w->isGUILocked());
    QVERIFY(!w->isDrawingLocked());
    QVERIFY(!cancelButton(w)->isEnabled());
    QVERIFY(!QApplication::overrideCursor());
    QVERIFY(!Progress::isCreateGUIEventAllowed());
    QCOMPARE(runningLoops(w), 0);
}

void TestBackground::threadDoneBeforeTheFirstTickLeavesNoLoop()
{
    MainWindow *w = _f->window;
    GatedThread thread;
    thread.waitForGate = false;
    const int level = QThread::currentThread()->loopLevel();
    QVERIFY(w->executeBackground(&thread, true));
    QCOMPARE(QThread::currentThread()->loopLevel(), level);
    QCOMPARE(runningLoops(w), 0);
    QVERIFY(!w->executeBgRunning());
    QVERIFY(_f->dialogs.requests().empty());
}

void TestBackground::abortQuestion_data()
{
    QTest::addColumn<bool>("undoable");
    QTest::addColumn<bool>("byButton"); // the status-bar cancel button, else Escape
    QTest::addColumn<int>("answer");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QStringList>("buttons");
    QTest::addColumn<bool>("result");
    QTest::addColumn<bool>("undo");
    const QStringList two{QStringLiteral("ok"), QStringLiteral("cancel")};
    const QStringList three{QStringLiteral("ok"), QStringLiteral("ok and undo"), QStringLiteral("cancel")};
    QTest::newRow("escape, ok") << false << false << 0 << "okcancel" << two << false << false;
    QTest::newRow("cancel button, ok") << false << true << 0 << "okcancel" << two << false << false;
    QTest::newRow("escape, cancel") << false << false << 1 << "okcancel" << two << true << false;
    QTest::newRow("undoable, ok") << true << false << 0 << "yesnocancel" << three << false << false;
    QTest::newRow("undoable, ok and undo") << true << true << 1 << "yesnocancel" << three << false << true;
    QTest::newRow("undoable, cancel") << true << false << 2 << "yesnocancel" << three << true << false;
}

void TestBackground::abortQuestion()
{
    QFETCH(bool, undoable);
    QFETCH(bool, byButton);
    QFETCH(int, answer);
    QFETCH(QString, kind);
    QFETCH(QStringList, buttons);
    QFETCH(bool, result);
    QFETCH(bool, undo);
    MainWindow *w = _f->window;
    w->show();
    GatedThread thread;
    thread.setUndoable(undoable);

    std::vector<GTools::DialogRequest> asked;
    Flags whileAsking{}, afterwards{};
    bool abortFlagAfterwards = false;
    const auto previous = GTools::DialogSeam::setHandler([&](const GTools::DialogRequest &r) {
        asked.push_back(r);
        whileAsking = Flags::of(w);
        // After this tick has put the flags back, the worker may end.
        QTimer::singleShot(0, w, [&] {
            afterwards = Flags::of(w);
            abortFlagAfterwards = Progress::getAbortFlag();
            thread.gate.release();
        });
        return answer;
    });
    bool requested = false;
    whileRunning([&] {
        if (byButton)
            QTest::mouseClick(cancelButton(w), Qt::LeftButton);
        else
            QTest::keyClick(w, Qt::Key_Escape);
        requested = w->isAbortRequested();
    });
    const bool ok = w->executeBackground(&thread, true);
    GTools::DialogSeam::setHandler(previous);

    QVERIFY(requested);
    QCOMPARE(ok, result);
    QCOMPARE(thread.requiresUndo(), undo);
    QCOMPARE(bool(thread.sawAbort), !result);
    QCOMPARE(abortFlagAfterwards, !result);
    QCOMPARE(asked.size(), size_t(1));
    QCOMPARE(asked[0].kind, kind);
    QCOMPARE(asked[0].type, 0);
    QCOMPARE(asked[0].title, QStringLiteral("abort computation"));
    QCOMPARE(asked[0].text, QStringLiteral("abort the computation?"));
    QCOMPARE(asked[0].third, QString());
    QCOMPARE(asked[0].buttons, buttons);
    QCOMPARE(whileAsking, (Flags{false, false, true, true}));
    QCOMPARE(afterwards, (Flags{true, true, false, false}));
    QCOMPARE(w->getStatusText(), result ? QString() : QStringLiteral("computation aborted"));
    QVERIFY(!Progress::getAbortFlag());
    QVERIFY(thread.isFinished());
}

void TestBackground::nonCancelableRunIgnoresEscape()
{
    MainWindow *w = _f->window;
    w->show();
    GatedThread thread;
    bool requested = true;
    whileRunning([&] {
        QTest::keyClick(w, Qt::Key_Escape);
        QTest::mouseClick(cancelButton(w), Qt::LeftButton);
        requested = w->isAbortRequested();
        thread.gate.release();
    });
    QVERIFY(w->executeBackground(&thread, false));
    QVERIFY(!requested);
    QVERIFY(_f->dialogs.requests().empty());
    QVERIFY(!thread.sawAbort);
}

void TestBackground::progressEventsMoveTheBar_data()
{
    QTest::addColumn<int>("min");
    QTest::addColumn<int>("max");
    QTest::addColumn<uint>("percent");
    QTest::addColumn<int>("expected"); // -2: the bar is left as it was
    QTest::newRow("half of 0..200") << 0 << 200 << 50u << 100;
    QTest::newRow("half of the step 20..40") << 20 << 40 << 50u << 30;
    QTest::newRow("truncated") << 0 << 100 << 33u << 33;
    QTest::newRow("a third of 0..50") << 0 << 50 << 33u << 16;
    QTest::newRow("over 100 percent counts as 100") << 0 << 100 << 150u << 100;
    QTest::newRow("min -1 leaves the bar") << -1 << 100 << 50u << -2;
    QTest::newRow("max -1 leaves the bar") << 0 << -1 << 50u << -2;
}

void TestBackground::progressEventsMoveTheBar()
{
    QFETCH(int, min);
    QFETCH(int, max);
    QFETCH(uint, percent);
    QFETCH(int, expected);
    MainWindow *w = _f->window;
    QProgressBar *bar = progressBar(w);
    const int before = bar->value();
    GatedThread thread;
    thread.body = [=] {
        Progress::setProgressRange(min, max);
        Progress::setProgress(percent, QStringLiteral("sorting"));
    };
    int shown = -100;
    auto connection = connect(w->statusBar(), &QStatusBar::messageChanged, w, [&](const QString &text) {
        if (text != QLatin1String("sorting") || shown != -100)
            return;
        // The bar follows the text in the same event.
        QTimer::singleShot(0, w, [&] {
            shown = bar->value();
            thread.gate.release();
        });
    });
    QVERIFY(w->executeBackground(&thread, false));
    disconnect(connection);
    QCOMPARE(shown, expected == -2 ? before : expected);
    QCOMPARE(w->getStatusText(), QString());
    QCOMPARE(bar->value(), bar->minimum() - 1); // reset after the run
}

void TestBackground::lastReportIsShownBeforeTheEnd()
{
    MainWindow *w = _f->window;
    GatedThread thread;
    thread.waitForGate = false;
    thread.body = [] {
        for (unsigned int i = 0; i <= 100; i += 10)
            Progress::setProgress(i);
    };
    int highest = -1;
    auto connection = connect(progressBar(w), &QProgressBar::valueChanged, w,
                              [&](int value) { highest = qMax(highest, value); });
    QVERIFY(w->executeBackground(&thread, false));
    disconnect(connection);
    QCOMPARE(highest, 100);
}

void TestBackground::progressEventShowsOnlyWhileAllowed_data()
{
    QTest::addColumn<bool>("aborted");
    QTest::addColumn<bool>("allowed");
    QTest::addColumn<bool>("shown");
    QTest::newRow("running") << false << true << true;
    QTest::newRow("aborted") << true << true << false;
    QTest::newRow("events stopped") << false << false << false;
}

void TestBackground::progressEventShowsOnlyWhileAllowed()
{
    QFETCH(bool, aborted);
    QFETCH(bool, allowed);
    QFETCH(bool, shown);
    MainWindow *w = _f->window;
    QProgressBar *bar = progressBar(w);
    bar->setValue(5);
    Progress::setCreateGUIEvents(false); // set the values without posting
    Progress::setProgressRange(0, 100);
    Progress::setProgress(70, QStringLiteral("seventy"));
    Progress::setAbortFlag(aborted);
    Progress::setCreateGUIEvents(allowed);
    ProgressEventCreator creator;
    std::unique_ptr<GUIThreadEvent> event(creator.createEvent());
    event->execute();
    QCOMPARE(bar->value(), shown ? 70 : 5);
    QCOMPARE(w->getStatusText(), shown ? QStringLiteral("seventy") : QString());
}

void TestBackground::changesWaitInOneEvent()
{
    MainWindow *w = _f->window;
    EventCounter counter;
    w->installEventFilter(&counter);
    Progress::setCreateGUIEvents(true);
    for (unsigned int i = 0; i <= 100; ++i)
        Progress::setProgress(i, QStringLiteral("step %1").arg(i));
    QCoreApplication::sendPostedEvents(w, GUIThreadEvent::eventType());
    QCOMPARE(counter.count, 1);
    QCOMPARE(progressBar(w)->value(), 100);
    QCOMPARE(w->getStatusText(), QStringLiteral("step 100"));

    // Once handled, the next change posts again.
    Progress::setProgress(40);
    QCoreApplication::sendPostedEvents(w, GUIThreadEvent::eventType());
    QCOMPARE(counter.count, 2);
    QCOMPARE(progressBar(w)->value(), 40);

    // Without permission nothing is posted at all.
    Progress::setCreateGUIEvents(false);
    Progress::setProgress(60);
    QCoreApplication::sendPostedEvents(w, GUIThreadEvent::eventType());
    QCOMPARE(counter.count, 2);
    w->removeEventFilter(&counter);
}

void TestBackground::otherThreadsSeeTheRunningFlag()
{
    MainWindow *w = _f->window;
    auto askFromAnotherThread = [w] {
        std::atomic<bool> seen{false};
        std::unique_ptr<QThread> t(QThread::create([&] { seen = w->executeBgRunning(); }));
        t->start();
        t->wait();
        return bool(seen);
    };
    QVERIFY(!askFromAnotherThread());
    GatedThread thread;
    bool seenDuring = false;
    whileRunning([&] {
        seenDuring = askFromAnotherThread();
        thread.gate.release();
    });
    QVERIFY(w->executeBackground(&thread, false));
    QVERIFY(seenDuring);
    QVERIFY(thread.sawRunning);
    QVERIFY(!askFromAnotherThread());
}

void TestBackground::nestedRunRestoresTheOuterRun()
{
    MainWindow *w = _f->window;
    w->show();
    QPushButton own(QStringLiteral("stop"), w);
    own.show();
    GatedThread outer, inner;
    bool innerResult = false, ownButtonAborts = false, statusButtonDuringInner = true;
    bool outerRunning = false, statusButtonAborts = false;
    Flags afterInner{};
    whileRunning([&] {
        whileRunning([&] {
            QTest::mouseClick(&own, Qt::LeftButton);
            ownButtonAborts = w->isAbortRequested();
            w->setAbortRequested(false);
            QTest::mouseClick(cancelButton(w), Qt::LeftButton);
            statusButtonDuringInner = w->isAbortRequested();
            w->setAbortRequested(false);
            inner.gate.release();
        });
        innerResult = w->executeBackground(&own, &inner, true);
        afterInner = Flags::of(w);
        outerRunning = w->executeBgRunning();
        QTest::mouseClick(cancelButton(w), Qt::LeftButton);
        statusButtonAborts = w->isAbortRequested();
        w->setAbortRequested(false);
        // Only a restarted timer notices that the outer worker is done.
        outer.gate.release();
    });
    QVERIFY(w->executeBackground(&outer, true));
    QVERIFY(innerResult);
    QVERIFY(ownButtonAborts);
    QVERIFY(!statusButtonDuringInner);
    QCOMPARE(afterInner, (Flags{true, true, false, false}));
    QVERIFY(outerRunning);
    QVERIFY(statusButtonAborts);
    QVERIFY(!w->executeBgRunning());
    QVERIFY(_f->dialogs.requests().empty());
}

void TestBackground::failureInTheLoopRestoresStateAndThrows()
{
    MainWindow *w = _f->window;
    GatedThread thread;
    whileRunning([&] {
        thread.gate.release();
        throw std::runtime_error("handler failed");
    });
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^Qt has caught an exception")));
    QVERIFY_THROWS_EXCEPTION(std::bad_alloc, w->executeBackground(&thread, true));
    thread.wait();
    QCOMPARE(Flags::of(w), (Flags{false, false, false, false}));
    QVERIFY(!w->executeBgRunning());
    QVERIFY(!cancelButton(w)->isEnabled());
    QVERIFY(!QApplication::overrideCursor());
    QCOMPARE(runningLoops(w), 0);
}

void TestBackground::timedMessageLeavesThePreMessage()
{
    MainWindow *w = _f->window;
    w->setPreMessage(QStringLiteral("pre"));
    w->setMessage(QStringLiteral("for a moment"), 1);
    QCOMPARE(w->getStatusText(), QStringLiteral("pre: for a moment"));
    QSignalSpy changed(w->statusBar(), &QStatusBar::messageChanged);
    QVERIFY(changed.wait());
    QCOMPARE(changed.count(), 1);
    QCOMPARE(w->getStatusText(), QStringLiteral("pre: "));
    // The message itself is gone, not only its display.
    w->setPreMessage(QStringLiteral("other"));
    QCOMPARE(w->getStatusText(), QStringLiteral("other: "));
}
