#pragma once

#include <stdexcept>
#include <string>

namespace orvane {

// A broken rule of the project operations (people, epics, links, iterations,
// ...). what() is the complete sentence the user sees.
class PMError : public std::exception {
 public:
  enum class Case {
    duplicateName,
    iterationAlreadyActive,
    emptyText,
    linkToSelf,
    differentProject,
    duplicateLink,
    blockingCycle,
    invalidDateRange,
    invalidEmail,
    sameAddress,
    invalidIterationRange,
    iterationClosed,
    iterationNotActive,
    iterationAlreadyStarted,
    archivedTicketInIteration,
    invalidCarryOver,
    epicDependencyOnSelf,
    epicDependencyCycle,
    duplicateEpicDependency,
    epicsInDifferentProjects,
  };

  // For duplicateName and iterationAlreadyActive the payload is the name;
  // every other case has none.
  explicit PMError(Case kind, std::string payload = {});

  Case kind() const { return kind_; }
  const std::string& payload() const { return payload_; }
  const char* what() const noexcept override { return message_.c_str(); }

  friend bool operator==(const PMError& a, const PMError& b) { return a.kind_ == b.kind_ && a.payload_ == b.payload_; }

 private:
  Case kind_;
  std::string payload_;
  std::string message_;
};

}  // namespace orvane
