#include "core/files/FileContent.h"

namespace orvane {

std::uint64_t readLimit(FileContent content) {
  constexpr std::uint64_t megabyte = 1024 * 1024;
  return content == FileContent::backup ? 1024 * megabyte : 50 * megabyte;
}

mode_t newFileMode(FileContent content) { return content == FileContent::backup ? 0600 : 0666; }

std::string_view fileNoun(FileContent content) { return content == FileContent::backup ? "The backup" : "The file"; }

}  // namespace orvane
