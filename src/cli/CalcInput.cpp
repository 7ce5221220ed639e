#include "cli/CalcInput.h"

#include <cmath>
#include <initializer_list>
#include <limits>
#include <vector>

#include "cli/CliError.h"
#include "cli/GlobalOptions.h"
#include "engine/ColdStart.h"

namespace orvane::cli {
namespace {

using nlohmann::json;

std::string inQuotes(std::string_view text) { return "\"" + std::string(text) + "\""; }

// The fields of one JSON object at `prefix` ("" for the top level,
// "epics[2]." inside a list), checked against the names it may hold.
class Fields {
 public:
  Fields(const json& object, std::string prefix, std::initializer_list<std::string_view> known)
      : object_(object), prefix_(std::move(prefix)) {
    if (!object.is_object()) {
      if (prefix_.empty()) throw CliError("The input must be one JSON object.");
      throw CliError("Field " + inQuotes(prefix_.substr(0, prefix_.size() - 1)) + " must be an object.");
    }
    for (const auto& item : object.items()) {
      bool isKnown = false;
      for (std::string_view name : known) isKnown = isKnown || item.key() == name;
      if (isKnown) continue;
      std::string list;
      for (std::string_view name : known) list += (list.empty() ? "" : ", ") + std::string(name);
      throw CliError("Field " + inQuotes(prefix_ + item.key()) + " is not one of " + list + ".");
    }
  }

  std::string path(std::string_view name) const { return prefix_ + std::string(name); }

  [[noreturn]] void fail(std::string_view name, std::string_view problem) const {
    throw CliError("Field " + inQuotes(path(name)) + " " + std::string(problem) + ".");
  }

  // Absent for a field that is missing or null.
  const json* optional(std::string_view name) const {
    const auto it = object_.find(name);
    return it == object_.end() || it->is_null() ? nullptr : &*it;
  }

  const json& required(std::string_view name) const {
    const auto it = object_.find(name);
    if (it == object_.end()) throw CliError("Field " + inQuotes(path(name)) + " is missing.");
    return *it;
  }

  CivilDate day(std::string_view name) const {
    const std::optional<CivilDate> parsed = dayOf(required(name));
    if (!parsed) fail(name, "must be a day written YYYY-MM-DD");
    return *parsed;
  }

  std::optional<CivilDate> optionalDay(std::string_view name) const {
    const json* value = optional(name);
    if (!value) return std::nullopt;
    const std::optional<CivilDate> parsed = dayOf(*value);
    if (!parsed) fail(name, "must be a day written YYYY-MM-DD, or null");
    return parsed;
  }

  std::int64_t count(std::string_view name) const {
    const std::optional<std::int64_t> value = wholeOf(required(name));
    if (!value || *value < 0) fail(name, "must be a whole number of 0 or more");
    return *value;
  }

  std::int64_t whole(std::string_view name, std::int64_t fallback) const {
    const json* value = optional(name);
    if (!value) return fallback;
    const std::optional<std::int64_t> parsed = wholeOf(*value);
    if (!parsed) fail(name, "must be a whole number");
    return *parsed;
  }

  double number(std::string_view name, double fallback) const {
    const json* value = optional(name);
    if (!value) return fallback;
    if (!value->is_number()) fail(name, "must be a number");
    return value->get<double>();
  }

  bool flag(std::string_view name, bool fallback) const {
    const json* value = optional(name);
    if (!value) return fallback;
    if (!value->is_boolean()) fail(name, "must be true or false");
    return value->get<bool>();
  }

  std::string text(std::string_view name) const {
    const json& value = required(name);
    if (!value.is_string()) fail(name, "must be a string");
    return value.get<std::string>();
  }

  std::string optionalText(std::string_view name) const {
    const json* value = optional(name);
    if (!value) return {};
    if (!value->is_string()) fail(name, "must be a string");
    return value->get<std::string>();
  }

  // The list at `name`, or an empty one when the field is absent and not
  // `mandatory`.
  const json& list(std::string_view name, std::string_view what, bool mandatory) const {
    static const json empty = json::array();
    const json* value = mandatory ? &required(name) : optional(name);
    if (!value) return empty;
    if (!value->is_array()) fail(name, "must be a list of " + std::string(what));
    return *value;
  }

