#include "core/model/Project.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace orvane {

std::string Project::clientLine() const {
  if (clientName.empty()) return clientCompany;
  if (clientCompany.empty()) return clientName;
  return clientName + ", " + clientCompany;
}

std::string Project::safeFileName() const {
  std::string safe;
  safe.reserve(name.size());
  for (const char c : name) safe += (c == '/' || c == '\\' || c == ':' || c == '\0') ? '-' : c;
  const auto first = safe.find_first_not_of(" \t");
  if (first == std::string::npos) return "file";
  safe = safe.substr(first, safe.find_last_not_of(" \t") - first + 1);
  return safe == "." ? "file" : safe;
}

std::string projectKeyCharacters(std::string_view text) {
  icu::UnicodeString upper =
      icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
  upper.toUpper();
  icu::UnicodeString key;
  int kept = 0;
  for (std::int32_t i = 0; i < upper.length() && kept < 6; i = upper.moveIndex32(i, 1)) {
    const UChar32 c = upper.char32At(i);
    if (u_isalpha(c) || u_isdigit(c)) {
      key.append(c);
      ++kept;
    }
  }
  std::string out;
  key.toUTF8String(out);
  return out;
}

std::string projectKey(std::string_view text) {
  std::string key = projectKeyCharacters(text);
  return key.empty() ? "TKT" : key;
}

}  // namespace orvane
