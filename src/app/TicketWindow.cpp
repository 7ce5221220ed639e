#include "app/TicketWindow.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStringList>
#include <QTabWidget>
#include <QTreeWidget>
#include <QUrl>
#include <QVBoxLayout>
#include <algorithm>

#include "app/Alert.h"
#include "app/AppContext.h"
#include "app/DayField.h"
#include "app/ItemIds.h"
#include "core/board/BoardService.h"
#include "core/store/Rows.h"
#include "engine/LocalCivilDate.h"

namespace orvane::app {
namespace {

constexpr int idRole = Qt::UserRole;

QString quoted(const std::string& text) { return QStringLiteral("“%1”").arg(qText(text)); }

QPushButton* button(const QString& text, const char* name, QWidget* parent) {
  auto* made = new QPushButton(text, parent);
  made->setObjectName(QLatin1String(name));
  return made;
}

// Tags are typed as one line, separated by commas; the service trims them
// and drops empty and repeated ones.
std::vector<std::string> tagsFromText(const QString& text) {
  std::vector<std::string> tags;
  for (const QString& part : text.split(QLatin1Char(','))) tags.push_back(part.toStdString());
  return tags;
}

QString tagsText(const std::vector<std::string>& tags) {
  QStringList parts;
  for (const std::string& tag : tags) parts << qText(tag);
  return parts.join(QStringLiteral(", "));
}

// Selects the entry whose id is `id` (or the "none" entry at 0).
void selectId(QComboBox* combo, const std::optional<Uuid>& id) {
  const QSignalBlocker blocker(combo);
  const int index = id ? combo->findData(idData(*id)) : 0;
  combo->setCurrentIndex(std::max(index, 0));
}

std::optional<Uuid> selectedId(const QTreeWidget* tree) {
  const QTreeWidgetItem* item = tree->currentItem();
  return item ? idFrom(item->data(0, idRole)) : std::nullopt;
}

}  // namespace

TicketWindow::TicketWindow(AppContext& context, const Uuid& ticket, QWidget* parent)
    : QDialog(parent), context_(context), ticket_(ticket) {
  setObjectName(QStringLiteral("ticketWindow"));
  setModal(false);
  resize(720, 760);
  if (auto row = rows::find<Ticket>(context_.store().db(), ticket_)) project_ = row->projectId;

  reference_ = new QLabel(this);
  reference_->setObjectName(QStringLiteral("reference"));
  QFont bold = reference_->font();
  bold.setBold(true);
  reference_->setFont(bold);
  dates_ = new QLabel(this);
  dates_->setObjectName(QStringLiteral("dates"));
  notice_ = new QLabel(this);
  notice_->setObjectName(QStringLiteral("notice"));
  notice_->setWordWrap(true);
  notice_->hide();

  buildFields();
  tabs_ = new QTabWidget(this);
  tabs_->addTab(buildComments(), QStringLiteral("Comments"));
  tabs_->addTab(buildChecklist(), QStringLiteral("Checklist"));
  tabs_->addTab(buildLinks(), QStringLiteral("Links"));
  tabs_->addTab(buildFiles(), QStringLiteral("Files"));
  tabs_->addTab(buildHistory(), QStringLiteral("History"));

  auto* close = new QDialogButtonBox(QDialogButtonBox::Close, this);
  connect(close, &QDialogButtonBox::rejected, this, &QDialog::close);

  auto* layout = new QVBoxLayout(this);
  auto* header = new QHBoxLayout;
  header->addWidget(reference_);
  header->addStretch(1);
  header->addWidget(dates_);
  layout->addLayout(header);
  layout->addWidget(notice_);
  layout->addWidget(fields_);
  layout->addWidget(tabs_, 1);
  layout->addWidget(close);

  connect(&context_, &AppContext::storeChanged, this, &TicketWindow::reload);
  reload();
}

TicketWindow::~TicketWindow() {
  // No focus-out commit while the widgets are being torn down.
  details_->removeEventFilter(this);
}

void TicketWindow::done(int result) {
  // Closing with the focus still in the details keeps what was typed.
  if (details_->hasFocus() && !changing_) commitDetails();
  QDialog::done(result);
}

void TicketWindow::buildFields() {
  fields_ = new QWidget(this);
  auto* form = new QFormLayout(fields_);
  form->setContentsMargins(0, 0, 0, 0);

  title_ = new QLineEdit(fields_);
  title_->setObjectName(QStringLiteral("title"));
  connect(title_, &QLineEdit::editingFinished, this, &TicketWindow::commitTitle);
  form->addRow(QStringLiteral("Title"), title_);

  details_ = new QPlainTextEdit(fields_);
  details_->setObjectName(QStringLiteral("details"));
  details_->setTabChangesFocus(true);
  details_->setMaximumHeight(120);
  details_->installEventFilter(this);  // saved when it loses the focus
  form->addRow(QStringLiteral("Details"), details_);

  priority_ = new QComboBox(fields_);
  priority_->setObjectName(QStringLiteral("priority"));
  for (TicketPriority p : {TicketPriority::low, TicketPriority::medium, TicketPriority::high, TicketPriority::urgent})
    priority_->addItem(qText(std::string(displayLabel(p))), static_cast<qlonglong>(p));
  connect(priority_, &QComboBox::activated, this, [this](int index) {
    const auto chosen = static_cast<TicketPriority>(priority_->itemData(index).toLongLong());
    changeFields(QStringLiteral("Change priority"), [&](TicketFields& f) { f.priority = chosen; });
  });

  column_ = new QComboBox(fields_);
  column_->setObjectName(QStringLiteral("column"));
  connect(column_, &QComboBox::activated, this, [this](int index) {
    const std::optional<Uuid> column = idFrom(column_->itemData(index));
    const Ticket* ticket = current();
    if (!column || !ticket || ticket->columnId == column) return;
    MoveResult result;
    if (!change(QStringLiteral("Move ticket"),
                [&](BoardService& s) { result = s.moveTicket(ticket_, *column, std::nullopt, context_.now()); }))
      return;
    // Over the limit is a warning, never a refusal: the move stands.
    if (result.wipLimitExceeded && snapshot_) {
      if (const BoardColumn* target = snapshot_->column(*column)) {
        notice_->setText(QStringLiteral("%1 now holds more tickets than its WIP limit.").arg(quoted(target->name)));
        notice_->show();
      }
    }
  });

  epic_ = new QComboBox(fields_);
  epic_->setObjectName(QStringLiteral("epic"));
  connect(epic_, &QComboBox::activated, this, [this](int index) {
    const std::optional<Uuid> epic = idFrom(epic_->itemData(index));
    change(QStringLiteral("Change epic"), [&](BoardService& s) { s.assign(ticket_, epic); });
  });

  assignee_ = new QComboBox(fields_);
  assignee_->setObjectName(QStringLiteral("assignee"));
  connect(assignee_, &QComboBox::activated, this, [this](int index) {
    const std::optional<Uuid> person = idFrom(assignee_->itemData(index));
    change(QStringLiteral("Assign ticket"), [&](BoardService& s) { s.setAssignee(ticket_, person); });
  });

  iteration_ = new QComboBox(fields_);
  iteration_->setObjectName(QStringLiteral("iteration"));
  connect(iteration_, &QComboBox::activated, this, [this](int index) {
    const std::optional<Uuid> iteration = idFrom(iteration_->itemData(index));
    change(QStringLiteral("Change iteration"), [&](BoardService& s) { s.setIteration(ticket_, iteration); });
  });

  due_ = new DayField(context_.calendar(), true, fields_);
  due_->setObjectName(QStringLiteral("due"));
  connect(due_, &DayField::edited, this, [this] {
    const std::optional<Timestamp> due = due_->instant();
    changeFields(QStringLiteral("Change due date"), [&](TicketFields& f) { f.dueDate = due; });
  });

  tags_ = new QLineEdit(fields_);
  tags_->setObjectName(QStringLiteral("tags"));
  tags_->setPlaceholderText(QStringLiteral("Separated by commas"));
  connect(tags_, &QLineEdit::editingFinished, this, &TicketWindow::commitTags);

  blocked_ = new QCheckBox(QStringLiteral("Blocked"), fields_);
  blocked_->setObjectName(QStringLiteral("blocked"));
  connect(blocked_, &QCheckBox::clicked, this, [this](bool on) {
    change(on ? QStringLiteral("Mark as blocked") : QStringLiteral("Clear blocked"),
           [&](BoardService& s) { s.setBlocked(ticket_, on); });
  });
  thisWeek_ = new QCheckBox(QStringLiteral("This week"), fields_);
  thisWeek_->setObjectName(QStringLiteral("thisWeek"));
  connect(thisWeek_, &QCheckBox::clicked, this, [this](bool on) {
    change(on ? QStringLiteral("Flag for this week") : QStringLiteral("Clear this week"),
           [&](BoardService& s) { s.setThisWeek(ticket_, on); });
  });

  auto* placement = new QHBoxLayout;
  placement->addWidget(column_, 1);
  placement->addWidget(new QLabel(QStringLiteral("Priority"), fields_));
  placement->addWidget(priority_);
  form->addRow(QStringLiteral("Column"), placement);
  form->addRow(QStringLiteral("Epic"), epic_);
  form->addRow(QStringLiteral("Assignee"), assignee_);
  form->addRow(QStringLiteral("Iteration"), iteration_);
  form->addRow(QStringLiteral("Due"), due_);
  form->addRow(QStringLiteral("Tags"), tags_);
  auto* flags = new QHBoxLayout;
  flags->addWidget(blocked_);
  flags->addWidget(thisWeek_);
  flags->addStretch(1);
  form->addRow(QString(), flags);
}

QWidget* TicketWindow::buildComments() {
  auto* page = new QWidget(this);
  comments_ = new QTreeWidget(page);
  comments_->setObjectName(QStringLiteral("comments"));
  comments_->setHeaderLabels({QStringLiteral("Written"), QStringLiteral("Comment")});
  comments_->setRootIsDecorated(false);
  comments_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
  connect(comments_, &QTreeWidget::itemChanged, this, &TicketWindow::commentEdited);

  newComment_ = new QPlainTextEdit(page);
  newComment_->setObjectName(QStringLiteral("newComment"));
  newComment_->setPlaceholderText(QStringLiteral("Write a comment"));
  newComment_->setMaximumHeight(70);
  auto* add = button(QStringLiteral("Add comment"), "addComment", page);
  auto* remove = button(QStringLiteral("Delete comment"), "deleteComment", page);
  connect(add, &QPushButton::clicked, this, [this] {
    const std::string body = newComment_->toPlainText().toStdString();
    if (change(QStringLiteral("Add comment"), [&](BoardService& s) { s.addComment(ticket_, body, context_.now()); }))
      newComment_->clear();
  });
  connect(remove, &QPushButton::clicked, this, [this] {
    if (const auto comment = selectedId(comments_))
      change(QStringLiteral("Delete comment"), [&](BoardService& s) { s.deleteComment(*comment); });
  });

  auto* layout = new QVBoxLayout(page);
  layout->addWidget(comments_, 1);
  layout->addWidget(newComment_);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(add);
  buttons->addStretch(1);
  buttons->addWidget(remove);
  layout->addLayout(buttons);
  return page;
}

QWidget* TicketWindow::buildChecklist() {
  auto* page = new QWidget(this);
  checklist_ = new QListWidget(page);
  checklist_->setObjectName(QStringLiteral("checklist"));
  checklist_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
  connect(checklist_, &QListWidget::itemChanged, this, &TicketWindow::checklistEdited);

  newItem_ = new QLineEdit(page);
  newItem_->setObjectName(QStringLiteral("newChecklistItem"));
  newItem_->setPlaceholderText(QStringLiteral("Add an item"));
  auto* add = button(QStringLiteral("Add"), "addChecklistItem", page);
  auto* up = button(QStringLiteral("Move up"), "checklistUp", page);
  auto* down = button(QStringLiteral("Move down"), "checklistDown", page);
  auto* remove = button(QStringLiteral("Delete item"), "deleteChecklistItem", page);
  const auto addItem = [this] {
    const std::string title = newItem_->text().toStdString();
    if (change(QStringLiteral("Add checklist item"), [&](BoardService& s) { s.addChecklistItem(ticket_, title); }))
      newItem_->clear();
  };
  connect(add, &QPushButton::clicked, this, addItem);
  connect(newItem_, &QLineEdit::returnPressed, this, addItem);
  connect(up, &QPushButton::clicked, this, [this] { moveChecklistItem(-1); });
  connect(down, &QPushButton::clicked, this, [this] { moveChecklistItem(+1); });
  connect(remove, &QPushButton::clicked, this, [this] {
    const QListWidgetItem* item = checklist_->currentItem();
    if (const auto id = item ? idFrom(item->data(idRole)) : std::nullopt)
      change(QStringLiteral("Delete checklist item"), [&](BoardService& s) { s.deleteChecklistItem(*id); });
  });

  auto* layout = new QVBoxLayout(page);
  layout->addWidget(checklist_, 1);
  auto* adding = new QHBoxLayout;
  adding->addWidget(newItem_, 1);
  adding->addWidget(add);
  layout->addLayout(adding);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(up);
  buttons->addWidget(down);
  buttons->addStretch(1);
  buttons->addWidget(remove);
  layout->addLayout(buttons);
  return page;
}

QWidget* TicketWindow::buildLinks() {
  auto* page = new QWidget(this);
  links_ = new QTreeWidget(page);
  links_->setObjectName(QStringLiteral("links"));
  links_->setHeaderLabels({QStringLiteral("Link"), QStringLiteral("Ticket"), QStringLiteral("State")});
  links_->setRootIsDecorated(false);

  linkKind_ = new QComboBox(page);
  linkKind_->setObjectName(QStringLiteral("linkKind"));
  for (LinkKind kind : {LinkKind::blockedBy, LinkKind::relatedTo})
    linkKind_->addItem(qText(std::string(displayLabel(kind))), static_cast<int>(kind));
  linkTarget_ = new QComboBox(page);
  linkTarget_->setObjectName(QStringLiteral("linkTarget"));
  auto* add = button(QStringLiteral("Add link"), "addLink", page);
  auto* remove = button(QStringLiteral("Remove link"), "removeLink", page);
  connect(add, &QPushButton::clicked, this, [this] {
    const std::optional<Uuid> target = idFrom(linkTarget_->currentData());
    if (!target) return;
    const auto kind = static_cast<LinkKind>(linkKind_->currentData().toInt());
    change(QStringLiteral("Add link"), [&](BoardService& s) { s.addLink(ticket_, *target, kind, context_.now()); });
  });
  connect(remove, &QPushButton::clicked, this, [this] {
    if (const auto link = selectedId(links_))
      change(QStringLiteral("Remove link"), [&](BoardService& s) { s.removeLink(*link); });
  });

  auto* layout = new QVBoxLayout(page);
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
  return page;
}

QWidget* TicketWindow::buildFiles() {
  auto* page = new QWidget(this);
  files_ = new QTreeWidget(page);
  files_->setObjectName(QStringLiteral("files"));
  files_->setHeaderLabels({QStringLiteral("File"), QStringLiteral("Where")});
  files_->setRootIsDecorated(false);
  connect(files_, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* item) {
    if (const auto id = idFrom(item->data(0, idRole))) openFile(*id);
  });

