#pragma once

#include <cstddef>
#include <functional>
#include <stdexcept>
#include <vector>

namespace orvane {

class Database;

// The net row changes of one step: for every row it touched, the row as it
// was before and as it is after. Foreign-key actions (cascaded deletes,
// references set to null) are part of it like any other change.
class Changeset {
 public:
  bool empty() const { return bytes_.empty(); }
  std::size_t size() const { return bytes_.size(); }

 private:
  friend class ChangeRecorder;
  std::vector<unsigned char> bytes_;
};

// A recorded step that no longer fits the store: a row it touched was
// changed or removed by someone else since. Nothing was applied.
class ChangeConflictError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Records what a step does to the store and takes it back or does it again,
// exactly, events and dates included. Every table must have a primary key:
// rows of a table without one would go unrecorded.
//
// Applying a changeset is all or nothing. It runs in one transaction with
// foreign-key actions switched off, because the cascades and nullified
// references a step caused are already rows of its changeset and must not
// fire a second time. Before committing, every reference the applied rows
// hold and every reference to a row it deleted is looked up (one indexed
// lookup each, so the cost follows the step, not the file); a dangling one
// refuses the step. A row that is not as the changeset expects (changed,
// deleted or added elsewhere in between) refuses it too. Call only outside a
// transaction.
class ChangeRecorder {
 public:
  explicit ChangeRecorder(Database& db);

  // Runs `change` while recording every row it writes. When `change` throws,
  // whatever it already committed (a step may be several service
  // operations, each its own transaction) is taken back before the
  // exception propagates, so a failed step leaves the store as it was.
  Changeset record(const std::function<void()>& change);

  // Takes the step back (undo) or does it again (redo); ChangeConflictError
  // when the store no longer fits.
  void revert(const Changeset& changeset);
  void reapply(const Changeset& changeset);

 private:
  Database& db_;
};

}  // namespace orvane
