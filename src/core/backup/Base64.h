#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvane::Backup::base64 {

// Standard base64 (RFC 4648, "+/" alphabet, "=" padding).
std::string encode(std::string_view bytes);
// Absent unless the text is canonical padded base64 (length a multiple of
// four, padding only at the end); white space is not allowed.
std::optional<std::string> decode(std::string_view text);

}  // namespace orvane::Backup::base64
