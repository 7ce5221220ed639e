#include "cli/StoreAccess.h"

#include "cli/CliError.h"

namespace orvane::cli {

BoardService& StoreAccess::service() {
  if (!service_) {
    try {
      store_.emplace(Store::open(path_ ? *path_ : Store::defaultPath()));
    } catch (const StoreError& error) {
      throw CliError(std::string("The database could not be opened: ") + error.what(), exitFailure);
    }
    service_ = std::make_unique<BoardService>(*store_);
  }
  return *service_;
}

ForecastService& StoreAccess::forecasts() {
  if (!forecasts_) {
    service();
    forecasts_ = std::make_unique<ForecastService>(*store_);
  }
  return *forecasts_;
}

}  // namespace orvane::cli
