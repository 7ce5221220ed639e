#pragma once

#include <optional>
#include <string>

#include "core/model/Uuid.h"

namespace orvane {

// People are global: shared by all projects.
struct Person {
  Uuid id;
  std::string name;  // unique among people, ignoring case
  std::optional<std::string> colorHex;
  std::string email;
  std::string phone;

  friend bool operator==(const Person&, const Person&) = default;
};

}  // namespace orvane
