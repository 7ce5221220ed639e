#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/model/Uuid.h"
#include "engine/Timestamp.h"

namespace orvane {

// The root of everything shown in one window. Its columns, epics, tickets,
// iterations, milestones and forecast records belong to it and go with it.
struct Project {
  Uuid id;
  std::string name;  // unique among projects, ignoring case
  std::string key;   // ticket-reference prefix, e.g. "FRC"
  Timestamp createdAt;
  std::int64_t nextTicketNumber = 1;
  std::optional<Timestamp> committedDate;
  std::vector<std::int64_t> fillerCounts;  // cold-start weekly counts
  std::string fillerTierRaw = "system_default";
  std::optional<double> fillerLambda;
  std::string clientName;
  std::string clientCompany;
  std::string clientEmail;
  std::string internalName;
  std::string internalEmail;

  bool hasClient() const { return !clientName.empty() || !clientCompany.empty() || !clientEmail.empty(); }
  // "Name, Company", or whichever of the two is set.
  std::string clientLine() const;
  bool hasInternalRecipient() const { return !internalName.empty() || !internalEmail.empty(); }
  // The name made safe as a file name: "/", "\", ":" and NUL become "-",
  // spaces and tabs are trimmed, and an empty or "." result is "file".
  std::string safeFileName() const;

  friend bool operator==(const Project&, const Project&) = default;
};

// The key rule: upper-case the text, keep letters and digits, take the
// first six; "TKT" when nothing is left.
std::string projectKey(std::string_view text);

// What the key rule keeps of `text` (upper-cased letters and digits, the
// first six), without the "TKT" stand-in: empty when nothing is kept. Lets
// a form show a typed prefix the way it will be stored.
std::string projectKeyCharacters(std::string_view text);

}  // namespace orvane
