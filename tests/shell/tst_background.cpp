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
#include <utility>

using namespace Zal;
using namespace Zal::GApp;

namespace {

// A worker that runs `body`, then waits until the test opens its gate (opened early, it does not wait).
class GatedThread : public Thread
{
public:
    explicit GatedThread(LockGUI_t lock = DONT_LOCK_GUI) : Thread(lock, "GatedThread", __FILE__, __LINE__) {}
    ~GatedThread() override { wait(); }

    QSemaphore gate;
    std::function<void()> body;
    std::atomic<bool> sawRunning{false}, sawAbort{false};

protected:
    void run() override
    {
        sawRunning = MainWindow::main_win->executeBgRunning();
        if (body)
            body();
        gate.acquire();
        sawAbort = Progress::getAbortFlag();
    }
};

// Runs `fn` from inside the nested loop of the execution about to start.
void whileRunning(std::function<void()> fn)
{
    QTimer::singleShot(0, MainWindow::main_win, std::move(fn));
}

QProgressBar *progressBar(MainWindow *w) { return w->statusBar()->findChild<QProgressBar *>(); }
QToolButton *cancelButton(MainWindow *w) { return w->statusBar()->findChild<QToolButton *>(); }

// The names of the input flags that are on; with `full` also the rest of the run state.
QString state(MainWindow *w, bool full = false)
{
    const std::pair<bool, const char *> parts[] = {
        {w->isInputBlocked(), "blocked"},      {w->isCancelEnabled(), "cancel"},
        {w->isEscapeSuppressed(), "escape"},   {w->isAbortRequested(), "abort"},
        {w->executeBgRunning(), "running"},    {w->isGUILocked(), "gui-locked"},
        {w->isDrawingLocked(), "drawing-locked"}, {cancelButton(w)->isEnabled(), "button"},
        {Progress::isCreateGUIEventAllowed(), "events"}};
    QStringList on;
    for (int i = 0; i < (full ? 9 : 4); ++i)
        if (parts[i].first)
            on << QLatin1String(parts[i].second);
    const QCursor *cursor = QApplication::overrideCursor();
    if (full && cursor)
        on << (cursor->shape() == Qt::WaitCursor ? QStringLiteral("wait-cursor") : QStringLiteral("other-cursor"));
    if (const auto loops = full ? w->findChildren<QEventLoop *>().size() : 0)
        on << QStringLiteral("%1 loop").arg(loops);
    return on.join(QLatin1Char(' '));
}

bool runningSeenFromAnotherThread(MainWindow *w)
{
    std::atomic<bool> seen{false};
    std::unique_ptr<QThread> t(QThread::create([&] { seen = w->executeBgRunning(); }));
    t->start();
    t->wait();
    return seen;
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

void TestBackground::init() { _f = new Fixture; }
void TestBackground::cleanup() { delete std::exchange(_f, nullptr); }

void TestBackground::finishedRunReturnsTrueAndRestoresState_data()
{
    QTest::addColumn<bool>("cancelable");
    QTest::addColumn<bool>("locksDrawing");
    QTest::addColumn<QString>("during");
    QTest::newRow("cancelable") << true << false
                                << "blocked cancel running gui-locked button events wait-cursor 1 loop";
    // Escape and the cancel button are ignored here.
    QTest::newRow("not cancelable") << false << false << "blocked running gui-locked events wait-cursor 1 loop";
    QTest::newRow("cancelable, drawing locked")
        << true << true << "blocked cancel running gui-locked drawing-locked button events wait-cursor 1 loop";
}

void TestBackground::finishedRunReturnsTrueAndRestoresState()
{
    QFETCH(bool, cancelable);
    QFETCH(bool, locksDrawing);
    MainWindow *w = _f->window;
    w->show();
    GatedThread thread(locksDrawing ? Thread::LOCK_GUI : Thread::DONT_LOCK_GUI);
    thread.setRequiresUndo(true); // a run starts without undo
    QString during;
    bool seenElsewhere = false;
    whileRunning([&] {
        if (!cancelable) {
            QTest::keyClick(w, Qt::Key_Escape);
            QTest::mouseClick(cancelButton(w), Qt::LeftButton);
        }
        during = state(w, true);
        seenElsewhere = runningSeenFromAnotherThread(w);
        thread.gate.release();
    });
    QVERIFY(!runningSeenFromAnotherThread(w));
    QVERIFY(w->executeBackground(&thread, cancelable));
    QTEST(during, "during");
    QVERIFY(seenElsewhere && thread.sawRunning);
    QVERIFY(!thread.requiresUndo() && !thread.sawAbort && thread.isFinished());
    QVERIFY(_f->dialogs.requests().empty());
    QCOMPARE(state(w, true), QString());
    QVERIFY(!runningSeenFromAnotherThread(w));
}

void TestBackground::workerDoneBeforeTheFirstTick()
{
    MainWindow *w = _f->window;
    GatedThread thread;
    thread.gate.release();
    thread.body = [] {
        for (unsigned int i = 0; i <= 100; i += 10)
            Progress::setProgress(i);
    };
    int highest = -1;
    QObject guard;
    connect(progressBar(w), &QProgressBar::valueChanged, &guard, [&](int value) { highest = qMax(highest, value); });
    const int level = QThread::currentThread()->loopLevel();
    QVERIFY(w->executeBackground(&thread, true));
    QCOMPARE(QThread::currentThread()->loopLevel(), level);
    QCOMPARE(highest, 100); // the last report is shown before the end
    QCOMPARE(state(w, true), QString());
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
    const QStringList two{"ok", "cancel"}, three{"ok", "ok and undo", "cancel"};
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
    QFETCH(bool, result);
    MainWindow *w = _f->window;
    w->show();
    GatedThread thread;
    thread.setUndoable(undoable);
    std::vector<GTools::DialogRequest> asked;
    QString whileAsking, afterwards;
    bool abortFlagAfterwards = false, requested = false;
    const auto previous = GTools::DialogSeam::setHandler([&](const GTools::DialogRequest &r) {
        asked.push_back(r);
        whileAsking = state(w);
        // After this tick has put the flags back, the worker may end.
        QTimer::singleShot(0, w, [&] {
            afterwards = state(w);
            abortFlagAfterwards = Progress::getAbortFlag();
            thread.gate.release();
        });
        return answer;
    });
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
    QTEST(thread.requiresUndo(), "undo");
    QCOMPARE(bool(thread.sawAbort), !result);
    QCOMPARE(abortFlagAfterwards, !result);
    QCOMPARE(asked.size(), size_t(1));
    QTEST(asked[0].kind, "kind");
    QCOMPARE(asked[0].type, 0);
    QCOMPARE(asked[0].title + '|' + asked[0].text + '|' + asked[0].third, "abort computation|abort the computation?|");
    QTEST(asked[0].buttons, "buttons");
    QCOMPARE(whileAsking, QStringLiteral("escape abort"));
    QCOMPARE(afterwards, QStringLiteral("blocked cancel"));
    QCOMPARE(w->getStatusText(), result ? QString() : QStringLiteral("computation aborted"));
    QVERIFY(!Progress::getAbortFlag());
    QVERIFY(thread.isFinished());
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
    QObject guard;
    connect(w->statusBar(), &QStatusBar::messageChanged, &guard, [&](const QString &text) {
        if (text == QLatin1String("sorting") && shown == -100) // the bar follows the text in the same event
            QTimer::singleShot(0, w, [&] {
                shown = bar->value();
                thread.gate.release();
            });
    });
    QVERIFY(w->executeBackground(&thread, false));
    QCOMPARE(shown, expected == -2 ? before : expected);
    QCOMPARE(w->getStatusText(), QString());
    QCOMPARE(bar->value(), bar->minimum() - 1); // reset after the run
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
    progressBar(w)->setValue(5);
    Progress::setCreateGUIEvents(false); // set the values without posting
    Progress::setProgressRange(0, 100);
    Progress::setProgress(70, QStringLiteral("seventy"));
    Progress::setAbortFlag(aborted);
    Progress::setCreateGUIEvents(allowed);
    ProgressEventCreator creator;
    std::unique_ptr<GUIThreadEvent>(creator.createEvent())->execute();
    QCOMPARE(progressBar(w)->value(), shown ? 70 : 5);
    QCOMPARE(w->getStatusText(), shown ? QStringLiteral("seventy") : QString());
}

void TestBackground::changesWaitInOneEvent()
{
    MainWindow *w = _f->window;
    EventCounter counter;
    w->installEventFilter(&counter);
    const auto deliver = [w] { QCoreApplication::sendPostedEvents(w, GUIThreadEvent::eventType()); };
    Progress::setCreateGUIEvents(true);
    for (unsigned int i = 0; i <= 100; ++i)
        Progress::setProgress(i, QStringLiteral("step %1").arg(i));
    deliver();
    QCOMPARE(counter.count, 1);
    QCOMPARE(progressBar(w)->value(), 100);
    QCOMPARE(w->getStatusText(), QStringLiteral("step 100"));
    // Once handled, the next change posts again.
    Progress::setProgress(40);
    deliver();
    QCOMPARE(counter.count, 2);
    QCOMPARE(progressBar(w)->value(), 40);
    // Without permission nothing is posted at all.
    Progress::setCreateGUIEvents(false);
    Progress::setProgress(60);
    deliver();
    QCOMPARE(counter.count, 2);
    w->removeEventFilter(&counter);
}

void TestBackground::nestedRunRestoresTheOuterRun()
{
    MainWindow *w = _f->window;
    w->show();
    QPushButton own(QStringLiteral("stop"), w);
    own.show();
    // Clicks a button and tells whether that asked to abort.
    const auto aborts = [w](QAbstractButton *button) {
        QTest::mouseClick(button, Qt::LeftButton);
        const bool requested = w->isAbortRequested();
        w->setAbortRequested(false);
        return requested;
    };
    GatedThread outer, inner;
    bool innerResult = false, ownButtonAborts = false, statusButtonDuringInner = true;
    bool outerRunning = false, statusButtonAborts = false;
    QString afterInner;
    whileRunning([&] {
        whileRunning([&] {
            ownButtonAborts = aborts(&own);
            statusButtonDuringInner = aborts(cancelButton(w));
            inner.gate.release();
        });
        innerResult = w->executeBackground(&own, &inner, true);
        afterInner = state(w);
        outerRunning = w->executeBgRunning();
        statusButtonAborts = aborts(cancelButton(w));
        // Only a restarted timer notices that the outer worker is done.
        outer.gate.release();
    });
    QVERIFY(w->executeBackground(&outer, true));
    QVERIFY(innerResult && ownButtonAborts && !statusButtonDuringInner);
    QCOMPARE(afterInner, QStringLiteral("blocked cancel"));
    QVERIFY(outerRunning && statusButtonAborts);
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
    QCOMPARE(state(w, true), QString());
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
