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
#include <utility>

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

    int calls = 1;
    std::function<void()> beforeCall; // worker thread
    std::function<void()> onGui;      // GUI thread, inside the callback
    std::function<void()> onFailure;  // worker thread
    QStringList events;
    QStringList failures; // "function (file): message"

    // Hands over once: the message of the refusal or failure, else a null string.
    QString handOver()
    {
        try {
            executeCallback();
        } catch (const ProgError &e) {
            return QString::fromUtf8(e.what());
        }
        return QString();
    }

protected:
    void run() override
    {
        for (int i = 0; i < calls; ++i) {
            if (beforeCall)
                beforeCall();
            const QString failure = handOver();
            if (failure.isNull()) {
                events << QStringLiteral("returned");
            } else {
                failures << failure;
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

// What a worker records for one hand-over that went through.
const QStringList handedOver{"callback in GUI thread", "returned"};

// The events of a fresh worker's one hand-over.
QStringList nextHandOver()
{
    Worker next;
    runToEnd({&next});
    return next.events;
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

void TestCallbackThread::init() { _f = new Fixture; }
void TestCallbackThread::cleanup() { delete std::exchange(_f, nullptr); }

void TestCallbackThread::callbacksRunInTheGuiThreadBeforeEachCallReturns()
{
    Worker worker;
    worker.calls = 2;
    QStringList captions;
    worker.onGui = [&] { captions << MainWindow::main_win->getCaption(); };
    runToEnd({&worker});
    QCOMPARE(worker.events, handedOver + handedOver);
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
    QCOMPARE(nextHandOver(), handedOver);
}

void TestCallbackThread::refusalsAndFailuresLeaveTheNextHandOverWorking_data()
{
    QTest::addColumn<QString>("how");
    QTest::addColumn<QString>("failure");
    QTest::addColumn<QStringList>("events");
    QTest::newRow("callback hands over again") << "nested" << only("Only one thread instance allowed") << handedOver;
    QTest::newRow("from the GUI thread") << "gui" << only("called in the GUI thread") << QStringList();
    QTest::newRow("no main window") << "nowindow" << only("no main window to run the callback") << QStringList();
    QTest::newRow("callback throws") << "throw" << QStringLiteral("Zal::GApp::Test (tst_callback_thread): boom")
                                     << QStringList{handedOver.first()};
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
    if (how == QLatin1String("nested"))
        worker.onGui = [&] { failures << worker.handOver(); };
    else if (how == QLatin1String("throw"))
        worker.onGui = [] { throw ZAL_PROG_ERROR("Zal::GApp::Test", QStringLiteral("boom")); };
    else if (how == QLatin1String("drop"))
        _f->window->installEventFilter(&swallow);
    if (how == QLatin1String("gui")) {
        failures << worker.handOver();
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
    QCOMPARE(nextHandOver(), handedOver);
}
