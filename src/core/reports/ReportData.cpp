#include "core/reports/ReportData.h"

#include <algorithm>
#include <cstdio>
#include <unordered_map>

#include "core/metrics/EpicProgress.h"
#include "core/metrics/FlowMetrics.h"
#include "core/model/ProjectSnapshot.h"
#include "core/text/Text.h"
#include "engine/LocalCivilDate.h"

namespace orvane {

namespace {

// Behind a straight line from start to due by more than this, an epic is at
// risk.
constexpr double atRiskAllowance = 0.15;
// The p85 cycle time of the ageing list covers this many days ending today.
constexpr std::int64_t ageingHistoryDays = 84;

enum class Stage { notStarted, inProgress, done };

Stage stageOf(const ProjectSnapshot& project, const Ticket& ticket) {
  const BoardColumn* column = ticket.columnId ? project.column(*ticket.columnId) : nullptr;
  const std::optional<ColumnType> type = column != nullptr ? column->type() : std::nullopt;
  if (type == ColumnType::inProgress) return Stage::inProgress;
  if (type == ColumnType::done) return Stage::done;
  return Stage::notStarted;
}

std::optional<std::string> assigneeName(const ProjectSnapshot& project, const Ticket& ticket) {
  if (!ticket.assigneeId) return std::nullopt;
  const Person* person = project.person(*ticket.assigneeId);
  return person != nullptr ? std::optional(person->name) : std::nullopt;
}

RiskTicket riskTicket(const ProjectSnapshot& project, const Ticket& ticket, std::string detail) {
  return {ticket.id,     project.referenceCode(ticket), ticket.title, assigneeName(project, ticket), std::move(detail),
          ticket.blocked};
}

// "3.5 days", "1.0 day": one decimal, and the noun in the singular only for 1.
std::string daysText(double days) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.1f", days);
  const std::string number(buffer);
  return number + (number == "1.0" ? " day" : " days");
}

}  // namespace

std::string_view rawValue(EpicStatus status) {
  switch (status) {
    case EpicStatus::complete:
      return "complete";
    case EpicStatus::late:
      return "late";
    case EpicStatus::atRisk:
      return "atRisk";
    case EpicStatus::onTrack:
      return "onTrack";
    case EpicStatus::noDate:
      break;
  }
  return "noDate";
}

std::string_view label(EpicStatus status) {
  switch (status) {
    case EpicStatus::complete:
      return "Complete";
    case EpicStatus::late:
      return "Late";
    case EpicStatus::atRisk:
      return "At risk";
    case EpicStatus::onTrack:
      return "On track";
    case EpicStatus::noDate:
      break;
  }
  return "No date";
}

ProjectSummary projectSummary(const ProjectSnapshot& project, Timestamp now) {
  ProjectSummary summary;
  for (const Ticket& ticket : project.tickets) {
    if (ticket.isArchived()) {
      ++summary.archived;
      continue;
    }
    ++summary.total;
    switch (stageOf(project, ticket)) {
      case Stage::notStarted:
        ++summary.notStarted;
        break;
      case Stage::inProgress:
        ++summary.inProgress;
        break;
      case Stage::done:
        ++summary.done;
        break;
    }
  }
  summary.blocked = static_cast<std::int64_t>(project.blockedTickets().size());
  summary.overdue = static_cast<std::int64_t>(project.overdueTickets(now).size());
  return summary;
}

EpicStatus epicStatus(const EpicStatusRow& row, CivilDate today) {
  if (row.total >= 1 && row.done == row.total) return EpicStatus::complete;
  if (row.due && *row.due < today) return EpicStatus::late;
  if (row.blocked > 0) return EpicStatus::atRisk;
  if (row.start && row.due) {
    const std::int64_t span = std::max<std::int64_t>(row.due->daysSince(*row.start), 1);
    const std::int64_t elapsed = std::clamp<std::int64_t>(today.daysSince(*row.start), 0, span);
    const double expected = static_cast<double>(elapsed) / static_cast<double>(span) - atRiskAllowance;
    return row.fraction() < expected ? EpicStatus::atRisk : EpicStatus::onTrack;
  }
  if (row.due) return EpicStatus::onTrack;
  return EpicStatus::noDate;
}

