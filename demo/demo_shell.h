#pragma once
// External programs and GUI callbacks in the demo: a shell command that
// echoes the point count, and a worker that asks the GUI thread for the
// points before it measures them.
#include <QString>

namespace Zal::GApp {
class MainWindow;
}

namespace Demo {

// Runs "echo <n> points" through ExecuteShellCommand and reads n back; true
// when it is the document's point count.
bool checkShellCommand(QString *detail);
// A worker that gets a copy of the points and the caption from the GUI thread
// through GUICallbackThread, then computes the points' bounding-box diagonal
// in the background; true when it saw every point and the window's caption.
bool checkGuiCallback(Zal::GApp::MainWindow *window, QString *detail);

} // namespace Demo
