#pragma once

#include <QWidget>
#include <optional>
#include <vector>

#include "core/model/Person.h"

class QLineEdit;
class QPushButton;
class QTableWidget;
class QTableWidgetItem;

namespace orvane::app {

class AppContext;
class FieldProblem;

// Everyone who can be assigned tickets, in every project: add, rename, the
// e-mail address and phone number, delete. Name, e-mail and phone are edited
// in place; each edit is one undoable step and a refusal (an empty or taken
// name, an address that is not one) puts the cell back. Deleting a person
// leaves their tickets in place, unassigned. Add and Delete are offered
// only when they can act: a name that would be refused says why beside the
// field instead.
class PeopleView : public QWidget {
  Q_OBJECT

 public:
  PeopleView(AppContext& context, QWidget* parent);

  QTableWidget* table() const { return table_; }
  void addPerson(const QString& name);
  // Asks first, naming how many tickets will lose their assignee.
  void deleteSelected();
  void reload();

 private:
  void cellEdited(QTableWidgetItem* item);
  void updateButtons();
  std::optional<Uuid> selectedPerson() const;

  AppContext& context_;
  std::vector<Person> people_;
  std::vector<std::int64_t> ticketCounts_;
  QTableWidget* table_ = nullptr;
  QLineEdit* newName_ = nullptr;
  FieldProblem* nameProblem_ = nullptr;
  QPushButton* add_ = nullptr;
  QPushButton* delete_ = nullptr;
};

}  // namespace orvane::app
