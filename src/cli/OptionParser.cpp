#include "cli/OptionParser.h"

#include <algorithm>

#include "cli/CliError.h"

namespace orvane::cli {

std::optional<std::string_view> ParsedOptions::value(std::string_view name) const {
  const auto it = values_.find(name);
  if (it == values_.end()) return std::nullopt;
  return std::string_view(it->second);
}

ParsedOptions parseOptions(std::span<const std::string> args, std::span<const OptionSpec> specs,
                           std::string_view command) {
  return ParsedOptions::read(args, specs, command, false);
}

ParsedOptions parseArguments(std::span<const std::string> args, std::span<const OptionSpec> specs,
                             std::string_view command) {
  return ParsedOptions::read(args, specs, command, true);
}

ParsedOptions ParsedOptions::read(std::span<const std::string> args, std::span<const OptionSpec> specs,
                                  std::string_view command, bool allowPositionals) {
  ParsedOptions parsed;
  bool optionsEnded = false;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string_view arg = args[i];
    if (allowPositionals && !optionsEnded && arg == "--") {
      optionsEnded = true;
      continue;
    }
    if (optionsEnded || !arg.starts_with("--")) {
      if (!allowPositionals) {
        throw CliError("Unexpected argument \"" + std::string(arg) + "\"; " + std::string(command) +
                       " takes only options.");
      }
      parsed.positionals_.emplace_back(arg);
      continue;
    }
    const std::size_t equals = arg.find('=');
    const std::string_view name = arg.substr(0, equals);
    const auto spec = std::find_if(specs.begin(), specs.end(),
                                   [name](const OptionSpec& candidate) { return candidate.name == name; });
    if (spec == specs.end()) {
      throw CliError("Unknown option \"" + std::string(name) + "\"; run \"orvane-cli " +
                     std::string(command) + " --help\" for its options.");
    }
    if (parsed.has(name)) throw CliError("Option " + std::string(name) + " is given more than once.");

    std::string value;
    if (!spec->takesValue) {
      if (equals != std::string_view::npos)
        throw CliError("Option " + std::string(name) + " takes no value.");
    } else if (equals != std::string_view::npos) {
      value = arg.substr(equals + 1);
    } else if (i + 1 < args.size() && !args[i + 1].starts_with("--")) {
      value = args[++i];
    } else {
      throw CliError("Option " + std::string(name) + " needs a value.");
    }
    parsed.values_.emplace(name, std::move(value));
  }
  return parsed;
}

void expectPositionals(const ParsedOptions& parsed, std::initializer_list<std::string_view> names,
                       std::string_view command) {
  std::string list;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0) list += i + 1 == names.size() ? " and " : ", ";
    list += names.begin()[i];
  }
  const auto& given = parsed.positionals();
  if (given.size() < names.size()) {
    throw CliError(std::string(command) + " needs " + list + "; run \"orvane-cli " + std::string(command) +
                   " --help\" for its usage.");
  }
  if (given.size() > names.size()) {
    throw CliError("Unexpected argument \"" + given[names.size()] + "\"; " + std::string(command) + " takes " + list +
                   ".");
  }
}

}  // namespace orvane::cli
