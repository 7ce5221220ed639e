#include "app/roadmap/RoadmapPicture.h"

#include <algorithm>
#include <set>
#include <unordered_map>
#include <utility>

namespace orvane::app {
namespace {

// Epics without a colour of their own.
constexpr const char* defaultColour = "#5B8DEF";

QString text(const std::string& s) { return QString::fromStdString(s); }
QString day(const CivilDate& d) { return text(d.displayText()); }

// Chances carry one decimal, as the command line prints them.
QString chance(double percent) { return QString::number(percent, 'f', 1) + QLatin1Char('%'); }

QString counted(std::int64_t n, const QString& noun) {
  return QStringLiteral("%1 %2%3").arg(n).arg(noun, n == 1 ? QString() : QStringLiteral("s"));
}

// "Due 5 Apr 2026: 63.2% chance by then; the 85% date is 12 days late",
// the command line's words for an epic's due date.
QString dueText(const EpicSchedule& schedule) {
  QString line = QStringLiteral("Due ") + day(*schedule.dueDay);
  if (schedule.chanceByDue)
    line += QStringLiteral(": ") + chance(*schedule.chanceByDue) + QStringLiteral(" chance by then");
  if (schedule.p85SlipDays) {
    const std::int64_t slip = *schedule.p85SlipDays;
    line += QStringLiteral("; the 85% date is ") +
            (slip == 0 ? QStringLiteral("the due day")
                       : counted(slip > 0 ? slip : -slip, QStringLiteral("day")) +
                             (slip > 0 ? QStringLiteral(" late") : QStringLiteral(" early")));
  }
  return line;
}

}  // namespace

const RoadmapBar* RoadmapPicture::bar(const Uuid& id) const {
  const auto found = std::find_if(bars.begin(), bars.end(), [&](const RoadmapBar& b) { return b.id == id; });
  return found == bars.end() ? nullptr : &*found;
}

CivilDate RoadmapPicture::firstDay() const {
  CivilDate first = today;
  for (const RoadmapBar& b : bars) {
    first = std::min(first, b.start);
    if (b.due) first = std::min(first, *b.due);
  }
  for (const RoadmapMarker& m : milestones) first = std::min(first, m.day);
  return first;
}

CivilDate RoadmapPicture::lastDay() const {
  CivilDate last = today;
  for (const RoadmapBar& b : bars) {
    for (const auto& d : {b.p50, b.p85, b.due})
      if (d) last = std::max(last, *d);
    last = std::max(last, b.start);
  }
  for (const RoadmapMarker& m : milestones) last = std::max(last, m.day);
  for (const auto& [level, d] : projectDates) last = std::max(last, d);
  return last;
}

RoadmapPicture roadmapPicture(const RoadmapSources& sources) {
  const RoadmapForecast& forecast = sources.forecast;
  RoadmapPicture picture;
  picture.today = forecast.asOf;
  picture.iterations = forecast.iterations;
  picture.projectDates = forecast.projectDates;
  picture.inconclusive = forecast.inconclusive;

  std::unordered_map<Uuid, const EpicStatusRow*> statusOf;
  for (const EpicStatusRow& row : sources.statuses) statusOf.emplace(row.id, &row);
  std::unordered_map<Uuid, const Epic*> epicOf;
  for (const Epic& epic : sources.epics) epicOf.emplace(epic.id, &epic);

  for (const RoadmapEpicNode& node : sources.input.epics) {
    const auto found = forecast.epics.find(node.id);
    if (found == forecast.epics.end()) continue;
    const EpicSchedule& schedule = found->second;
    RoadmapBar bar;
    bar.id = node.id;
    bar.name = text(node.name);
    const Epic* epic = epicOf.count(node.id) ? epicOf.at(node.id) : nullptr;
    bar.colour = QColor(epic && epic->colorHex ? text(*epic->colorHex) : QString::fromLatin1(defaultColour));
    if (!bar.colour.isValid()) bar.colour = QColor(QString::fromLatin1(defaultColour));
    bar.hasPlannedStart = epic && epic->startDate;
    bar.start = bar.hasPlannedStart ? forecast.asOf.addingDays(node.startOffsetDays) : forecast.asOf;
    bar.p50 = schedule.p50;
    bar.p85 = schedule.p85;
    bar.due = schedule.dueDay;
    bar.chanceByDue = schedule.chanceByDue;
    bar.open = schedule.open;
    bar.atRisk = schedule.isAtRisk();
    bar.onLongestChain = schedule.isOnLongestChain;
    const EpicStatusRow* status = statusOf.count(node.id) ? statusOf.at(node.id) : nullptr;
    bar.status = status ? text(std::string(label(status->status))) : QString();

    QStringList note{bar.status};
    if (bar.isDone()) {
      note << QStringLiteral("nothing open");
    } else if (bar.due && bar.chanceByDue) {
      note << chance(*bar.chanceByDue) + QStringLiteral(" chance by ") + text(bar.due->displayShort());
      // The status follows the tickets done so far; the forecast may see
      // the risk before it does.
      if (bar.atRisk && status && status->status != EpicStatus::atRisk && status->status != EpicStatus::late)
        note << QStringLiteral("at risk by the forecast");
    }
    note.removeAll(QString());
    bar.note = note.join(QStringLiteral(" · "));

    QStringList detail{bar.name + QStringLiteral(": ") +
                       (bar.open > 0 ? QStringLiteral("%1 open").arg(bar.open) : QStringLiteral("nothing open")) +
                       (bar.atRisk ? QStringLiteral(", At risk") : QString())};
    detail << (bar.hasPlannedStart
                   ? QStringLiteral("Planned start ") + day(bar.start)
                   : QStringLiteral("No planned start: starts today, or when what it waits for is done"));
    if (bar.p50 && bar.p85) detail << QStringLiteral("50% by %1, 85% by %2").arg(day(*bar.p50), day(*bar.p85));
    if (schedule.dueDay) detail << dueText(schedule);
    if (!bar.status.isEmpty()) detail << QStringLiteral("Status: ") + bar.status;
    if (bar.onLongestChain) detail << QStringLiteral("On the longest chain");
    bar.detail = detail.join(QLatin1Char('\n'));
    picture.bars.push_back(std::move(bar));

    if (picture.bars.back().atRisk) {
      picture.issues.push_back(
          {node.id, QStringLiteral("“%1” is at risk. %2.").arg(text(node.name), dueText(schedule)), false});
    }
  }

  // Rows in the order the work happens: by start, then by 50% date.
  std::stable_sort(picture.bars.begin(), picture.bars.end(), [&](const RoadmapBar& a, const RoadmapBar& b) {
    const CivilDate aEnd = a.p50.value_or(forecast.asOf);
    const CivilDate bEnd = b.p50.value_or(forecast.asOf);
    if (a.start != b.start) return a.start < b.start;
    if (aEnd != bEnd) return aEnd < bEnd;
    return a.name.localeAwareCompare(b.name) < 0;
  });

  std::set<std::pair<Uuid, Uuid>> chainLinks;
  for (std::size_t i = 0; i + 1 < forecast.longestChain.size(); ++i)
    chainLinks.emplace(forecast.longestChain[i], forecast.longestChain[i + 1]);
  for (const RoadmapEpicNode& node : sources.input.epics) {
    for (const Uuid& predecessor : node.predecessors) {
      if (!picture.bar(predecessor) || !picture.bar(node.id)) continue;
      picture.arrows.push_back({predecessor, node.id, chainLinks.count({predecessor, node.id}) > 0});
    }
  }

  for (const RoadmapMilestoneNode& node : sources.input.milestones) {
    RoadmapMarker marker;
    marker.id = node.id;
    const auto name = sources.milestoneNames.find(node.id);
    marker.name = name == sources.milestoneNames.end() ? text(node.id.text()) : text(name->second);
    marker.day = node.day;
    marker.done = node.isDone;
    const auto found = forecast.milestoneChances.find(node.id);
    if (!node.isDone && found != forecast.milestoneChances.end()) marker.chance = found->second;
    marker.label = marker.name + QStringLiteral(" · ") +
                   (marker.done     ? QStringLiteral("done")
                    : marker.chance ? chance(*marker.chance)
                                    : QStringLiteral("no forecast"));
    picture.milestones.push_back(std::move(marker));
  }

  for (const EpicScheduleConflict& conflict : sources.conflicts) {
    picture.issues.push_back(
        {conflict.successor.id,
         QStringLiteral("Warning: \"%1\" is planned to start %2 before \"%3\" is due.")
             .arg(text(conflict.successor.name), counted(conflict.overlapDays, QStringLiteral("day")),
                  text(conflict.predecessor.name)),
         true});
  }
  return picture;
}

}  // namespace orvane::app
