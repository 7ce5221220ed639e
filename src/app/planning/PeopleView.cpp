#include "app/planning/PeopleView.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <unordered_map>

#include "app/shell/AppContext.h"
#include "app/widgets/Confirm.h"
#include "app/widgets/FieldProblem.h"
#include "app/widgets/ItemIds.h"
#include "app/widgets/NameCheck.h"
#include "core/store/Rows.h"
#include "core/text/Text.h"

namespace orvane::app {
namespace {

enum PeopleColumn { nameColumn, emailColumn, phoneColumn, ticketsColumn };

}  // namespace

PeopleView::PeopleView(AppContext& context, QWidget* parent) : QWidget(parent), context_(context) {
  setObjectName(QStringLiteral("peopleView"));
  setWindowTitle(QStringLiteral("People"));
  resize(640, 420);
  auto* intro = new QLabel(QStringLiteral("People are shared by all projects. Double-click a name, e-mail address or "
                                          "phone number to change it."),
                           this);
  intro->setWordWrap(true);

  table_ = new QTableWidget(0, 4, this);
  table_->setObjectName(QStringLiteral("people"));
  table_->setHorizontalHeaderLabels(
      {QStringLiteral("Name"), QStringLiteral("E-mail"), QStringLiteral("Phone"), QStringLiteral("Tickets")});
  table_->horizontalHeader()->setSectionResizeMode(emailColumn, QHeaderView::Stretch);
  table_->verticalHeader()->hide();
  table_->setSelectionBehavior(QAbstractItemView::SelectRows);
  table_->setSelectionMode(QAbstractItemView::SingleSelection);
  connect(table_, &QTableWidget::itemChanged, this, &PeopleView::cellEdited);
  connect(table_, &QTableWidget::itemSelectionChanged, this, &PeopleView::updateButtons);

  newName_ = new QLineEdit(this);
  newName_->setObjectName(QStringLiteral("newPerson"));
  newName_->setPlaceholderText(QStringLiteral("Name"));
  nameProblem_ = new FieldProblem("newPersonProblem", this);
  add_ = new QPushButton(QStringLiteral("Add person"), this);
  add_->setObjectName(QStringLiteral("addPerson"));
  delete_ = new QPushButton(QStringLiteral("Delete person…"), this);
  delete_->setObjectName(QStringLiteral("deletePerson"));
  // The view sits in a dialog, where a push button is by default pressed by
  // Return too: Return in the name field would add the person and then press
  // Add again with the field just emptied. The field's own Return is the one
  // way Return adds.
  add_->setAutoDefault(false);
  delete_->setAutoDefault(false);
  const auto addTyped = [this] {
    if (add_->isEnabled()) addPerson(newName_->text());
  };
  connect(add_, &QPushButton::clicked, this, addTyped);
  connect(newName_, &QLineEdit::returnPressed, this, addTyped);
  connect(newName_, &QLineEdit::textChanged, this, &PeopleView::updateButtons);
  connect(delete_, &QPushButton::clicked, this, &PeopleView::deleteSelected);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(intro);
  layout->addWidget(table_, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(newName_, 1);
  buttons->addWidget(add_);
  buttons->addStretch(1);
  buttons->addWidget(delete_);
  layout->addLayout(buttons);
  layout->addWidget(nameProblem_);

  connect(&context_, &AppContext::storeChanged, this, &PeopleView::reload);
  reload();
}

void PeopleView::reload() {
  Database& db = context_.store().db();
  people_ = rows::select<Person>(db, "");
  std::stable_sort(people_.begin(), people_.end(),
                   [](const Person& a, const Person& b) { return text::folded(a.name) < text::folded(b.name); });
  // Every ticket that names them, in every project, archived ones too: all
  // of them lose their assignee when the person is deleted.
  std::unordered_map<Uuid, std::int64_t> counts;
  Statement count =
      db.prepare("SELECT assignee_id, COUNT(*) FROM tickets WHERE assignee_id IS NOT NULL GROUP BY assignee_id");
  while (count.step()) counts[count.uuid(0)] = count.int64(1);

  const std::optional<Uuid> selected = selectedPerson();
  const QSignalBlocker blocker(table_);
  table_->setRowCount(static_cast<int>(people_.size()));
  for (std::size_t i = 0; i < people_.size(); ++i) {
    const Person& person = people_[i];
    const auto row = static_cast<int>(i);
    const auto cell = [&](int column, const QString& text, bool editable) {
      auto* item = new QTableWidgetItem(text);
      item->setData(idRole, idData(person.id));
      if (!editable) item->setFlags(item->flags() & ~Qt::ItemIsEditable);
      table_->setItem(row, column, item);
    };
    cell(nameColumn, qText(person.name), true);
    cell(emailColumn, qText(person.email), true);
    cell(phoneColumn, qText(person.phone), true);
    const auto found = counts.find(person.id);
    cell(ticketsColumn, QString::number(found == counts.end() ? 0 : found->second), false);
    if (selected == person.id) table_->selectRow(row);
  }
  updateButtons();
}

void PeopleView::updateButtons() {
  // An untouched empty field is simply not ready; anything typed that the
  // service would refuse (blanks, a name taken by someone else) says why.
  const QString typed = newName_->text();
  const QString problem = nameProblem(typed, people_, NameErrors::project);
  nameProblem_->say(typed.isEmpty() ? QString() : problem);
  add_->setEnabled(problem.isEmpty());
  delete_->setEnabled(selectedPerson().has_value());
}

std::optional<Uuid> PeopleView::selectedPerson() const {
  const QList<QTableWidgetItem*> chosen = table_->selectedItems();
  if (!chosen.isEmpty()) return idFrom(chosen.front()->data(idRole));
  const QTableWidgetItem* current = table_->currentItem();
  return current ? idFrom(current->data(idRole)) : std::nullopt;
}

void PeopleView::addPerson(const QString& name) {
  const std::string typed = name.toStdString();
  if (context_.perform(
          QStringLiteral("Add person"), [&](BoardService& s) { s.createPerson(typed, std::nullopt); }, this))
    newName_->clear();
}

void PeopleView::cellEdited(QTableWidgetItem* item) {
  const std::optional<Uuid> id = idFrom(item->data(idRole));
  const auto person = std::find_if(people_.begin(), people_.end(), [&](const Person& p) { return p.id == id; });
  if (person == people_.end()) return;
  const std::string text = item->text().toStdString();
  bool done = true;
  if (item->column() == nameColumn) {
    if (text == person->name) return;
    done = context_.perform(
        QStringLiteral("Rename person"), [&](BoardService& s) { s.renamePerson(person->id, text); }, this);
  } else if (item->column() == emailColumn || item->column() == phoneColumn) {
    const bool email = item->column() == emailColumn;
    if (text == (email ? person->email : person->phone)) return;
    const Person before = *person;
    done = context_.perform(
        email ? QStringLiteral("Change e-mail address") : QStringLiteral("Change phone number"),
        [&](BoardService& s) {
          s.updatePerson(before.id, before.name, email ? text : before.email, email ? before.phone : text);
        },
        this);
  }
  // A refusal puts the stored value back in the cell.
  if (!done) reload();
}

void PeopleView::deleteSelected() {
  const std::optional<Uuid> id = selectedPerson();
  const auto person = std::find_if(people_.begin(), people_.end(), [&](const Person& p) { return p.id == id; });
  if (person == people_.end()) return;
  const QString count = table_->item(static_cast<int>(person - people_.begin()), ticketsColumn)->text();
  QString explanation = QStringLiteral("Their %1 tickets stay where they are, unassigned.").arg(count);
  if (count == QStringLiteral("0")) explanation = QStringLiteral("No tickets are assigned to them.");
  if (count == QStringLiteral("1")) explanation = QStringLiteral("Their ticket stays where it is, unassigned.");
  confirm(this, QStringLiteral("confirmDeletePerson"), QStringLiteral("Delete “%1”?").arg(qText(person->name)),
          explanation, QStringLiteral("Delete"), [this, personId = person->id] {
            context_.perform(
                QStringLiteral("Delete person"), [&](BoardService& s) { s.deletePerson(personId); }, this);
          });
}

}  // namespace orvane::app
