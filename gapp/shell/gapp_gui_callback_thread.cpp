// GUI callbacks from worker threads: the worker posts an event to the main
// window and sleeps on a condition until the GUI thread has run the callback.
#include "gapp_gui_callback_thread.h"
#include "gapp_main_window.h"
#include "zal_exception.h"
#include "zal_gui_thread_event.h"
#include <QCoreApplication>
#include <QThread>
#include <atomic>
#include <exception>

namespace Zal {
namespace GApp {

namespace {

const char *const SOURCE = "gapp_gui_callback_thread";

// Hand-overs in progress in the whole process: 0 or 1.
std::atomic<unsigned int> g_handovers{0};

} // namespace

// One hand-over, on the worker's stack: the worker waits on the condition
// until the GUI thread has set `done`.
class GUIThreadCaller
{
public:
    GUIThreadCaller();

    // Worker side.
    void execute(GUICallbackThread *thread);
    // GUI side: runs the callback with the mutex held, then wakes the worker.
    void call(GUICallbackThread *thread);
    // GUI side, when the event is dropped before it ran: wakes the worker
    // with the failure it will throw.
    void release(std::exception_ptr failure);

private:
    bool _done = false;
    Mutex _mutex;
    Condition _condition;
    std::exception_ptr _failure;
};

// Carries one hand-over to the main window, whose customEvent executes it.
class GUIThreadCallbackEvent : public GUIThreadEvent
{
public:
    GUIThreadCallbackEvent(GUIThreadCaller *caller, GUICallbackThread *thread) : _caller(caller), _thread(thread) {}
    ~GUIThreadCallbackEvent() override;
    void execute() override;

private:
    GUIThreadCaller *_caller;
    GUICallbackThread *_thread;
    // Once executed, the caller may be gone as soon as the worker wakes, so
    // the destructor must not touch it any more.
    bool _delivered = false;
};

GUIThreadCaller::GUIThreadCaller()
    : _mutex("Zal::GApp::GUIThreadCaller::GUIThreadCaller", SOURCE),
      _condition(&_mutex, "Zal::GApp::GUIThreadCaller::GUIThreadCaller", SOURCE)
{
}

void GUIThreadCaller::execute(GUICallbackThread *thread)
{
    static const char *const function = "Zal::GApp::GUIThreadCaller::execute";
    // Test and increase in one step: of two workers starting together,
    // exactly one gets through.
    unsigned int idle = 0;
    if (!g_handovers.compare_exchange_strong(idle, 1u))
        throw ZAL_PROG_ERROR(function, QStringLiteral("Only one thread instance allowed"));

    // Either would leave the worker waiting for an event nobody delivers.
    MainWindow *window = MainWindow::main_win;
    if (!window || QThread::currentThread() == window->thread()) {
        --g_handovers;
        throw ZAL_PROG_ERROR(function, window ? QStringLiteral("called in the GUI thread")
                                              : QStringLiteral("no main window to run the callback"));
    }

    _mutex.lock(function, SOURCE, __LINE__);
    _done = false;
    QCoreApplication::postEvent(window, new GUIThreadCallbackEvent(this, thread));
    while (!_done)
        _condition.wait();
    _mutex.unlock(function, SOURCE, __LINE__);
    --g_handovers;
    if (_failure)
        std::rethrow_exception(_failure);
}

void GUIThreadCaller::call(GUICallbackThread *thread)
{
    static const char *const function = "Zal::GApp::GUIThreadCaller::call";
    _mutex.lock(function, SOURCE, __LINE__);
    // A throwing callback must not leave the worker waiting forever; it
    // gets the exception instead.
    try {
        thread->guiCallback();
    } catch (...) {
        _failure = std::current_exception();
    }
    _done = true;
    _condition.wakeAll();
    _mutex.unlock(function, SOURCE, __LINE__);
}

void GUIThreadCaller::release(std::exception_ptr failure)
{
    static const char *const function = "Zal::GApp::GUIThreadCaller::release";
    _mutex.lock(function, SOURCE, __LINE__);
    _failure = failure;
    _done = true;
    _condition.wakeAll();
    _mutex.unlock(function, SOURCE, __LINE__);
}

GUIThreadCallbackEvent::~GUIThreadCallbackEvent()
{
    // Qt deletes posted events undelivered when their receiver goes away.
    if (!_delivered)
        _caller->release(std::make_exception_ptr(ZAL_PROG_ERROR(
            "Zal::GApp::GUIThreadCallbackEvent::~GUIThreadCallbackEvent",
            QStringLiteral("the callback was dropped before it ran"))));
}

void GUIThreadCallbackEvent::execute()
{
    _delivered = true;
    _caller->call(_thread);
}

GUICallbackThread::GUICallbackThread(Thread::LockGUI_t lock, const char *name, const char *file, unsigned int line)
    : Thread(lock, name, file, line)
{
}

GUICallbackThread::GUICallbackThread(QObject *parent, Thread::LockGUI_t lock, const char *name, const char *file,
                                     unsigned int line)
    : Thread(parent, lock, name, file, line)
{
}

GUICallbackThread::~GUICallbackThread() = default;

void GUICallbackThread::executeCallback()
{
    GUIThreadCaller caller;
    caller.execute(this);
}

} // namespace GApp
} // namespace Zal
