#include "app/board/BoardColumnModel.h"

#include <QMimeData>
#include <algorithm>

namespace orvane::app {

BoardColumnModel::BoardColumnModel(QObject* parent) : QAbstractListModel(parent) {}

void BoardColumnModel::setCards(const Uuid& column, std::vector<TicketCard> cards) {
  beginResetModel();
  column_ = column;
  cards_ = std::move(cards);
  endResetModel();
}

int BoardColumnModel::rowOf(const Uuid& ticket) const {
  for (std::size_t row = 0; row < cards_.size(); ++row) {
    if (cards_[row].id == ticket) return static_cast<int>(row);
  }
  return -1;
}

int BoardColumnModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(cards_.size());
}

QVariant BoardColumnModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) return {};
  const TicketCard& c = card(index.row());
  switch (role) {
    case Qt::DisplayRole:
      return c.reference + QStringLiteral(" ") + c.title;
    case Qt::ToolTipRole:
      return c.reference + QStringLiteral(" ") + c.title;
    case TicketIdRole:
      return QString::fromStdString(c.id.text());
    default:
      return {};
  }
}

Qt::ItemFlags BoardColumnModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::ItemIsDropEnabled;
  return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
}

Qt::DropActions BoardColumnModel::supportedDropActions() const { return Qt::MoveAction; }
Qt::DropActions BoardColumnModel::supportedDragActions() const { return Qt::MoveAction; }

QStringList BoardColumnModel::mimeTypes() const { return {QString::fromLatin1(mimeType)}; }

QMimeData* BoardColumnModel::mimeData(const QModelIndexList& indexes) const {
  if (indexes.isEmpty()) return nullptr;
  std::vector<int> rows;
  for (const QModelIndex& index : indexes) rows.push_back(index.row());
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  QByteArray ids;
  for (int row : rows) {
    if (!ids.isEmpty()) ids += '\n';
    ids += QByteArray::fromStdString(card(row).id.text());
  }
  auto* mime = new QMimeData;
  mime->setData(QString::fromLatin1(mimeType), ids);
  return mime;
}

bool BoardColumnModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int, const QModelIndex&) const {
  return data != nullptr && data->hasFormat(QString::fromLatin1(mimeType));
}

bool BoardColumnModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                                    const QModelIndex& parent) {
  if (!canDropMimeData(data, action, row, column, parent)) return false;
  std::vector<Uuid> tickets;
  for (const QByteArray& line : data->data(QString::fromLatin1(mimeType)).split('\n')) {
    const std::optional<Uuid> ticket = Uuid::parse(line.toStdString());
    if (!ticket) return false;
    tickets.push_back(*ticket);
  }
  if (tickets.empty()) return false;
  // Dropped onto a card: before that card.
  if (row < 0 && parent.isValid()) row = parent.row();
  emit moveRequested(tickets, column_, row);
  // The move happens through the service and a reload; nothing to remove here.
  return false;
}

}  // namespace orvane::app
