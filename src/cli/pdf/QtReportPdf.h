#pragma once

#include "cli/ReportPdf.h"

namespace orvane::cli {

// The report drawing of the desktop application, for `report pdf`: makes
// the widgets' application object on the offscreen platform (unless
// QT_QPA_PLATFORM names another) the first time it is needed, so the
// command runs without a display, and keeps it for the rest of the run.
std::string renderReportPdfWithQt(const ReportPdfJob& job);

}  // namespace orvane::cli