std::vector<EpicStatusRow> epicStatuses(const ProjectSnapshot& project, Timestamp now, const icu::Calendar& calendar) {
  const CivilDate today = civilDateFromLocal(now, calendar);
  std::vector<EpicStatusRow> rows;
  std::vector<std::string> foldedNames;
  for (const Epic& epic : project.epics) {
    const EpicProgress counts = progress(project, epic);
    EpicStatusRow row;
    row.id = epic.id;
    row.name = epic.name;
    row.colorHex = epic.colorHex;
    row.total = counts.total;
    row.done = counts.done;
    row.inProgress = counts.inProgress;
    row.notStarted = counts.notStarted;
    row.blocked = counts.blocked;
    if (epic.startDate) row.start = civilDateFromLocal(*epic.startDate, calendar);
    if (epic.dueDate) row.due = civilDateFromLocal(*epic.dueDate, calendar);
    row.status = epicStatus(row, today);
    rows.push_back(std::move(row));
  }
  std::vector<std::pair<std::string, EpicStatusRow>> keyed;
  keyed.reserve(rows.size());
  for (EpicStatusRow& row : rows) keyed.emplace_back(text::folded(row.name), std::move(row));
  std::stable_sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) {
    const EpicStatusRow& x = a.second;
    const EpicStatusRow& y = b.second;
    if (x.due.has_value() != y.due.has_value()) return x.due.has_value();
    if (x.due && *x.due != *y.due) return *x.due < *y.due;
    return a.first < b.first;
  });
  rows.clear();
  for (auto& entry : keyed) rows.push_back(std::move(entry.second));
  return rows;
}

