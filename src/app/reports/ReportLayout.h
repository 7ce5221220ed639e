#pragma once

#include <QColor>
#include <QFont>
#include <QRectF>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <vector>

#include "core/reports/ReportBranding.h"

class QPagedPaintDevice;
class QPaintDevice;
class QPainter;

namespace orvane::app {

// A report laid out as a flow of blocks down the pages of one device: every
// block is measured first, then the blocks are split into pages, so the
// footer can say "Page N of M", then painted. Lengths given to the layout are
// in points; the painter works in the device's own units.
class ReportLayout {
 public:
  using Paint = std::function<void(QPainter& painter, const QRectF& area)>;

  explicit ReportLayout(QPaintDevice& device);

  qreal points(qreal pt) const { return pt * unitsPerPoint_; }
  QFont font(qreal pt, bool bold = false) const;
  qreal width() const { return width_; }
  // The height `text` takes wrapped to `width` in `font`.
  qreal textHeight(const QString& text, const QFont& font, qreal width) const;

  // A block of `height` device units; one that is kept with the next moves
  // to the next page with it. A block under a table header gets the header
  // repeated when it starts a page.
  void block(qreal height, Paint paint, bool keepWithNext = false);
  void space(qreal pt);
  void title(const QString& text);
  void heading(const QString& text);
  // A smaller heading over a table or a chart, kept with it.
  void subheading(const QString& text);
  void paragraph(const QString& text, qreal pt = 9.5, QColor colour = QColor(0x22, 0x27, 0x2e), bool bold = false);

  // A table with `fractions` of the width per column (summing to 1 or
  // less); `rightAligned` marks numeric columns. Cells wrap; the header
  // repeats on every page the table runs onto.
  void table(const QStringList& header, const std::vector<QStringList>& rows, const std::vector<qreal>& fractions,
             const std::vector<bool>& rightAligned = {});
  // Rows under the current table header, painted by the caller.
  void tableRow(qreal height, Paint paint);

  // Paints every page: the blocks, then the footer. Returns the page count.
  int paint(QPainter& painter, QPagedPaintDevice& device, const ReportBranding& branding);
  // How many pages the blocks take on a page body of `bodyHeight`.
  int pageCount(qreal bodyHeight) const { return static_cast<int>(pages(bodyHeight).size()); }

 private:
  struct Block {
    qreal height = 0;
    Paint paint;
    bool keepWithNext = false;
    std::shared_ptr<Block> header;  // repeated when this block starts a page
  };
  std::vector<std::vector<std::size_t>> pages(qreal bodyHeight) const;

  QPaintDevice& device_;
  qreal unitsPerPoint_ = 1;
  qreal width_ = 0;
  std::vector<std::shared_ptr<Block>> blocks_;
  std::shared_ptr<Block> currentHeader_;
};

}  // namespace orvane::app
