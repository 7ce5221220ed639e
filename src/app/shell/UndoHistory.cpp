#include "app/shell/UndoHistory.h"

#include "core/store/ChangeRecorder.h"
#include "core/store/Database.h"

namespace orvane::app {
namespace {

// The oldest steps are forgotten beyond this many, so a long session (or a
// restore of a large backup) does not keep its whole past in memory.
constexpr std::size_t maxSteps = 100;

}  // namespace

struct UndoHistory::Entry {
  QString label;
  Changeset changeset;
};

UndoHistory::UndoHistory(Database& database, QObject* parent) : QObject(parent), database_(database) {}

UndoHistory::~UndoHistory() = default;

void UndoHistory::record(const QString& label, const std::function<void()>& change) {
  Changeset changeset = ChangeRecorder(database_).record(change);
  // A step that changed nothing (a refusal caught inside, a field set to
  // what it was) leaves the history as it is.
  if (changeset.empty()) return;
  undo_.push_back(std::make_unique<Entry>(Entry{label, std::move(changeset)}));
  if (undo_.size() > maxSteps) undo_.erase(undo_.begin());
  redo_.clear();
  emit changed();
}

bool UndoHistory::canUndo() const { return !undo_.empty(); }
bool UndoHistory::canRedo() const { return !redo_.empty(); }
QString UndoHistory::undoLabel() const { return undo_.empty() ? QString() : undo_.back()->label; }
QString UndoHistory::redoLabel() const { return redo_.empty() ? QString() : redo_.back()->label; }

void UndoHistory::undo() {
  if (undo_.empty()) return;
  try {
    ChangeRecorder(database_).revert(undo_.back()->changeset);
  } catch (const ChangeConflictError&) {
    // The older steps build on this one, so none of them fits any more.
    clear();
    throw;
  }
  redo_.push_back(std::move(undo_.back()));
  undo_.pop_back();
  emit changed();
}

void UndoHistory::redo() {
  if (redo_.empty()) return;
  try {
    ChangeRecorder(database_).reapply(redo_.back()->changeset);
  } catch (const ChangeConflictError&) {
    clear();
    throw;
  }
  undo_.push_back(std::move(redo_.back()));
  redo_.pop_back();
  emit changed();
}

void UndoHistory::clear() {
  undo_.clear();
  redo_.clear();
  emit changed();
}

}  // namespace orvane::app