  auto* add = button(QStringLiteral("Add file…"), "addFile", page);
  auto* open = button(QStringLiteral("Open"), "openFile", page);
  auto* remove = button(QStringLiteral("Remove link"), "removeFile", page);
  connect(add, &QPushButton::clicked, this, [this] {
    const QString path = QFileDialog::getOpenFileName(this, QStringLiteral("Link a file"));
    if (!path.isEmpty()) addFile(path);
  });
  connect(open, &QPushButton::clicked, this, [this] {
    if (const auto id = selectedId(files_)) openFile(*id);
  });
  connect(remove, &QPushButton::clicked, this, [this] {
    // The record only: the file on disk stays where it is.
    if (const auto id = selectedId(files_))
      change(QStringLiteral("Remove file link"), [&](BoardService& s) { s.removeFileLink(*id); });
  });

  auto* layout = new QVBoxLayout(page);
  layout->addWidget(files_, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(add);
  buttons->addWidget(open);
  buttons->addStretch(1);
  buttons->addWidget(remove);
  layout->addLayout(buttons);
  return page;
}

QWidget* TicketWindow::buildHistory() {
  history_ = new QListWidget(this);
  history_->setObjectName(QStringLiteral("history"));
  return history_;
}

const Ticket* TicketWindow::current() const { return snapshot_ ? snapshot_->ticket(ticket_) : nullptr; }

void TicketWindow::reload() {
  snapshot_.reset();
  if (project_) {
    if (auto loaded = context_.board().snapshot(*project_))
      snapshot_ = std::make_shared<const ProjectSnapshot>(std::move(*loaded));
  }
  const Ticket* ticket = current();
  if (!ticket) {
    showGone();
    return;
  }
  fields_->setEnabled(true);
  tabs_->setEnabled(true);
  notice_->hide();  // a warning stands until the next change
  const QString reference = qText(snapshot_->referenceCode(*ticket));
  setWindowTitle(QStringLiteral("%1 %2").arg(reference, qText(ticket->title)));
  reference_->setText(reference);
  QStringList dates{QStringLiteral("Created %1")
                        .arg(qText(civilDateFromLocal(ticket->createdAt, context_.calendar()).displayText()))};
  if (ticket->startedAt)
    dates << QStringLiteral("started %1")
                 .arg(qText(civilDateFromLocal(*ticket->startedAt, context_.calendar()).displayText()));
  if (ticket->completedAt)
    dates << QStringLiteral("done %1").arg(
        qText(civilDateFromLocal(*ticket->completedAt, context_.calendar()).displayText()));
  if (ticket->archivedAt)
    dates << QStringLiteral("archived %1")
                 .arg(qText(civilDateFromLocal(*ticket->archivedAt, context_.calendar()).displayText()));
  dates_->setText(dates.join(QStringLiteral(", ")));

  fillFields(*ticket);
  fillComments();
  fillChecklist();
  fillLinks(*ticket);
  fillFiles();
  fillHistory();
}

void TicketWindow::showGone() {
  setWindowTitle(QStringLiteral("Ticket"));
  reference_->setText(QString());
  dates_->setText(QString());
  notice_->setText(QStringLiteral("This ticket no longer exists."));
  notice_->show();
  fields_->setEnabled(false);
  tabs_->setEnabled(false);
}

void TicketWindow::fillFields(const Ticket& ticket) {
  const ProjectSnapshot& s = *snapshot_;
  // A field being typed in keeps what the user typed.
  if (!title_->hasFocus() || !title_->isModified()) {
    title_->setText(qText(ticket.title));
    title_->setModified(false);
  }
  if (!details_->hasFocus()) {
    const QSignalBlocker blocker(details_);
    details_->setPlainText(qText(ticket.details));
  }
  if (!tags_->hasFocus() || !tags_->isModified()) {
    tags_->setText(tagsText(ticket.tags));
    tags_->setModified(false);
  }
  {
    const QSignalBlocker blocker(priority_);
    priority_->setCurrentIndex(priority_->findData(static_cast<qlonglong>(ticket.effectivePriority())));
  }
  due_->setInstant(ticket.dueDate);
  {
    const QSignalBlocker blockBlocked(blocked_);
    blocked_->setChecked(ticket.blocked);
    const std::vector<const Ticket*> blockers = s.openBlockers(ticket);
    QStringList codes;
    for (const Ticket* blocker : blockers) codes << qText(s.referenceCode(*blocker));
    blocked_->setToolTip(codes.isEmpty() ? QString()
                                         : QStringLiteral("Waiting on %1").arg(codes.join(QStringLiteral(", "))));
    const QSignalBlocker blockWeek(thisWeek_);
    thisWeek_->setChecked(ticket.thisWeek);
  }

  {
    const QSignalBlocker blocker(column_);
    column_->clear();
    for (const BoardColumn& column : s.columns) column_->addItem(qText(column.name), idData(column.id));
    if (!ticket.columnId || !s.column(*ticket.columnId)) column_->insertItem(0, QStringLiteral("No column"));
    column_->setEnabled(!ticket.isArchived());
  }
  selectId(column_, ticket.columnId && s.column(*ticket.columnId) ? ticket.columnId : std::nullopt);
  {
    const QSignalBlocker blocker(epic_);
    epic_->clear();
    epic_->addItem(QStringLiteral("No epic"));
    for (const Epic& epic : s.epics) epic_->addItem(qText(epic.name), idData(epic.id));
  }
  selectId(epic_, ticket.epicId);
  {
    const QSignalBlocker blocker(assignee_);
    assignee_->clear();
    assignee_->addItem(QStringLiteral("Unassigned"));
    for (const Person& person : s.people) assignee_->addItem(qText(person.name), idData(person.id));
  }
  selectId(assignee_, ticket.assigneeId);
  {
    const QSignalBlocker blocker(iteration_);
    iteration_->clear();
    iteration_->addItem(QStringLiteral("No iteration"));
    // A closed iteration takes no tickets; it is listed only as the one the
    // ticket is in.
    for (const Iteration& iteration : s.iterations) {
      if (iteration.state() == IterationState::closed && ticket.iterationId != iteration.id) continue;
      iteration_->addItem(
          QStringLiteral("%1 (%2)").arg(qText(iteration.name), qText(std::string(displayLabel(iteration.state())))),
          idData(iteration.id));
    }
  }
  selectId(iteration_, ticket.iterationId);
}

void TicketWindow::fillComments() {
  const QSignalBlocker blocker(comments_);
  const std::optional<Uuid> selected = selectedId(comments_);
  comments_->clear();
  std::vector<const TicketComment*> comments;
  for (const TicketComment& comment : snapshot_->comments)
    if (comment.ticketId == ticket_) comments.push_back(&comment);
  std::stable_sort(comments.begin(), comments.end(),
                   [](const TicketComment* a, const TicketComment* b) { return a->createdAt < b->createdAt; });
  for (const TicketComment* comment : comments) {
    auto* item = new QTreeWidgetItem(comments_);
    item->setText(0, qText(civilDateFromLocal(comment->createdAt, context_.calendar()).displayText()));
    item->setText(1, qText(comment->body));
    item->setData(0, idRole, idData(comment->id));
    item->setFlags(item->flags() | Qt::ItemIsEditable);
    if (selected == comment->id) comments_->setCurrentItem(item);
  }
}

void TicketWindow::fillChecklist() {
  const QSignalBlocker blocker(checklist_);
  const QListWidgetItem* currentItem = checklist_->currentItem();
  const std::optional<Uuid> selected = currentItem ? idFrom(currentItem->data(idRole)) : std::nullopt;
  checklist_->clear();
  std::vector<const ChecklistItem*> items;
  for (const ChecklistItem& item : snapshot_->checklistItems)
    if (item.ticketId == ticket_) items.push_back(&item);
  std::stable_sort(items.begin(), items.end(),
                   [](const ChecklistItem* a, const ChecklistItem* b) { return a->position < b->position; });
  for (const ChecklistItem* item : items) {
    auto* row = new QListWidgetItem(qText(item->title), checklist_);
    row->setData(idRole, idData(item->id));
    row->setFlags(row->flags() | Qt::ItemIsEditable | Qt::ItemIsUserCheckable);
    row->setCheckState(item->isDone ? Qt::Checked : Qt::Unchecked);
    if (selected == item->id) checklist_->setCurrentItem(row);
  }
}

void TicketWindow::fillLinks(const Ticket& ticket) {
  const ProjectSnapshot& s = *snapshot_;
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

void TicketWindow::fillFiles() {
  files_->clear();
  for (const TicketFileLink& link : snapshot_->fileLinks) {
    if (link.ticketId != ticket_) continue;
    auto* item = new QTreeWidgetItem(files_);
    const QString path = qText(link.path);
    item->setText(0, qText(link.name));
    item->setText(1, QFileInfo::exists(path) ? path : QStringLiteral("%1 (missing)").arg(path));
    item->setData(0, idRole, idData(link.id));
  }
}

void TicketWindow::fillHistory() {
  history_->clear();
  std::vector<const TicketEvent*> events;
  for (const TicketEvent& event : snapshot_->events)
    if (event.ticketId == ticket_) events.push_back(&event);
  std::stable_sort(events.begin(), events.end(),
                   [](const TicketEvent* a, const TicketEvent* b) { return a->at < b->at; });
  // The names are those the columns had at the time of the move.
  for (const TicketEvent* event : events) {
    const QString day = qText(civilDateFromLocal(event->at, context_.calendar()).displayText());
    const QString what =
        event->fromColumnName
            ? QStringLiteral("Moved from %1 to %2").arg(quoted(*event->fromColumnName), quoted(event->toColumnName))
            : QStringLiteral("Created in %1").arg(quoted(event->toColumnName));
    history_->addItem(QStringLiteral("%1  %2").arg(day, what));
  }
}

bool TicketWindow::change(const QString& label, const std::function<void(BoardService&)>& step) {
  if (changing_) return false;
  changing_ = true;
  const bool done = context_.perform(label, step, this);
  changing_ = false;
  // A refused edit puts the field back to what is stored.
  if (!done) reload();
  return done;
}

void TicketWindow::changeFields(const QString& label, const std::function<void(TicketFields&)>& edit) {
  const Ticket* ticket = current();
  if (!ticket) return;
  TicketFields fields{ticket->title, ticket->details, ticket->effectivePriority(), ticket->dueDate, ticket->tags};
  const TicketFields before = fields;
  edit(fields);
  if (fields.title == before.title && fields.details == before.details && fields.priority == before.priority &&
      fields.dueDate == before.dueDate && fields.tags == before.tags)
    return;
  change(label, [&](BoardService& s) { s.updateTicket(ticket_, fields); });
}

void TicketWindow::commitTitle() {
  if (changing_) return;
  title_->setModified(false);
  const std::string title = title_->text().toStdString();
  changeFields(QStringLiteral("Edit title"), [&](TicketFields& f) { f.title = title; });
}

void TicketWindow::commitDetails() {
  const std::string details = details_->toPlainText().toStdString();
  changeFields(QStringLiteral("Edit details"), [&](TicketFields& f) { f.details = details; });
}

void TicketWindow::commitTags() {
  if (changing_) return;
  tags_->setModified(false);
  const Ticket* ticket = current();
  if (!ticket || tagsText(ticket->tags) == tags_->text()) return;
  const std::vector<std::string> tags = tagsFromText(tags_->text());
  changeFields(QStringLiteral("Edit tags"), [&](TicketFields& f) { f.tags = tags; });
}

bool TicketWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == details_ && event->type() == QEvent::FocusOut && !changing_) commitDetails();
  return QDialog::eventFilter(watched, event);
}

