#pragma once

#include <string>
#include <string_view>

namespace orvane::text {

// Removes Unicode white space and line breaks from both ends.
std::string trimmed(std::string_view utf8);

// The case-folded form, for comparing names without regard to case in every
// script ("Émile" and "émile" fold alike).
std::string folded(std::string_view utf8);

bool equalIgnoringCase(std::string_view a, std::string_view b);

}  // namespace orvane::text
