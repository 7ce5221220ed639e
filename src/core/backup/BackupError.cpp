#include "core/backup/BackupError.h"

namespace orvane::Backup {

BackupError BackupError::unreadable(const std::string& reason) {
  return BackupError(Kind::unreadable, "This file could not be read as a backup: " + reason, 0);
}

BackupError BackupError::notABackup() { return BackupError(Kind::notABackup, "This file is not a Orvane backup.", 0); }

BackupError BackupError::newerVersion(std::int64_t version) {
  return BackupError(Kind::newerVersion,
                     "This backup was made by a newer version of Orvane (format " + std::to_string(version) +
                         "). Update the app to restore it.",
                     version);
}

BackupError BackupError::unsupportedValue(const std::string& what) {
  return BackupError(Kind::unsupportedValue, "This backup cannot be restored: " + what + " Nothing was restored.", 0);
}

}  // namespace orvane::Backup
