// Background execution: a worker thread runs while the GUI thread waits in a
// nested event loop, polls the worker every 10 ms, shows its progress and
// offers to abort it.
#include "gapp_main_window.h"
#include "gapp_progress_event.h"
#include "zal_dialogs.h"
#include "zal_exception.h"
#include "zal_progress.h"
#include "zal_thread.h"
#include "zal_translate.h"
#include <QAbstractButton>
#include <QApplication>
#include <QEventLoop>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <exception>
#include <memory>
#include <new>

namespace Zal {
namespace GApp {

ProgressEvent::ProgressEvent() = default;

ProgressEvent::~ProgressEvent()
{
    // Also when the event is dropped undelivered, so that progress goes on.
    Progress::guiEventTaken();
}

void ProgressEvent::execute()
{
    // Taken before reading: a change from now on posts a new event.
    Progress::guiEventTaken();
    if (Progress::getAbortFlag() || !Progress::isCreateGUIEventAllowed() || !MainWindow::main_win)
        return;
    MainWindow::main_win->setProgress(Progress::getProgressMin(), Progress::getProgressMax(),
                                      Progress::getProgress(), Progress::getProgressString());
}

GUIThreadEvent *ProgressEventCreator::createEvent()
{
    return new ProgressEvent;
}

void MainWindow::initProgressEventCreator()
{
    Progress::registerGUIEventCreator(new ProgressEventCreator);
    Progress::setEventReceiver(this);
}

bool MainWindow::executeBgRunning() const
{
    _background_mutex.lock("Zal::GApp::MainWindow::executeBgRunning", "gapp_background", __LINE__);
    const bool active = _background_active;
    _background_mutex.unlock("Zal::GApp::MainWindow::executeBgRunning", "gapp_background", __LINE__);
    return active;
}

bool MainWindow::executeBackground(Thread *thread, bool cancelable)
{
    return executeBackground(nullptr, thread, cancelable);
}

bool MainWindow::executeBackground(QPushButton *button, Thread *thread, bool cancelable)
{
    static const char *const function = "Zal::GApp::MainWindow::executeBackground";
    if (!thread)
        throw ZAL_PROG_ERROR(function, QStringLiteral("no thread to execute"));
    _background_mutex.lock(function, "gapp_background", __LINE__);
    const bool wasActive = _background_active;
    _background_active = true;
    _background_mutex.unlock(function, "gapp_background", __LINE__);

    // Everything an outer execution relies on is put back at the end.
    const bool savedCancelAllowed = _cancel_allowed;
    Thread *const savedThread = _current_thread;
    QEventLoop *const savedLoop = _event_loop;
    const bool savedCancelEnabled = _cancel_enabled;
    const bool savedInputBlocked = _input_blocked;
    const bool savedAbortRequested = _abort_requested;
    QAbstractButton *const savedCancelButton = _cancel_button;
    _cancel_allowed = cancelable;
    _input_blocked = true;
    _abort_requested = false;

    if (cancelable) {
        if (button)
            _cancel_button = button;
        else if (_cancel_button)
            _cancel_button->setEnabled(true);
        _cancel_enabled = true;
    }

    Progress::setAbortFlag(false);
    Progress::setCreateGUIEvents(true);
    Progress::reset();
    QApplication::setOverrideCursor(Qt::WaitCursor);

    const bool locksDrawing = thread->lockGUI();
    if (locksDrawing)
        lockDrawing();

    thread->setRequiresUndo(false);
    thread->start(QThread::InheritPriority);
    _background_timer->start();
    _current_thread = thread;

    // Parented to the window only so that it can be found while it runs.
    std::unique_ptr<QEventLoop> loop(new QEventLoop(this));
    _event_loop = loop.get();
    std::exception_ptr failure;
    try {
        loop->exec();
        thread->wait();
    } catch (...) {
        failure = std::current_exception();
    }

    // The worker's last report may still wait in the queue; it is shown
    // before the status is reset, so that a finished run reached its end.
    if (!failure)
        QCoreApplication::sendPostedEvents(this, GUIThreadEvent::eventType());

    if (locksDrawing)
        unlockDrawing();

    const bool aborted = Progress::getAbortFlag();
    Progress::setCreateGUIEvents(false);
    resetStatus();

    if (!failure) {
        if (_progress_bar)
            _progress_bar->reset();
        if (aborted)
            setMessage(translate("GAPPExecute_progress", "computation aborted"), 0);
        else
            setMessage(_message, 0);
    }

    _cancel_enabled = false;
    if (cancelable) {
        if (button)
            _cancel_button = savedCancelButton;
        else if (_cancel_button)
            _cancel_button->setEnabled(false);
    }

    if (wasActive)
        _background_timer->start();

    _event_loop = nullptr;
    loop.reset();
    Progress::reset();
    Progress::setAbortFlag(false);
    QApplication::restoreOverrideCursor();

    _background_mutex.lock(function, "gapp_background", __LINE__);
    _background_active = wasActive;
    _background_mutex.unlock(function, "gapp_background", __LINE__);

    _cancel_allowed = savedCancelAllowed;
    _current_thread = savedThread;
    _event_loop = savedLoop;
    _abort_requested = savedAbortRequested;
    _cancel_enabled = savedCancelEnabled;
    _input_blocked = savedInputBlocked;

    if (failure)
        throw std::bad_alloc();
    return !aborted;
}

void MainWindow::executeBackgroundTimerExpired()
{
    if (!_current_thread)
        return;
    if (_current_thread->isFinished()) {
        if (_event_loop)
            _event_loop->exit(0);
        return;
    }
    if (!Progress::getAbortFlag() && _cancel_allowed && _abort_requested) {
        // The question is answered with the mouse and must not be taken for
        // another abort request.
        _input_blocked = false;
        _cancel_enabled = false;
        _escape_suppressed = true;
        QApplication::setOverrideCursor(Qt::ArrowCursor);

        const QString title = translate("GAPPExecute", "abort computation");
        const QString question = translate("GAPPExecute", "abort the computation?");
        bool abort = false;
        bool undo = false;
        if (_current_thread->isUndoable()) {
            const int answer = GTools::YesNoCancelDialog(
                0, title, question, QString(), translate("GAPPExecute", "ok"),
                translate("GAPPExecute", "ok and undo"), translate("GAPPExecute", "cancel"));
            abort = answer == 0 || answer == 1;
            undo = answer == 1;
        } else {
            abort = GTools::OkCancelDialog(0, title, question, QString(), translate("GAPPExecute", "ok"),
                                           translate("GAPPExecute", "cancel"));
        }

        if (abort) {
            Progress::setAbortFlag(true);
            setProgress(Progress::getProgressMin(), Progress::getProgressMax(), Progress::getProgress(), QString());
            setMessage(translate("GAPPExecute_progress", "aborting computation"), 0);
            if (undo)
                _current_thread->setRequiresUndo(true);
        }

        QApplication::restoreOverrideCursor();
        _escape_suppressed = false;
        _abort_requested = false;
        _cancel_enabled = true;
        _input_blocked = true;
    }
    _background_timer->start();
}

} // namespace GApp
} // namespace Zal
