#pragma once

#include <QDialog>
#include <optional>

#include "core/model/ColumnType.h"

class QComboBox;
class QLineEdit;
class QSpinBox;

namespace orvane::app {

// The add-column form: a name, the column type (fixed once created, which
// the form explains) and an optional WIP limit.
class AddColumnDialog : public QDialog {
  Q_OBJECT

 public:
  explicit AddColumnDialog(QWidget* parent);

  QString name() const;
  ColumnType type() const;
  std::optional<std::int64_t> wipLimit() const;  // none when the box says "No limit"

 private:
  QLineEdit* name_;
  QComboBox* type_;
  QSpinBox* limit_;
};

}  // namespace orvane::app
