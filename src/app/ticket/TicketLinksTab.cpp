#include "app/ticket/TicketLinksTab.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "app/shell/AppContext.h"
#include "app/widgets/ItemIds.h"
#include "core/board/BoardService.h"

namespace orvane::app {

TicketLinksTab::TicketLinksTab(AppContext& context, const Uuid& ticket, TicketChange change, QWidget* parent)
    : TicketTab(context, ticket, std::move(change), parent) {
  links_ = new QTreeWidget(this);
  links_->setObjectName(QStringLiteral("links"));
  links_->setHeaderLabels({QStringLiteral("Link"), QStringLiteral("Ticket"), QStringLiteral("State")});
  links_->setRootIsDecorated(false);

  linkKind_ = new QComboBox(this);
  linkKind_->setObjectName(QStringLiteral("linkKind"));
  for (LinkKind kind : {LinkKind::blockedBy, LinkKind::relatedTo})
    linkKind_->addItem(qText(std::string(displayLabel(kind))), static_cast<int>(kind));
  linkTarget_ = new QComboBox(this);
  linkTarget_->setObjectName(QStringLiteral("linkTarget"));
  auto* add = button(QStringLiteral("Add link"), "addLink");
  auto* remove = button(QStringLiteral("Remove link"), "removeLink");
  connect(add, &QPushButton::clicked, this, [this] {
    const std::optional<Uuid> target = idFrom(linkTarget_->currentData());
    if (!target) return;
    const auto kind = static_cast<LinkKind>(linkKind_->currentData().toInt());
    change_(QStringLiteral("Add link"), [&](BoardService& s) { s.addLink(ticket_, *target, kind, context_.now()); });
  });
  connect(remove, &QPushButton::clicked, this, [this] {
    if (const auto link = selectedId(links_))
      change_(QStringLiteral("Remove link"), [&](BoardService& s) { s.removeLink(*link); });
  });
  // A ticket alone on its board has nothing to link to.
  offerWhen(add, [this] { return linkTarget_->count() > 0; });
  offerWhileCurrent(remove, links_);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(links_, 1);
  auto* adding = new QHBoxLayout;
  adding->addWidget(linkKind_);
  adding->addWidget(linkTarget_, 1);
  adding->addWidget(add);
  layout->addLayout(adding);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  buttons->addWidget(remove);
  layout->addLayout(buttons);
}

void TicketLinksTab::refill(const ProjectSnapshot& s, const Ticket& ticket) {
  links_->clear();
  const auto addRow = [&](const TicketLink& link, const QString& kind, const Uuid& other) {
    const Ticket* target = s.ticket(other);
    if (!target) return;
    auto* item = new QTreeWidgetItem(links_);
    item->setText(0, kind);
    item->setText(1, QStringLiteral("%1 %2").arg(qText(s.referenceCode(*target)), qText(target->title)));
    item->setText(2, target->isArchived() ? QStringLiteral("Archived")
                     : s.isOpen(*target)  ? QStringLiteral("Open")
                                          : QStringLiteral("Done"));
    item->setData(0, idRole, idData(link.id));
  };
  // Both ends see the link: "Blocked by" from the waiting ticket, "Blocks"
  // from the one it waits on; a related link reads the same both ways.
  for (const TicketLink& link : s.links) {
    const bool blocking = link.kindRaw == rawValue(LinkKind::blockedBy);
    if (link.sourceId == ticket_) {
      addRow(link, blocking ? QStringLiteral("Blocked by") : QStringLiteral("Related to"), link.targetId);
    } else if (link.targetId == ticket_) {
      addRow(link, blocking ? QStringLiteral("Blocks") : QStringLiteral("Related to"), link.sourceId);
    }
  }

  const std::optional<Uuid> target = idFrom(linkTarget_->currentData());
  linkTarget_->clear();
  for (const Ticket& other : s.tickets) {
    if (other.id == ticket.id || other.isArchived()) continue;
    linkTarget_->addItem(QStringLiteral("%1 %2").arg(qText(s.referenceCode(other)), qText(other.title)),
                         idData(other.id));
  }
  if (target) linkTarget_->setCurrentIndex(std::max(linkTarget_->findData(idData(*target)), 0));
}

}  // namespace orvane::app
