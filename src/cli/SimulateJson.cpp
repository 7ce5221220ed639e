#include "cli/SimulateJson.h"

#include <string>

namespace orvane::cli {

nlohmann::json histogramJson(const std::vector<HistogramBin>& bins) {
  nlohmann::json array = nlohmann::json::array();
  for (const HistogramBin& bin : bins) {
    array.push_back({{"period", bin.period},
                     {"count", bin.count},
                     {"probabilityPct", bin.probabilityPct},
                     {"cumulativePct", bin.cumulativePct},
                     {"band", rawValue(bin.band)},
                     {"date", bin.date.description()}});
  }
  return array;
}

nlohmann::json simulateJson(const SimulateReport& report) {
  const ForecastResult& result = report.result;
  nlohmann::json json = nlohmann::json::object();
  json["seed"] = report.seed;
  json["iterations"] = result.iterations;
  json["backlogSize"] = result.backlogSize;
  json["p50"] = result.p50;
  json["p70"] = result.p70;
  json["p85"] = result.p85;
  json["p95"] = result.p95;
  json["inconclusive"] = result.inconclusive;
  json["periodsDistribution"] = result.periodsDistribution;
  json["completedByHorizon"] =
      result.completedByHorizon ? nlohmann::json(*result.completedByHorizon) : nlohmann::json(nullptr);
  json["dates"] = byLevel(report.dates, [](const CivilDate& date) { return date.description(); });
  json["ticketsByHorizon"] = report.ticketsByHorizon
                                 ? byLevel(*report.ticketsByHorizon, [](std::int64_t n) { return n; })
                                 : nlohmann::json(nullptr);
  json["histogram"] = histogramJson(report.histogram);
  return json;
}

}  // namespace orvane::cli
