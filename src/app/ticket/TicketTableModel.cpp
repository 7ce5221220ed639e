#include "app/ticket/TicketTableModel.h"

#include <QCollator>
#include <algorithm>

namespace orvane::app {

namespace {

QString header(TicketTableModel::Field field) {
  using Field = TicketTableModel::Field;
  switch (field) {
    case Field::reference:
      return QStringLiteral("Ticket");
    case Field::title:
      return QStringLiteral("Title");
    case Field::status:
      return QStringLiteral("Column");
    case Field::priority:
      return QStringLiteral("Priority");
    case Field::epic:
      return QStringLiteral("Epic");
    case Field::assignee:
      return QStringLiteral("Assignee");
    case Field::due:
      return QStringLiteral("Due");
    case Field::iteration:
      return QStringLiteral("Iteration");
    case Field::archived:
      return QStringLiteral("Archived");
  }
  return {};
}

QString text(const TicketCard& card, TicketTableModel::Field field) {
  using Field = TicketTableModel::Field;
  switch (field) {
    case Field::reference:
      return card.reference;
    case Field::title:
      return card.title;
    case Field::status:
      return card.columnName;
    case Field::priority:
      return card.priorityLabel;
    case Field::epic:
      return card.epicName;
    case Field::assignee:
      return card.assignee;
    case Field::due:
      return card.dueText;
    case Field::iteration:
      return card.iterationName;
    case Field::archived:
      return card.archivedText;
  }
  return {};
}

// Absent dates sort after every present one, whichever the direction.
int compareOptional(const std::optional<Timestamp>& a, const std::optional<Timestamp>& b) {
  if (a && b) return *a < *b ? -1 : (*b < *a ? 1 : 0);
  if (a) return -1;
  if (b) return 1;
  return 0;
}

}  // namespace

TicketTableModel::TicketTableModel(std::vector<Field> fields, QObject* parent)
    : QAbstractTableModel(parent), fields_(std::move(fields)) {}

void TicketTableModel::setCards(std::vector<TicketCard> cards) {
  beginResetModel();
  cards_ = std::move(cards);
  sortCards();
  endResetModel();
}

int TicketTableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(cards_.size());
}

int TicketTableModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(fields_.size());
}

QVariant TicketTableModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount() || index.column() >= columnCount()) return {};
  const TicketCard& row = card(index.row());
  const Field column = field(index.column());
  switch (role) {
    case Qt::DisplayRole: {
      QString shown = text(row, column);
      if (column == Field::title) {
        if (row.blocked) shown += QStringLiteral("  · Blocked");
        if (row.thisWeek) shown += QStringLiteral("  · This week");
      }
      return shown;
    }
    case Qt::ForegroundRole:
      if (column == Field::due && row.overdue) return QColor(0xc6, 0x28, 0x28);
      return {};
    case Qt::DecorationRole:
      if (column == Field::epic && row.epicColor.isValid()) return row.epicColor;
      return {};
    case TicketIdRole:
      return QString::fromStdString(row.id.text());
    default:
      return {};
  }
}

QVariant TicketTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= columnCount()) return {};
  return header(field(section));
}

void TicketTableModel::sort(int column, Qt::SortOrder order) {
  if (column < 0 || column >= columnCount()) return;
  emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
  sortColumn_ = column;
  sortOrder_ = order;
  sortCards();
  emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

void TicketTableModel::sortCards() {
  if (fields_.empty()) return;
  const Field by = field(sortColumn_);
  const bool descending = sortOrder_ == Qt::DescendingOrder;
  QCollator collator;
  collator.setNumericMode(true);
  collator.setCaseSensitivity(Qt::CaseInsensitive);
  auto compare = [&](const TicketCard& a, const TicketCard& b) -> int {
    switch (by) {
      case Field::reference:
        return a.number < b.number ? -1 : (a.number > b.number ? 1 : 0);
      case Field::priority:
        return a.priority < b.priority ? -1 : (a.priority > b.priority ? 1 : 0);
      case Field::due:
        return compareOptional(a.dueDate, b.dueDate);
      case Field::archived:
        return compareOptional(a.archivedAt, b.archivedAt);
      default: {
        // Empty texts go last, like absent dates.
        const QString x = text(a, by);
        const QString y = text(b, by);
        if (x.isEmpty() != y.isEmpty()) return x.isEmpty() ? 1 : -1;
        return collator.compare(x, y);
      }
    }
  };
  std::sort(cards_.begin(), cards_.end(), [&](const TicketCard& a, const TicketCard& b) {
    int order = compare(a, b);
    const bool absentLast = (by == Field::due && (!a.dueDate || !b.dueDate)) ||
                            (by == Field::archived && (!a.archivedAt || !b.archivedAt)) ||
                            (by != Field::reference && by != Field::priority && by != Field::due &&
                             by != Field::archived && (text(a, by).isEmpty() || text(b, by).isEmpty()));
    if (descending && !absentLast) order = -order;
    if (order != 0) return order < 0;
    return a.number < b.number;
  });
}

}  // namespace orvane::app
