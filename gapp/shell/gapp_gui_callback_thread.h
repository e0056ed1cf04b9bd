#pragma once
#include "gapp_export.h"
#include "zal_thread.h"

namespace Zal {
namespace GApp {

// A worker thread whose computation now and then needs the GUI thread (a
// dialog, a widget). run() calls executeCallback(), which has guiCallback()
// run in the GUI thread and returns once it has finished. Only one such
// hand-over may be in progress in the whole process at a time; the GUI
// thread's event loop must be running meanwhile, so it must not wait for
// the worker while the worker waits for it.
class GAPP_EXPORT GUICallbackThread : public Thread
{
    Q_OBJECT

public:
    GUICallbackThread(Thread::LockGUI_t lock, const char *name, const char *file, unsigned int line);
    GUICallbackThread(QObject *parent, Thread::LockGUI_t lock, const char *name, const char *file,
                      unsigned int line);
    ~GUICallbackThread() override;

protected:
    void run() override = 0;
    // Runs in the GUI thread; reports failures through the subclass's own data.
    virtual void guiCallback() = 0;

    // From run() only: blocks until guiCallback() has run in the GUI thread.
    // Throws ProgError "Only one thread instance allowed" while another
    // hand-over is in progress; an exception thrown by guiCallback() is
    // thrown again here, in the worker.
    void executeCallback();

private:
    friend class GUIThreadCaller;
};

} // namespace GApp
} // namespace Zal
