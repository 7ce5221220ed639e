#pragma once

#include <optional>
#include <string>

#include "engine/Timestamp.h"

namespace orvane {

struct ProjectSnapshot;

// The instants the calendar arithmetic of the system supports: from
// 0000-01-01T00:00:00Z up to, not including, 10000-01-01T00:00:00Z. These
// are the days with a YYYY-MM-DD form, so every stored date can be exported
// and read back. Dates enter the store only inside this range (restore and
// import refuse the others); a store written before that rule may still hold
// one, which forecasts and metrics must refuse rather than compute with.
bool isSupportedDate(Timestamp instant);
// An absent date is supported.
bool isSupportedDate(const std::optional<Timestamp>& instant);

// The first date of the project outside the supported range that forecasts,
// metrics and reports read, named for the user ("its creation date",
// "the completed date of SHOP-3"); absent when all are supported.
std::optional<std::string> unsupportedDateIn(const ProjectSnapshot& snapshot);

// Throws UnsupportedDateError when the project holds such a date.
void requireSupportedDates(const ProjectSnapshot& snapshot);

// A project that holds a date outside the supported range. what() is the
// sentence for the user: "\"Web Shop\" holds a date outside the years 0000
// to 9999 (its creation date), so it cannot be forecast or measured."
class UnsupportedDateError : public std::exception {
 public:
  UnsupportedDateError(const std::string& projectName, const std::string& what);
  const char* what() const noexcept override { return sentence_.c_str(); }

 private:
  std::string sentence_;
};

}  // namespace orvane
