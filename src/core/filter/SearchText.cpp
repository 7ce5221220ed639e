#include "core/filter/SearchText.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>

namespace orvane::search {

std::string key(std::string_view utf8) {
  // Plain ASCII, most of what people type, folds to its lower case and has
  // nothing to decompose.
  if (std::all_of(utf8.begin(), utf8.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; })) {
    std::string lower(utf8);
    for (char& c : lower) c = (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
    return lower;
  }
  icu::UnicodeString text =
      icu::UnicodeString::fromUTF8(icu::StringPiece(utf8.data(), static_cast<std::int32_t>(utf8.size())));
  // Folding first: some folds ("İ" to "i" + dot above) produce marks that the
  // decomposition step must still see.
  text.foldCase();
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* nfkd = icu::Normalizer2::getNFKDInstance(status);
  icu::UnicodeString decomposed = U_SUCCESS(status) ? nfkd->normalize(text, status) : text;
  if (U_FAILURE(status)) decomposed = text;
  icu::UnicodeString stripped;
  for (std::int32_t i = 0; i < decomposed.length();) {
    const UChar32 c = decomposed.char32At(i);
    if (u_charType(c) != U_NON_SPACING_MARK) stripped.append(c);
    i += U16_LENGTH(c);
  }
  // Decomposition can expose letters whose fold differs (rare compatibility
  // forms); one more fold keeps both sides of a comparison alike.
  stripped.foldCase();
  std::string out;
  stripped.toUTF8String(out);
  return out;
}

std::vector<std::string> words(std::string_view query) {
  const icu::UnicodeString text =
      icu::UnicodeString::fromUTF8(icu::StringPiece(query.data(), static_cast<std::int32_t>(query.size())));
  std::vector<std::string> found;
  icu::UnicodeString current;
  const auto flush = [&] {
    if (current.isEmpty()) return;
    std::string utf8;
    current.toUTF8String(utf8);
    found.push_back(key(utf8));
    current.remove();
  };
  for (std::int32_t i = 0; i < text.length();) {
    const UChar32 c = text.char32At(i);
    if (u_isUWhiteSpace(c)) {
      flush();
    } else {
      current.append(c);
    }
    i += U16_LENGTH(c);
  }
  flush();
  // A word made only of marks folds to nothing; it would match anything.
  std::erase_if(found, [](const std::string& word) { return word.empty(); });
  return found;
}

bool containsAll(std::string_view haystackKey, const std::vector<std::string>& words) {
  return std::all_of(words.begin(), words.end(),
                     [&](const std::string& word) { return haystackKey.find(word) != std::string_view::npos; });
}

}  // namespace orvane::search
