#include "app/ticket/TicketListView.h"

#include <QHeaderView>
#include <QLabel>
#include <QTableView>
#include <QVBoxLayout>

#include "app/shell/AppContext.h"
#include "app/ticket/TicketTableModel.h"

namespace orvane::app {

TicketListView::TicketListView(AppContext& context, QWidget* parent) : ProjectViewBase(context, parent) {
  setObjectName(QStringLiteral("listView"));
  using Field = TicketTableModel::Field;
  model_ = new TicketTableModel({Field::reference, Field::title, Field::status, Field::priority, Field::epic,
                                 Field::assignee, Field::due, Field::iteration},
                                this);
  table_ = new QTableView(this);
  table_->setModel(model_);
  table_->setSortingEnabled(true);
  table_->sortByColumn(0, Qt::AscendingOrder);
  table_->setSelectionBehavior(QAbstractItemView::SelectRows);
  table_->setSelectionMode(QAbstractItemView::SingleSelection);
  table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table_->setAlternatingRowColors(true);
  table_->verticalHeader()->hide();
  table_->verticalHeader()->setDefaultSectionSize(26);
  table_->horizontalHeader()->setStretchLastSection(false);
  table_->horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
  table_->setWordWrap(false);
  const int widths[] = {90, 420, 130, 80, 160, 140, 110, 130};
  for (int column = 0; column < 8; ++column) table_->setColumnWidth(column, widths[column]);
  table_->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
  connect(table_, &QTableView::doubleClicked, this, [this](const QModelIndex& index) {
    if (index.isValid()) emit openTicketRequested(model_->card(index.row()).id);
  });

  summary_ = new QLabel(this);
  summary_->setObjectName(QStringLiteral("summary"));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(8, 8, 8, 8);
  layout->addWidget(table_, 1);
  layout->addWidget(summary_);
}

void TicketListView::setFilter(const TicketFilter& filter) {
  filter_ = filter;
  showProject(project());
}

void TicketListView::reload() {
  std::vector<TicketCard> cards;
  {
    if (const auto snapshot = this->snapshot()) {
      const TicketCardFactory factory(*snapshot, context_.calendar(), context_.now());
      for (const Ticket* ticket : filter_.apply(snapshot->tickets, *snapshot)) cards.push_back(factory.card(*ticket));
    }
  }
  const std::size_t count = cards.size();
  model_->setCards(std::move(cards));
  summary_->setText(count == 1 ? QStringLiteral("1 ticket") : QStringLiteral("%1 tickets").arg(count));
}

}  // namespace orvane::app
