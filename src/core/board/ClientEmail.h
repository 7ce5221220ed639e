#pragma once

#include <string_view>

// The address checks for a project's client and internal recipients and for
// people. Deliberately loose: they catch typing slips, not every address the
// mail standards would refuse.
namespace orvane::ClientEmail {

// After trimming white space and line breaks: no white space inside, a
// non-empty part before the first "@", no second "@", and a domain that
// holds a "." but neither starts nor ends with one. "a@b.c" passes; the
// domains ".bc", "bc." and "bc" do not.
bool isValid(std::string_view text);

// Equal after trimming white space and line breaks and lower-casing.
bool same(std::string_view a, std::string_view b);

}  // namespace orvane::ClientEmail
