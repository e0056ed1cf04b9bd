#pragma once
// The demo's own command icon and help identifiers: meas.distance gets an
// icon of the user's, stored in the ".icons" file and read back; the views
// and one menu entry get documentation identifiers, which F1 reaches.

namespace Zal::GApp {
class MainWindow;
}

namespace Demo {

// Gives meas.distance a user icon, saves and reloads the icon file, binds
// help identifiers to the views and to the open entry of the File menu,
// presses F1 on the element list, prints one line per check and answers the
// number of failed checks.
int checkResources(Zal::GApp::MainWindow *window);

} // namespace Demo
