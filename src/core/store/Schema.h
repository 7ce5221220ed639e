#pragma once

#include <cstdint>

namespace orvane {

class Database;

namespace Schema {

// Marks a SQLite file as an Orvane store (PRAGMA application_id, "ORVN").
inline constexpr std::int64_t applicationId = 0x4F52564E;
// The data format this build writes (PRAGMA user_version).
inline constexpr std::int64_t currentVersion = 1;

// Brings a store from `fromVersion` (0 = empty file) to currentVersion, all
// steps in the caller's transaction. REQUIRES: fromVersion <= currentVersion.
void migrate(Database& db, std::int64_t fromVersion);

}  // namespace Schema
}  // namespace orvane
