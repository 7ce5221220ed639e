#pragma once

#include <memory>
#include <optional>

#include "app/roadmap/RoadmapPicture.h"
#include "app/shell/ProjectViewBase.h"
#include "app/widgets/LatestRun.h"

class QComboBox;
class QLabel;
class QListWidget;
class QStackedWidget;

namespace orvane::app {

class RoadmapScene;
class RoadmapTimeline;

// Every epic of the project on a time line, scheduled along its
// dependencies: bars to the 50% and 85% dates, due dates, arrows, the
// longest chain, milestones with their chance, the project's finish dates
// and today; under it, the epics at risk and the dependencies whose planned
// dates overlap. The inputs are read on this thread when the view opens or
// the store changes; the simulations run in the thread pool and only the
// newest result is drawn. Dragging a bar's start sets the epic's planned
// start (one undo step); a double-click opens the epic's form.
class RoadmapView : public ProjectViewBase {
  Q_OBJECT

 public:
  RoadmapView(AppContext& context, QWidget* parent);
  ~RoadmapView() override;

  // True while a run has been started and its result not yet drawn.
  bool isComputing() const { return runs_.busy(); }
  RoadmapScene* scene() const { return scene_; }
  RoadmapTimeline* timeline() const { return timeline_; }
  void selectEpic(const Uuid& epic);

 signals:
  // The time line shows the newest run (or the view its empty text).
  void roadmapShown();

 protected:
  void reload() override;

 private:
  void showEmpty(const QString& text);
  void draw();
  void editEpic(const Uuid& epic);
  void moveStart(const Uuid& epic, const CivilDate& day);

  QStackedWidget* pages_ = nullptr;
  QLabel* empty_ = nullptr;
  QLabel* heading_ = nullptr;
  QComboBox* zoom_ = nullptr;
  QLabel* inconclusive_ = nullptr;
  RoadmapScene* scene_ = nullptr;
  RoadmapTimeline* timeline_ = nullptr;
  QListWidget* issues_ = nullptr;

  std::shared_ptr<const ProjectSnapshot> shown_;
  std::optional<RoadmapPicture> picture_;
  std::optional<Uuid> drawnFor_;
  LatestRun runs_;
};

}  // namespace orvane::app
