#pragma once

#include <unicode/utypes.h>

#include <string>
#include <string_view>

#include "core/forecast/ForecastService.h"
#include "core/model/ProjectSnapshot.h"
#include "engine/CivilDate.h"
#include "engine/Timestamp.h"

U_NAMESPACE_BEGIN
class Calendar;
U_NAMESPACE_END

namespace orvane::cli {

// What `report pdf` asks the report drawing for, checked already.
struct ReportPdfJob {
  ForecastService& forecasts;
  const ProjectSnapshot& project;
  std::string_view audience;  // "client" or "internal"
  CivilDate from;
  CivilDate to;
  Timestamp now;
  const icu::Calendar& calendar;
};

// Draws the report and returns the PDF file's bytes. The drawing lives with
// the desktop application (Qt); the command-line program registers it at
// start when it is built with Qt, so every other command runs without it.
using ReportPdfRenderer = std::string (*)(const ReportPdfJob& job);

void setReportPdfRenderer(ReportPdfRenderer renderer);
ReportPdfRenderer reportPdfRenderer();

}  // namespace orvane::cli
