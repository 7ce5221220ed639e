#include "cli/ForecastJson.h"

#include <cmath>
#include <cstdio>

#include "cli/SimulateJson.h"

namespace orvane::cli {
namespace {

using nlohmann::json;

template <typename T, typename Convert>
json orNull(const std::optional<T>& value, Convert convert) {
  return value ? json(convert(*value)) : json(nullptr);
}

std::string dayText(const CivilDate& day) { return day.description(); }
std::int64_t same(std::int64_t n) { return n; }
double sameDouble(double x) { return x; }

}  // namespace

json historyJson(const std::vector<PeriodCount>& history) {
  json array = json::array();
  for (const PeriodCount& period : history) {
    array.push_back({{"start", period.window.start.description()},
                     {"end", period.window.end.description()},
                     {"count", period.count},
                     {"provenance", rawValue(period.provenance)}});
  }
  return array;
}

json whenJson(const WhenForecast& f) {
  return {{"asOf", f.asOf.description()},
          {"backlog", f.backlog},
          {"whatIfPercent", f.whatIfPercent},
          {"history", historyJson(f.history)},
          {"iterations", f.iterations},
          {"periods", byLevel(f.periods, sameDouble)},
          {"dates", byLevel(f.dates, dayText)},
          {"histogram", histogramJson(f.histogram)},
          {"inconclusive", f.inconclusive},
          {"commitment", orNull(f.commitment, dayText)},
          {"commitmentConfidencePct", orNull(f.commitmentConfidencePct, sameDouble)}};
}

json byDateJson(const ByDateForecast& f) {
  json j = json::object();
  j["asOf"] = f.asOf.description();
  j["target"] = f.target.description();
  j["wholePeriods"] = f.wholePeriods;
  j["backlog"] = f.backlog;
  j["whatIfPercent"] = f.whatIfPercent;
  j["history"] = historyJson(f.history);
  j["iterations"] = f.iterations;
  j["counts"] = byLevel(f.counts, same);
  j["backlogDonePct"] = f.backlogDonePct;
  return j;
}

json iterationJson(const IterationForecast& f) {
  return {{"asOf", f.asOf.description()},
          {"lastDay", f.lastDay.description()},
          {"daysLeft", f.daysLeft},
          {"open", f.open},
          {"history", historyJson(f.history)},
          {"iterations", f.iterations},
          {"probabilityPct", f.probabilityPct},
          {"counts", byLevel(f.counts, same)},
          {"outlook", rawValue(f.outlook())},
          {"actualPeriods", f.actualPeriods()}};
}

json roadmapJson(const RoadmapForecast& f, const std::function<std::string(const Uuid&)>& idText) {
  json epics = json::object();
  for (const auto& [id, schedule] : f.epics) {
    epics[idText(id)] = {{"id", idText(schedule.id)},
                         {"open", schedule.open},
                         {"p50", orNull(schedule.p50, dayText)},
                         {"p85", orNull(schedule.p85, dayText)},
                         {"dueDay", orNull(schedule.dueDay, dayText)},
                         {"chanceByDue", orNull(schedule.chanceByDue, sameDouble)},
                         {"p85SlipDays", orNull(schedule.p85SlipDays, same)},
                         {"isOnLongestChain", schedule.isOnLongestChain},
                         {"isAtRisk", schedule.isAtRisk()}};
  }
  json chain = json::array();
  for (const Uuid& id : f.longestChain) chain.push_back(idText(id));
  json milestones = json::object();
  for (const auto& [id, chance] : f.milestoneChances) milestones[idText(id)] = chance;
  json j = json::object();
  j["asOf"] = f.asOf.description();
  j["iterations"] = f.iterations;
  j["epics"] = std::move(epics);
  j["projectDates"] = byLevel(f.projectDates, dayText);
  j["longestChain"] = std::move(chain);
  j["milestoneChances"] = std::move(milestones);
  j["inconclusive"] = f.inconclusive;
  j["history"] = historyJson(f.history);
  return j;
}

json forecastRecordJson(const ForecastRecord& r) {
  const auto text = [](const std::string& s) { return s; };
  return {{"id", r.id.text()},
          {"runAt", utcDateTimeText(r.runAt)},
          {"kind", r.kindRaw},
          {"asOfDay", r.asOfDay},
          {"backlog", r.backlog},
          {"targetDay", orNull(r.targetDay, text)},
          {"whatIfPercent", r.whatIfPercent},
          {"samples", r.samples},
          {"provenance", r.provenance},
          {"resultDays", r.resultDays},
          {"resultCounts", r.resultCounts},
          {"inconclusive", r.inconclusive},
          {"commitmentDay", orNull(r.commitmentDay, text)},
          {"confidencePct", orNull(r.confidencePct, sameDouble)},
          {"note", r.note}};
}

std::string utcDateTimeText(Timestamp instant) {
  const auto seconds = static_cast<std::int64_t>(std::floor(instant.secondsSince1970));
  const std::int64_t days = seconds >= 0 ? seconds / 86400 : -((-seconds + 86399) / 86400);
  const std::int64_t ofDay = seconds - days * 86400;
  char time[16];
  std::snprintf(time, sizeof time, "T%02d:%02d:%02dZ", static_cast<int>(ofDay / 3600),
                static_cast<int>(ofDay / 60 % 60), static_cast<int>(ofDay % 60));
  return CivilDate::fromDaysSinceEpoch(days).description() + time;
}

}  // namespace orvane::cli
