#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orvane::search {

// The form in which ticket text is searched: case folded, compatibility
// decomposed and stripped of combining marks, so "Café", "CAFE" and "cafe"
// all become "cafe" and "ﬁx" becomes "fix". Invalid UTF-8 becomes U+FFFD.
// Letters that carry no separable mark ("ø", "ł") keep their own form.
std::string key(std::string_view utf8);

// The words of a query in search form: split at Unicode white space, empty
// pieces dropped.
std::vector<std::string> words(std::string_view query);

// True when every word (already in search form) occurs in `haystackKey`
// (also in search form) as a substring; true for no words.
bool containsAll(std::string_view haystackKey, const std::vector<std::string>& words);

}  // namespace orvane::search
