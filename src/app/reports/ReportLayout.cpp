#include "app/reports/ReportLayout.h"

#include <QFontMetricsF>
#include <QPagedPaintDevice>
#include <QPainter>
#include <algorithm>

#include "app/reports/PageFooter.h"

namespace orvane::app {
namespace {

const QColor ink(0x22, 0x27, 0x2e);
const QColor rule(0xc8, 0xcf, 0xd8);
const QColor headerFill(0xee, 0xf1, 0xf5);

}  // namespace

ReportLayout::ReportLayout(QPaintDevice& device)
    : device_(device), unitsPerPoint_(device.logicalDpiY() / 72.0), width_(device.width()) {}

QFont ReportLayout::font(qreal pt, bool bold) const {
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPointSizeF(pt);
  font.setBold(bold);
  // No ligatures: "fi" and "fl" stay two letters for anyone who copies or
  // searches the report's text.
  font.setStyleStrategy(QFont::PreferNoShaping);
  return QFont(font, &device_);
}

qreal ReportLayout::textHeight(const QString& text, const QFont& font, qreal width) const {
  const QFontMetricsF metrics(font, &device_);
  const QRectF bounds = metrics.boundingRect(QRectF(0, 0, width, 1e9), Qt::TextWordWrap, text);
  return std::max(bounds.height(), metrics.lineSpacing());
}

void ReportLayout::block(qreal height, Paint paint, bool keepWithNext) {
  auto b = std::make_shared<Block>();
  b->height = height;
  b->paint = std::move(paint);
  b->keepWithNext = keepWithNext;
  blocks_.push_back(std::move(b));
  currentHeader_.reset();
}

void ReportLayout::space(qreal pt) {
  block(points(pt), [](QPainter&, const QRectF&) {});
}

void ReportLayout::title(const QString& text) {
  const QFont f = font(17, true);
  block(textHeight(text, f, width_) + points(4), [f, text](QPainter& painter, const QRectF& area) {
    painter.setFont(f);
    painter.setPen(ink);
    painter.drawText(area, Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignTop, text);
  });
}

void ReportLayout::heading(const QString& text) {
  const QFont f = font(12.5, true);
  const qreal above = points(12);
  block(
      above + textHeight(text, f, width_) + points(5),
      [f, text, above, this](QPainter& painter, const QRectF& area) {
        painter.setFont(f);
        painter.setPen(ink);
        const QRectF textArea = area.adjusted(0, above, 0, -points(5));
        painter.drawText(textArea, Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignTop, text);
        painter.setPen(QPen(rule, points(0.6)));
        painter.drawLine(QPointF(area.left(), area.bottom() - points(2)),
                         QPointF(area.right(), area.bottom() - points(2)));
      },
      true);
}

void ReportLayout::subheading(const QString& text) {
  const QFont f = font(10, true);
  const qreal above = points(6);
  block(
      above + textHeight(text, f, width_) + points(3),
      [f, text, above](QPainter& painter, const QRectF& area) {
        painter.setFont(f);
        painter.setPen(ink);
        painter.drawText(area.adjusted(0, above, 0, 0), Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignTop, text);
      },
      true);
}

void ReportLayout::paragraph(const QString& text, qreal pt, QColor colour, bool bold) {
  const QFont f = font(pt, bold);
  block(textHeight(text, f, width_) + points(3), [f, text, colour](QPainter& painter, const QRectF& area) {
    painter.setFont(f);
    painter.setPen(colour);
    painter.drawText(area, Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignTop, text);
  });
}

void ReportLayout::table(const QStringList& header, const std::vector<QStringList>& rows,
                         const std::vector<qreal>& fractions, const std::vector<bool>& rightAligned) {
  const QFont bodyFont = font(8.5);
  const QFont headFont = font(8.5, true);
  const qreal pad = points(3);
  std::vector<qreal> widths;
  for (const qreal f : fractions) widths.push_back(f * width_);
  const auto alignment = [rightAligned](std::size_t column) {
    const bool right = column < rightAligned.size() && rightAligned[column];
    return Qt::TextWordWrap | Qt::AlignTop | (right ? Qt::AlignRight : Qt::AlignLeft);
  };
  const auto rowHeight = [&](const QStringList& cells, const QFont& f) {
    qreal height = 0;
    for (qsizetype c = 0; c < cells.size() && c < static_cast<qsizetype>(widths.size()); ++c)
      height = std::max(height, textHeight(cells[c], f, widths[static_cast<std::size_t>(c)] - 2 * pad));
    return height + 2 * pad;
  };
  const auto painter = [widths, pad, alignment](const QStringList& cells, const QFont& f, bool isHeader) {
    return [widths, pad, alignment, cells, f, isHeader](QPainter& p, const QRectF& area) {
      if (isHeader) p.fillRect(area, headerFill);
      p.setFont(f);
      p.setPen(ink);
      qreal x = area.left();
      for (qsizetype c = 0; c < cells.size() && c < static_cast<qsizetype>(widths.size()); ++c) {
        const qreal w = widths[static_cast<std::size_t>(c)];
        p.drawText(QRectF(x + pad, area.top() + pad, w - 2 * pad, area.height() - 2 * pad),
                   alignment(static_cast<std::size_t>(c)), cells[c]);
        x += w;
      }
      p.setPen(QPen(rule, 0));
      p.drawLine(QPointF(area.left(), area.bottom()), QPointF(area.right(), area.bottom()));
    };
  };
  block(rowHeight(header, headFont), painter(header, headFont, true), true);
  currentHeader_ = blocks_.back();
  for (const QStringList& row : rows) tableRow(rowHeight(row, bodyFont), painter(row, bodyFont, false));
}

void ReportLayout::tableRow(qreal height, Paint paint) {
  const std::shared_ptr<Block> header = currentHeader_;
  block(height, std::move(paint));
  blocks_.back()->header = header;
  currentHeader_ = header;
}

std::vector<std::vector<std::size_t>> ReportLayout::pages(qreal bodyHeight) const {
  std::vector<std::vector<std::size_t>> result(1);
  qreal y = 0;
  for (std::size_t i = 0; i < blocks_.size(); ++i) {
    // A block kept with the next one needs room for both (a heading over
    // its first row); a run of such blocks counts together.
    qreal needed = blocks_[i]->height;
    for (std::size_t j = i; j + 1 < blocks_.size() && blocks_[j]->keepWithNext; ++j) needed += blocks_[j + 1]->height;
    if (y > 0 && y + std::min(needed, bodyHeight) > bodyHeight) {
      result.emplace_back();
      y = 0;
    }
    if (y == 0 && blocks_[i]->header) y += blocks_[i]->header->height;
    result.back().push_back(i);
    y += blocks_[i]->height;
  }
  return result;
}

int ReportLayout::paint(QPainter& painter, QPagedPaintDevice& device, const ReportBranding& branding) {
  const qreal footer = pageFooterHeight(painter);
  const qreal bodyHeight = device.height() - footer;
  const auto laidOut = pages(bodyHeight);
  const int count = static_cast<int>(laidOut.size());
  for (int page = 0; page < count; ++page) {
    if (page > 0) device.newPage();
    qreal y = 0;
    for (const std::size_t index : laidOut[static_cast<std::size_t>(page)]) {
      const Block& b = *blocks_[index];
      if (y == 0 && b.header) {
        painter.save();
        b.header->paint(painter, QRectF(0, y, width_, b.header->height));
        painter.restore();
        y += b.header->height;
      }
      painter.save();
      b.paint(painter, QRectF(0, y, width_, b.height));
      painter.restore();
      y += b.height;
    }
    drawPageFooter(painter, QRectF(0, bodyHeight, width_, footer), branding, page + 1, count);
  }
  return count;
}

}  // namespace orvane::app
