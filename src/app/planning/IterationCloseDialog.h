#pragma once

#include <QDialog>
#include <functional>

#include "core/board/BoardTypes.h"
#include "core/model/ProjectSnapshot.h"

class QComboBox;

namespace orvane::app {

// Asks where the open tickets of a closing iteration go: back to the backlog
// (out of every iteration) or into another iteration of the project that is
// not closed. Closes when `close` succeeds; stays open over its refusal.
class IterationCloseDialog : public QDialog {
  Q_OBJECT

 public:
  using Close = std::function<bool(const IterationCarryOver&, QWidget* alertParent)>;

  IterationCloseDialog(const ProjectSnapshot& snapshot, const Iteration& iteration, Close close, QWidget* parent);

  QComboBox* target() const { return target_; }
  void submit();

 private:
  Close close_;
  QComboBox* target_ = nullptr;
};

}  // namespace orvane::app
