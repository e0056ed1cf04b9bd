#pragma once
// How the demo's two application types know their files: the measuring type
// reads plain point lists, the inspection type reads scans, which begin with
// the line "#ZAL-SCAN". The open command asks the status manager, which picks
// the type (and so the mode) from the file's first bytes.
#include <QString>

namespace Zal::GApp {
class StatusData;
}

namespace Demo {

// The status data of the mode called `name` ("measure" or "inspect").
Zal::GApp::StatusData *createStatus(unsigned int mode, const QString &name);

// Plays the macro that opens a file of each kind, checks that each open
// switched to the mode of its kind with the data loaded, and answers the
// number of failed checks.
int checkOpenByContent(const QString &macro);

} // namespace Demo