void TicketWindow::commentEdited(QTreeWidgetItem* item, int column) {
  if (column != 1) return;
  const std::optional<Uuid> id = idFrom(item->data(0, idRole));
  if (!id) return;
  const std::string body = item->text(1).toStdString();
  const auto stored = std::find_if(snapshot_->comments.begin(), snapshot_->comments.end(),
                                   [&](const TicketComment& c) { return c.id == *id; });
  if (stored != snapshot_->comments.end() && stored->body == body) return;
  change(QStringLiteral("Edit comment"), [&](BoardService& s) { s.editComment(*id, body); });
}

void TicketWindow::checklistEdited(QListWidgetItem* item) {
  const std::optional<Uuid> id = idFrom(item->data(idRole));
  if (!id) return;
  const auto stored = std::find_if(snapshot_->checklistItems.begin(), snapshot_->checklistItems.end(),
                                   [&](const ChecklistItem& c) { return c.id == *id; });
  if (stored == snapshot_->checklistItems.end()) return;
  const bool done = item->checkState() == Qt::Checked;
  const std::string title = item->text().toStdString();
  if (done != stored->isDone) {
    change(done ? QStringLiteral("Tick checklist item") : QStringLiteral("Untick checklist item"),
           [&](BoardService& s) { s.setChecklistItem(*id, done); });
  } else if (title != stored->title) {
    change(QStringLiteral("Rename checklist item"), [&](BoardService& s) { s.renameChecklistItem(*id, title); });
  }
}

