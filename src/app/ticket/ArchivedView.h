#pragma once

#include "app/shell/ProjectViewBase.h"
#include "core/filter/TicketFilter.h"

class QLabel;
class QPushButton;
class QStackedWidget;
class QTableView;

namespace orvane::app {

class TicketTableModel;

// The project's archived tickets: restore one to the bottom of its column, or
// delete it with everything attached after a confirmation.
class ArchivedView : public ProjectViewBase {
  Q_OBJECT

 public:
  ArchivedView(AppContext& context, QWidget* parent);

  // The filter bar's filter; the view always keeps to archived tickets.
  void setFilter(const TicketFilter& filter);
  TicketTableModel* model() const { return model_; }
  QTableView* table() const { return table_; }
  QString emptyText() const;  // "" while tickets are listed
  void restoreSelected();
  void deleteSelected();  // asks first

 signals:
  void openTicketRequested(const orvane::Uuid& ticket);

 protected:
  void reload() override;

 private:
  std::optional<Uuid> selectedTicket() const;
  void updateButtons();

  TicketFilter filter_;  // as the user set it
  TicketTableModel* model_;
  QTableView* table_;
  QLabel* empty_;
  QStackedWidget* stack_;
  QPushButton* restore_;
  QPushButton* delete_;
};

}  // namespace orvane::app
