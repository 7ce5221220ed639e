#include "core/board/ClientEmail.h"

#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

#include <cstdint>
#include <string>

#include "core/text/Text.h"

namespace orvane::ClientEmail {
namespace {

// Any white space counts, not only the space bar's: a tab or a no-break
// space pasted into an address is as wrong as a plain space.
bool containsWhiteSpace(std::string_view utf8) {
  const auto* data = reinterpret_cast<const std::uint8_t*>(utf8.data());
  const auto length = static_cast<std::int32_t>(utf8.size());
  for (std::int32_t i = 0; i < length;) {
    UChar32 c;
    U8_NEXT(data, i, length, c);
    if (c >= 0 && u_isUWhiteSpace(c)) return true;
  }
  return false;
}

}  // namespace

bool isValid(std::string_view text) {
  const std::string address = text::trimmed(text);
  if (containsWhiteSpace(address)) return false;
  const std::size_t at = address.find('@');
  if (at == std::string::npos || at == 0) return false;
  const std::string_view domain = std::string_view(address).substr(at + 1);
  if (domain.find('@') != std::string_view::npos) return false;
  return domain.find('.') != std::string_view::npos && domain.front() != '.' && domain.back() != '.';
}

bool same(std::string_view a, std::string_view b) {
  return text::lowered(text::trimmed(a)) == text::lowered(text::trimmed(b));
}

}  // namespace orvane::ClientEmail
