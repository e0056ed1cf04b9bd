#pragma once
#include "gapp_export.h"
#include <QApplication>
#include <QFlags>

class QSessionManager;

namespace Zal {
namespace GApp {

// The process's Qt application object: created by the host right after
// InitLibrary and before the main window. Installs the library's widget
// style, sets the application-wide font substitutions and desktop settings
// and takes part in the desktop session's log-off: with unsaved data it asks
// whether to save the session, exit anyway or cancel.
class GAPP_EXPORT Application : public QApplication
{
    Q_OBJECT

public:
    // What a log-off request does to the session manager.
    enum SessionAnswer_t { SESSION_LEAVE_ALONE, SESSION_RELEASE, SESSION_CANCEL };

    Application(int &argc, char **argv);
    ~Application() override;

    QFlags<Qt::MouseButton> myMouseButtons() const { return _mouse_buttons; }
    void setMyMouseButtons(QFlags<Qt::MouseButton> buttons) { _mouse_buttons = buttons; }

    void commitData(QSessionManager &sm);
    void saveState(QSessionManager &sm);
    // The log-off decision without a session manager, so it can be asked
    // directly: commitData applies the answer to the session manager.
    SessionAnswer_t logOffAnswer(bool allowsInteraction);

private:
    QFlags<Qt::MouseButton> _mouse_buttons;
};

// Writes Qt's messages as "Qt Warning: ..." lines to standard error with a
// backtrace; a fatal message ends the process. Installed when "ZAL_DEBUG_QT" is set.
GAPP_EXPORT void qtMessageHandler(QtMsgType type, const QMessageLogContext &context,
                                  const QString &message);

} // namespace GApp
} // namespace Zal
