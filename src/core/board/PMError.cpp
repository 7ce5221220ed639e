#include "core/board/PMError.h"

namespace orvane {
namespace {

std::string messageFor(PMError::Case kind, const std::string& name) {
  using C = PMError::Case;
  switch (kind) {
    case C::duplicateName:
      return "\"" + name + "\" is already in use.";
    case C::iterationAlreadyActive:
      return "\"" + name + "\" is still active. Close it before starting another iteration.";
    case C::emptyText:
      return "A name, title or path cannot be empty.";
    case C::linkToSelf:
      return "A ticket cannot be linked to itself.";
    case C::differentProject:
      return "Tickets can only be linked inside one project.";
    case C::duplicateLink:
      return "These tickets are already linked that way.";
    case C::blockingCycle:
      return "That would make the tickets wait on each other.";
    case C::invalidDateRange:
      return "The due date cannot be before the start date.";
    case C::invalidEmail:
      return "That does not look like an email address.";
    case C::sameAddress:
      return "The internal address cannot be the client's address, or internal reports could reach the client.";
    case C::invalidIterationRange:
      return "The end date cannot be before the start date.";
    case C::iterationClosed:
      return "This iteration is closed. Choose an iteration that is planned or active.";
    case C::iterationNotActive:
      return "Only an active iteration can be closed. Start it first.";
    case C::iterationAlreadyStarted:
      return "This iteration has already been started.";
    case C::archivedTicketInIteration:
      return "An archived ticket cannot be put in an iteration. Restore it first.";
    case C::invalidCarryOver:
      return "Open tickets cannot be carried over to the iteration being closed, or to one from another project.";
    case C::epicDependencyOnSelf:
      return "An epic cannot wait for itself.";
    case C::epicDependencyCycle:
      return "That would make the epics wait on each other in a loop.";
    case C::duplicateEpicDependency:
      return "That epic already waits for the other one.";
    case C::epicsInDifferentProjects:
      return "Epics can only be linked inside one project.";
  }
  return {};
}

}  // namespace

PMError::PMError(Case kind, std::string payload)
    : kind_(kind), payload_(std::move(payload)), message_(messageFor(kind_, payload_)) {}

}  // namespace orvane
