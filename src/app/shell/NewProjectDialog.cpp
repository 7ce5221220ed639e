#include "app/shell/NewProjectDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "app/widgets/FieldProblem.h"
#include "app/widgets/NameCheck.h"

namespace orvane::app {

NewProjectDialog::NewProjectDialog(OnCreate onCreate, QWidget* parent, std::vector<Project> projects)
    : QDialog(parent, Qt::Sheet), onCreate_(std::move(onCreate)), projects_(std::move(projects)) {
  setObjectName(QStringLiteral("newProjectDialog"));
  setWindowTitle(QStringLiteral("New project"));
  setWindowModality(Qt::WindowModal);

  name_ = new QLineEdit(this);
  name_->setObjectName(QStringLiteral("projectName"));
  name_->setPlaceholderText(QStringLiteral("Project name"));
  nameProblem_ = new FieldProblem("projectNameProblem", this);
  key_ = new QLineEdit(this);
  key_->setObjectName(QStringLiteral("projectKey"));
  key_->setPlaceholderText(QStringLiteral("Ticket prefix (optional, for example FRC)"));
  keyPreview_ = new QLabel(this);
  keyPreview_->setObjectName(QStringLiteral("keyPreview"));
  keyPreview_->setStyleSheet(QStringLiteral("color: palette(placeholder-text);"));
  problem_ = new QLabel(this);
  problem_->setObjectName(QStringLiteral("problem"));
  problem_->setWordWrap(true);
  problem_->setStyleSheet(QStringLiteral("color: #b3261e;"));
  problem_->hide();

  auto* keyColumn = new QWidget(this);
  auto* keyLayout = new QVBoxLayout(keyColumn);
  keyLayout->setContentsMargins(0, 0, 0, 0);
  keyLayout->addWidget(key_);
  keyLayout->addWidget(keyPreview_);
  auto* form = new QFormLayout;
  form->addRow(QStringLiteral("Name"), withProblem(name_, nameProblem_, this));
  form->addRow(QStringLiteral("Ticket prefix"), keyColumn);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
  create_ = buttons->addButton(QStringLiteral("Create"), QDialogButtonBox::AcceptRole);
  create_->setObjectName(QStringLiteral("create"));
  create_->setDefault(true);
  connect(buttons, &QDialogButtonBox::accepted, this, &NewProjectDialog::create);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(name_, &QLineEdit::textChanged, this, &NewProjectDialog::check);
  connect(key_, &QLineEdit::textChanged, this, &NewProjectDialog::normaliseKey);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(problem_);
  layout->addWidget(buttons);
  setMinimumWidth(420);
  check();
}

QString NewProjectDialog::problem() const { return problem_->isHidden() ? QString() : problem_->text(); }

QString NewProjectDialog::nameProblem() const { return nameProblem_->sentence(); }

QString NewProjectDialog::keyPreview() const { return keyPreview_->isHidden() ? QString() : keyPreview_->text(); }

void NewProjectDialog::normaliseKey(const QString& typed) {
  // The prefix is stored by the key rule; showing it that way as it is
  // typed means the stored key is never a surprise. Characters the rule
  // drops vanish as they are typed, and the cursor stays after what the
  // user typed last.
  const QString kept = QString::fromStdString(projectKeyCharacters(typed.toStdString()));
  if (kept != typed) {
    const QString beforeCursor = typed.left(key_->cursorPosition());
    const auto cursor = QString::fromStdString(projectKeyCharacters(beforeCursor.toStdString())).size();
    key_->setText(kept);  // comes back here with nothing left to change
    key_->setCursorPosition(static_cast<int>(std::min(cursor, kept.size())));
    return;
  }
  check();
}

void NewProjectDialog::check() {
  const QString problem = app::nameProblem(name_->text(), projects_, NameErrors::board);
  nameProblem_->say(name_->text().isEmpty() ? QString() : problem);
  create_->setEnabled(problem.isEmpty());

  // The key the service will make: from the prefix, or from the name when
  // there is none.
  const QString source = key_->text().isEmpty() ? name_->text().trimmed() : key_->text();
  if (source.isEmpty()) {
    keyPreview_->hide();
  } else {
    const QString key = QString::fromStdString(projectKey(source.toStdString()));
    keyPreview_->setText(QStringLiteral("Tickets will be numbered %1-1, %1-2 and so on.").arg(key));
    keyPreview_->show();
  }
}

void NewProjectDialog::create() {
  const std::optional<QString> problem = onCreate_(name_->text(), key_->text());
  if (problem) {
    problem_->setText(*problem);
    problem_->show();
    return;
  }
  accept();
}

}  // namespace orvane::app
