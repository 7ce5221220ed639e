#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <vector>

namespace orvane {
class Database;
}

namespace orvane::app {

// Undo and redo of every change the window makes. A change runs while the
// store records the rows it touches; undo applies the inverse of that record
// and redo applies it again, so the store returns exactly to what it was,
// events and dates included. A change whose record does not apply cleanly
// (the file was changed from outside in between) is refused with a sentence
// and the history is cleared rather than guess.
class UndoHistory : public QObject {
  Q_OBJECT

 public:
  explicit UndoHistory(Database& database, QObject* parent = nullptr);
  ~UndoHistory() override;

  // Runs `change` (which performs one or more service operations) and, when
  // it returns normally and changed something, pushes an entry named
  // `label` and drops the redo side. An exception thrown by `change`
  // propagates and records nothing.
  void record(const QString& label, const std::function<void()>& change);

  bool canUndo() const;
  bool canRedo() const;
  QString undoLabel() const;  // "" when there is nothing to undo
  QString redoLabel() const;
  // Throw std::runtime_error with a user-facing sentence when the inverse
  // cannot be applied; the history is then cleared.
  void undo();
  void redo();
  void clear();

 signals:
  void changed();  // the stack changed (labels, enablement)

 private:
  struct Entry;
  Database& database_;
  std::vector<std::unique_ptr<Entry>> undo_;
  std::vector<std::unique_ptr<Entry>> redo_;
};

}  // namespace orvane::app
