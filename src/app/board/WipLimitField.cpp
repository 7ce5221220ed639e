#include "app/board/WipLimitField.h"

#include <QLineEdit>
#include <QVBoxLayout>

#include "app/widgets/FieldProblem.h"
#include "core/board/BoardError.h"

namespace orvane::app {
namespace {

// Absent for an empty field; the number when the text is a whole number;
// a value below 1 for anything else, which the service would refuse.
std::optional<std::int64_t> parsed(const QString& text, bool& acceptable) {
  const QString trimmed = text.trimmed();
  acceptable = true;
  if (trimmed.isEmpty()) return std::nullopt;
  bool number = false;
  const qlonglong value = trimmed.toLongLong(&number);
  acceptable = number && value >= 1;
  return acceptable ? std::optional<std::int64_t>(value) : std::nullopt;
}

}  // namespace

WipLimitField::WipLimitField(QWidget* parent) : QWidget(parent) {
  field_ = new QLineEdit(this);
  field_->setObjectName(QStringLiteral("wipLimit"));
  field_->setPlaceholderText(QStringLiteral("No limit"));
  problem_ = new FieldProblem("wipLimitProblem", this);
  connect(field_, &QLineEdit::textChanged, this, &WipLimitField::check);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(field_);
  layout->addWidget(problem_);
}

void WipLimitField::setLimit(std::optional<std::int64_t> limit) {
  field_->setText(limit ? QString::number(*limit) : QString());
}

std::optional<std::int64_t> WipLimitField::limit() const {
  bool acceptable = false;
  return parsed(field_->text(), acceptable);
}

bool WipLimitField::isAcceptable() const { return acceptable_; }

QString WipLimitField::problem() const { return problem_->sentence(); }

void WipLimitField::check() {
  bool acceptable = false;
  parsed(field_->text(), acceptable);
  problem_->say(acceptable ? QString() : QString::fromUtf8(BoardError::invalidWIPLimit().what()));
  if (acceptable == acceptable_) return;
  acceptable_ = acceptable;
  emit acceptableChanged(acceptable);
}

}  // namespace orvane::app
