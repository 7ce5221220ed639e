#include <csignal>

#include "app/shell/AppLauncher.h"

int main(int argc, char** argv) {
  // Past a file-size limit a write then fails with EFBIG, which the file
  // writer reports in an alert, instead of the app dying without a word.
  std::signal(SIGXFSZ, SIG_IGN);
  return orvane::app::runDesktopApp(argc, argv);
}
