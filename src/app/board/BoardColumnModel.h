#pragma once

#include <QAbstractListModel>
#include <optional>
#include <vector>

#include "app/board/TicketCard.h"

namespace orvane::app {

// The cards of one board column, in board order, for a QListView. Cards are
// dragged as their ticket ids (every selected card, top to bottom); a drop
// asks for a move (moveRequested) and the
// board performs it through the service, so the model itself never changes
// the store and the view never removes rows on its own.
class BoardColumnModel : public QAbstractListModel {
  Q_OBJECT

 public:
  static constexpr const char* mimeType = "application/x-orvane-ticket";
  enum Role { TicketIdRole = Qt::UserRole + 1 };

  explicit BoardColumnModel(QObject* parent = nullptr);

  void setCards(const Uuid& column, std::vector<TicketCard> cards);
  const Uuid& column() const { return column_; }
  const TicketCard& card(int row) const { return cards_[static_cast<std::size_t>(row)]; }
  int rowOf(const Uuid& ticket) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  Qt::DropActions supportedDropActions() const override;
  Qt::DropActions supportedDragActions() const override;
  QStringList mimeTypes() const override;
  QMimeData* mimeData(const QModelIndexList& indexes) const override;
  bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                       const QModelIndex& parent) const override;
  bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                    const QModelIndex& parent) override;

 signals:
  // `row` is the view row the card was dropped before; -1 for the end.
  void moveRequested(const std::vector<orvane::Uuid>& tickets, const orvane::Uuid& column, int row);

 private:
  Uuid column_;
  std::vector<TicketCard> cards_;
};

}  // namespace orvane::app
