#include "zal_progress.h"
#include "zal_gui_thread_event.h"
#include <QCoreApplication>
#include <QMutex>
#include <QMutexLocker>
#include <atomic>
#include <memory>

namespace Zal {

namespace {

struct State
{
    QMutex mutex;
    int min = 0;
    int max = 100;
    unsigned int progress = 0;
    QString text;
    std::unique_ptr<GUIThreadEventCreator> creator;
    QObject *receiver = nullptr;
};

State &state()
{
    static State s;
    return s;
}

// Polled by workers in their inner loops: kept outside the mutex.
std::atomic<bool> g_abort{false};
std::atomic<bool> g_create_events{false};
// An event is on its way and will read the newest values.
std::atomic<bool> g_event_pending{false};

// With the state locked: one event at most waits in the receiver's queue.
void notify(State &s)
{
    if (!g_create_events.load() || !s.creator || !s.receiver)
        return;
    if (g_event_pending.exchange(true))
        return;
    QCoreApplication::postEvent(s.receiver, s.creator->createEvent());
}

} // namespace

void Progress::reset()
{
    State &s = state();
    QMutexLocker lock(&s.mutex);
    s.min = 0;
    s.max = 100;
    s.progress = 0;
    s.text.clear();
}

void Progress::setAbortFlag(bool abort)
{
    g_abort.store(abort);
}

bool Progress::getAbortFlag()
{
    return g_abort.load();
}

void Progress::setCreateGUIEvents(bool create)
{
    g_create_events.store(create);
}

bool Progress::isCreateGUIEventAllowed()
{
    return g_create_events.load();
}

void Progress::setProgressRange(int min, int max)
{
    State &s = state();
    QMutexLocker lock(&s.mutex);
    s.min = min;
    s.max = max;
    notify(s);
}

void Progress::setProgress(unsigned int progress)
{
    State &s = state();
    QMutexLocker lock(&s.mutex);
    s.progress = qMin(progress, 100u);
    notify(s);
}

void Progress::setProgress(unsigned int progress, const QString &text)
{
    State &s = state();
    QMutexLocker lock(&s.mutex);
    s.progress = qMin(progress, 100u);
    s.text = text;
    notify(s);
}

void Progress::setProgressString(const QString &text)
{
    State &s = state();
    QMutexLocker lock(&s.mutex);
    s.text = text;
    notify(s);
}

unsigned int Progress::getProgress()
{
    State &s = state();
    QMutexLocker lock(&s.mutex);
    return s.progress;
}

int Progress::getProgressMin()
{
    State &s = state();
    QMutexLocker lock(&s.mutex);
    return s.min;
}

int Progress::getProgressMax()
{
    State &s = state();
    QMutexLocker lock(&s.mutex);
    return s.max;
}

QString Progress::getProgressString()
{
    State &s = state();
    QMutexLocker lock(&s.mutex);
    return s.text;
}

void Progress::registerGUIEventCreator(GUIThreadEventCreator *creator)
{
    State &s = state();
    QMutexLocker lock(&s.mutex);
    s.creator.reset(creator);
}

void Progress::setEventReceiver(QObject *receiver)
{
    State &s = state();
    QMutexLocker lock(&s.mutex);
    s.receiver = receiver;
    // Events to an earlier receiver are gone with it (or will still arrive
    // and clear the flag again); the new one must not wait for them.
    g_event_pending.store(false);
}

void Progress::guiEventTaken()
{
    g_event_pending.store(false);
}

} // namespace Zal
