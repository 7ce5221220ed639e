#pragma once

#include <string>
#include <string_view>

namespace orvane::text {

// Removes Unicode white space and line breaks from both ends.
std::string trimmed(std::string_view utf8);

// The case-folded form, for matching text without regard to case in every
// script ("Émile" and "émile" fold alike, and so do "Straße" and "STRASSE").
// For search, sorting and loose lookups; names are told apart by sameName.
std::string folded(std::string_view utf8);

bool equalIgnoringCase(std::string_view a, std::string_view b);

// The full lower-case form (root locale, so no language's special rules).
// Unlike folding it keeps "Straße" apart from "STRASSE" and "ﬁle" apart from
// "FILE".
std::string lowered(std::string_view utf8);

// Whether two names are one name: equal once lower-cased ("Émile" and
// "émile" are). Names of projects, columns, people, epics and iterations are
// unique by this test.
bool sameName(std::string_view a, std::string_view b);

}  // namespace orvane::text
