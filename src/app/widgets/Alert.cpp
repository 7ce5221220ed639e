#include "app/widgets/Alert.h"

#include <QMessageBox>

namespace orvane::app {

// Window-modal and non-blocking, so a refusal never holds the caller (a drop
// handler, a timer, a test) in a nested event loop.
void showAlert(QWidget* parent, const QString& text) {
  auto* box = new QMessageBox(QMessageBox::Warning, QStringLiteral("Orvane"), text, QMessageBox::Ok, parent);
  box->setObjectName(QStringLiteral("alert"));
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->setWindowModality(parent ? Qt::WindowModal : Qt::ApplicationModal);
  box->open();
}

}  // namespace orvane::app
