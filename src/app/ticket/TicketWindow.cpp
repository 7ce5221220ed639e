#include "app/ticket/TicketWindow.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStringList>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "app/shell/AppContext.h"
#include "app/ticket/TicketChecklistTab.h"
#include "app/ticket/TicketCommentsTab.h"
#include "app/ticket/TicketFilesTab.h"
#include "app/ticket/TicketHistoryTab.h"
#include "app/ticket/TicketLinksTab.h"
#include "app/widgets/DayField.h"
#include "app/widgets/ItemIds.h"
#include "core/board/BoardService.h"
#include "core/store/Rows.h"
#include "engine/LocalCivilDate.h"

namespace orvane::app {
namespace {

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
  const TicketChange step = [this](const QString& label, const std::function<void(BoardService&)>& change) {
    return this->change(label, change);
  };
  files_ = new TicketFilesTab(context_, ticket_, step, this);
  pages_ = {new TicketCommentsTab(context_, ticket_, step, this), new TicketChecklistTab(context_, ticket_, step, this),
            new TicketLinksTab(context_, ticket_, step, this), files_, new TicketHistoryTab(context_, ticket_, this)};
  tabs_ = new QTabWidget(this);
  const QString titles[] = {QStringLiteral("Comments"), QStringLiteral("Checklist"), QStringLiteral("Links"),
                            QStringLiteral("Files"), QStringLiteral("History")};
  for (std::size_t i = 0; i < pages_.size(); ++i) tabs_->addTab(pages_[i], titles[i]);

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

  // A dialog presses its default push button on every Return the focused
  // field leaves alone: Return in a quick-add field would add the item and
  // then press some other button (add again with the field just emptied,
  // pick a file, close the window). Each field acts on Return itself.
  for (QPushButton* button : findChildren<QPushButton*>()) button->setAutoDefault(false);

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
  for (TicketTab* page : pages_) page->fill(snapshot_, *ticket);
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

void TicketWindow::addFile(const QString& path) { files_->addFile(path); }

void TicketWindow::openFile(const Uuid& fileLink) { files_->openFile(fileLink); }

}  // namespace orvane::app
