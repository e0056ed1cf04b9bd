#pragma once
// The demo's background computation: "meas.fit_plane" fits a plane through
// a range of the probed points on a worker thread and reports its progress.
#include <QString>

namespace Zal::GApp {
class MainWindow;
}

namespace Demo {

void createBackgroundCommands();
// The headless check: runs the fit through the script path; true when the
// result is the expected flatness and the progress bar reached its maximum.
bool checkBackgroundFit(Zal::GApp::MainWindow *window, QString *detail);

} // namespace Demo
