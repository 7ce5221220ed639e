// Placeholders until these operations are written; each throws.
#pragma GCC diagnostic ignored "-Wunused-parameter"
#include <stdexcept>

#include "core/board/BoardService.h"

namespace orvane {

Project BoardService::createProject(std::string_view name, std::optional<std::string_view> key, Timestamp now, const std::vector<ColumnTemplate>& columns) { throw std::logic_error("createProject is not written yet"); }
void BoardService::deleteProject(const Uuid& project) { throw std::logic_error("deleteProject is not written yet"); }
BoardColumn BoardService::addColumn(const Uuid& project, std::string_view name, ColumnType type, std::optional<std::int64_t> wipLimit, std::optional<std::int64_t> at) { throw std::logic_error("addColumn is not written yet"); }
void BoardService::renameColumn(const Uuid& column, std::string_view name) { throw std::logic_error("renameColumn is not written yet"); }
void BoardService::setWIPLimit(const Uuid& column, std::optional<std::int64_t> limit) { throw std::logic_error("setWIPLimit is not written yet"); }
void BoardService::moveColumn(const Uuid& column, std::int64_t to) { throw std::logic_error("moveColumn is not written yet"); }
void BoardService::deleteColumn(const Uuid& column) { throw std::logic_error("deleteColumn is not written yet"); }
Ticket BoardService::createTicket(const Uuid& project, const NewTicket& ticket, Timestamp now) { throw std::logic_error("createTicket is not written yet"); }
MoveResult BoardService::moveTicket(const Uuid& ticket, const Uuid& column, std::optional<std::int64_t> index, Timestamp now) { throw std::logic_error("moveTicket is not written yet"); }
void BoardService::archive(const Uuid& ticket, Timestamp now) { throw std::logic_error("archive is not written yet"); }
void BoardService::unarchive(const Uuid& ticket) { throw std::logic_error("unarchive is not written yet"); }
void BoardService::deleteTicket(const Uuid& ticket) { throw std::logic_error("deleteTicket is not written yet"); }
void BoardService::updateTicket(const Uuid& ticket, const TicketFields& fields) { throw std::logic_error("updateTicket is not written yet"); }
void BoardService::assign(const Uuid& ticket, std::optional<Uuid> epic) { throw std::logic_error("assign is not written yet"); }
void BoardService::renameProject(const Uuid& project, std::string_view name) { throw std::logic_error("renameProject is not written yet"); }

}  // namespace orvane
