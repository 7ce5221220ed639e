#include "app/board/CardDelegate.h"

#include <QApplication>
#include <QPainter>
#include <QPainterPath>
#include <QTextLayout>

#include "app/board/BoardColumnModel.h"

namespace orvane::app {

namespace {

QColor priorityColor(TicketPriority priority) {
  switch (priority) {
    case TicketPriority::low:
      return QColor(0x6b, 0x8e, 0x9e);
    case TicketPriority::medium:
      return QColor(0x4a, 0x7b, 0xc8);
    case TicketPriority::high:
      return QColor(0xd9, 0x82, 0x2b);
    case TicketPriority::urgent:
      return QColor(0xc6, 0x28, 0x28);
  }
  return Qt::gray;
}

// Draws `text` in at most `maxLines` lines inside `rect`, eliding the last.
void drawWrapped(QPainter* painter, const QRect& rect, const QString& text, int maxLines) {
  const QFontMetrics metrics(painter->font());
  QTextLayout layout(text, painter->font());
  layout.beginLayout();
  int y = rect.top();
  for (int line = 0; line < maxLines; ++line) {
    QTextLine textLine = layout.createLine();
    if (!textLine.isValid()) break;
    textLine.setLineWidth(rect.width());
    const bool last = line == maxLines - 1;
    const QString piece = text.mid(textLine.textStart(), last ? -1 : textLine.textLength());
    const QString shown = last ? metrics.elidedText(piece, Qt::ElideRight, rect.width()) : piece.trimmed();
    painter->drawText(QPoint(rect.left(), y + metrics.ascent()), shown);
    y += metrics.lineSpacing();
  }
  layout.endLayout();
}

}  // namespace

CardDelegate::CardDelegate(QObject* parent) : QStyledItemDelegate(parent) {}

QSize CardDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const {
  // The width follows the column (the list stretches its items).
  return {option.rect.width() > 0 ? option.rect.width() : 120, cardHeight};
}

void CardDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
  const auto* model = qobject_cast<const BoardColumnModel*>(index.model());
  if (model == nullptr || index.row() >= model->rowCount()) return;
  const TicketCard& card = model->card(index.row());

  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  const QRect box = option.rect.adjusted(4, 3, -4, -3);
  const bool selected = option.state & QStyle::State_Selected;
  QPainterPath outline;
  outline.addRoundedRect(box, 6, 6);
  // The list is transparent over the column; a card is always opaque.
  const QPalette palette = QApplication::palette();
  painter->fillPath(outline, palette.color(QPalette::Base));
  painter->setPen(QPen(selected ? palette.color(QPalette::Highlight) : QColor(0, 0, 0, 40), selected ? 2 : 1));
  painter->drawPath(outline);
  if (card.epicColor.isValid()) {
    painter->setClipPath(outline);
    painter->fillRect(QRect(box.left(), box.top(), 5, box.height()), card.epicColor);
    painter->setClipping(false);
  }

  const QRect inner = box.adjusted(12, 6, -8, -6);
  QFont base = option.font;
  QFont small = base;
  small.setPointSizeF(base.pointSizeF() * 0.85);
  QFont bold = small;
  bold.setBold(true);
  const QColor textColor = palette.color(QPalette::Text);
  const QColor muted = palette.color(QPalette::PlaceholderText);

  // Line 1: reference, priority chip, marks at the right.
  painter->setFont(bold);
  QFontMetrics smallMetrics(bold);
  int x = inner.left();
  const int line1 = inner.top() + smallMetrics.ascent();
  painter->setPen(muted);
  painter->drawText(QPoint(x, line1), card.reference);
  x += smallMetrics.horizontalAdvance(card.reference) + 8;
  const QRect chip(x, inner.top(), smallMetrics.horizontalAdvance(card.priorityLabel) + 10, smallMetrics.height());
  painter->setPen(Qt::NoPen);
  painter->setBrush(priorityColor(card.priority));
  painter->drawRoundedRect(chip, 4, 4);
  painter->setPen(Qt::white);
  painter->drawText(chip, Qt::AlignCenter, card.priorityLabel);
  // Marks at the right, shortened to their symbol when the line is narrow.
  int right = inner.right();
  const int leftEdge = chip.right() + 8;
  auto mark = [&](const QString& text, const QString& brief, const QColor& color) {
    const QString shown = right - smallMetrics.horizontalAdvance(text) >= leftEdge ? text : brief;
    const int width = smallMetrics.horizontalAdvance(shown);
    if (right - width < leftEdge) return;
    right -= width;
    painter->setPen(color);
    painter->drawText(QPoint(right, line1), shown);
    right -= 8;
  };
  if (card.blocked) mark(QStringLiteral("Blocked"), QStringLiteral("⛔"), QColor(0xc6, 0x28, 0x28));
  if (card.thisWeek) mark(QStringLiteral("★ This week"), QStringLiteral("★"), QColor(0x8a, 0x5a, 0x00));

  // Lines 2-3: the title.
  painter->setFont(base);
  painter->setPen(textColor);
  const QRect titleRect(inner.left(), inner.top() + smallMetrics.height() + 4, inner.width(),
                        QFontMetrics(base).lineSpacing() * 2);
  drawWrapped(painter, titleRect, card.title, 2);

  // Last line: assignee, due date, checklist.
  painter->setFont(small);
  const QFontMetrics metrics(small);
  const int baseline = inner.bottom() - metrics.descent();
  QStringList parts;
  if (!card.assignee.isEmpty()) parts << card.assignee;
  if (!card.epicName.isEmpty()) parts << card.epicName;
  painter->setPen(muted);
  int leftWidth = inner.width();
  QString trailing;
  if (card.checklistTotal > 0) trailing = QStringLiteral("☑ %1/%2").arg(card.checklistDone).arg(card.checklistTotal);
  if (!card.dueText.isEmpty()) {
    const QString due = QStringLiteral("Due ") + card.dueText;
    trailing = trailing.isEmpty() ? due : due + QStringLiteral("  ") + trailing;
  }
  if (!trailing.isEmpty()) {
    const int width = metrics.horizontalAdvance(trailing);
    painter->setPen(card.overdue ? QColor(0xc6, 0x28, 0x28) : muted);
    painter->drawText(QPoint(inner.right() - width, baseline), trailing);
    leftWidth -= width + 10;
  }
  painter->setPen(muted);
  painter->drawText(QPoint(inner.left(), baseline),
                    metrics.elidedText(parts.join(QStringLiteral(" · ")), Qt::ElideRight, std::max(0, leftWidth)));
  painter->restore();
}

}  // namespace orvane::app