void TicketWindow::moveChecklistItem(int by) {
  const int row = checklist_->currentRow();
  const QListWidgetItem* item = checklist_->currentItem();
  const std::optional<Uuid> id = item ? idFrom(item->data(idRole)) : std::nullopt;
  if (!id || row + by < 0 || row + by >= checklist_->count()) return;
  change(QStringLiteral("Reorder checklist"), [&](BoardService& s) { s.moveChecklistItem(*id, row + by); });
}

void TicketWindow::addFile(const QString& path) {
  const std::string chosen = path.toStdString();
  change(QStringLiteral("Link file"), [&](BoardService& s) { s.addFileLink(ticket_, chosen, context_.now()); });
}

void TicketWindow::openFile(const Uuid& fileLink) {
  if (!snapshot_) return;
  const auto link = std::find_if(snapshot_->fileLinks.begin(), snapshot_->fileLinks.end(),
                                 [&](const TicketFileLink& f) { return f.id == fileLink; });
  if (link == snapshot_->fileLinks.end()) return;
  const QString path = qText(link->path);
  // Linux keeps no bookmark that follows a moved file: the path is all there is.
  if (!QFileInfo::exists(path)) {
    showAlert(
        this,
        QStringLiteral("%1 is no longer at %2. It may have been moved or deleted.").arg(quoted(link->name), path));
    return;
  }
  QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

}  // namespace orvane::app
