#include "app/board/BoardCardActions.h"

#include <QAction>
#include <QActionGroup>
#include <QMenu>
#include <algorithm>

#include "app/board/BoardView.h"
#include "app/shell/AppContext.h"
#include "app/widgets/Confirm.h"

namespace orvane::app {

namespace {

QAction* cardAction(QObject* parent, const QString& text, const QKeySequence& shortcut) {
  auto* action = new QAction(text, parent);
  action->setShortcut(shortcut);
  // Only while a card list has the focus, so typing in a field keeps its
  // own Return, Delete and word selection.
  action->setShortcutContext(Qt::WidgetShortcut);
  return action;
}

}  // namespace

BoardCardActions::BoardCardActions(AppContext& context, BoardView& board)
    : QObject(&board), context_(context), board_(board) {
  open_ = cardAction(this, QStringLiteral("Open ticket…"), QKeySequence(Qt::Key_Return));
  moveLeft_ =
      cardAction(this, QStringLiteral("Move to previous column"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Left));
  moveRight_ =
      cardAction(this, QStringLiteral("Move to next column"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Right));
  archive_ = cardAction(this, QStringLiteral("Archive"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_A));
  delete_ = cardAction(this, QStringLiteral("Delete…"), QKeySequence(QKeySequence::Delete));
  connect(open_, &QAction::triggered, this, [this] {
    const std::vector<Uuid> selected = board_.selectedTickets();
    if (selected.size() == 1) emit openTicketRequested(selected.front());
  });
  connect(moveLeft_, &QAction::triggered, this, [this] { moveBy(-1); });
  connect(moveRight_, &QAction::triggered, this, [this] { moveBy(1); });
  connect(archive_, &QAction::triggered, this, &BoardCardActions::archiveSelected);
  connect(delete_, &QAction::triggered, this, &BoardCardActions::confirmDelete);
  update();
}

std::vector<QAction*> BoardCardActions::keyboardActions() const {
  return {open_, moveLeft_, moveRight_, archive_, delete_};
}

std::vector<int> BoardCardActions::selectedColumnPositions() const {
  std::vector<int> positions;
  const std::shared_ptr<const ProjectSnapshot> snapshot = board_.boardSnapshot();
  if (!snapshot) return positions;
  for (const Uuid& id : board_.selectedTickets()) {
    const Ticket* ticket = snapshot->ticket(id);
    if (ticket == nullptr || !ticket->columnId) continue;
    for (std::size_t i = 0; i < snapshot->columns.size(); ++i) {
      if (snapshot->columns[i].id == *ticket->columnId) positions.push_back(static_cast<int>(i));
    }
  }
  return positions;
}

void BoardCardActions::update() {
  const std::size_t count = board_.selectedTickets().size();
  const std::vector<int> positions = selectedColumnPositions();
  const std::shared_ptr<const ProjectSnapshot> snapshot = board_.boardSnapshot();
  const int last = snapshot ? static_cast<int>(snapshot->columns.size()) - 1 : -1;
  const bool any = count > 0 && positions.size() == count;
  open_->setEnabled(count == 1);
  moveLeft_->setEnabled(any && std::all_of(positions.begin(), positions.end(), [](int p) { return p > 0; }));
  moveRight_->setEnabled(any && std::all_of(positions.begin(), positions.end(), [last](int p) { return p < last; }));
  archive_->setEnabled(any);
  delete_->setEnabled(any);
}

void BoardCardActions::fill(QMenu* menu) {
  update();
  const std::shared_ptr<const ProjectSnapshot> snapshot = board_.boardSnapshot();
  const std::vector<Uuid> selected = board_.selectedTickets();
  const std::vector<int> positions = selectedColumnPositions();
  const bool any = !selected.empty() && snapshot;

  menu->addAction(open_);
  menu->addSeparator();
  menu->addAction(moveLeft_);
  menu->addAction(moveRight_);
  QMenu* moveMenu = menu->addMenu(QStringLiteral("Move to column"));
  moveMenu->setObjectName(QStringLiteral("moveToColumn"));
  moveMenu->setEnabled(any);
  QMenu* assignMenu = menu->addMenu(QStringLiteral("Assign"));
  assignMenu->setObjectName(QStringLiteral("assign"));
  assignMenu->setEnabled(any);
  if (any) {
    for (std::size_t i = 0; i < snapshot->columns.size(); ++i) {
      const Uuid column = snapshot->columns[i].id;
      QAction* action = moveMenu->addAction(QString::fromStdString(snapshot->columns[i].name), this,
                                          [this, column] { moveTo(column); });
      // Where every selected card already is, there is nothing to do.
      const bool allThere =
          std::all_of(positions.begin(), positions.end(), [i](int p) { return p == static_cast<int>(i); });
      action->setEnabled(!allThere);
    }
    // A check mark when every selected card has that assignee.
    std::vector<std::optional<Uuid>> assignees;
    for (const Uuid& id : selected) {
      if (const Ticket* ticket = snapshot->ticket(id)) assignees.push_back(ticket->assigneeId);
    }
    auto shared = [&](const std::optional<Uuid>& person) {
      return !assignees.empty() &&
             std::all_of(assignees.begin(), assignees.end(), [&](const std::optional<Uuid>& a) { return a == person; });
    };
    auto* group = new QActionGroup(assignMenu);
    auto addChoice = [&](const QString& text, const std::optional<Uuid>& person) {
      QAction* action = assignMenu->addAction(text, this, [this, person] { assign(person); });
      action->setCheckable(true);
      action->setChecked(shared(person));
      group->addAction(action);
    };
    for (const Person& person : snapshot->people) addChoice(QString::fromStdString(person.name), person.id);
    if (!snapshot->people.empty()) assignMenu->addSeparator();
    addChoice(QStringLiteral("Unassigned"), std::nullopt);
  }
  menu->addSeparator();
  menu->addAction(archive_);
  menu->addAction(delete_);
}

QString BoardCardActions::label(const QString& one, const QString& many) const {
  return board_.selectedTickets().size() == 1 ? one : many;
}

void BoardCardActions::moveBy(int offset) {
  const std::shared_ptr<const ProjectSnapshot> snapshot = board_.boardSnapshot();
  const std::vector<Uuid> selected = board_.selectedTickets();
  const std::vector<int> positions = selectedColumnPositions();
  if (!snapshot || selected.empty() || positions.size() != selected.size()) return;
  const int columns = static_cast<int>(snapshot->columns.size());
  for (int position : positions) {
    if (position + offset < 0 || position + offset >= columns) return;
  }
  context_.perform(
      label(QStringLiteral("Move ticket"), QStringLiteral("Move tickets")),
      [&](BoardService& board) {
        // In board order, each to the bottom of its neighbour, so cards
        // taken from one column keep their order in the next.
        for (std::size_t i = 0; i < selected.size(); ++i) {
          const Uuid& target = snapshot->columns[static_cast<std::size_t>(positions[i] + offset)].id;
          board.moveTicket(selected[i], target, std::nullopt, context_.now());
        }
      },
      &board_);
}

void BoardCardActions::moveTo(const Uuid& column) {
  const std::shared_ptr<const ProjectSnapshot> snapshot = board_.boardSnapshot();
  if (!snapshot) return;
  std::vector<Uuid> moving;
  for (const Uuid& id : board_.selectedTickets()) {
    const Ticket* ticket = snapshot->ticket(id);
    // Cards already in that column stay where they are.
    if (ticket != nullptr && ticket->columnId != column) moving.push_back(id);
  }
  if (moving.empty()) return;
  context_.perform(
      moving.size() == 1 ? QStringLiteral("Move ticket") : QStringLiteral("Move tickets"),
      [&](BoardService& board) {
        for (const Uuid& id : moving) board.moveTicket(id, column, std::nullopt, context_.now());
      },
      &board_);
}

void BoardCardActions::assign(const std::optional<Uuid>& person) {
  const std::vector<Uuid> selected = board_.selectedTickets();
  if (selected.empty()) return;
  context_.perform(
      label(QStringLiteral("Assign ticket"), QStringLiteral("Assign tickets")),
      [&](BoardService& board) {
        for (const Uuid& id : selected) board.setAssignee(id, person);
      },
      &board_);
}

void BoardCardActions::archiveSelected() {
  const std::vector<Uuid> selected = board_.selectedTickets();
  if (selected.empty()) return;
  context_.perform(
      label(QStringLiteral("Archive ticket"), QStringLiteral("Archive tickets")),
      [&](BoardService& board) {
        for (const Uuid& id : selected) board.archive(id, context_.now());
      },
      &board_);
}

void BoardCardActions::confirmDelete() {
  const std::vector<Uuid> selected = board_.selectedTickets();
  if (selected.empty()) return;
  const bool one = selected.size() == 1;
  const QString question =
      one ? QStringLiteral("Delete this ticket?") : QStringLiteral("Delete these %1 tickets?").arg(selected.size());
  const QString explanation =
      one ? QStringLiteral("Its comments, checklist, links and history are deleted with it. Use Undo to bring it back.")
          : QStringLiteral(
                "Their comments, checklists, links and history are deleted with them. Use Undo to bring "
                "them back.");
  confirm(&board_, QStringLiteral("confirmDeleteTicket"), question, explanation, QStringLiteral("Delete"),
          [this, selected, one] {
            context_.perform(
                one ? QStringLiteral("Delete ticket") : QStringLiteral("Delete tickets"),
                [&](BoardService& board) {
                  for (const Uuid& id : selected) board.deleteTicket(id);
                },
                &board_);
          });
}

}  // namespace orvane::app
