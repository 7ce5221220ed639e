#include "app/board/WipLimitDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/board/WipLimitField.h"

namespace orvane::app {

WipLimitDialog::WipLimitDialog(const QString& columnName, std::optional<std::int64_t> limit, QWidget* parent)
    : QDialog(parent, Qt::Sheet) {
  setObjectName(QStringLiteral("wipLimitDialog"));
  setWindowTitle(QStringLiteral("WIP limit of “%1”").arg(columnName));
  setWindowModality(Qt::WindowModal);
  limit_ = new WipLimitField(this);
  limit_->setLimit(limit);

  auto* form = new QFormLayout;
  form->addRow(QStringLiteral("WIP limit"), limit_);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  QPushButton* ok = buttons->button(QDialogButtonBox::Ok);
  ok->setObjectName(QStringLiteral("ok"));
  connect(limit_, &WipLimitField::acceptableChanged, ok, &QPushButton::setEnabled);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(buttons);
  setMinimumWidth(360);
}

std::optional<std::int64_t> WipLimitDialog::limit() const { return limit_->limit(); }

}  // namespace orvane::app
