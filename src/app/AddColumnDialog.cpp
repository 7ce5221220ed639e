#include "app/AddColumnDialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace orvane::app {

AddColumnDialog::AddColumnDialog(QWidget* parent) : QDialog(parent, Qt::Sheet) {
  setWindowTitle(QStringLiteral("Add column"));
  setWindowModality(Qt::WindowModal);
  name_ = new QLineEdit(this);
  name_->setPlaceholderText(QStringLiteral("Column name"));
  type_ = new QComboBox(this);
  for (ColumnType type : {ColumnType::backlog, ColumnType::inProgress, ColumnType::done}) {
    const std::string_view label = formLabel(type);
    type_->addItem(QString::fromUtf8(label.data(), static_cast<qsizetype>(label.size())), static_cast<int>(type));
  }
  type_->setCurrentIndex(1);
  // 0 stands for "no limit": the service wants an absent limit, never 0.
  limit_ = new QSpinBox(this);
  limit_->setRange(0, 999);
  limit_->setSpecialValueText(QStringLiteral("No limit"));

  auto* explanation = new QLabel(
      QStringLiteral("The type decides what a move into this column means for started and completed dates, so it "
                     "cannot be changed later."),
      this);
  explanation->setWordWrap(true);

  auto* form = new QFormLayout;
  form->addRow(QStringLiteral("Name"), name_);
  form->addRow(QStringLiteral("Type"), type_);
  form->addRow(QString(), explanation);
  form->addRow(QStringLiteral("WIP limit"), limit_);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
  buttons->addButton(QStringLiteral("Add column"), QDialogButtonBox::AcceptRole)->setDefault(true);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(buttons);
  setMinimumWidth(420);
}

QString AddColumnDialog::name() const { return name_->text(); }

ColumnType AddColumnDialog::type() const { return static_cast<ColumnType>(type_->currentData().toInt()); }

std::optional<std::int64_t> AddColumnDialog::wipLimit() const {
  if (limit_->value() == 0) return std::nullopt;
  return limit_->value();
}

}  // namespace orvane::app
