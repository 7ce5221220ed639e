#pragma once

#include <QDialog>
#include <cstdint>
#include <optional>

namespace orvane::app {

class WipLimitField;

// Changes one column's WIP limit with the same field the add-column form
// uses. OK waits while the field holds what the service would refuse.
class WipLimitDialog : public QDialog {
  Q_OBJECT

 public:
  WipLimitDialog(const QString& columnName, std::optional<std::int64_t> limit, QWidget* parent);

  WipLimitField* limitField() const { return limit_; }
  std::optional<std::int64_t> limit() const;

 private:
  WipLimitField* limit_;
};

}  // namespace orvane::app
