#pragma once

#include <QAbstractTableModel>
#include <vector>

#include "app/board/TicketCard.h"

namespace orvane::app {

// Tickets as table rows for the list and archived views. Sorting is done
// here on the cards made at load time, so a click on a header of a list of
// thousands sorts plain values; ties keep ticket-number order.
class TicketTableModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum class Field { reference, title, status, priority, epic, assignee, due, iteration, archived };
  enum Role { TicketIdRole = Qt::UserRole + 1 };

  TicketTableModel(std::vector<Field> fields, QObject* parent = nullptr);

  // Replaces the rows and applies the current sort again.
  void setCards(std::vector<TicketCard> cards);
  const TicketCard& card(int row) const { return cards_[static_cast<std::size_t>(row)]; }
  Field field(int column) const { return fields_[static_cast<std::size_t>(column)]; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  void sort(int column, Qt::SortOrder order) override;

 private:
  void sortCards();

  std::vector<Field> fields_;
  std::vector<TicketCard> cards_;
  int sortColumn_ = 0;
  Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
};

}  // namespace orvane::app
