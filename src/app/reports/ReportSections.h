#pragma once

#include "app/reports/ReportContent.h"
#include "app/reports/ReportLayout.h"

namespace orvane::app {

// Lays the sections of a report out in `layout`, in reading order. A client
// report holds the summary, the epics, the milestones, the "When" forecast,
// the roadmap and the completed work counted by epic; an internal report
// adds risks, workload, the completed tickets, flow health with its charts
// and the accuracy of past forecasts. Nothing internal (blockers, ticket
// titles, people) is laid out for a client.
void layOutReport(ReportLayout& layout, const ReportContent& content);

// "Status report for the client" and the like: the report's kind in words.
QString reportKindText(ReportAudience audience);

}  // namespace orvane::app
