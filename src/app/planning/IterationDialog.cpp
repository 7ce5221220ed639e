#include "app/planning/IterationDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

#include "app/widgets/DayField.h"
#include "app/widgets/FieldProblem.h"
#include "app/widgets/ItemIds.h"
#include "app/widgets/NameCheck.h"

namespace orvane::app {

IterationDialog::IterationDialog(const icu::Calendar& calendar, const std::vector<Iteration>& iterations,
                                 const std::optional<Iteration>& iteration, Timestamp defaultStart, Save save,
                                 QWidget* parent)
    : QDialog(parent), save_(std::move(save)), others_(iterations) {
  if (iteration) self_ = iteration->id;
  setObjectName(QStringLiteral("iterationDialog"));
  setWindowTitle(iteration ? QStringLiteral("Edit iteration") : QStringLiteral("New iteration"));
  name_ = new QLineEdit(this);
  name_->setObjectName(QStringLiteral("name"));
  goal_ = new QPlainTextEdit(this);
  goal_->setObjectName(QStringLiteral("goal"));
  goal_->setTabChangesFocus(true);
  goal_->setMaximumHeight(80);
  start_ = new DayField(calendar, false, this);
  start_->setObjectName(QStringLiteral("start"));
  end_ = new DayField(calendar, false, this);
  end_->setObjectName(QStringLiteral("end"));
  if (iteration) {
    name_->setText(qText(iteration->name));
    goal_->setPlainText(qText(iteration->goal));
    start_->setInstant(iteration->startDate);
    end_->setInstant(iteration->endDate);
  } else {
    start_->setInstant(defaultStart);
    end_->setInstant(Timestamp{defaultStart.secondsSince1970 + 13 * 86400.0});
  }

  nameProblem_ = new FieldProblem("nameProblem", this);
  dateProblem_ = new FieldProblem("dateProblem", this);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel, this);
  saveButton_ = buttons->button(QDialogButtonBox::Save);
  saveButton_->setObjectName(QStringLiteral("save"));
  connect(buttons, &QDialogButtonBox::accepted, this, &IterationDialog::submit);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(name_, &QLineEdit::textChanged, this, &IterationDialog::check);
  connect(start_, &DayField::edited, this, &IterationDialog::check);
  connect(end_, &DayField::edited, this, &IterationDialog::check);
  auto* form = new QFormLayout(this);
  form->addRow(QStringLiteral("Name"), withProblem(name_, nameProblem_, this));
  form->addRow(QStringLiteral("Goal"), goal_);
  form->addRow(QStringLiteral("Starts"), start_);
  form->addRow(QStringLiteral("Ends"), withProblem(end_, dateProblem_, this));
  form->addRow(buttons);
  check();
}

QStringList IterationDialog::problems() const {
  QStringList shown;
  for (const FieldProblem* problem : {nameProblem_, dateProblem_})
    if (!problem->sentence().isEmpty()) shown << problem->sentence();
  return shown;
}

void IterationDialog::check() {
  const QString nameProblem = app::nameProblem(name_->text(), others_, NameErrors::project, self_);
  nameProblem_->say(name_->text().isEmpty() ? QString() : nameProblem);
  const Values typed = values();
  const bool datesInOrder = !(typed.endDate < typed.startDate);
  dateProblem_->say(datesInOrder ? QString() : QString::fromUtf8(PMError(PMError::Case::invalidIterationRange).what()));
  saveButton_->setEnabled(nameProblem.isEmpty() && datesInOrder);
}

IterationDialog::Values IterationDialog::values() const {
  return {name_->text().toStdString(), goal_->toPlainText().toStdString(), start_->instant().value_or(Timestamp{}),
          end_->instant().value_or(Timestamp{})};
}

void IterationDialog::submit() {
  if (!saveButton_->isEnabled()) return;
  if (save_(values(), this)) accept();
}

}  // namespace orvane::app
