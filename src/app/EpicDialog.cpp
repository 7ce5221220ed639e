#include "app/EpicDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

#include "app/DayField.h"
#include "app/ItemIds.h"

namespace orvane::app {

EpicDialog::EpicDialog(const icu::Calendar& calendar, const std::optional<Epic>& epic, Save save, QWidget* parent)
    : QDialog(parent), save_(std::move(save)) {
  setObjectName(QStringLiteral("epicDialog"));
  setWindowTitle(epic ? QStringLiteral("Edit epic") : QStringLiteral("New epic"));
  name_ = new QLineEdit(this);
  name_->setObjectName(QStringLiteral("name"));
  details_ = new QPlainTextEdit(this);
  details_->setObjectName(QStringLiteral("details"));
  details_->setTabChangesFocus(true);
  start_ = new DayField(calendar, true, this);
  start_->setObjectName(QStringLiteral("start"));
  due_ = new DayField(calendar, true, this);
  due_->setObjectName(QStringLiteral("due"));
  color_ = new QLineEdit(this);
  color_->setObjectName(QStringLiteral("color"));
  color_->setPlaceholderText(QStringLiteral("#RRGGBB"));
  if (epic) {
    name_->setText(qText(epic->name));
    details_->setPlainText(qText(epic->details));
    start_->setInstant(epic->startDate);
    due_->setInstant(epic->dueDate);
    color_->setText(qText(epic->colorHex.value_or("")));
  }

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &EpicDialog::submit);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* form = new QFormLayout(this);
  form->addRow(QStringLiteral("Name"), name_);
  form->addRow(QStringLiteral("Details"), details_);
  form->addRow(QStringLiteral("Start"), start_);
  form->addRow(QStringLiteral("Due (a milestone)"), due_);
  form->addRow(QStringLiteral("Colour"), color_);
  form->addRow(buttons);
}

EpicDialog::Values EpicDialog::values() const {
  Values values{name_->text().toStdString(), details_->toPlainText().toStdString(), start_->instant(), due_->instant(),
                std::nullopt};
  if (!color_->text().trimmed().isEmpty()) values.colorHex = color_->text().toStdString();
  return values;
}

void EpicDialog::submit() {
  if (save_(values(), this)) accept();
}

}  // namespace orvane::app
