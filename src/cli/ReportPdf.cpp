#include "cli/ReportPdf.h"

namespace orvane::cli {
namespace {

ReportPdfRenderer registered = nullptr;

}  // namespace

void setReportPdfRenderer(ReportPdfRenderer renderer) { registered = renderer; }
ReportPdfRenderer reportPdfRenderer() { return registered; }

}  // namespace orvane::cli
