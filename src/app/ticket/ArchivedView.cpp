#include "app/ticket/ArchivedView.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QStackedWidget>
#include <QTableView>
#include <QVBoxLayout>

#include "app/shell/AppContext.h"
#include "app/ticket/TicketTableModel.h"

namespace orvane::app {

ArchivedView::ArchivedView(AppContext& context, QWidget* parent) : ProjectViewBase(context, parent) {
  setObjectName(QStringLiteral("archivedView"));
  using Field = TicketTableModel::Field;
  model_ = new TicketTableModel(
      {Field::reference, Field::title, Field::status, Field::epic, Field::assignee, Field::archived}, this);
  table_ = new QTableView(this);
  table_->setModel(model_);
  table_->setSortingEnabled(true);
  table_->sortByColumn(5, Qt::DescendingOrder);
  table_->setSelectionBehavior(QAbstractItemView::SelectRows);
  table_->setSelectionMode(QAbstractItemView::SingleSelection);
  table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table_->verticalHeader()->hide();
  const int widths[] = {90, 420, 130, 160, 140};
  for (int column = 0; column < 5; ++column) table_->setColumnWidth(column, widths[column]);
  table_->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
  connect(table_, &QTableView::doubleClicked, this, [this](const QModelIndex& index) {
    if (index.isValid()) emit openTicketRequested(model_->card(index.row()).id);
  });
  connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, this, &ArchivedView::updateButtons);

  empty_ = new QLabel(this);
  empty_->setObjectName(QStringLiteral("emptyText"));
  empty_->setAlignment(Qt::AlignCenter);
  stack_ = new QStackedWidget(this);
  stack_->addWidget(table_);
  stack_->addWidget(empty_);

  restore_ = new QPushButton(QStringLiteral("Restore"), this);
  delete_ = new QPushButton(QStringLiteral("Delete…"), this);
  connect(restore_, &QPushButton::clicked, this, &ArchivedView::restoreSelected);
  connect(delete_, &QPushButton::clicked, this, &ArchivedView::deleteSelected);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(restore_);
  buttons->addWidget(delete_);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(8, 8, 8, 8);
  layout->addWidget(stack_, 1);
  layout->addLayout(buttons);
  updateButtons();
}

void ArchivedView::setFilter(const TicketFilter& filter) {
  filter_ = filter;
  showProject(project());
}

QString ArchivedView::emptyText() const { return stack_->currentWidget() == empty_ ? empty_->text() : QString(); }

void ArchivedView::reload() {
  std::vector<TicketCard> cards;
  {
    if (const auto snapshot = this->snapshot()) {
      const TicketCardFactory factory(*snapshot, context_.calendar(), context_.now());
      // Only archived tickets, whatever the bar says about the archive.
      TicketFilter archived = filter_;
      archived.archivedOnly = true;
      for (const Ticket* ticket : archived.apply(snapshot->tickets, *snapshot)) cards.push_back(factory.card(*ticket));
    }
  }
  const bool none = cards.empty();
  model_->setCards(std::move(cards));
  empty_->setText(filter_.isActive() ? QStringLiteral("No archived tickets match")
                                     : QStringLiteral("No archived tickets"));
  stack_->setCurrentWidget(none ? static_cast<QWidget*>(empty_) : table_);
  updateButtons();
}

std::optional<Uuid> ArchivedView::selectedTicket() const {
  const QModelIndexList rows = table_->selectionModel()->selectedRows();
  if (rows.isEmpty()) return std::nullopt;
  return model_->card(rows.front().row()).id;
}

void ArchivedView::updateButtons() {
  const bool any = selectedTicket().has_value();
  restore_->setEnabled(any);
  delete_->setEnabled(any);
}

void ArchivedView::restoreSelected() {
  const std::optional<Uuid> ticket = selectedTicket();
  if (!ticket) return;
  context_.perform(
      QStringLiteral("Restore ticket"), [&](BoardService& board) { board.unarchive(*ticket); }, this);
}

void ArchivedView::deleteSelected() {
  const std::optional<Uuid> ticket = selectedTicket();
  if (!ticket) return;
  auto* confirm = new QMessageBox(QMessageBox::Warning, QStringLiteral("Delete ticket"),
                                  QStringLiteral("Delete this ticket?"), QMessageBox::Cancel, this);
  confirm->setObjectName(QStringLiteral("confirmDeleteTicket"));
  confirm->setInformativeText(
      QStringLiteral("Its comments, checklist, links and history are deleted with it. Use Undo to bring it back."));
  QPushButton* deleteButton = confirm->addButton(QStringLiteral("Delete"), QMessageBox::DestructiveRole);
  confirm->setAttribute(Qt::WA_DeleteOnClose);
  confirm->setWindowModality(Qt::WindowModal);
  const Uuid id = *ticket;
  connect(confirm, &QMessageBox::buttonClicked, this, [this, deleteButton, id](QAbstractButton* clicked) {
    if (clicked != deleteButton) return;
    context_.perform(
        QStringLiteral("Delete ticket"), [&](BoardService& board) { board.deleteTicket(id); }, this);
  });
  confirm->open();
}

}  // namespace orvane::app
