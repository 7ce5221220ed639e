#include "core/accuracy/WhenVerdict.h"

namespace orvane {

std::string WhenVerdict::label() const {
  switch (kind) {
    case Kind::stillOpen:
      return "Still open, " + std::to_string(remaining) + " left";
    case Kind::pastP95:
      return "Past the 95% date, " + std::to_string(remaining) + " left";
    case Kind::withinP50:
      return "By the 50% date";
    case Kind::withinP70:
      return "By the 70% date";
    case Kind::withinP85:
      return "By the 85% date";
    case Kind::withinP95:
      return "By the 95% date";
    case Kind::later:
      return "Later than the 95% date";
  }
  return "";
}

std::string_view rawValue(WhenVerdict::Kind kind) {
  switch (kind) {
    case WhenVerdict::Kind::stillOpen:
      return "stillOpen";
    case WhenVerdict::Kind::pastP95:
      return "pastP95";
    case WhenVerdict::Kind::withinP50:
      return "withinP50";
    case WhenVerdict::Kind::withinP70:
      return "withinP70";
    case WhenVerdict::Kind::withinP85:
      return "withinP85";
    case WhenVerdict::Kind::withinP95:
      return "withinP95";
    case WhenVerdict::Kind::later:
      return "later";
  }
  return "";
}

}  // namespace orvane
