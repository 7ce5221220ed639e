#include "cli/CalcCommand.h"

#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "cli/CalcInput.h"
#include "cli/CliError.h"
#include "cli/ForecastJson.h"
#include "cli/OptionParser.h"

namespace orvane::cli {
namespace {

using nlohmann::json;

constexpr std::string_view calcUsage =
    "Usage: orvane-cli calc when|by-date|iteration|roadmap [FILE|-]\n"
    "\n"
    "Runs one forecast on plain numbers, without a store: reads one JSON object\n"
    "from FILE (standard input for \"-\" or no FILE) and prints the forecast's\n"
    "result record as JSON. Days are YYYY-MM-DD; \"history\" lists weekly counts,\n"
    "oldest first, for the 7-day weeks ending on asOf. Fields marked ? may be\n"
    "left out or null.\n"
    "\n"
    "  when, by-date  {asOf, backlog, whatIfPercent?, history, commitment?,\n"
    "                 target (by-date only)}\n"
    "  iteration      {asOf, lastDay, firstDay?, open, whatIfPercent?, history}\n"
    "  roadmap        {asOf, history, epics: [{id, name?, open, startOffsetDays?,\n"
    "                 dueDay?, predecessors?: [ids]}], milestones?: [{id, day,\n"
    "                 epicID?, isDone?}]}; ids are any strings and come back\n"
    "                 as given; a predecessor that is not one of the epics is\n"
    "                 ignored\n"
    "  --help         print this text\n";

constexpr OptionSpec calcSpecs[] = {{"--help", false}};

std::string readInput(const ParsedOptions& parsed, const CommandContext& context) {
  const bool fromFile = parsed.positionals().size() == 2 && parsed.positionals()[1] != "-";
  if (!fromFile) return std::string(std::istreambuf_iterator<char>(context.in), {});
  const std::string& path = parsed.positionals()[1];
  std::ifstream file(path, std::ios::binary);
  if (!file) throw CliError("The file \"" + path + "\" could not be read.");
  return std::string(std::istreambuf_iterator<char>(file), {});
}

json parseJson(const std::string& text) {
  try {
    return json::parse(text);
  } catch (const json::parse_error& error) {
    // nlohmann's text starts with its own tag, "[json.exception.parse_error.101] ".
    std::string detail = error.what();
    if (const std::size_t tag = detail.find("] "); detail.starts_with("[json.exception") && tag != std::string::npos) {
      detail.erase(0, tag + 2);
    }
    if (!detail.empty() && detail.back() == '.') detail.pop_back();
    throw CliError("The input is not valid JSON: " + detail + ".");
  }
}

}  // namespace

int runCalc(std::span<const std::string> args, const CommandContext& context) {
  const ParsedOptions parsed = parseArguments(args, calcSpecs, "calc");
  if (parsed.has("--help")) {
    context.out << calcUsage;
    return exitOk;
  }
  const std::vector<std::string>& given = parsed.positionals();
  if (given.empty()) {
    context.err << calcUsage;
    return exitUsage;
  }
  const std::string& kind = given.front();
  if (kind != "when" && kind != "by-date" && kind != "iteration" && kind != "roadmap") {
    throw CliError("Unknown calc command \"" + kind + "\"; use when, by-date, iteration or roadmap.");
  }
  if (given.size() > 2) throw CliError("Unexpected argument \"" + given[2] + "\"; calc " + kind + " reads one FILE.");

  const json input = parseJson(readInput(parsed, context));
  json result;
  if (kind == "when") {
    result = whenJson(parseProjectCalcInput(input).runWhen());
  } else if (kind == "by-date") {
    result = byDateJson(parseProjectCalcInput(input).runByDate());
  } else if (kind == "iteration") {
    result = iterationJson(parseIterationCalcInput(input).run());
  } else {
    const RoadmapCalcInput roadmap = parseRoadmapCalcInput(input);
    result = roadmapJson(roadmap.input.run(), [&](const Uuid& id) { return roadmap.callerIds.at(id); });
  }
  context.out << result.dump(2) << '\n';
  return exitOk;
}

}  // namespace orvane::cli
