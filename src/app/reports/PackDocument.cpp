#include "app/reports/PackDocument.h"

#include <QBuffer>
#include <QFont>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QTextLayout>
#include <QTextOption>
#include <memory>
#include <vector>

#include "app/reports/PageFooter.h"

namespace orvane::app {
namespace {

constexpr int dotsPerInch = 300;

enum class Style { name, subtitle, ticket, heading, body, quiet, missing };

// One paragraph of the page flow.
struct Block {
  QString text;
  Style style = Style::body;
  qreal indentPoints = 0;
  qreal spaceBeforePoints = 0;
  bool keepWithNext = false;  // a heading never ends a page on its own
};

QFont fontFor(Style style, QPaintDevice* device) {
  QFont font(QStringLiteral("DejaVu Sans"));
  // No ligatures: "fi" stays two letters, so a search in the PDF for a file
  // name or "Missing files" finds it.
  font.setStyleStrategy(QFont::PreferNoShaping);
  switch (style) {
    case Style::name:
      font.setPointSizeF(18), font.setBold(true);
      break;
    case Style::subtitle:
      font.setPointSizeF(10.5);
      break;
    case Style::ticket:
      font.setPointSizeF(13), font.setBold(true);
      break;
    case Style::heading:
      font.setPointSizeF(9.5), font.setBold(true);
      break;
    case Style::body:
    case Style::missing:
      font.setPointSizeF(9.5);
      break;
    case Style::quiet:
      font.setPointSizeF(8.5);
      break;
  }
  return QFont(font, device);
}

QColor colourFor(Style style) {
  switch (style) {
    case Style::subtitle:
    case Style::quiet:
      return QColor(0x55, 0x5d, 0x68);
    case Style::missing:
      return QColor(0xb0, 0x2a, 0x1e);
    case Style::heading:
      return QColor(0x2b, 0x4a, 0x6f);
    default:
      return QColor(0x1d, 0x22, 0x28);
  }
}

QString q(const std::string& text) { return QString::fromStdString(text); }

QString countOf(std::int64_t n, const QString& noun) {
  return QStringLiteral("%1 %2%3").arg(n).arg(noun, n == 1 ? QString() : QStringLiteral("s"));
}

std::vector<Block> blocksOf(const DevelopmentPacks& set, const DevelopmentPack& pack) {
  std::vector<Block> blocks;
  const auto add = [&](QString text, Style style, qreal indent = 0, qreal before = 0, bool keep = false) {
    blocks.push_back({std::move(text), style, indent, before, keep});
  };
  add(q(pack.personName), Style::name);
  add(QStringLiteral("%1 · development pack for the week of %2 to %3")
          .arg(q(set.projectName), q(set.weekStart.description()), q(set.weekStart.addingDays(6).description())),
      Style::subtitle, 0, 4);
  const std::int64_t missing = pack.missingCount();
  QString counts = countOf(static_cast<std::int64_t>(pack.tickets.size()), QStringLiteral("ticket")) +
                   QStringLiteral(" · ") + countOf(pack.fileCount(), QStringLiteral("linked file"));
  if (missing > 0) counts += QStringLiteral(", %1 missing").arg(missing);
  add(counts, Style::subtitle, 0, 2);
  add(QStringLiteral("Quote the ticket reference when you reply about a ticket."), Style::quiet, 0, 2);

  for (const PackTicket& ticket : pack.tickets) {
    add(q(ticket.reference) + QStringLiteral("  ") + q(ticket.title), Style::ticket, 0, 16, true);
    add(ticket.due ? QStringLiteral("Due %1").arg(q(ticket.due->description())) : QStringLiteral("No due date"),
        Style::quiet, 0, 2);
    if (!ticket.details.empty()) {
      add(QStringLiteral("Details"), Style::heading, 0, 8, true);
      for (const QString& line : q(ticket.details).split(QLatin1Char('\n'))) add(line, Style::body, 10, 1);
    }
    if (!ticket.checklist.empty()) {
      add(QStringLiteral("Checklist"), Style::heading, 0, 8, true);
      for (const PackChecklistItem& item : ticket.checklist)
        add((item.isDone ? QStringLiteral("☑ ") : QStringLiteral("☐ ")) + q(item.title), Style::body, 10, 1);
    }
    if (!ticket.links.empty()) {
      add(QStringLiteral("Links"), Style::heading, 0, 8, true);
      for (const PackLink& link : ticket.links)
        add(q(link.relation) + QLatin1Char(' ') + q(link.reference) + QStringLiteral("  ") + q(link.title), Style::body,
            10, 1);
    }
    if (!ticket.comments.empty()) {
      add(QStringLiteral("Comments"), Style::heading, 0, 8, true);
      for (const PackComment& comment : ticket.comments) {
        add(q(comment.day.description()), Style::quiet, 10, 3, true);
        for (const QString& line : q(comment.body).split(QLatin1Char('\n'))) add(line, Style::body, 10, 0);
      }
    }
    std::vector<const PackFile*> present, absent;
    for (const PackFile& file : ticket.files) (file.present ? present : absent).push_back(&file);
    const std::vector<std::string> members = packMemberNames(ticket);
    if (!present.empty()) {
      add(QStringLiteral("Files (in the ZIP under %1/)").arg(q(safeFileNamePart(ticket.reference, "ticket"))),
          Style::heading, 0, 8, true);
      for (std::size_t i = 0; i < ticket.files.size(); ++i)
        if (ticket.files[i].present)
          add(q(members[i].substr(members[i].find('/') + 1)) + QStringLiteral("  ") + q(ticket.files[i].path),
              Style::body, 10, 1);
    }
    if (!absent.empty()) {
      add(QStringLiteral("Missing files"), Style::heading, 0, 8, true);
      for (const PackFile* file : absent)
        add(q(file->name) + QStringLiteral("  ") + q(file->path) + QStringLiteral(" (not found, not in the ZIP)"),
            Style::missing, 10, 1);
    }
  }
  return blocks;
}

// A laid-out line and where it goes: the page (from 0) and its top there.
struct PlacedLine {
  std::size_t block;
  int line;
  int page;
  qreal top;
};

}  // namespace

QByteArray packPdf(const DevelopmentPacks& set, const DevelopmentPack& pack, const ReportBranding& branding) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QPdfWriter writer(&buffer);
  writer.setResolution(dotsPerInch);
  writer.setPageLayout(
      QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF(16, 14, 16, 10), QPageLayout::Millimeter));
  writer.setTitle(QStringLiteral("%1 · %2").arg(q(pack.personName), q(set.projectName)));
  writer.setCreator(q(ReportBranding::creditLine()));

  QPainter painter(&writer);
  const qreal width = writer.width();
  const qreal footer = pageFooterHeight(painter);
  const qreal bodyBottom = writer.height() - footer;
  const qreal point = dotsPerInch / 72.0;

  // First pass: lay every block out into lines and give each line a page.
  const std::vector<Block> blocks = blocksOf(set, pack);
  std::vector<std::unique_ptr<QTextLayout>> layouts;
  std::vector<PlacedLine> placed;
  int page = 0;
  qreal y = 0;
  QTextOption wrap;
  wrap.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  for (std::size_t b = 0; b < blocks.size(); ++b) {
    const Block& block = blocks[b];
    auto layout = std::make_unique<QTextLayout>(block.text, fontFor(block.style, &writer), &writer);
    layout->setTextOption(wrap);
    layout->beginLayout();
    for (QTextLine line = layout->createLine(); line.isValid(); line = layout->createLine()) {
      line.setLineWidth(width - block.indentPoints * point);
      line.setPosition(QPointF(0, 0));  // each line is placed on its page when drawn
    }
    layout->endLayout();

    if (y > 0) y += block.spaceBeforePoints * point;
    // A heading moves on with the first line of what follows it.
    qreal needed = layout->lineCount() > 0 ? layout->lineAt(0).height() : 0;
    if (block.keepWithNext && b + 1 < blocks.size())
      needed += fontFor(blocks[b + 1].style, &writer).pointSizeF() * point * 2;
    if (y > 0 && y + needed > bodyBottom) ++page, y = 0;
    for (int i = 0; i < layout->lineCount(); ++i) {
      const qreal height = layout->lineAt(i).height();
      if (y > 0 && y + height > bodyBottom) ++page, y = 0;
      placed.push_back({b, i, page, y});
      y += height;
    }
    layouts.push_back(std::move(layout));
  }
  const int pages = page + 1;

  // Second pass: draw, now that the number of pages is known.
  int current = 0;
  const auto finishPage = [&] {
    drawPageFooter(painter, QRectF(0, bodyBottom, width, footer), branding, current + 1, pages);
  };
  for (const PlacedLine& line : placed) {
    while (line.page > current) {
      finishPage();
      writer.newPage();
      ++current;
    }
    const Block& block = blocks[line.block];
    painter.setPen(colourFor(block.style));
    QTextLine text = layouts[line.block]->lineAt(line.line);
    text.draw(&painter, QPointF(block.indentPoints * point, line.top));
  }
  while (current < pages) {
    finishPage();
    if (++current < pages) writer.newPage();
  }
  painter.end();
  return bytes;
}

}  // namespace orvane::app
