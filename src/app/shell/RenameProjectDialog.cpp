#include "app/shell/RenameProjectDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace orvane::app {

RenameProjectDialog::RenameProjectDialog(const QString& name, const QString& key, OnRename onRename, QWidget* parent)
    : QDialog(parent, Qt::Sheet), onRename_(std::move(onRename)) {
  setObjectName(QStringLiteral("renameProjectDialog"));
  setWindowTitle(QStringLiteral("Rename project"));
  setWindowModality(Qt::WindowModal);

  name_ = new QLineEdit(name, this);
  name_->setObjectName(QStringLiteral("projectName"));
  name_->selectAll();
  auto* prefix = new QLabel(key, this);
  prefix->setObjectName(QStringLiteral("projectKey"));
  prefix->setTextInteractionFlags(Qt::TextSelectableByMouse);
  auto* prefixNote = new QLabel(
      QStringLiteral("The ticket prefix stays as it is: ticket references already quoted keep working."), this);
  prefixNote->setWordWrap(true);
  prefixNote->setStyleSheet(QStringLiteral("color: palette(placeholder-text);"));
  problem_ = new QLabel(this);
  problem_->setObjectName(QStringLiteral("problem"));
  problem_->setWordWrap(true);
  problem_->setStyleSheet(QStringLiteral("color: #b3261e;"));
  problem_->hide();

  auto* form = new QFormLayout;
  form->addRow(QStringLiteral("Name"), name_);
  form->addRow(QStringLiteral("Ticket prefix"), prefix);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
  QPushButton* renameButton = buttons->addButton(QStringLiteral("Rename"), QDialogButtonBox::AcceptRole);
  renameButton->setObjectName(QStringLiteral("rename"));
  renameButton->setDefault(true);
  connect(buttons, &QDialogButtonBox::accepted, this, &RenameProjectDialog::rename);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(prefixNote);
  layout->addWidget(problem_);
  layout->addWidget(buttons);
  setMinimumWidth(420);
}

QString RenameProjectDialog::problem() const { return problem_->isHidden() ? QString() : problem_->text(); }

void RenameProjectDialog::rename() {
  const std::optional<QString> problem = onRename_(name_->text());
  if (problem) {
    problem_->setText(*problem);
    problem_->show();
    name_->setFocus();
    return;
  }
  accept();
}

}  // namespace orvane::app
