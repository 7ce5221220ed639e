#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "core/board/BoardError.h"
#include "core/board/PMError.h"
#include "core/board/ServiceRules.h"

namespace orvane::app {

// Which service error family refuses the name: board records (projects,
// columns) or the project records (people, epics, iterations). Their
// "empty" sentences differ.
enum class NameErrors { board, project };

// Why `typed` cannot name a record beside `others` (the record `self`
// excluded), in the sentence the service would refuse it with, or empty
// when it would be accepted. Runs the service's own rules, so a form can
// say it while the name is typed instead of after Save.
template <typename Row>
QString nameProblem(const QString& typed, const std::vector<Row>& others, NameErrors errors,
                    const std::optional<Uuid>& self = std::nullopt) {
  const std::string name = typed.toStdString();
  try {
    if (errors == NameErrors::project) {
      rules::requireUniqueName(name, others, self);
    } else {
      const std::string trimmed = rules::requireText(name, BoardError::emptyText());
      if (rules::nameTaken(others, trimmed, self)) throw BoardError::duplicateName(trimmed);
    }
  } catch (const std::exception& refusal) {
    return QString::fromStdString(refusal.what());
  }
  return {};
}

}  // namespace orvane::app
