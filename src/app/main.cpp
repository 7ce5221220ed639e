#include "app/AppLauncher.h"

int main(int argc, char** argv) { return orvane::app::runDesktopApp(argc, argv); }
