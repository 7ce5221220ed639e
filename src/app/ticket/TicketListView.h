#pragma once

#include "app/shell/ProjectViewBase.h"
#include "core/filter/TicketFilter.h"

class QLabel;
class QTableView;

namespace orvane::app {

class TicketTableModel;

// Every ticket of the project that the filter lets through, as a table whose
// columns sort on a click.
class TicketListView : public ProjectViewBase {
  Q_OBJECT

 public:
  TicketListView(AppContext& context, QWidget* parent);

  void setFilter(const TicketFilter& filter);
  TicketTableModel* model() const { return model_; }
  QTableView* table() const { return table_; }

 signals:
  void openTicketRequested(const orvane::Uuid& ticket);

 protected:
  void reload() override;

 private:
  TicketFilter filter_;
  TicketTableModel* model_;
  QTableView* table_;
  QLabel* summary_;
};

}  // namespace orvane::app
