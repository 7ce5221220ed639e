#pragma once

#include <unicode/utypes.h>

#include <memory>
#include <string_view>

U_NAMESPACE_BEGIN
class Collator;
U_NAMESPACE_END

namespace orvane::Backup {

// The order in which people and projects are listed: the user's language,
// numbers by value ("Sprint 2" before "Sprint 10"), case ignored. Names
// that collate alike fall back to byte order, so the order is total.
class NaturalOrder {
 public:
  NaturalOrder();
  ~NaturalOrder();
  NaturalOrder(const NaturalOrder&) = delete;
  NaturalOrder& operator=(const NaturalOrder&) = delete;

  bool operator()(std::string_view a, std::string_view b) const;

 private:
  std::unique_ptr<icu::Collator> collator_;  // null when ICU has none: byte order
};

}  // namespace orvane::Backup