CompletedReport completedReport(const ProjectSnapshot& project, CivilDate from, CivilDate to,
                                const icu::Calendar& calendar) {
  CompletedReport report{from, to, {}, 0};
  if (to < from) return report;

  struct Found {
    const Ticket* ticket;
    CivilDate day;
  };
  std::unordered_map<Uuid, std::vector<Found>> byEpic;
  std::vector<Found> withoutEpic;
  for (const Ticket& ticket : project.tickets) {
    if (ticket.isArchived() || !ticket.completedAt) continue;
    const CivilDate day = civilDateFromLocal(*ticket.completedAt, calendar);
    if (day < from || to < day) continue;
    // A ticket whose epic is gone belongs with the tickets without one.
    if (ticket.epicId && project.epic(*ticket.epicId) != nullptr) {
      byEpic[*ticket.epicId].push_back({&ticket, day});
    } else {
      withoutEpic.push_back({&ticket, day});
    }
  }

  const auto makeItems = [&](std::vector<Found> found) {
    std::stable_sort(found.begin(), found.end(), [](const Found& a, const Found& b) {
      if (*a.ticket->completedAt != *b.ticket->completedAt) return *a.ticket->completedAt < *b.ticket->completedAt;
      return a.ticket->number < b.ticket->number;
    });
    std::vector<CompletedItem> items;
    for (const Found& f : found) {
      items.push_back(
          {f.ticket->id, project.referenceCode(*f.ticket), f.ticket->title, assigneeName(project, *f.ticket), f.day});
    }
    report.total += static_cast<std::int64_t>(items.size());
    return items;
  };

  std::vector<std::pair<std::string, const Epic*>> epics;
  for (const Epic& epic : project.epics) {
    if (byEpic.contains(epic.id)) epics.emplace_back(text::folded(epic.name), &epic);
  }
  std::stable_sort(epics.begin(), epics.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  for (const auto& [key, epic] : epics) {
    report.groups.push_back({epic->id.text(), epic->name, epic->colorHex, makeItems(std::move(byEpic[epic->id]))});
  }
  if (!withoutEpic.empty()) {
    report.groups.push_back(
        {std::string(noEpicGroupId), std::string(noEpicGroupName), std::nullopt, makeItems(std::move(withoutEpic))});
  }
  return report;
}

RiskReport riskReport(const ProjectSnapshot& project, Timestamp now, const icu::Calendar& calendar) {
  RiskReport report;
  for (const Ticket* ticket : project.blockedTickets()) {
    std::string detail;
    if (ticket->blocked) {
      detail = "flagged as blocked";
    } else {
      detail = "waiting on ";
      bool first = true;
      for (const Ticket* blocker : project.openBlockers(*ticket)) {
        if (!first) detail += ", ";
        detail += project.referenceCode(*blocker);
        first = false;
      }
    }
    report.blocked.push_back(riskTicket(project, *ticket, std::move(detail)));
  }
  // The day a ticket was due, in the user's calendar: "due 3 Mar 2026".
  for (const Ticket* ticket : project.overdueTickets(now)) {
    report.overdue.push_back(
        riskTicket(project, *ticket, "due " + civilDateFromLocal(*ticket->dueDate, calendar).displayText()));
  }

  const std::vector<FlowTicket> tickets = flowTickets(project);
  const CivilDate today = CivilDate::fromUtc(now);
  const Timestamp since = today.addingDays(-(ageingHistoryDays - 1)).utcMidnight();
  const std::vector<CycleTimePoint> points = FlowMetrics::cycleTimes(tickets, since);
  if (const std::optional<CycleTimeSummary> summary = FlowMetrics::summary(points)) {
    report.p85CycleDays = summary->p85;
    std::unordered_map<Uuid, const Ticket*> byId;
    for (const Ticket& ticket : project.tickets) byId.emplace(ticket.id, &ticket);
    for (const AgePoint& age : FlowMetrics::ages(tickets, now)) {
      if (age.ageDays <= summary->p85) continue;
      report.ageing.push_back(riskTicket(project, *byId.at(age.id),
                                         daysText(age.ageDays) + " in progress, older than 85% of finished work"));
    }
  }

  report.wipBreaches = wipBreaches(project);
  for (const EpicStatusRow& row : epicStatuses(project, now, calendar)) {
    if (row.status == EpicStatus::late) report.lateEpics.push_back(row);
    if (row.status == EpicStatus::atRisk) report.atRiskEpics.push_back(row);
  }
  return report;
}

std::vector<WorkloadRow> workload(const ProjectSnapshot& project, Timestamp now, std::int64_t recentDays,
                                  const icu::Calendar& calendar) {
  const CivilDate today = civilDateFromLocal(now, calendar);
  const CivilDate firstRecentDay = today.addingDays(-(recentDays - 1));
  std::unordered_map<Uuid, WorkloadRow> rows;
  for (const Ticket& ticket : project.tickets) {
    if (ticket.isArchived() || !ticket.assigneeId) continue;
    const Person* person = project.person(*ticket.assigneeId);
    if (person == nullptr) continue;
    auto [it, added] = rows.try_emplace(person->id);
    WorkloadRow& row = it->second;
    if (added) {
      row.id = person->id.text();
      row.name = person->name;
    }
    if (project.isOpen(ticket)) {
      if (stageOf(project, ticket) == Stage::inProgress) {
        ++row.inProgress;
      } else {
        ++row.notStarted;
      }
      if (project.isBlocked(ticket)) ++row.blocked;
      if (ticket.dueDate && *ticket.dueDate < now) ++row.overdue;
    } else if (ticket.completedAt && recentDays > 0) {
      const CivilDate day = civilDateFromLocal(*ticket.completedAt, calendar);
      if (firstRecentDay <= day && day <= today) ++row.doneRecently;
    }
  }
  std::vector<std::pair<std::string, WorkloadRow>> keyed;
  for (auto& [id, row] : rows) keyed.emplace_back(text::folded(row.name), std::move(row));
  std::stable_sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) {
    if (a.second.open() != b.second.open()) return a.second.open() > b.second.open();
    if (a.first != b.first) return a.first < b.first;
    return a.second.id < b.second.id;
  });
  std::vector<WorkloadRow> result;
  for (auto& entry : keyed) result.push_back(std::move(entry.second));
  return result;
}

}  // namespace orvane
