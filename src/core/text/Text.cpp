#include "core/text/Text.h"

#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

namespace orvane::text {
namespace {

bool isSpaceOrBreak(UChar32 c) { return u_isUWhiteSpace(c) || c == 0x200B || c == 0xFEFF; }

}  // namespace

std::string trimmed(std::string_view utf8) {
  const auto* data = reinterpret_cast<const std::uint8_t*>(utf8.data());
  const auto length = static_cast<std::int32_t>(utf8.size());
  std::int32_t begin = 0;
  while (begin < length) {
    std::int32_t next = begin;
    UChar32 c;
    U8_NEXT(data, next, length, c);
    if (c < 0 || !isSpaceOrBreak(c)) break;
    begin = next;
  }
  std::int32_t end = length;
  while (end > begin) {
    std::int32_t previous = end;
    UChar32 c;
    U8_PREV(data, 0, previous, c);
    if (c < 0 || !isSpaceOrBreak(c)) break;
    end = previous;
  }
  return std::string(utf8.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin)));
}

std::string folded(std::string_view utf8) {
  icu::UnicodeString text = icu::UnicodeString::fromUTF8(icu::StringPiece(utf8.data(), static_cast<std::int32_t>(utf8.size())));
  text.foldCase();
  std::string out;
  text.toUTF8String(out);
  return out;
}

bool equalIgnoringCase(std::string_view a, std::string_view b) { return a == b || folded(a) == folded(b); }

std::string lowered(std::string_view utf8) {
  icu::UnicodeString text =
      icu::UnicodeString::fromUTF8(icu::StringPiece(utf8.data(), static_cast<std::int32_t>(utf8.size())));
  text.toLower(icu::Locale::getRoot());
  std::string out;
  text.toUTF8String(out);
  return out;
}

bool sameName(std::string_view a, std::string_view b) { return a == b || lowered(a) == lowered(b); }

}  // namespace orvane::text
