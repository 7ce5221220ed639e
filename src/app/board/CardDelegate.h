#pragma once

#include <QStyledItemDelegate>

namespace orvane::app {

// Paints a board card from its TicketCard: epic colour strip, reference,
// priority, title (two lines at most), then assignee, due date, checklist
// progress and the blocked and this-week marks. Every card has one height,
// so the list can lay out thousands without measuring each.
class CardDelegate : public QStyledItemDelegate {
  Q_OBJECT

 public:
  static constexpr int cardHeight = 92;

  explicit CardDelegate(QObject* parent = nullptr);

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

}  // namespace orvane::app
