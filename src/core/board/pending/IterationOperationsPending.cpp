// Placeholders until these operations are written; each throws.
#pragma GCC diagnostic ignored "-Wunused-parameter"
#include <stdexcept>

#include "core/board/BoardService.h"

namespace orvane {

Iteration BoardService::createIteration(const Uuid& project, std::string_view name, std::string_view goal, Timestamp startDate, Timestamp endDate) { throw std::logic_error("createIteration is not written yet"); }
void BoardService::updateIteration(const Uuid& iteration, std::string_view name, std::string_view goal, Timestamp startDate, Timestamp endDate) { throw std::logic_error("updateIteration is not written yet"); }
void BoardService::setIteration(const Uuid& ticket, std::optional<Uuid> iteration) { throw std::logic_error("setIteration is not written yet"); }
void BoardService::startIteration(const Uuid& iteration, Timestamp now) { throw std::logic_error("startIteration is not written yet"); }
IterationCloseResult BoardService::closeIteration(const Uuid& iteration, const IterationCarryOver& carryOver, Timestamp now) { throw std::logic_error("closeIteration is not written yet"); }
void BoardService::deleteIteration(const Uuid& iteration) { throw std::logic_error("deleteIteration is not written yet"); }
Project BoardService::loadDemoProject(Timestamp now) { throw std::logic_error("loadDemoProject is not written yet"); }

}  // namespace orvane
