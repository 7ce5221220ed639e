#include "core/backup/NaturalOrder.h"

#include <unicode/coll.h>
#include <unicode/locid.h>

namespace orvane::Backup {

NaturalOrder::NaturalOrder() {
  UErrorCode status = U_ZERO_ERROR;
  // Without a language set, ICU's default is the POSIX locale, whose
  // collation is byte order; the root collation stands in for it.
  icu::Locale locale = icu::Locale::getDefault();
  if (std::string_view(locale.getVariant()) == "POSIX" || std::string_view(locale.getLanguage()).empty()) {
    locale = icu::Locale::getRoot();
  }
  std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(locale, status));
  if (U_FAILURE(status) || !collator) return;
  // Secondary strength: accents count, case does not.
  collator->setStrength(icu::Collator::SECONDARY);
  collator->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, status);
  if (U_SUCCESS(status)) collator_ = std::move(collator);
}

NaturalOrder::~NaturalOrder() = default;

bool NaturalOrder::operator()(std::string_view a, std::string_view b) const {
  if (collator_) {
    UErrorCode status = U_ZERO_ERROR;
    const UCollationResult result =
        collator_->compareUTF8(icu::StringPiece(a.data(), static_cast<std::int32_t>(a.size())),
                               icu::StringPiece(b.data(), static_cast<std::int32_t>(b.size())), status);
    if (U_SUCCESS(status) && result != UCOL_EQUAL) return result == UCOL_LESS;
  }
  return a < b;
}

}  // namespace orvane::Backup
