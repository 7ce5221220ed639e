#include "cli/StoreAccess.h"

#include "cli/CliError.h"

namespace orvane::cli {

BoardService& StoreAccess::service() {
  if (!service_) {
    try {
      // A sound store on a full or read-only disk is still read (listing,
      // board, backup to another disk); a change then says why it failed.
      store_.emplace(Store::open(path_ ? *path_ : Store::defaultPath(), Store::WhenUnwritable::readOnly));
    } catch (const StoreError& error) {
      throw CliError(std::string("The database could not be opened: ") + error.what(), exitFailure);
    }
    service_ = std::make_unique<BoardService>(*store_);
  }
  return *service_;
}

std::optional<std::string> StoreAccess::placeProblemBehind(const SqliteError& error) const {
  return store_ ? store_->placeProblemBehind(error) : std::nullopt;
}

ForecastService& StoreAccess::forecasts() {
  if (!forecasts_) {
    service();
    forecasts_ = std::make_unique<ForecastService>(*store_);
  }
  return *forecasts_;
}

}  // namespace orvane::cli
