#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace orvane::cli {

struct OptionSpec {
  std::string_view name;  // with the leading "--"
  bool takesValue = false;
};

// The options of one command line, each given at most once.
class ParsedOptions {
 public:
  bool has(std::string_view name) const { return values_.contains(name); }
  // The text given to an option that takes a value; absent when not given.
  std::optional<std::string_view> value(std::string_view name) const;

 private:
  friend ParsedOptions parseOptions(std::span<const std::string>, std::span<const OptionSpec>,
                                    std::string_view);
  std::map<std::string, std::string, std::less<>> values_;  // a flag maps to ""
};

// Reads "--name value" and "--name=value". A following argument that starts
// with "--" is never taken as a value, so a forgotten value is reported as
// such rather than swallowing the next option; a single "-" is allowed, so
// negative numbers pass through.
// Throws CliError for an unknown option, a bare argument, an option given
// twice, a missing value, or a value given to a flag; `command` names the
// command in the sentence.
ParsedOptions parseOptions(std::span<const std::string> args, std::span<const OptionSpec> specs,
                           std::string_view command);

}  // namespace orvane::cli
