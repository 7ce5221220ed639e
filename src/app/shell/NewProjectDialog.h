#pragma once

#include <QDialog>
#include <functional>
#include <optional>
#include <vector>

#include "core/model/Project.h"

class QLabel;
class QLineEdit;
class QPushButton;

namespace orvane::app {

class FieldProblem;

// The new-project sheet: a name and an optional ticket prefix. Create hands
// both to `onCreate`; a returned sentence is shown under the fields and the
// sheet stays open, no sentence closes it. The prefix is shown as it will be
// stored while it is typed (the key rule of the service), with the ticket
// numbers it gives; a name the service would refuse (empty, or taken by one
// of `projects`) is said beside the field and Create waits.
class NewProjectDialog : public QDialog {
  Q_OBJECT

 public:
  using OnCreate = std::function<std::optional<QString>(const QString& name, const QString& key)>;

  NewProjectDialog(OnCreate onCreate, QWidget* parent, std::vector<Project> projects = {});

  QLineEdit* nameField() const { return name_; }
  QLineEdit* keyField() const { return key_; }
  QPushButton* createButton() const { return create_; }
  QString problem() const;
  QString nameProblem() const;
  // "Tickets will be numbered …" for the key the project will get.
  QString keyPreview() const;
  void create();

 private:
  void normaliseKey(const QString& typed);
  void check();

  OnCreate onCreate_;
  std::vector<Project> projects_;
  QLineEdit* name_;
  FieldProblem* nameProblem_;
  QLineEdit* key_;
  QLabel* keyPreview_;
  QLabel* problem_;
  QPushButton* create_;
};

}  // namespace orvane::app
