#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::ListCodec {

// Lists (ticket tags, filler counts, forecast samples) are kept as JSON
// arrays in one text column. Reading them is on the path of every snapshot,
// so these read only the two shapes written here, quickly; anything else
// reads as an empty list.

std::string encode(const std::vector<std::int64_t>& values);
std::string encode(const std::vector<std::string>& values);

std::vector<std::int64_t> decodeIntegers(std::string_view json);
std::vector<std::string> decodeStrings(std::string_view json);

}  // namespace orvane::ListCodec
