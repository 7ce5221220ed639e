#include "app/IterationDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPlainTextEdit>

#include "app/DayField.h"
#include "app/ItemIds.h"

namespace orvane::app {

IterationDialog::IterationDialog(const icu::Calendar& calendar, const std::optional<Iteration>& iteration,
                                 Timestamp defaultStart, Save save, QWidget* parent)
    : QDialog(parent), save_(std::move(save)) {
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

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &IterationDialog::submit);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* form = new QFormLayout(this);
  form->addRow(QStringLiteral("Name"), name_);
  form->addRow(QStringLiteral("Goal"), goal_);
  form->addRow(QStringLiteral("Starts"), start_);
  form->addRow(QStringLiteral("Ends"), end_);
  form->addRow(buttons);
}

IterationDialog::Values IterationDialog::values() const {
  return {name_->text().toStdString(), goal_->toPlainText().toStdString(), start_->instant().value_or(Timestamp{}),
          end_->instant().value_or(Timestamp{})};
}

void IterationDialog::submit() {
  if (save_(values(), this)) accept();
}

}  // namespace orvane::app
