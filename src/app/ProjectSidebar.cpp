#include "app/ProjectSidebar.h"

#include <QSignalBlocker>

#include "app/AppContext.h"
#include "app/ItemIds.h"

namespace orvane::app {

ProjectSidebar::ProjectSidebar(AppContext& context, QWidget* parent) : QListWidget(parent), context_(context) {
  setObjectName(QStringLiteral("projectList"));
  setSelectionMode(QAbstractItemView::SingleSelection);
  setMinimumWidth(150);
  connect(this, &QListWidget::itemSelectionChanged, this, [this] {
    if (!reloading_) announceSelection();
  });
  connect(&context_, &AppContext::storeChanged, this, &ProjectSidebar::reload);
  reload();
}

std::optional<Uuid> ProjectSidebar::selectedProject() const {
  const QList<QListWidgetItem*> items = selectedItems();
  if (items.isEmpty()) return std::nullopt;
  return Uuid::parse(items.front()->data(idRole).toString().toStdString());
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
