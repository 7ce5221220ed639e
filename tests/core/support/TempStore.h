#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "core/board/BoardService.h"
#include "core/store/Store.h"

namespace orvane::testing {

// A fresh folder under the system's temporary directory, removed with
// everything in it when the object goes.
class TempDir {
 public:
  TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "orvane-test-XXXXXX").string();
    path_ = mkdtemp(pattern.data());
  }
  ~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// The whole content of a file, to compare it byte for byte.
inline std::string bytesOf(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// A real store file in a temporary folder, with a service over it.
struct TempStore {
  TempDir dir;
  Store store = Store::open(dir.path() / "orvane.sqlite");
  BoardService service{store};
};

// Seconds since 1970 for a UTC day and hour, for readable test instants.
inline Timestamp at(int year, int month, int day, int hour = 12) {
  return Timestamp{static_cast<double>(CivilDate(year, month, day).daysSinceEpoch() * 86400 + hour * 3600)};
}

}  // namespace orvane::testing
