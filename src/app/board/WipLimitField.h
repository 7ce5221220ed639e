#pragma once

#include <QWidget>
#include <cstdint>
#include <optional>

class QLineEdit;

namespace orvane::app {

class FieldProblem;

// The one way a WIP limit is typed, in every form: a whole number of 1 or
// more, or empty for no limit. Anything else (0, -1, "three") keeps what
// was typed, says the service's sentence under the field and is not
// acceptable, so the form's OK waits; nothing is turned silently into
// another number.
class WipLimitField : public QWidget {
  Q_OBJECT

 public:
  explicit WipLimitField(QWidget* parent);

  void setLimit(std::optional<std::int64_t> limit);
  // The limit typed; absent for no limit, and while not acceptable.
  std::optional<std::int64_t> limit() const;
  bool isAcceptable() const;
  QLineEdit* field() const { return field_; }
  QString problem() const;

 signals:
  void acceptableChanged(bool acceptable);

 private:
  void check();

  QLineEdit* field_;
  FieldProblem* problem_;
  bool acceptable_ = true;
};

}  // namespace orvane::app
