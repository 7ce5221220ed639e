#include "app/ticket/TicketOpener.h"

#include <QDialog>
#include <QVBoxLayout>

#include "app/planning/PeopleView.h"
#include "app/ticket/TicketWindow.h"

namespace orvane::app {

QWidget* openTicketWindow(AppContext& context, const Uuid& ticket, QWidget* parent) {
  // One window per ticket: opening it again brings the open one forward.
  if (parent != nullptr) {
    for (TicketWindow* open : parent->window()->findChildren<TicketWindow*>()) {
      if (open->ticket() == ticket) {
        open->raise();
        open->activateWindow();
        return open;
      }
    }
  }
  auto* window = new TicketWindow(context, ticket, parent != nullptr ? parent->window() : nullptr);
  window->setAttribute(Qt::WA_DeleteOnClose);
  window->show();
  return window;
}

QWidget* openPeopleWindow(AppContext& context, QWidget* parent) {
  QWidget* top = parent != nullptr ? parent->window() : nullptr;
  if (top != nullptr) {
    if (auto* open = top->findChild<QDialog*>(QStringLiteral("peopleWindow"))) {
      open->raise();
      open->activateWindow();
      return open;
    }
  }
  auto* window = new QDialog(top);
  window->setObjectName(QStringLiteral("peopleWindow"));
  window->setWindowTitle(QStringLiteral("People"));
  window->setAttribute(Qt::WA_DeleteOnClose);
  auto* layout = new QVBoxLayout(window);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(new PeopleView(context, window));
  window->resize(640, 480);
  window->show();
  return window;
}

}  // namespace orvane::app
