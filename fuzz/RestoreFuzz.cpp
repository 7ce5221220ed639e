// Any bytes given to restore must be restored or refused with BackupError:
// no crash, hang or runaway allocation, and never a store error. A refused
// file leaves the store exactly as it was. A restored one must back up
// again, and that backup must restore to the same numbers without a warning
// (what was dropped with a warning the first time is no longer there).
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "core/backup/Backup.h"
#include "core/store/Store.h"

namespace {

using namespace orvane;

// One store for the whole run, emptied after each input that was restored:
// opening a fresh file per input would cost more than the restore itself.
class FuzzStore {
 public:
  FuzzStore() {
    std::string pattern = (std::filesystem::temp_directory_path() / "orvane-fuzz-XXXXXX").string();
    if (!mkdtemp(pattern.data())) std::abort();
    dir_ = pattern;
    store_ = std::make_unique<Store>(Store::open(dir_ / "fuzz.sqlite"));
    // Durability does not matter here; speed does.
    store_->db().exec("PRAGMA synchronous = OFF");
  }
  ~FuzzStore() {
    store_.reset();
    std::error_code ignored;
    std::filesystem::remove_all(dir_, ignored);
  }

  Store& store() { return *store_; }
  std::int64_t rows() {
    return store_->db().scalarInt(
        "SELECT (SELECT count(*) FROM projects) + (SELECT count(*) FROM people) + (SELECT count(*) FROM tickets)");
  }
  void clear() { store_->db().exec("DELETE FROM projects; DELETE FROM people; DELETE FROM forecast_records;"); }

 private:
  std::filesystem::path dir_;
  std::unique_ptr<Store> store_;
};

FuzzStore& fuzzStore() {
  static FuzzStore store;
  return store;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  FuzzStore& fuzz = fuzzStore();
  const std::int64_t before = fuzz.rows();
  Backup::Report first;
  try {
    first = Backup::restoreBackup(fuzz.store(), bytes);
  } catch (const Backup::BackupError&) {
    if (fuzz.rows() != before) std::abort();  // a refused file added something
    return 0;
  }

  const std::string again = Backup::makeBackup(fuzz.store(), Timestamp{0});
  fuzz.clear();
  const Backup::Report second = Backup::restoreBackup(fuzz.store(), again);
  if (!second.warnings.empty() || second.projects != first.projects || second.tickets != first.tickets ||
      second.forecasts != first.forecasts || second.iterations != first.iterations ||
      second.milestones != first.milestones || second.epicDependencies != first.epicDependencies ||
      second.people != first.people) {
    std::abort();
  }
  fuzz.clear();
  return 0;
}
