#include "app/shell/StoreCommands.h"

#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>

#include "app/shell/AppContext.h"
#include "app/shell/NewProjectDialog.h"
#include "app/shell/UndoHistory.h"
#include "app/widgets/Alert.h"
#include "core/files/FileError.h"
#include "core/files/FileReader.h"
#include "core/files/FileWriter.h"
#include "engine/LocalCivilDate.h"

namespace orvane::app {

StoreCommands::StoreCommands(AppContext& context, QWidget* window)
    : QObject(window), context_(context), window_(window) {}

void StoreCommands::newProject() {
  auto* dialog =
      new NewProjectDialog([this](const QString& name, const QString& key) { return createProject(name, key); },
                           window_, context_.board().projects());
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->open();
}

std::optional<QString> StoreCommands::createProject(const QString& name, const QString& key) {
  // An empty prefix means "make the key from the name".
  const std::string keyText = key.trimmed().toStdString();
  const std::optional<std::string_view> prefix =
      keyText.empty() ? std::nullopt : std::optional<std::string_view>(keyText);
  std::optional<Uuid> created;
  // The sheet shows a refusal itself, so this bypasses perform()'s alert;
  // the creation is still one undoable step.
  try {
    context_.undoHistory().record(QStringLiteral("New project"), [&] {
      created = context_.board().createProject(name.toStdString(), prefix, context_.now()).id;
    });
  } catch (const std::exception& error) {
    return QString::fromStdString(error.what());
  }
  context_.notifyStoreChanged();
  emit projectCreated(*created);
  return std::nullopt;
}

std::optional<QString> StoreCommands::renameProject(const Uuid& project, const QString& name) {
  // As with a new project, the sheet shows a refusal where the name is typed.
  try {
    context_.undoHistory().record(QStringLiteral("Rename project"),
                                  [&] { context_.board().renameProject(project, name.toStdString()); });
  } catch (const std::exception& error) {
    return QString::fromStdString(error.what());
  }
  context_.notifyStoreChanged();
  return std::nullopt;
}

void StoreCommands::loadDemoProject() {
  std::optional<Uuid> created;
  if (context_.perform(
          QStringLiteral("Load the demo project"),
          [&](BoardService& board) { created = board.loadDemoProject(context_.now()).id; }, window_)) {
    emit projectCreated(*created);
  }
}

void StoreCommands::confirmDeleteProject(const Uuid& project) {
  auto* confirm =
      new QMessageBox(QMessageBox::Warning, QStringLiteral("Delete project"),
                      QStringLiteral("Delete this project and all its tickets?"), QMessageBox::Cancel, window_);
  confirm->setObjectName(QStringLiteral("confirmDeleteProject"));
  confirm->setInformativeText(
      QStringLiteral("This cannot be undone. Use Back up everything first if you want a copy."));
  QPushButton* deleteButton = confirm->addButton(QStringLiteral("Delete"), QMessageBox::DestructiveRole);
  deleteButton->setObjectName(QStringLiteral("delete"));
  confirm->setDefaultButton(QMessageBox::Cancel);
  confirm->setAttribute(Qt::WA_DeleteOnClose);
  confirm->setWindowModality(Qt::WindowModal);
  connect(confirm, &QMessageBox::buttonClicked, this, [this, deleteButton, project](QAbstractButton* clicked) {
    if (clicked == deleteButton) deleteProject(project);
  });
  confirm->open();
}

bool StoreCommands::deleteProject(const Uuid& project) {
  if (!context_.perform(
          QStringLiteral("Delete project"), [&](BoardService& board) { board.deleteProject(project); }, window_)) {
    return false;
  }
  emit projectDeleted(project);
  return true;
}

QString StoreCommands::defaultBackupName() const {
  const CivilDate today = civilDateFromLocal(context_.now(), context_.calendar());
  return QStringLiteral("orvane-backup-") + QString::fromStdString(today.description()) + QStringLiteral(".json");
}

void StoreCommands::backUpEverything() {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  const QString path = QFileDialog::getSaveFileName(window_, QStringLiteral("Back up everything"),
                                                    folder + QStringLiteral("/") + defaultBackupName(),
                                                    QStringLiteral("Orvane backups (*.json)"));
  if (!path.isEmpty()) writeBackup(path.toStdString());
}

void StoreCommands::restoreFromBackup() {
  const QString path = QFileDialog::getOpenFileName(window_, QStringLiteral("Restore from backup"), QString(),
                                                    QStringLiteral("Orvane backups (*.json);;All files (*)"));
  if (path.isEmpty()) return;
  if (const std::optional<QString> message = restoreFile(path.toStdString())) {
    auto* box = new QMessageBox(QMessageBox::Information, QStringLiteral("Restore from backup"), *message,
                                QMessageBox::Ok, window_);
    box->setObjectName(QStringLiteral("restoreMessage"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::WindowModal);
    box->open();
  }
}

bool StoreCommands::writeBackup(const std::filesystem::path& path) {
  std::string document;
  try {
    document = context_.board().makeBackup(context_.now());
  } catch (const std::exception& error) {
    showAlert(window_, QString::fromStdString(error.what()));
    return false;
  }
  try {
    replaceFile(path, document, FileContent::backup);
  } catch (const FileError& error) {
    showAlert(window_, QString::fromStdString(error.what()));  // "The backup could not be written: ..."
    return false;
  }
  return true;
}

std::optional<QString> StoreCommands::restoreFile(const std::filesystem::path& path) {
  std::string bytes;
  try {
    bytes = readRegularFile(path, FileContent::backup);
  } catch (const FileError& error) {
    showAlert(window_, QString::fromStdString(error.what()));  // "The backup could not be read: ..."
    return std::nullopt;
  }
  Backup::Report report;
  if (!context_.perform(
          QStringLiteral("Restore from backup"), [&](BoardService& board) { report = board.restoreBackup(bytes); },
          window_)) {
    return std::nullopt;
  }
  return restoreMessage(report);
}

QString StoreCommands::restoreMessage(const Backup::Report& report) {
  QString message = QStringLiteral("Restored %1 project(s) with %2 saved forecasts. Nothing existing was changed.")
                        .arg(report.projects)
                        .arg(report.forecasts);
  if (!report.warnings.empty()) {
    message += QStringLiteral(" %1 warning(s):").arg(static_cast<qint64>(report.warnings.size()));
    for (const std::string& warning : report.warnings) message += QStringLiteral("\n") + QString::fromStdString(warning);
  }
  return message;
}

}  // namespace orvane::app
