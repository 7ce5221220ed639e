#include "app/shell/ProjectSidebar.h"

#include <QMenu>
#include <QSignalBlocker>

#include "app/shell/AppContext.h"
#include "app/widgets/ItemIds.h"

namespace orvane::app {

ProjectSidebar::ProjectSidebar(AppContext& context, QWidget* parent) : QListWidget(parent), context_(context) {
  setObjectName(QStringLiteral("projectList"));
  setSelectionMode(QAbstractItemView::SingleSelection);
  setMinimumWidth(150);
  connect(this, &QListWidget::itemSelectionChanged, this, [this] {
    if (!reloading_) announceSelection();
  });
  connect(&context_, &AppContext::storeChanged, this, &ProjectSidebar::reload);
  setContextMenuPolicy(Qt::CustomContextMenu);
  connect(this, &QWidget::customContextMenuRequested, this, &ProjectSidebar::showContextMenu);
  reload();
}

std::optional<Uuid> ProjectSidebar::selectedProject() const {
  const QList<QListWidgetItem*> items = selectedItems();
  if (items.isEmpty()) return std::nullopt;
  return Uuid::parse(items.front()->data(idRole).toString().toStdString());
}

QString ProjectSidebar::selectedName() const {
  const QList<QListWidgetItem*> items = selectedItems();
  return items.isEmpty() ? QString() : items.front()->text();
}

void ProjectSidebar::showContextMenu(const QPoint& at) {
  QListWidgetItem* entry = itemAt(at);
  if (entry == nullptr) return;
  const std::optional<Uuid> project = Uuid::parse(entry->data(idRole).toString().toStdString());
  if (!project) return;
  // The menu acts on the project under the pointer, which becomes the
  // selected one, as a click would make it.
  selectProject(project);
  auto* menu = new QMenu(this);
  menu->setObjectName(QStringLiteral("projectMenu"));
  menu->setAttribute(Qt::WA_DeleteOnClose);
  const Uuid id = *project;
  menu->addAction(QStringLiteral("Rename project…"), this, [this, id] { emit renameRequested(id); });
  menu->addSeparator();
  menu->addAction(QStringLiteral("Delete project…"), this, [this, id] { emit deleteRequested(id); });
  menu->popup(viewport()->mapToGlobal(at));
}

void ProjectSidebar::selectProject(const std::optional<Uuid>& project) {
  {
    QSignalBlocker blocker(this);
    clearSelection();
    if (project) {
      const QString text = QString::fromStdString(project->text());
      for (int row = 0; row < count(); ++row) {
        if (item(row)->data(idRole).toString() == text) {
          setCurrentRow(row);
          item(row)->setSelected(true);
          break;
        }
      }
    }
  }
  announceSelection();
}

void ProjectSidebar::reload() {
  const std::optional<Uuid> keep = announced_;
  reloading_ = true;
  {
    QSignalBlocker blocker(this);
    clear();
    for (const Project& project : context_.board().projects()) {
      auto* entry = new QListWidgetItem(QString::fromStdString(project.name), this);
      entry->setData(idRole, QString::fromStdString(project.id.text()));
      entry->setToolTip(QString::fromStdString(project.key));
    }
  }
  reloading_ = false;
  selectProject(keep);
}

void ProjectSidebar::announceSelection() {
  const std::optional<Uuid> now = selectedProject();
  if (now == announced_) return;
  announced_ = now;
  emit projectSelected(now);
}

}  // namespace orvane::app
