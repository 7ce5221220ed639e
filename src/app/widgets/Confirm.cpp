#include "app/widgets/Confirm.h"

#include <QMessageBox>
#include <QPushButton>

namespace orvane::app {

void confirm(QWidget* parent, const QString& name, const QString& question, const QString& explanation,
             const QString& action, std::function<void()> onConfirm) {
  auto* box = new QMessageBox(QMessageBox::Warning, QStringLiteral("Orvane"), question, QMessageBox::Cancel, parent);
  box->setObjectName(name);
  box->setInformativeText(explanation);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->setWindowModality(parent ? Qt::WindowModal : Qt::ApplicationModal);
  QPushButton* confirmButton = box->addButton(action, QMessageBox::DestructiveRole);
  confirmButton->setObjectName(QStringLiteral("confirm"));
  QObject::connect(box, &QMessageBox::buttonClicked, box, [confirmButton, onConfirm](QAbstractButton* clicked) {
    if (clicked == confirmButton) onConfirm();
  });
  box->open();
}

}  // namespace orvane::app
