#pragma once

#include <QLabel>

namespace orvane::app {

// The line beside a field that says why the form cannot be saved yet, in
// the words the service would refuse it with. Hidden while there is nothing
// to say, so a form that is fine shows no empty red gap.
class FieldProblem : public QLabel {
  Q_OBJECT

 public:
  FieldProblem(const char* objectName, QWidget* parent);

  // Shows `sentence`; an empty one hides the line.
  void say(const QString& sentence);
  // The sentence shown, or empty while hidden.
  QString sentence() const;
};

// `field` with `problem` right under it, as one row of a form.
QWidget* withProblem(QWidget* field, FieldProblem* problem, QWidget* parent);

}  // namespace orvane::app
