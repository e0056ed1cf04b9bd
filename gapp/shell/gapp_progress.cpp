// The status line and the drawing lock of the main window.
#include "gapp_main_window.h"
#include "gapp_event_filter.h"
#include "zal_exception.h"
#include <QApplication>
#include <QProgressBar>
#include <QStatusBar>
#include <QTimer>
#include <QWidget>

namespace Zal {
namespace GApp {

QString MainWindow::composeStatus(const QString &text) const
{
    QString status = _pre_message;
    if (!status.isEmpty())
        status += QStringLiteral(": ");
    if (!_command_names.empty())
        status += _command_names.back();
    if (!_command_names.empty() && !text.isEmpty())
        status += QStringLiteral(": ");
    status += text;
    return status;
}

void MainWindow::setMessage(const QString &text, unsigned int timeout)
{
    if (_message_timer)
        _message_timer->stop();
    _message = text;
    statusBar()->showMessage(composeStatus(text));
    if (timeout != 0) {
        if (!_message_timer) {
            _message_timer = new QTimer(this);
            _message_timer->setSingleShot(true);
            if (_event_filter)
                connect(_message_timer, &QTimer::timeout, _event_filter, &EventFilter::removeStatusMessage);
            else
                connect(_message_timer, &QTimer::timeout, this, [this] { setMessage(QString(), 0); });
        }
        _message_timer->start(int(timeout));
    }
}

void MainWindow::setPreMessage(const QString &text)
{
    if (text == _pre_message)
        return;
    _pre_message = text;
    setMessage(_message, 0);
}

void MainWindow::resetStatus()
{
    setMessage(QString(), 0);
    if (_progress_bar)
        _progress_bar->reset();
}

void MainWindow::setProgress(int min, int max, unsigned int progress, const QString &text)
{
    if (_message_timer)
        _message_timer->stop();
    statusBar()->showMessage(composeStatus(text));
    if (min != -1 && max != -1 && _progress_bar) {
        // Unsigned 32-bit arithmetic, truncating, as progress values come from workers.
        const quint32 value = quint32(min) + (quint32(max - min) * progress) / 100u;
        _progress_bar->setValue(int(value));
    }
}

QString MainWindow::getStatusText() const
{
    return statusBar()->currentMessage();
}

void MainWindow::showCommandName(Command *cmd)
{
    _command_names.push_back(cmd->getMenuName());
    setMessage(_message, 0);
}

void MainWindow::hideCommandName()
{
    if (!_command_names.empty())
        _command_names.pop_back();
    setMessage(_message, 0);
}

void MainWindow::lockDrawing()
{
    ++_drawing_lock;
}

void MainWindow::unlockDrawing()
{
    if (_drawing_lock == 0)
        throw ZAL_PROG_ERROR("Zal::GApp::MainWindow::unlockDrawing",
                             QStringLiteral("drawing was not locked before."));
    --_drawing_lock;
    // Refocusing makes the focused view repaint what it skipped while locked.
    if (QWidget *focus = QApplication::focusWidget()) {
        focus->clearFocus();
        focus->setFocus();
    }
}

} // namespace GApp
} // namespace Zal
