#pragma once

#include <QDialog>
#include <functional>
#include <optional>

class QLabel;
class QLineEdit;

namespace orvane::app {

// The new-project sheet: a name and an optional ticket prefix. Create hands
// both to `onCreate`; a returned sentence is shown under the fields and the
// sheet stays open, no sentence closes it.
class NewProjectDialog : public QDialog {
  Q_OBJECT

 public:
  using OnCreate = std::function<std::optional<QString>(const QString& name, const QString& key)>;

  NewProjectDialog(OnCreate onCreate, QWidget* parent);

  QLineEdit* nameField() const { return name_; }
  QLineEdit* keyField() const { return key_; }
  QString problem() const;
  void create();

 private:
  OnCreate onCreate_;
  QLineEdit* name_;
  QLineEdit* key_;
  QLabel* problem_;
};

}  // namespace orvane::app
