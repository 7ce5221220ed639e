#include "app/NewProjectDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace orvane::app {

NewProjectDialog::NewProjectDialog(OnCreate onCreate, QWidget* parent)
    : QDialog(parent, Qt::Sheet), onCreate_(std::move(onCreate)) {
  setObjectName(QStringLiteral("newProjectDialog"));
  setWindowTitle(QStringLiteral("New project"));
  setWindowModality(Qt::WindowModal);

  name_ = new QLineEdit(this);
  name_->setObjectName(QStringLiteral("projectName"));
  name_->setPlaceholderText(QStringLiteral("Project name"));
  key_ = new QLineEdit(this);
  key_->setObjectName(QStringLiteral("projectKey"));
  key_->setPlaceholderText(QStringLiteral("Ticket prefix (optional, for example FRC)"));
  problem_ = new QLabel(this);
  problem_->setObjectName(QStringLiteral("problem"));
  problem_->setWordWrap(true);
  problem_->setStyleSheet(QStringLiteral("color: #b3261e;"));
  problem_->hide();

  auto* form = new QFormLayout;
  form->addRow(QStringLiteral("Name"), name_);
  form->addRow(QStringLiteral("Ticket prefix"), key_);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
  QPushButton* createButton = buttons->addButton(QStringLiteral("Create"), QDialogButtonBox::AcceptRole);
  createButton->setObjectName(QStringLiteral("create"));
  createButton->setDefault(true);
  connect(buttons, &QDialogButtonBox::accepted, this, &NewProjectDialog::create);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(problem_);
  layout->addWidget(buttons);
  setMinimumWidth(420);
}

QString NewProjectDialog::problem() const { return problem_->isHidden() ? QString() : problem_->text(); }

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
