#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace orvane::Backup {

// The name in the top-level "format" key of every backup.
inline constexpr std::string_view formatName = "orvane-backup";
// Written into every new backup; the highest version a restore accepts.
inline constexpr std::int64_t currentVersion = 4;

// Why a backup file could not be restored; what() is the complete sentence
// shown to the user. Nothing of the file has been added when it is thrown.
class BackupError : public std::runtime_error {
 public:
  enum class Kind {
    unreadable,    // not JSON, or a required key missing or of the wrong type
    notABackup,    // JSON, but "format" is not formatName
    newerVersion,  // "version" is greater than currentVersion
    unsupportedValue,  // a value no store may hold (a date beyond the calendar, say)
  };

  // "This file could not be read as a backup: " and the reason.
  static BackupError unreadable(const std::string& reason);
  static BackupError notABackup();
  static BackupError newerVersion(std::int64_t version);
  // "This backup cannot be restored: " and what it holds, then
  // " Nothing was restored."
  static BackupError unsupportedValue(const std::string& what);

  Kind kind() const { return kind_; }
  // The file's version, for newerVersion; 0 otherwise.
  std::int64_t version() const { return version_; }

 private:
  BackupError(Kind kind, const std::string& sentence, std::int64_t version)
      : std::runtime_error(sentence), kind_(kind), version_(version) {}

  Kind kind_;
  std::int64_t version_;
};

}  // namespace orvane::Backup
