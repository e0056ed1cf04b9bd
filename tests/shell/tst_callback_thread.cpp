#include "tst_callback_thread.h"
#include "gapp_gui_callback_thread.h"
#include "gapp_init.h"
#include "gapp_main_window.h"
#include "gapp_status_mgr.h"
#include "test_util.h"
#include "zal_dialogs.h"
#include "zal_exception.h"
#include "zal_gui_thread_event.h"
#include <QEventLoop>
#include <QSemaphore>
#include <functional>
#include <stdexcept>

using namespace Zal;
using namespace Zal::GApp;

namespace {

// Hands over `calls` times; records what happened in both threads in order.
// The hand-over orders the two threads, so the lists need no lock.
class Worker : public GUICallbackThread
{
public:
    Worker() : GUICallbackThread(DONT_LOCK_GUI, "Worker", __FILE__, __LINE__) {}
    ~Worker() override { wait(); }
    using GUICallbackThread::executeCallback;

    int calls = 1;
    std::function<void()> beforeCall; // worker thread
    std::function<void()> onGui;      // GUI thread, inside the callback
    std::function<void()> onFailure;  // worker thread
    QStringList events;
    QStringList failures; // "function (file): message"

protected:
    void run() override
    {
        for (int i = 0; i < calls; ++i) {
            if (beforeCall)
                beforeCall();
            try {
                executeCallback();
                events << QStringLiteral("returned");
            } catch (const ProgError &e) {
                failures << QString::fromUtf8(e.what());
                if (onFailure)
                    onFailure();
            }
        }
    }
    void guiCallback() override
    {
        events << (QThread::currentThread() == qApp->thread() ? QStringLiteral("callback in GUI thread")
                                                               : QStringLiteral("callback in worker"));
        if (onGui)
            onGui();
    }
};

// Runs the workers while the GUI thread's loop serves their callbacks.
void runToEnd(std::initializer_list<QThread *> threads)
{
    QEventLoop loop;
    int left = int(threads.size());
    for (QThread *t : threads)
        QObject::connect(t, &QThread::finished, &loop, [&] {
            if (--left == 0)
                loop.quit();
        });
    for (QThread *t : threads)
        t->start();
    loop.exec();
}

QString only(const char *message)
{
    return QStringLiteral("Zal::GApp::GUIThreadCaller::execute (gapp_gui_callback_thread): ")
           + QLatin1String(message);
}

// Swallows the GUI-thread events of the main window, so Qt deletes them undelivered.
class Swallow : public QObject
{
public:
    bool eventFilter(QObject *, QEvent *e) override { return e->type() == GUIThreadEvent::eventType(); }
};

} // namespace

struct TestCallbackThread::Fixture
{
    TestUtil::Environment env;
    GTools::ScriptedDialogs dialogs;
    QStringList args{QStringLiteral("prog")};
    MainWindow *window;
    Fixture() : window(new MainWindow("callback test", new AppStatusManager, InitLibrary(), args)) {}
    ~Fixture() { delete window; }
};

void TestCallbackThread::init()
{
    _f = new Fixture;
}

void TestCallbackThread::cleanup()
{
    delete _f;
    _f = nullptr;
}

void TestCallbackThread::callbacksRunInTheGuiThreadBeforeEachCallReturns()
{
    Worker worker;
    worker.calls = 2;
    QStringList captions;
    worker.onGui = [&] { captions << MainWindow::main_win->getCaption(); };
    runToEnd({&worker});
    QCOMPARE(worker.events, QStringList({"callback in GUI thread", "returned", "callback in GUI thread", "returned"}));
    QCOMPARE(captions, QStringList({"callback test", "callback test"}));
    QVERIFY(worker.failures.isEmpty());
}

void TestCallbackThread::ofTwoOverlappingHandOversOneThrows()
{
    // Both start together; the callback that got through holds its hand-over
    // open until the other worker has been refused.
    Worker a, b;
    QSemaphore start, refused;
    for (Worker *w : {&a, &b}) {
        w->beforeCall = [&] { start.acquire(); };
        w->onGui = [&] { refused.acquire(); };
        w->onFailure = [&] { refused.release(); };
    }
    start.release(2);
    runToEnd({&a, &b});
    QCOMPARE(a.events.size() + b.events.size(), 2); // one callback, one return
    QCOMPARE(a.failures + b.failures, QStringList({only("Only one thread instance allowed")}));

    Worker next;
    runToEnd({&next});
    QCOMPARE(next.events, QStringList({"callback in GUI thread", "returned"}));
}

void TestCallbackThread::refusalsAndFailuresLeaveTheNextHandOverWorking_data()
{
    QTest::addColumn<QString>("how");
    QTest::addColumn<QString>("failure");
    QTest::addColumn<QStringList>("events");
    const QStringList ran{"callback in GUI thread"};
    QTest::newRow("callback hands over again")
        << "nested" << only("Only one thread instance allowed") << QStringList({ran.first(), "returned"});
    QTest::newRow("from the GUI thread") << "gui" << only("called in the GUI thread") << QStringList();
    QTest::newRow("no main window") << "nowindow" << only("no main window to run the callback") << QStringList();
    QTest::newRow("callback throws") << "throw" << QStringLiteral("Zal::GApp::Test (tst_callback_thread): boom")
                                     << ran;
    QTest::newRow("event dropped undelivered")
        << "drop"
        << QStringLiteral("Zal::GApp::GUIThreadCallbackEvent::~GUIThreadCallbackEvent (gapp_gui_callback_thread): "
                          "the callback was dropped before it ran")
        << QStringList();
}

void TestCallbackThread::refusalsAndFailuresLeaveTheNextHandOverWorking()
{
    QFETCH(QString, how);
    QFETCH(QString, failure);
    Worker worker;
    QStringList failures;
    Swallow swallow;
    if (how == QLatin1String("nested")) {
        worker.onGui = [&] {
            try {
                worker.executeCallback();
            } catch (const ProgError &e) {
                failures << QString::fromUtf8(e.what());
            }
        };
    } else if (how == QLatin1String("throw")) {
        worker.onGui = [] { throw ZAL_PROG_ERROR("Zal::GApp::Test", QStringLiteral("boom")); };
    } else if (how == QLatin1String("drop")) {
        _f->window->installEventFilter(&swallow);
    }

    if (how == QLatin1String("gui")) {
        try {
            worker.executeCallback();
        } catch (const ProgError &e) {
            failures << QString::fromUtf8(e.what());
        }
    } else {
        MainWindow *const window = MainWindow::main_win;
        if (how == QLatin1String("nowindow"))
            MainWindow::main_win = nullptr;
        runToEnd({&worker});
        MainWindow::main_win = window;
        failures += worker.failures;
    }
    _f->window->removeEventFilter(&swallow);
    QCOMPARE(failures, QStringList({failure}));
    QTEST(worker.events, "events");

    Worker next;
    runToEnd({&next});
    QCOMPARE(next.events, QStringList({"callback in GUI thread", "returned"}));
}
