#include <chrono>
#include <csignal>
#include <iostream>
#include <string>
#include <vector>

#include "cli/CliApp.h"

#ifdef ORVANE_CLI_WITH_PDF
#include "cli/PackCommand.h"
#include "cli/pdf/QtPack.h"
#include "cli/pdf/QtReportPdf.h"
#endif

int main(int argc, char** argv) {
  // Past a file-size limit a write then fails with EFBIG, which the file
  // writer reports, instead of the process dying without a word.
  std::signal(SIGXFSZ, SIG_IGN);
#ifdef ORVANE_CLI_WITH_PDF
  orvane::cli::setReportPdfRenderer(&orvane::cli::renderReportPdfWithQt);
  orvane::cli::setPackRunner(&orvane::cli::runPackWithQt);
#endif
  const std::vector<std::string> args(argv + 1, argv + argc);
  const std::chrono::duration<double> sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  return orvane::cli::runCli(args, std::cout, std::cerr, orvane::Timestamp{sinceEpoch.count()});
}
