#pragma once
// Undo debugging in the demo: the document seen as script objects, a command
// that moves a point, and the headless check that runs undoable commands with
// the undo check switched on.
#include <QString>

namespace Zal::GApp {
class MainWindow;
}

namespace Demo {

// Runs undoable commands with undo debugging on and expects them to pass,
// then a command with a broken undo and expects it to be caught; switches
// undo debugging back to what it was and leaves the document as it found it.
bool checkUndoDebugging(Zal::GApp::MainWindow *window, QString *detail);

} // namespace Demo
