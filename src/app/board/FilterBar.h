#pragma once

#include <QWidget>
#include <memory>
#include <optional>

#include "core/filter/TicketFilter.h"
#include "core/model/Uuid.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPushButton;

namespace orvane::app {

class AppContext;
class SnapshotCache;

// The filter bar over the board, list, calendar and archived views: search
// words, status, iteration, assignee, epic, priority, tag, and the blocked and
// this-week flags. It edits one ticket filter for the views; the choices
// (epics, people, iterations, tags) follow the project shown. The filter
// holds ids only, so it survives reloads.
class FilterBar : public QWidget {
  Q_OBJECT

 public:
  FilterBar(AppContext& context, QWidget* parent);

  void setProject(const std::optional<Uuid>& project);
  // Reads through `cache`, shared with the views below the bar.
  void useSnapshotCache(SnapshotCache* cache) { cache_ = cache; }
  // The filter as set; archived tickets stay out unless a view asks.
  TicketFilter filter() const;
  bool isActive() const;
  void clear();

  QLineEdit* searchField() const { return search_; }
  QComboBox* statusBox() const { return status_; }
  QCheckBox* blockedBox() const { return blocked_; }

 signals:
  void filterChanged();

 private:
  void showEvent(QShowEvent* event) override;
  // The choices follow the store; a hidden bar only notes they are stale.
  void choicesChanged();
  void reloadChoices();
  std::shared_ptr<const ProjectSnapshot> load(const Uuid& project);
  void changed();

  AppContext& context_;
  SnapshotCache* cache_ = nullptr;
  std::optional<Uuid> project_;
  bool loading_ = false;
  bool choicesStale_ = true;
  QLineEdit* search_;
  QComboBox* status_;
  QComboBox* iteration_;
  QComboBox* assignee_;
  QComboBox* epic_;
  QComboBox* priority_;
  QComboBox* tag_;
  QCheckBox* blocked_;
  QCheckBox* thisWeek_;
  QPushButton* clear_;
};

}  // namespace orvane::app
