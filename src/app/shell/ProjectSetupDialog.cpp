#include "app/shell/ProjectSetupDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/settings/SettingsDialog.h"
#include "app/shell/AppContext.h"
#include "app/shell/UndoHistory.h"
#include "app/widgets/FieldProblem.h"
#include "app/widgets/FormParts.h"
#include "core/board/ClientEmail.h"
#include "core/board/PMError.h"

namespace orvane::app {

ProjectSetupDialog::ProjectSetupDialog(AppContext& context, const Uuid& project, QWidget* parent)
    : QDialog(parent, Qt::Sheet), context_(context), project_(project) {
  setObjectName(QStringLiteral("projectSetupDialog"));
  setWindowTitle(QStringLiteral("Report recipients"));
  setWindowModality(Qt::WindowModal);

  Project current;
  if (auto snapshot = context_.board().snapshot(project)) current = snapshot->project;

  auto* intro = new QLabel(
      QStringLiteral(
          "Who this project's reports are for. Who prepared them is set once for all projects, in Settings."),
      this);
  intro->setWordWrap(true);
  auto* openSettings = new QPushButton(QStringLiteral("Open Settings…"), this);
  openSettings->setObjectName(QStringLiteral("openSettings"));
  connect(openSettings, &QPushButton::clicked, this, [this] {
    auto* settings = new SettingsDialog(this);
    settings->setAttribute(Qt::WA_DeleteOnClose);
    settings->open();
  });
  auto* introRow = new QHBoxLayout;
  introRow->addWidget(intro, 1);
  introRow->addWidget(openSettings, 0, Qt::AlignTop);

  auto* client = new QGroupBox(QStringLiteral("Client"), this);
  clientName_ = makeField(client, "clientName", current.clientName);
  clientCompany_ = makeField(client, "clientCompany", current.clientCompany);
  clientEmail_ = makeField(client, "clientEmail", current.clientEmail, QStringLiteral("name@client-company.com"));
  clientEmailProblem_ = new FieldProblem("clientEmailProblem", client);
  auto* clientForm = new QFormLayout(client);
  clientForm->addRow(QStringLiteral("Name"), clientName_);
  clientForm->addRow(QStringLiteral("Company"), clientCompany_);
  clientForm->addRow(QStringLiteral("E-mail"), withProblem(clientEmail_, clientEmailProblem_, client));
  clientForm->addRow(
      makeNote(QStringLiteral("Client reports are addressed to the client and emailed to this address."), client));

  auto* internal = new QGroupBox(QStringLiteral("Internal recipient"), this);
  internalName_ = makeField(internal, "internalName", current.internalName,
                            QStringLiteral("For example your manager, or the team"));
  internalEmail_ =
      makeField(internal, "internalEmail", current.internalEmail, QStringLiteral("manager@your-company.com"));
  internalEmailProblem_ = new FieldProblem("internalEmailProblem", internal);
  auto* internalForm = new QFormLayout(internal);
  internalForm->addRow(QStringLiteral("Name"), internalName_);
  internalForm->addRow(QStringLiteral("E-mail"), withProblem(internalEmail_, internalEmailProblem_, internal));
  internalForm->addRow(makeNote(
      QStringLiteral("Internal reports show blockers, ticket titles and people. They are addressed and emailed only to "
                     "this recipient, never to the client, and it cannot be the client's address."),
      internal));

  error_ = new QLabel(this);
  error_->setObjectName(QStringLiteral("errorMessage"));
  error_->setWordWrap(true);
  error_->setStyleSheet(QStringLiteral("color: #b3261e;"));
  error_->hide();

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
  save_ = buttons->addButton(QStringLiteral("Save"), QDialogButtonBox::AcceptRole);
  save_->setObjectName(QStringLiteral("save"));
  save_->setDefault(true);
  for (QLineEdit* address : {clientEmail_, internalEmail_})
    connect(address, &QLineEdit::textChanged, this, &ProjectSetupDialog::check);
  connect(buttons, &QDialogButtonBox::accepted, this, &ProjectSetupDialog::save);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(introRow);
  layout->addWidget(client);
  layout->addWidget(internal);
  layout->addWidget(error_);
  layout->addWidget(buttons);
  setMinimumWidth(480);
  check();
}

QStringList ProjectSetupDialog::fieldProblems() const {
  QStringList shown;
  for (const FieldProblem* problem : {clientEmailProblem_, internalEmailProblem_})
    if (!problem->sentence().isEmpty()) shown << problem->sentence();
  return shown;
}

void ProjectSetupDialog::check() {
  // The service's own address checks, in its order: each address must look
  // like one, then the internal one must not be the client's.
  const auto problemOf = [](const QLineEdit* field) {
    const std::string address = field->text().trimmed().toStdString();
    return address.empty() || ClientEmail::isValid(address)
               ? QString()
               : QString::fromUtf8(PMError(PMError::Case::invalidEmail).what());
  };
  const QString client = problemOf(clientEmail_);
  QString internal = problemOf(internalEmail_);
  const std::string clientAddress = clientEmail_->text().trimmed().toStdString();
  const std::string internalAddress = internalEmail_->text().trimmed().toStdString();
  if (internal.isEmpty() && !clientAddress.empty() && !internalAddress.empty() &&
      ClientEmail::same(clientAddress, internalAddress))
    internal = QString::fromUtf8(PMError(PMError::Case::sameAddress).what());
  clientEmailProblem_->say(client);
  internalEmailProblem_->say(internal);
  save_->setEnabled(client.isEmpty() && internal.isEmpty());
}

QString ProjectSetupDialog::errorMessage() const { return error_->isHidden() ? QString() : error_->text(); }

QLineEdit* ProjectSetupDialog::field(const char* objectName) const {
  return findChild<QLineEdit*>(QString::fromLatin1(objectName));
}

void ProjectSetupDialog::save() {
  // The sentence already stands under the field.
  if (!save_->isEnabled()) return;
  const ProjectSetup setup{clientName_->text().toStdString(), clientCompany_->text().toStdString(),
                           clientEmail_->text().toStdString(), internalName_->text().toStdString(),
                           internalEmail_->text().toStdString()};
  // The service's refusal belongs in the sheet, next to the fields, not in an
  // alert; the change is still one undoable step.
  try {
    context_.undoHistory().record(QStringLiteral("Report recipients"),
                                  [&] { context_.board().updateSetup(project_, setup); });
  } catch (const std::exception& error) {
    error_->setText(QString::fromStdString(error.what()));
    error_->show();
    return;
  }
  context_.notifyStoreChanged();
  accept();
}

}  // namespace orvane::app
