#include "core/board/BoardService.h"

namespace orvane {

ImportReport BoardService::importTickets(const ParsedImport& parsed, const Uuid& project, Timestamp now,
                                         bool extendProjectHistory, const ImportOptions& options) {
  return orvane::importTickets(store_, parsed, project, now, extendProjectHistory, options);
}

}  // namespace orvane
