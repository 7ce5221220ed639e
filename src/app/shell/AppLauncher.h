#pragma once

namespace orvane::app {

// The desktop application from argv to exit code:
//   orvane [--store PATH]
// opens the store (the default one without --store) and shows the window.
// When the store cannot be opened it says "The database could not be
// opened: " and why, in a message box (on stderr without a display), and
// exits with 1 without touching the file.
//   orvane --store PATH --screenshots DIR
// selects the first project, saves a PNG of every view and sheet into DIR
// and quits (tools/screenshots).
int runDesktopApp(int argc, char** argv);

}  // namespace orvane::app
