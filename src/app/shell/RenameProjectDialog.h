#pragma once

#include <QDialog>
#include <functional>
#include <optional>

class QLabel;
class QLineEdit;

namespace orvane::app {

// Renames a project: its name, with the ticket prefix shown below it. The
// prefix is part of every ticket reference people have already quoted, so it
// stays as it was made. Rename hands the typed name to `onRename`; a returned
// sentence is shown under the field and the sheet stays open.
class RenameProjectDialog : public QDialog {
  Q_OBJECT

 public:
  using OnRename = std::function<std::optional<QString>(const QString& name)>;

  RenameProjectDialog(const QString& name, const QString& key, OnRename onRename, QWidget* parent);

  QLineEdit* nameField() const { return name_; }
  QString problem() const;
  void rename();

 private:
  OnRename onRename_;
  QLineEdit* name_;
  QLabel* problem_;
};

}  // namespace orvane::app
