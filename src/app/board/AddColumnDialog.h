#pragma once

#include <QDialog>
#include <optional>
#include <vector>

#include "core/model/BoardColumn.h"
#include "core/model/ColumnType.h"

class QComboBox;
class QLineEdit;
class QPushButton;

namespace orvane::app {

class FieldProblem;
class WipLimitField;

// The add-column form: a name, the column type (fixed once created, which
// the form explains) and an optional WIP limit. Add column waits while the
// name or the limit would be refused, and the reason stands beside the
// field; `columns` (the board's columns) lets it tell a taken name.
class AddColumnDialog : public QDialog {
  Q_OBJECT

 public:
  explicit AddColumnDialog(QWidget* parent, std::vector<BoardColumn> columns = {});

  QString name() const;
  ColumnType type() const;
  std::optional<std::int64_t> wipLimit() const;  // none when the field is empty
  QLineEdit* nameField() const { return name_; }
  WipLimitField* limitField() const { return limit_; }
  QString nameProblem() const;

 private:
  void check();

  std::vector<BoardColumn> columns_;
  QLineEdit* name_;
  FieldProblem* nameProblem_;
  QComboBox* type_;
  WipLimitField* limit_;
  QPushButton* add_;
};

}  // namespace orvane::app
