#pragma once

#include <initializer_list>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

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
  // The bare arguments, in order (parseArguments only).
  const std::vector<std::string>& positionals() const { return positionals_; }

 private:
  friend ParsedOptions parseOptions(std::span<const std::string>, std::span<const OptionSpec>, std::string_view);
  friend ParsedOptions parseArguments(std::span<const std::string>, std::span<const OptionSpec>, std::string_view);
  static ParsedOptions read(std::span<const std::string> args, std::span<const OptionSpec> specs,
                            std::string_view command, bool allowPositionals);

  std::map<std::string, std::string, std::less<>> values_;  // a flag maps to ""
  std::vector<std::string> positionals_;
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

// As parseOptions, but bare arguments are kept as positionals instead of
// refused. A lone "--" ends the options, so a title may start with "--".
ParsedOptions parseArguments(std::span<const std::string> args, std::span<const OptionSpec> specs,
                             std::string_view command);

// Throws CliError unless exactly one bare argument per name was given:
// "ticket add needs PROJECT and TITLE; ..." or "Unexpected argument ...".
void expectPositionals(const ParsedOptions& parsed, std::initializer_list<std::string_view> names,
                       std::string_view command);

}  // namespace orvane::cli
