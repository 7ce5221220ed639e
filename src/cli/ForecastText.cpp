#include "cli/ForecastText.h"

#include <algorithm>

#include "cli/TextLayout.h"
#include "engine/ForecastResult.h"

namespace orvane::cli {
namespace {

constexpr int chanceDecimals = 1;

std::string dayText(const CivilDate& day) { return day.displayText() + " (" + day.description() + ")"; }

// "is real" / "are real": the count leads the clause.
std::string agreeing(std::int64_t n, std::string_view what) {
  return std::to_string(n) + (n == 1 ? " is " : " are ") + std::string(what);
}

std::string_view fillerName(ProvenanceTier tier) {
  switch (tier) {
    case ProvenanceTier::userEstimated:
      return "your estimate";
    case ProvenanceTier::systemDefault:
      return "the default estimate";
    case ProvenanceTier::carriedForward:
      return "carried forward";
    case ProvenanceTier::actual:
      break;
  }
  return "actual";
}

const RoadmapEpicNode* nodeOf(const RoadmapForecastInput& input, const Uuid& id) {
  const auto it =
      std::find_if(input.epics.begin(), input.epics.end(), [&](const RoadmapEpicNode& node) { return node.id == id; });
  return it == input.epics.end() ? nullptr : &*it;
}

void writeEpic(const RoadmapEpicNode& node, const EpicSchedule& schedule, std::ostream& out) {
  out << (schedule.isOnLongestChain ? "* " : "  ") << node.name << ": "
      << (schedule.open > 0 ? std::to_string(schedule.open) + " open" : std::string("nothing open"))
      << (schedule.isAtRisk() ? ", At risk" : "") << '\n';
  if (schedule.p50 && schedule.p85) {
    out << "    50% by " << schedule.p50->displayText() << ", 85% by " << schedule.p85->displayText() << '\n';
  }
  if (schedule.dueDay) {
    out << "    Due " << schedule.dueDay->displayText();
    if (schedule.chanceByDue) out << ": " << percentText(*schedule.chanceByDue, chanceDecimals) << " chance by then";
    if (schedule.p85SlipDays) {
      const std::int64_t slip = *schedule.p85SlipDays;
      out << "; the 85% date is "
          << (slip == 0 ? std::string("the due day")
                        : counted(slip > 0 ? slip : -slip, "day") + (slip > 0 ? " late" : " early"));
    }
    out << '\n';
  }
}

}  // namespace

void writeHistory(const std::vector<PeriodCount>& history, std::ostream& out) {
  std::int64_t real = 0;
  std::vector<ProvenanceTier> fillerTiers;
  std::string counts;
  for (const PeriodCount& period : history) {
    if (period.provenance == ProvenanceTier::actual) {
      ++real;
    } else if (std::find(fillerTiers.begin(), fillerTiers.end(), period.provenance) == fillerTiers.end()) {
      fillerTiers.push_back(period.provenance);
    }
    counts += (counts.empty() ? "" : ", ") + std::to_string(period.count);
  }
  const auto total = static_cast<std::int64_t>(history.size());
  std::string sentence = "History: " + std::to_string(real) + " of the " + counted(total, "week") + " " +
                         (real == 1 ? "is" : "are") + " real; " + agreeing(total - real, "filler");
  if (!fillerTiers.empty()) {
    sentence += " (";
    for (std::size_t i = 0; i < fillerTiers.size(); ++i)
      sentence += (i > 0 ? " and " : "") + std::string(fillerName(fillerTiers[i]));
    sentence += ")";
  }
  writeWrapped(out, sentence + ".");
  if (!history.empty()) writeWrapped(out, "Weekly counts, oldest first: " + counts + ".");
}

void writeWhenText(const WhenForecast& forecast, std::string_view commitmentName, std::ostream& out) {
  out << '\n';
  writeLevelTable(forecast.periods, forecast.dates, out);
  out << '\n';
  if (forecast.commitment && forecast.commitmentConfidencePct) {
    writeWrapped(out, std::string(commitmentName) + " " + dayText(*forecast.commitment) +
                          (*forecast.commitment < forecast.asOf ? " has passed: " : ": ") +
                          percentText(*forecast.commitmentConfidencePct, chanceDecimals) +
                          " chance of finishing by then.");
  }
  writeHistory(forecast.history, out);
  if (forecast.inconclusive) writeInconclusive(ForecastSettings::maxPeriods, out);
  out << '\n';
  writeHistogram(forecast.histogram, forecast.iterations, out);
}

void writeByDateText(const ByDateForecast& forecast, std::ostream& out) {
  out << "\nBy " << dayText(forecast.target) << ", " << counted(forecast.wholePeriods, "whole week") << " from "
      << forecast.asOf.displayText() << ":\n";
  writeCountsByLevel(forecast.counts, out);
  out << '\n';
  writeWrapped(out, "Chance that all " + counted(forecast.backlog, "ticket") +
                        " are done by then: " + percentText(forecast.backlogDonePct, chanceDecimals) + ".");
  writeHistory(forecast.history, out);
}

void writeIterationText(const IterationForecast& forecast, std::ostream& out) {
  const std::string label(displayLabel(forecast.outlook()));
  if (forecast.open == 0) {
    out << label << ": every ticket of the iteration is done.\n";
    return;
  }
  if (forecast.daysLeft == 0) {
    writeWrapped(out, label + ": the last day, " + dayText(forecast.lastDay) + ", has passed with " +
                          counted(forecast.open, "open ticket") + ".");
    return;
  }
  writeWrapped(out, label + ": " + percentText(forecast.probabilityPct, chanceDecimals) + " chance that the " +
                        counted(forecast.open, "open ticket") + " " + (forecast.open == 1 ? "is" : "are") +
                        " done by " + dayText(forecast.lastDay) + ", the last day.");
  out << counted(forecast.daysLeft, "day") << " left, both ends counted.\n";
  if (!forecast.counts.empty()) {
    out << "\nDone by the last day:\n";
    writeCountsByLevel(forecast.counts, out);
  }
  out << '\n';
  writeHistory(forecast.history, out);
}

void writeRoadmapText(const RoadmapForecast& forecast, const RoadmapContext& context, std::ostream& out) {
  out << "\nEpics (* on the longest chain):\n";
  for (const RoadmapEpicNode& node : context.input.epics) {
    const auto schedule = forecast.epics.find(node.id);
    if (schedule != forecast.epics.end()) writeEpic(node, schedule->second, out);
  }
  if (context.input.epics.empty()) out << "  none\n";

  if (!context.input.epics.empty() && !forecast.projectDates.empty()) {
    out << "\nEvery epic done:\n";
    for (const auto& [level, day] : forecast.projectDates) {
      out << "  " << padLeft(std::to_string(level) + "%", 4) << "  " << day.description() << "  " << day.displayText()
          << '\n';
    }
  }
  if (!forecast.longestChain.empty()) {
    std::string chain;
    for (const Uuid& id : forecast.longestChain) {
      const RoadmapEpicNode* node = nodeOf(context.input, id);
      chain += (chain.empty() ? "" : " → ") + (node ? node->name : id.text());
    }
    out << '\n';
    writeWrapped(out, "Longest chain: " + chain);
  }
  if (!context.input.milestones.empty()) {
    out << "\nMilestones:\n";
    for (const RoadmapMilestoneNode& milestone : context.input.milestones) {
      const auto name = context.milestoneNames.find(milestone.id);
      out << "  " << (name == context.milestoneNames.end() ? milestone.id.text() : name->second) << ", "
          << milestone.day.displayText() << ": ";
      const auto chance = forecast.milestoneChances.find(milestone.id);
      if (milestone.isDone) {
        out << "done\n";
      } else if (chance != forecast.milestoneChances.end()) {
        out << percentText(chance->second, chanceDecimals) << " chance\n";
      } else {
        out << "no forecast\n";
      }
    }
  }
  if (forecast.inconclusive) {
    out << '\n';
    writeInconclusive(ForecastSettings::maxPeriods, out);
  }
  if (!context.conflicts.empty()) out << '\n';
  for (const EpicScheduleConflict& conflict : context.conflicts) {
    writeWrapped(out, "Warning: \"" + conflict.successor.name + "\" is planned to start " +
                          counted(conflict.overlapDays, "day") + " before \"" + conflict.predecessor.name +
                          "\" is due.");
  }
  out << '\n';
  writeHistory(forecast.history, out);
}

void writeForecastLog(const std::vector<ForecastRecord>& records, std::ostream& out) {
  for (const ForecastRecord& record : records) {
    const bool byDate = record.kind() == ForecastKind::byDate;
    out << '\n'
        << record.asOfDay << "  " << (byDate ? "By date " + record.targetDay.value_or("?") : std::string("When"))
        << ", " << counted(record.backlog, "ticket");
    if (record.whatIfPercent != 0) {
      out << ", what-if " << (record.whatIfPercent > 0 ? "+" : "") << shortestNumber(record.whatIfPercent) << '%';
    }
    out << '\n';
    std::string results;
    for (std::size_t i = 0; i < confidenceLevels.size(); ++i) {
      const bool known = byDate ? i < record.resultCounts.size() : i < record.resultDays.size();
      if (!known) continue;
      results += (results.empty() ? "" : ", ") + std::to_string(confidenceLevels[i]) + "% " +
                 (byDate ? std::to_string(record.resultCounts[i]) : record.resultDays[i]);
    }
    if (!results.empty()) out << "  " << results << (byDate ? " tickets" : "") << '\n';
    if (record.commitmentDay && record.confidencePct) {
      out << "  Committed date " << *record.commitmentDay << ": " << percentText(*record.confidencePct, chanceDecimals)
          << " chance\n";
    }
    if (record.inconclusive) out << "  Inconclusive\n";
    if (!record.note.empty()) out << "  Note: " << record.note << '\n';
  }
}

}  // namespace orvane::cli