  // Weekly counts, oldest first, as actual periods ending on asOf.
  std::vector<PeriodCount> history(CivilDate asOf) const {
    const json& counts = list("history", "weekly counts, oldest first", true);
    const auto windows =
        ColdStart::windows(asOf, static_cast<std::int64_t>(counts.size()), ColdStart::defaultPeriodDays);
    std::vector<PeriodCount> history;
    for (std::size_t k = 0; k < counts.size(); ++k) {
      const std::optional<std::int64_t> count = wholeOf(counts[k]);
      if (!count || *count < 0) fail("history[" + std::to_string(k) + "]", "must be a whole number of 0 or more");
      history.push_back({windows[k], *count, ProvenanceTier::actual});
    }
    return history;
  }

 private:
  static std::optional<CivilDate> dayOf(const json& value) {
    return value.is_string() ? parseDay(value.get<std::string>()) : std::nullopt;
  }

  static std::optional<std::int64_t> wholeOf(const json& value) {
    if (value.is_number_unsigned()) {
      const auto n = value.get<std::uint64_t>();
      if (n > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) return std::nullopt;
      return static_cast<std::int64_t>(n);
    }
    if (value.is_number_integer()) return value.get<std::int64_t>();
    return std::nullopt;
  }

  const json& object_;
  std::string prefix_;
};

std::string item(std::string_view list, std::size_t index) {
  return std::string(list) + "[" + std::to_string(index) + "]";
}

// Ours for the caller's: the index in the caller's list, big-endian in the
// last eight bytes, so our ids sort as the caller listed them; `kind` keeps
// epics and milestones apart.
Uuid indexedId(std::uint8_t kind, std::size_t index) {
  Uuid id;
  id.bytes[0] = kind;
  for (std::size_t i = 0; i < 8; ++i) id.bytes[15 - i] = static_cast<std::uint8_t>(index >> (8 * i));
  return id;
}

// The first epic found on a cycle of predecessors, if any (depth-first, in
// the caller's order).
std::optional<std::size_t> epicOnCycle(const std::vector<std::vector<std::size_t>>& predecessors) {
  enum class Mark { unseen, onPath, done };
  std::vector<Mark> marks(predecessors.size(), Mark::unseen);
  // Each frame: an epic and the next of its predecessors to visit.
  std::vector<std::pair<std::size_t, std::size_t>> path;
  for (std::size_t root = 0; root < predecessors.size(); ++root) {
    if (marks[root] != Mark::unseen) continue;
    path.push_back({root, 0});
    marks[root] = Mark::onPath;
    while (!path.empty()) {
      auto& [epic, next] = path.back();
      if (next == predecessors[epic].size()) {
        marks[epic] = Mark::done;
        path.pop_back();
        continue;
      }
      const std::size_t before = predecessors[epic][next++];
      if (marks[before] == Mark::onPath) return before;
      if (marks[before] == Mark::unseen) {
        marks[before] = Mark::onPath;
        path.push_back({before, 0});
      }
    }
  }
  return std::nullopt;
}

}  // namespace

ForecastInput parseProjectCalcInput(const json& object) {
  const Fields fields(object, "", {"asOf", "backlog", "whatIfPercent", "history", "commitment", "target"});
  ForecastInput input;
  input.asOf = fields.day("asOf");
  input.backlog = fields.count("backlog");
  input.whatIfPercent = fields.number("whatIfPercent", 0);
  input.history = fields.history(input.asOf);
  input.commitment = fields.optionalDay("commitment");
  // A by-date run without a target is refused by the forecast itself, in
  // the same sentence the forecast service gives.
  input.target = fields.optionalDay("target");
  return input;
}

IterationForecastInput parseIterationCalcInput(const json& object) {
  const Fields fields(object, "", {"asOf", "lastDay", "firstDay", "open", "whatIfPercent", "history"});
  IterationForecastInput input;
  input.asOf = fields.day("asOf");
  input.lastDay = fields.day("lastDay");
  input.firstDay = fields.optionalDay("firstDay");
  input.open = fields.count("open");
  input.whatIfPercent = fields.number("whatIfPercent", 0);
  input.history = fields.history(input.asOf);
  return input;
}

RoadmapCalcInput parseRoadmapCalcInput(const json& object) {
  const Fields fields(object, "", {"asOf", "history", "epics", "milestones"});
  RoadmapCalcInput result;
  RoadmapForecastInput& input = result.input;
  input.asOf = fields.day("asOf");
  input.history = fields.history(input.asOf);

  const json& epics = fields.list("epics", "epics", true);
  std::map<std::string, std::size_t, std::less<>> epicIndex;
  std::vector<std::vector<std::string>> predecessorIds;
  for (std::size_t k = 0; k < epics.size(); ++k) {
    const Fields epic(epics[k], item("epics", k) + ".",
                      {"id", "name", "open", "startOffsetDays", "dueDay", "predecessors"});
    RoadmapEpicNode node;
    const std::string callerId = epic.text("id");
    if (epicIndex.contains(callerId)) epic.fail("id", "repeats " + inQuotes(callerId) + "; each epic needs its own id");
    epicIndex.emplace(callerId, k);
    node.id = indexedId(1, k);
    result.callerIds.emplace(node.id, callerId);
    node.name = epic.optionalText("name");
    node.open = epic.count("open");
    node.startOffsetDays = epic.whole("startOffsetDays", 0);
    node.dueDay = epic.optionalDay("dueDay");
    std::vector<std::string>& before = predecessorIds.emplace_back();
    const json& list = epic.list("predecessors", "epic ids", false);
    for (std::size_t p = 0; p < list.size(); ++p) {
      if (!list[p].is_string()) epic.fail(item("predecessors", p), "must be a string");
      before.push_back(list[p].get<std::string>());
    }
    input.epics.push_back(std::move(node));
  }

  const auto resolve = [&](const std::string& callerId, const std::string& path) {
    const auto found = epicIndex.find(callerId);
    if (found == epicIndex.end()) {
      throw CliError("Field " + inQuotes(path) + " names " + inQuotes(callerId) + ", which is not the id of an epic.");
    }
    return found->second;
  };
  // A predecessor that is not among the epics given is one the caller left
  // out of this roadmap (done, or planned elsewhere): it holds nothing back,
  // so it is dropped, as the roadmap drops it for a project's epics.
  std::vector<std::vector<std::size_t>> predecessors(epics.size());
  for (std::size_t k = 0; k < epics.size(); ++k) {
    for (const std::string& callerId : predecessorIds[k]) {
      const auto found = epicIndex.find(callerId);
      if (found == epicIndex.end()) continue;
      predecessors[k].push_back(found->second);
      input.epics[k].predecessors.push_back(input.epics[found->second].id);
    }
  }
  if (const std::optional<std::size_t> epic = epicOnCycle(predecessors)) {
    throw CliError("Field \"epics\" has predecessors that form a cycle through " +
                   inQuotes(result.callerIds.at(input.epics[*epic].id)) + ".");
  }

  const json& milestones = fields.list("milestones", "milestones", false);
  std::map<std::string, std::size_t, std::less<>> milestoneIndex;
  for (std::size_t k = 0; k < milestones.size(); ++k) {
    const Fields milestone(milestones[k], item("milestones", k) + ".", {"id", "day", "epicID", "isDone"});
    RoadmapMilestoneNode node;
    const std::string callerId = milestone.text("id");
    if (milestoneIndex.contains(callerId)) {
      milestone.fail("id", "repeats " + inQuotes(callerId) + "; each milestone needs its own id");
    }
    milestoneIndex.emplace(callerId, k);
    node.id = indexedId(2, k);
    result.callerIds.emplace(node.id, callerId);
    node.day = milestone.day("day");
    if (const json* epic = milestone.optional("epicID")) {
      if (!epic->is_string()) milestone.fail("epicID", "must be an epic id or null");
      node.epicID = input.epics[resolve(epic->get<std::string>(), milestone.path("epicID"))].id;
    }
    node.isDone = milestone.flag("isDone", false);
    input.milestones.push_back(node);
  }
  return result;
}

}  // namespace orvane::cli
