#include "app/planning/MilestoneDialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

#include "app/widgets/DayField.h"
#include "app/widgets/FieldProblem.h"
#include "app/widgets/ItemIds.h"
#include "core/board/ServiceRules.h"

namespace orvane::app {

MilestoneDialog::MilestoneDialog(const icu::Calendar& calendar, const std::vector<Epic>& epics,
                                 const std::optional<Milestone>& milestone, Timestamp defaultDate, Save save,
                                 QWidget* parent)
    : QDialog(parent), save_(std::move(save)) {
  setObjectName(QStringLiteral("milestoneDialog"));
  setWindowTitle(milestone ? QStringLiteral("Edit milestone") : QStringLiteral("New milestone"));
  name_ = new QLineEdit(this);
  name_->setObjectName(QStringLiteral("name"));
  date_ = new DayField(calendar, false, this);
  date_->setObjectName(QStringLiteral("date"));
  date_->setInstant(milestone ? milestone->date : defaultDate);
  epic_ = new QComboBox(this);
  epic_->setObjectName(QStringLiteral("epic"));
  epic_->addItem(QStringLiteral("No epic"));
  for (const Epic& epic : epics) epic_->addItem(qText(epic.name), idData(epic.id));
  details_ = new QPlainTextEdit(this);
  details_->setObjectName(QStringLiteral("details"));
  details_->setTabChangesFocus(true);
  if (milestone) {
    name_->setText(qText(milestone->name));
    if (milestone->epicId) epic_->setCurrentIndex(std::max(epic_->findData(idData(*milestone->epicId)), 0));
    details_->setPlainText(qText(milestone->details));
  }

  nameProblem_ = new FieldProblem("nameProblem", this);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel, this);
  saveButton_ = buttons->button(QDialogButtonBox::Save);
  saveButton_->setObjectName(QStringLiteral("save"));
  connect(buttons, &QDialogButtonBox::accepted, this, &MilestoneDialog::submit);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(name_, &QLineEdit::textChanged, this, &MilestoneDialog::check);
  auto* form = new QFormLayout(this);
  form->addRow(QStringLiteral("Name"), withProblem(name_, nameProblem_, this));
  form->addRow(QStringLiteral("Date"), date_);
  form->addRow(QStringLiteral("Epic"), epic_);
  form->addRow(QStringLiteral("Details"), details_);
  form->addRow(buttons);
  check();
}

void MilestoneDialog::check() {
  QString problem;
  try {
    rules::requireText(name_->text().toStdString(), PMError(PMError::Case::emptyText));
  } catch (const PMError& refusal) {
    problem = QString::fromUtf8(refusal.what());
  }
  nameProblem_->say(name_->text().isEmpty() ? QString() : problem);
  saveButton_->setEnabled(problem.isEmpty());
}

MilestoneDialog::Values MilestoneDialog::values() const {
  return {name_->text().toStdString(), date_->instant().value_or(Timestamp{}), idFrom(epic_->currentData()),
          details_->toPlainText().toStdString()};
}

void MilestoneDialog::submit() {
  if (!saveButton_->isEnabled()) return;
  if (save_(values(), this)) accept();
}

}  // namespace orvane::app
