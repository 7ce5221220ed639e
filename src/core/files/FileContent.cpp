#include "core/files/FileContent.h"

namespace orvane {

std::uint64_t readLimit(FileContent content) {
  constexpr std::uint64_t megabyte = 1024 * 1024;
  switch (content) {
    case FileContent::backup:
      return 1024 * megabyte;
    case FileContent::linkedFile:
      return 512 * megabyte;
    case FileContent::tickets:
      break;
  }
  return 50 * megabyte;
}

mode_t newFileMode(FileContent content) { return content == FileContent::backup ? 0600 : 0666; }

std::string_view fileNoun(FileContent content) { return content == FileContent::backup ? "The backup" : "The file"; }

}  // namespace orvane
