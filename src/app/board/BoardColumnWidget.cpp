#include "app/board/BoardColumnWidget.h"

#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QToolButton>
#include <QVBoxLayout>

#include "app/board/BoardColumnModel.h"
#include "app/board/CardDelegate.h"
#include "app/board/WipLimitDialog.h"
#include "app/shell/AppContext.h"

namespace orvane::app {

namespace {

QString typeLabel(ColumnType type) {
  const std::string_view label = formLabel(type);
  return QString::fromUtf8(label.data(), static_cast<qsizetype>(label.size()));
}

}  // namespace

BoardColumnWidget::BoardColumnWidget(AppContext& context, QWidget* parent) : QFrame(parent), context_(context) {
  setObjectName(QStringLiteral("boardColumn"));
  setFrameShape(QFrame::StyledPanel);
  setFixedWidth(columnWidth);

  name_ = new QLabel(this);
  QFont nameFont = name_->font();
  nameFont.setBold(true);
  name_->setFont(nameFont);
  type_ = new QLabel(this);
  type_->setStyleSheet(QStringLiteral("color: palette(placeholder-text);"));
  count_ = new QLabel(this);
  count_->setObjectName(QStringLiteral("count"));
  warning_ = new QLabel(QStringLiteral("Over the WIP limit"), this);
  warning_->setObjectName(QStringLiteral("wipWarning"));
  warning_->setStyleSheet(QStringLiteral("color: #c62828; font-weight: bold;"));
  warning_->hide();

  menuButton_ = new QToolButton(this);
  menuButton_->setText(QStringLiteral("⋯"));
  menuButton_->setAutoRaise(true);
  menuButton_->setPopupMode(QToolButton::InstantPopup);
  auto* menu = new QMenu(menuButton_);
  menu->addAction(QStringLiteral("Rename column…"), this, &BoardColumnWidget::rename);
  menu->addAction(QStringLiteral("WIP limit…"), this, &BoardColumnWidget::editLimit);
  moveLeft_ = menu->addAction(QStringLiteral("Move left"), this, [this] { moveBy(-1); });
  moveRight_ = menu->addAction(QStringLiteral("Move right"), this, [this] { moveBy(1); });
  menu->addSeparator();
  menu->addAction(QStringLiteral("Delete column"), this, &BoardColumnWidget::remove);
  menuButton_->setMenu(menu);

  auto* titleRow = new QHBoxLayout;
  titleRow->addWidget(name_, 1);
  titleRow->addWidget(count_);
  titleRow->addWidget(menuButton_);
  auto* typeRow = new QHBoxLayout;
  typeRow->addWidget(type_);
  typeRow->addStretch();
  typeRow->addWidget(warning_);

  model_ = new BoardColumnModel(this);
  list_ = new QListView(this);
  list_->setModel(model_);
  list_->setItemDelegate(new CardDelegate(list_));
  list_->setUniformItemSizes(true);
  list_->setLayoutMode(QListView::Batched);
  list_->setBatchSize(200);
  list_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  list_->setDragDropMode(QAbstractItemView::DragDrop);
  list_->setDefaultDropAction(Qt::MoveAction);
  list_->setDragEnabled(true);
  list_->setAcceptDrops(true);
  list_->setDropIndicatorShown(true);
  list_->setFrameShape(QFrame::NoFrame);
  list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  list_->setResizeMode(QListView::Adjust);
  list_->setStyleSheet(QStringLiteral("QListView { background: transparent; }"));
  connect(model_, &BoardColumnModel::moveRequested, this, &BoardColumnWidget::moveRequested);
  connect(list_, &QListView::doubleClicked, this, [this](const QModelIndex& index) {
    if (index.isValid()) emit openTicketRequested(model_->card(index.row()).id);
  });

  // The card menu belongs to the board: it acts on the selection, which
  // may span columns. A right click selects the card under it first.
  list_->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(list_, &QListView::customContextMenuRequested, this, [this](const QPoint& at) {
    if (list_->indexAt(at).isValid()) emit cardMenuRequested(list_->viewport()->mapToGlobal(at));
  });

  quickAdd_ = new QLineEdit(this);
  quickAdd_->setObjectName(QStringLiteral("quickAdd"));
  quickAdd_->setPlaceholderText(QStringLiteral("Add a ticket…"));
  connect(quickAdd_, &QLineEdit::returnPressed, this, &BoardColumnWidget::addTicket);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(6, 6, 6, 6);
  layout->setSpacing(4);
  layout->addLayout(titleRow);
  layout->addLayout(typeRow);
  layout->addWidget(list_, 1);
  layout->addWidget(quickAdd_);
}

void BoardColumnWidget::setColumn(const BoardColumn& column, std::size_t columnCount, std::vector<TicketCard> cards,
                                  std::size_t activeCount) {
  column_ = column;
  columnCount_ = columnCount;
  name_->setText(QString::fromStdString(column.name));
  type_->setText(typeLabel(column.effectiveType()));
  QString count = QString::number(activeCount);
  if (column.wipLimit) count += QStringLiteral(" / ") + QString::number(*column.wipLimit);
  if (cards.size() != activeCount) count = QString::number(cards.size()) + QStringLiteral(" of ") + count;
  count_->setText(count);
  warning_->setVisible(column.wipLimit && static_cast<std::int64_t>(activeCount) > *column.wipLimit);
  model_->setCards(column.id, std::move(cards));
  // The ends of the board cannot move further out.
  moveLeft_->setEnabled(column.position > 0);
  moveRight_->setEnabled(column.position + 1 < static_cast<std::int64_t>(columnCount));
}

bool BoardColumnWidget::showsWipWarning() const { return !warning_->isHidden(); }
QString BoardColumnWidget::countText() const { return count_->text(); }

void BoardColumnWidget::addTicket() {
  NewTicket ticket;
  ticket.title = quickAdd_->text().toStdString();
  ticket.column = column_.id;
  const Uuid project = column_.projectId;
  if (context_.perform(
          QStringLiteral("New ticket"),
          [&](BoardService& board) { board.createTicket(project, ticket, context_.now()); }, this)) {
    quickAdd_->clear();
  }
}

void BoardColumnWidget::rename() {
  bool ok = false;
  const QString name = QInputDialog::getText(this, QStringLiteral("Rename column"), QStringLiteral("Name"),
                                             QLineEdit::Normal, QString::fromStdString(column_.name), &ok);
  if (!ok) return;
  const Uuid id = column_.id;
  context_.perform(
      QStringLiteral("Rename column"), [&](BoardService& board) { board.renameColumn(id, name.toStdString()); }, this);
}

void BoardColumnWidget::editLimit() {
  auto* dialog = new WipLimitDialog(QString::fromStdString(column_.name), column_.wipLimit, this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  connect(dialog, &QDialog::accepted, this, [this, dialog, id = column_.id] {
    const std::optional<std::int64_t> limit = dialog->limit();
    context_.perform(
        QStringLiteral("Change WIP limit"), [&](BoardService& board) { board.setWIPLimit(id, limit); }, this);
  });
  dialog->open();
}

void BoardColumnWidget::moveBy(int offset) {
  const std::int64_t to = column_.position + offset;
  if (to < 0 || to >= static_cast<std::int64_t>(columnCount_)) return;
  const Uuid id = column_.id;
  context_.perform(
      QStringLiteral("Move column"), [&](BoardService& board) { board.moveColumn(id, to); }, this);
}

void BoardColumnWidget::remove() {
  const Uuid id = column_.id;
  context_.perform(
      QStringLiteral("Delete column"), [&](BoardService& board) { board.deleteColumn(id); }, this);
}

}  // namespace orvane::app
