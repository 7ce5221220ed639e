#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "engine/Timestamp.h"

namespace orvane::ISODateTime {

// "2026-10-05T09:30:00Z": the instant floored to the whole second, in UTC.
std::string format(Timestamp instant);

// An ISO 8601 day ("2026-10-05", midnight UTC) or date-time with a zone
// ("2026-10-05T09:30:00Z", "2026-10-05 09:30:00.250+02:00", "...-0530").
// Surrounding white space is ignored; the separator may be "T", "t" or a
// space; a fraction after "." or "," is kept. A time without a zone
// designator is read as UTC, just as a bare day is midnight UTC: the system
// keeps every exchanged instant in UTC and never guesses a local zone.
// The day must be a real calendar day (no "2026-02-30").
std::optional<Timestamp> parse(std::string_view text);

}  // namespace orvane::ISODateTime
