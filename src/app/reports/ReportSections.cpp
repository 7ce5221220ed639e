#include "app/reports/ReportSections.h"

#include <QPainter>
#include <algorithm>
#include <memory>

#include "app/forecast/ChanceText.h"
#include "app/reports/ReportCharts.h"

namespace orvane::app {
namespace {

const QColor muted(0x5b, 0x64, 0x70);
const QColor ink(0x22, 0x27, 0x2e);

QString q(const std::string& text) { return QString::fromStdString(text); }
QString day(const CivilDate& d) { return q(d.displayText()); }
QString dayOrDash(const std::optional<CivilDate>& d) { return d ? day(*d) : QStringLiteral("–"); }
QString count(std::int64_t n) { return QString::number(n); }

QColor statusColour(EpicStatus status) {
  switch (status) {
    case EpicStatus::complete:
      return QColor(0x2e, 0x7d, 0x32);
    case EpicStatus::late:
      return QColor(0xb3, 0x26, 0x1e);
    case EpicStatus::atRisk:
      return QColor(0xa0, 0x68, 0x00);
    case EpicStatus::onTrack:
      return QColor(0x1f, 0x5f, 0xa8);
    case EpicStatus::noDate:
      break;
  }
  return muted;
}

void addressBlock(ReportLayout& layout, const ReportContent& c) {
  layout.title(QStringLiteral("Status report: %1").arg(q(c.projectName)));
  layout.paragraph(reportKindText(c.audience), 11, muted, true);
  if (!c.addressee.empty()) layout.paragraph(QStringLiteral("For %1").arg(q(c.addressee)), 10.5);
  layout.paragraph(
      QStringLiteral("Period: %1 to %2. Prepared on %3.").arg(day(c.period.from), day(c.period.to), day(c.today)), 9.5,
      muted);
}

void summarySection(ReportLayout& layout, const ReportContent& c) {
  layout.heading(QStringLiteral("Summary"));
  const ProjectSummary& s = c.summary;
  std::vector<QStringList> rows{{QStringLiteral("All"), count(s.total)},
                                {QStringLiteral("Not started"), count(s.notStarted)},
                                {QStringLiteral("In progress"), count(s.inProgress)},
                                {QStringLiteral("Done"), count(s.done)},
                                {QStringLiteral("Remaining"), count(s.remaining())},
                                {QStringLiteral("Overdue"), count(s.overdue)}};
  if (c.audience == ReportAudience::internal) {
    rows.push_back({QStringLiteral("Blocked"), count(s.blocked)});
    rows.push_back({QStringLiteral("Archived"), count(s.archived)});
  }
  layout.table({QString(), QStringLiteral("Tickets")}, rows, {0.3, 0.12}, {false, true});
}

// One epic per row: its name, a progress bar with done of total, the due
// day and the status label in the status's colour.
void epicSection(ReportLayout& layout, const ReportContent& c) {
  layout.heading(QStringLiteral("Epics"));
  if (c.epics.empty()) {
    layout.paragraph(QStringLiteral("No epics."));
    return;
  }
  const bool internal = c.audience == ReportAudience::internal;
  const std::vector<qreal> columns =
      internal ? std::vector<qreal>{0.27, 0.35, 0.1, 0.14, 0.14} : std::vector<qreal>{0.34, 0.34, 0.16, 0.16};
  QStringList header{QStringLiteral("Epic"), QStringLiteral("Progress")};
  if (internal) header << QStringLiteral("Blocked");
  header << QStringLiteral("Due") << QStringLiteral("Status");
  layout.table(header, {}, columns, std::vector<bool>{false, false, internal});
  const QFont font = layout.font(8.5);
  const QFont bold = layout.font(8.5, true);
  const qreal pad = layout.points(3);
  const qreal width = layout.width();
  for (const EpicStatusRow& row : c.epics) {
    const QString name = q(row.name);
    const qreal height = layout.textHeight(name, font, columns[0] * width - 2 * pad) + 2 * pad;
    layout.tableRow(std::max(height, layout.points(16)), [=](QPainter& p, const QRectF& area) {
      qreal x = area.left();
      const auto cell = [&](std::size_t column) {
        const QRectF r(x + pad, area.top() + pad, columns[column] * width - 2 * pad, area.height() - 2 * pad);
        x += columns[column] * width;
        return r;
      };
      p.setFont(font);
      p.setPen(ink);
      p.drawText(cell(0), Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignTop, name);
      const QRectF progress = cell(1);
      const qreal barWidth = progress.width() * 0.38;
      const QRectF bar(progress.left(), progress.top() + pad * 0.3, barWidth, layout.points(7));
      p.fillRect(bar, QColor(0xe3, 0xe7, 0xec));
      const QColor fill = row.colorHex ? QColor(q(*row.colorHex)) : QColor(0x1f, 0x5f, 0xa8);
      p.fillRect(QRectF(bar.topLeft(), QSizeF(bar.width() * row.fraction(), bar.height())),
                 fill.isValid() ? fill : QColor(0x1f, 0x5f, 0xa8));
      p.drawText(progress.adjusted(barWidth + pad * 2, 0, 0, 0), Qt::AlignLeft | Qt::AlignTop,
                 QStringLiteral("%1 of %2 (%3%)")
                     .arg(row.done)
                     .arg(row.total)
                     .arg(static_cast<int>(row.fraction() * 100 + 0.5)));
      if (internal) p.drawText(cell(2), Qt::AlignRight | Qt::AlignTop, count(row.blocked));
      p.drawText(cell(internal ? 3 : 2), Qt::AlignLeft | Qt::AlignTop, dayOrDash(row.due));
      p.setFont(bold);
      p.setPen(statusColour(row.status));
      p.drawText(cell(internal ? 4 : 3), Qt::AlignLeft | Qt::AlignTop, q(std::string(label(row.status))));
      p.setPen(QPen(QColor(0xc8, 0xcf, 0xd8), 0));
      p.drawLine(QPointF(area.left(), area.bottom()), QPointF(area.right(), area.bottom()));
    });
  }
}

void milestoneSection(ReportLayout& layout, const ReportContent& c) {
  if (!c.roadmap || c.roadmap->milestones.empty()) return;
  layout.heading(QStringLiteral("Milestones"));
  std::vector<QStringList> rows;
  for (const RoadmapMarker& m : c.roadmap->milestones) {
    const QString chance = m.done     ? QStringLiteral("Done")
                           : m.chance ? QStringLiteral("%1 chance").arg(chanceText(*m.chance))
                                      : QStringLiteral("–");
    rows.push_back({m.name, day(m.day), chance});
  }
  layout.table({QStringLiteral("Milestone"), QStringLiteral("Date"), QStringLiteral("Chance of meeting it")}, rows,
               {0.5, 0.2, 0.3});
}

void whenSection(ReportLayout& layout, const ReportContent& c) {
  layout.heading(QStringLiteral("When will it be done?"));
  if (!c.when) {
    layout.paragraph(q(c.whenError));
    return;
  }
  const WhenForecast& when = *c.when;
  std::vector<QStringList> rows;
  for (const int level : {50, 85, 95}) {
    const auto found = when.dates.find(level);
    rows.push_back(
        {QStringLiteral("%1%").arg(level), found == when.dates.end() ? QStringLiteral("–") : day(found->second)});
  }
  layout.table({QStringLiteral("Confidence"), QStringLiteral("Finished by")}, rows, {0.2, 0.3});
  layout.space(4);
  for (const std::string& line : c.narrative) layout.paragraph(q(line));
  if (!when.histogram.empty()) {
    layout.space(4);
    const WhenForecast copy = when;
    layout.block(layout.width() * 0.42,
                 [copy](QPainter& painter, const QRectF& area) { paintFinishWeeks(painter, area, copy); });
  }
}

void roadmapSection(ReportLayout& layout, const ReportContent& c) {
  if (!c.roadmap && c.roadmapError.empty()) return;
  layout.heading(QStringLiteral("Roadmap"));
  if (!c.roadmap) {
    layout.paragraph(q(c.roadmapError));
    return;
  }
  auto drawing = std::make_shared<RoadmapDrawing>(*c.roadmap);
  const qreal height = std::min(drawing->heightFor(layout.width()), layout.width() * 1.1);
  layout.block(height, [drawing](QPainter& painter, const QRectF& area) { drawing->paint(painter, area); });
}

void completedSection(ReportLayout& layout, const ReportContent& c) {
  layout.heading(QStringLiteral("Completed from %1 to %2").arg(day(c.period.from), day(c.period.to)));
  if (c.completedTotal == 0) {
    layout.paragraph(QStringLiteral("No tickets were completed in this period."));
    return;
  }
  if (c.audience == ReportAudience::client) {
    std::vector<QStringList> rows;
    for (const CompletedCount& group : c.completedCounts) rows.push_back({q(group.epicName), count(group.count)});
    rows.push_back({QStringLiteral("Total"), count(c.completedTotal)});
    layout.table({QStringLiteral("Epic"), QStringLiteral("Tickets completed")}, rows, {0.5, 0.2}, {false, true});
    return;
  }
  for (const CompletedGroup& group : c.completedGroups) {
    layout.subheading(QStringLiteral("%1 (%2)").arg(q(group.epicName)).arg(group.items.size()));
    std::vector<QStringList> rows;
    for (const CompletedItem& item : group.items)
      rows.push_back({q(item.reference), q(item.title), item.assignee ? q(*item.assignee) : QStringLiteral("–"),
                      day(item.completed)});
    layout.table(
        {QStringLiteral("Reference"), QStringLiteral("Title"), QStringLiteral("Assignee"), QStringLiteral("Completed")},
        rows, {0.13, 0.5, 0.2, 0.17});
  }
}

void riskTickets(ReportLayout& layout, const QString& heading, const std::vector<RiskTicket>& tickets) {
  if (tickets.empty()) return;
  layout.subheading(QStringLiteral("%1 (%2)").arg(heading).arg(tickets.size()));
  std::vector<QStringList> rows;
  for (const RiskTicket& t : tickets)
    rows.push_back({q(t.reference), q(t.title), t.assignee ? q(*t.assignee) : QStringLiteral("–"), q(t.detail)});
  layout.table(
      {QStringLiteral("Reference"), QStringLiteral("Title"), QStringLiteral("Assignee"), QStringLiteral("Details")},
      rows, {0.13, 0.4, 0.17, 0.3});
}

void riskEpics(ReportLayout& layout, const QString& heading, const std::vector<EpicStatusRow>& epics) {
  if (epics.empty()) return;
  layout.subheading(QStringLiteral("%1 (%2)").arg(heading).arg(epics.size()));
  std::vector<QStringList> rows;
  for (const EpicStatusRow& e : epics)
    rows.push_back({q(e.name), QStringLiteral("%1 of %2").arg(e.done).arg(e.total), count(e.blocked), dayOrDash(e.due),
                    q(std::string(label(e.status)))});
  layout.table({QStringLiteral("Epic"), QStringLiteral("Done"), QStringLiteral("Blocked"), QStringLiteral("Due"),
                QStringLiteral("Status")},
               rows, {0.36, 0.16, 0.12, 0.18, 0.18}, {false, false, true, false, false});
}

void riskSection(ReportLayout& layout, const ReportContent& c) {
  layout.heading(QStringLiteral("Risks"));
  const RiskReport& r = c.risk;
  if (r.isClear()) {
    layout.paragraph(QStringLiteral("Nothing is at risk."));
    return;
  }
  riskTickets(layout, QStringLiteral("Blocked"), r.blocked);
  riskTickets(layout, QStringLiteral("Overdue"), r.overdue);
  riskTickets(layout, QStringLiteral("Ageing"), r.ageing);
  if (!r.wipBreaches.empty()) {
    layout.subheading(QStringLiteral("Over the WIP limit (%1)").arg(r.wipBreaches.size()));
    std::vector<QStringList> rows;
    for (const WIPBreach& b : r.wipBreaches) rows.push_back({q(b.columnName), count(b.count), count(b.limit)});
    layout.table({QStringLiteral("Column"), QStringLiteral("Tickets"), QStringLiteral("Limit")}, rows,
                 {0.4, 0.15, 0.15}, {false, true, true});
  }
  riskEpics(layout, QStringLiteral("Late epics"), r.lateEpics);
  riskEpics(layout, QStringLiteral("Epics at risk"), r.atRiskEpics);
}

void workloadSection(ReportLayout& layout, const ReportContent& c) {
  layout.heading(QStringLiteral("Workload"));
  if (c.workload.empty()) {
    layout.paragraph(QStringLiteral("No tickets are assigned to anyone."));
    return;
  }
  std::vector<QStringList> rows;
  for (const WorkloadRow& w : c.workload)
    rows.push_back({q(w.name), count(w.notStarted), count(w.inProgress), count(w.blocked), count(w.overdue),
                    count(w.doneRecently)});
  layout.table({QStringLiteral("Person"), QStringLiteral("Not started"), QStringLiteral("In progress"),
                QStringLiteral("Blocked"), QStringLiteral("Overdue"),
                QStringLiteral("Done (last %1 days)").arg(reportRecentDays)},
               rows, {0.3, 0.13, 0.13, 0.12, 0.12, 0.2}, {false, true, true, true, true, true});
}

void flowSection(ReportLayout& layout, const ReportContent& c) {
  layout.heading(QStringLiteral("Flow health"));
  if (!c.health || !c.flow) {
    layout.paragraph(q(c.flowError));
    return;
  }
  layout.paragraph(QStringLiteral("Throughput: %1.").arg(q(std::string(displayLabel(c.health->trend)))), 9.5, ink,
                   true);
  for (const std::string& note : c.health->notes) layout.paragraph(q(note));
  layout.paragraph(q(std::string(FlowScreen::note)), 8.5, muted);
  const FlowScreen::Figures figures = *c.flow;
  const std::pair<FlowChartKind, QString> charts[] = {
      {FlowChartKind::throughput, QStringLiteral("Throughput per week")},
      {FlowChartKind::cycleTime, QStringLiteral("Cycle time of finished tickets")},
      {FlowChartKind::age, QStringLiteral("Age of the work in progress")},
      {FlowChartKind::cumulative, QStringLiteral("Cumulative flow")}};
  for (const auto& [kind, caption] : charts) {
    layout.subheading(caption);
    layout.block(layout.width() * 0.4, [kind, figures](QPainter& painter, const QRectF& area) {
      paintFlowChart(painter, area, kind, figures);
    });
  }
}

QString calibrationCell(const CalibrationRow& row) {
  if (row.total == 0) return QStringLiteral("–");
  return QStringLiteral("%1 of %2 (%3%)").arg(row.hits).arg(row.total).arg(row.hitPct(), 0, 'f', 1);
}

void accuracySection(ReportLayout& layout, const ReportContent& c) {
  layout.heading(QStringLiteral("Accuracy of past forecasts"));
  if (!c.accuracy) {
    layout.paragraph(q(c.flowError));
    return;
  }
  const AccuracyReport& a = *c.accuracy;
  if (a.whenOutcomes.empty() && a.byDateOutcomes.empty()) {
    layout.paragraph(QStringLiteral("No forecasts have been logged yet."));
    return;
  }
  layout.paragraph(QStringLiteral("How often logged forecasts came true at each confidence level."), 9.5, muted);
  std::vector<QStringList> rows;
  for (std::size_t i = 0; i < a.whenCalibration.size(); ++i) {
    const CalibrationRow& when = a.whenCalibration[i];
    const QString byDate = i < a.byDateCalibration.size() ? calibrationCell(a.byDateCalibration[i]) : QString();
    rows.push_back({QStringLiteral("%1%").arg(when.level), calibrationCell(when), byDate});
  }
  layout.table(
      {QStringLiteral("Level"), QStringLiteral("When will it be done?"), QStringLiteral("How many by a date?")}, rows,
      {0.16, 0.42, 0.42});
  if (a.whenOutcomes.empty()) return;
  layout.space(6);
  std::vector<QStringList> outcomes;
  for (const WhenOutcome& o : a.whenOutcomes) {
    const QString p85 = o.dates.size() >= 3 ? day(o.dates[2]) : QStringLiteral("–");
    outcomes.push_back({day(o.asOf), count(o.backlogThen), p85, dayOrDash(o.finishedOn), q(o.verdict.label())});
  }
  layout.table({QStringLiteral("Run on"), QStringLiteral("Backlog"), QStringLiteral("85% date"),
                QStringLiteral("Finished on"), QStringLiteral("Verdict")},
               outcomes, {0.17, 0.11, 0.17, 0.17, 0.38}, {false, true, false, false, false});
}

}  // namespace

QString reportKindText(ReportAudience audience) {
  return audience == ReportAudience::client ? QStringLiteral("Client report") : QStringLiteral("Internal report");
}

void layOutReport(ReportLayout& layout, const ReportContent& content) {
  addressBlock(layout, content);
  summarySection(layout, content);
  epicSection(layout, content);
  milestoneSection(layout, content);
  whenSection(layout, content);
  roadmapSection(layout, content);
  completedSection(layout, content);
  if (content.audience == ReportAudience::client) return;
  riskSection(layout, content);
  workloadSection(layout, content);
  flowSection(layout, content);
  accuracySection(layout, content);
}

}  // namespace orvane::app
