#include "core/backup/Backup.h"
#include "core/board/BoardService.h"

namespace orvane {

std::string BoardService::makeBackup(Timestamp now) { return Backup::makeBackup(store_, now); }

Backup::Report BoardService::restoreBackup(std::string_view bytes) { return Backup::restoreBackup(store_, bytes); }

}  // namespace orvane
