#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace orvane::cli {

inline constexpr int exitOk = 0;
inline constexpr int exitFailure = 1;
inline constexpr int exitUsage = 2;  // bad command line: nothing was done

// A refusal the user sees as exactly one sentence on stderr. A command that
// throws it has written nothing to stdout (runCli discards its output).
class CliError : public std::runtime_error {
 public:
  explicit CliError(std::string sentence, int exitCode = exitUsage)
      : std::runtime_error(std::move(sentence)), exitCode_(exitCode) {}
  int exitCode() const { return exitCode_; }

 private:
  int exitCode_;
};

}  // namespace orvane::cli
