#pragma once
#include "gapp_export.h"
#include <QMutex>
#include <QThread>
#include <QWaitCondition>
#include <atomic>

namespace Zal {

// A QMutex that names its owner and callers. The names are kept only for
// the diagnostic line that a failed unlock prints; they cost nothing else.
// Any thread may lock it; the thread that locked it unlocks it.
class GAPP_EXPORT Mutex
{
public:
    Mutex(const char *function = nullptr, const char *file = nullptr);
    Mutex(const Mutex &) = delete;
    Mutex &operator=(const Mutex &) = delete;

    void lock(const char *function, const char *file, unsigned int line);
    void unlock(const char *function, const char *file, unsigned int line);
    bool isLocked() const { return _locked.load(); }

    QMutex *qmutex() { return &_mutex; }

private:
    friend class Condition;
    QMutex _mutex;
    std::atomic<bool> _locked{false};
    const char *_function;
    const char *_file;
};

// A condition bound to one Mutex: wait() is called with that mutex locked
// and releases it while waiting, as QWaitCondition does.
class GAPP_EXPORT Condition
{
public:
    // The names identify the owner as for Mutex; only the mutex keeps them.
    explicit Condition(Mutex *mutex, const char *function = nullptr, const char *file = nullptr);
    Condition(const Condition &) = delete;
    Condition &operator=(const Condition &) = delete;

    void wait();
    void wakeOne();
    void wakeAll();

private:
    Mutex *_mutex;
    QWaitCondition _cond;
};

// The worker thread of a host computation. Subclasses implement run(); the
// GUI thread starts it (usually through MainWindow::executeBackground) and
// reads the answers below. setRequiresUndo may be called from the GUI thread
// while the worker runs; the worker and the host read it afterwards.
class GAPP_EXPORT Thread : public QThread
{
    Q_OBJECT

public:
    // Whether the GUI's drawing is locked while the thread runs.
    enum LockGUI_t { DONT_LOCK_GUI = 0, LOCK_GUI = 1 };

    // name, file and line say who created the thread, for diagnostics.
    Thread(LockGUI_t lock, const char *name, const char *file, unsigned int line);
    Thread(QObject *parent, LockGUI_t lock, const char *name, const char *file, unsigned int line);
    ~Thread() override;

    bool lockGUI() const { return _lock == LOCK_GUI; }
    // Whether the computation's changes can be undone when it is aborted;
    // the abort question then offers to undo them.
    virtual bool isUndoable() const { return _undoable.load(); }
    void setUndoable(bool undoable) { _undoable.store(undoable); }
    void setRequiresUndo(bool requires) { _requires_undo.store(requires); }
    bool requiresUndo() const { return _requires_undo.load(); }

    const char *getName() const { return _name; }
    const char *getFile() const { return _file; }
    unsigned int getLine() const { return _line; }

private:
    LockGUI_t _lock;
    const char *_name;
    const char *_file;
    unsigned int _line;
    std::atomic<bool> _undoable{false};
    std::atomic<bool> _requires_undo{false};
};

} // namespace Zal
