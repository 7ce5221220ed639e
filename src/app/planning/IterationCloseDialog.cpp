#include "app/planning/IterationCloseDialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/widgets/ItemIds.h"

namespace orvane::app {

IterationCloseDialog::IterationCloseDialog(const ProjectSnapshot& snapshot, const Iteration& iteration, Close close,
                                           QWidget* parent)
    : QDialog(parent), close_(std::move(close)) {
  setObjectName(QStringLiteral("iterationCloseDialog"));
  setWindowTitle(QStringLiteral("Close iteration"));
  const auto done = static_cast<int>(snapshot.doneTickets(iteration).size());
  const auto open = static_cast<int>(snapshot.openTickets(iteration).size());
  auto* summary = new QLabel(QStringLiteral("“%1” has %2 done and %3 open ticket%4. The done tickets stay in it as its "
                                            "record. Where do the open ones go?")
                                 .arg(qText(iteration.name))
                                 .arg(done)
                                 .arg(open)
                                 .arg(open == 1 ? QString() : QStringLiteral("s")),
                             this);
  summary->setObjectName(QStringLiteral("summary"));
  summary->setWordWrap(true);

  target_ = new QComboBox(this);
  target_->setObjectName(QStringLiteral("carryOver"));
  target_->addItem(QStringLiteral("Back to the backlog"));
  for (const Iteration& other : snapshot.iterations) {
    if (other.id == iteration.id || other.state() == IterationState::closed) continue;
    target_->addItem(QStringLiteral("Into “%1”").arg(qText(other.name)), idData(other.id));
  }

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
  QPushButton* closeButton = buttons->addButton(QStringLiteral("Close iteration"), QDialogButtonBox::AcceptRole);
  closeButton->setObjectName(QStringLiteral("closeIteration"));
  connect(buttons, &QDialogButtonBox::accepted, this, &IterationCloseDialog::submit);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(summary);
  layout->addWidget(target_);
  layout->addWidget(buttons);
}

void IterationCloseDialog::submit() {
  const std::optional<Uuid> into = idFrom(target_->currentData());
  if (close_(into ? IterationCarryOver::into(*into) : IterationCarryOver::backlog(), this)) accept();
}

}  // namespace orvane::app
