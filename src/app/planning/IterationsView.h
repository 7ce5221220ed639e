#pragma once

#include <map>
#include <optional>

#include "app/shell/ProjectViewBase.h"
#include "app/widgets/LatestRun.h"
#include "app/widgets/RunOutcome.h"
#include "core/forecast/IterationForecast.h"

class QComboBox;
class QLabel;
class QPushButton;
class QTreeWidget;

namespace orvane::app {

// The project's iterations, planned, active and closed, with their counters
// (committed at the start, finished and carried over at the close), and the
// tickets of the selected one. Start and close follow the iteration rules of
// the service; a close asks where the open tickets go and then reports what
// it did. That report stands until the next change to the store or the
// next project; the empty-state text follows the project shown.
//
// The planned and active iterations also show their forecast: the chance
// that every open ticket is done by the last day, the outlook in the
// service's words, the days left and the tickets likely done by then (85%
// confidence); the selected one's is also written out in the command
// line's words. Inputs are read on reload, the simulations run in the thread
// pool, and only the newest run is shown; a refusal shows as its sentence.
class IterationsView : public ProjectViewBase {
  Q_OBJECT

 public:
  IterationsView(AppContext& context, QWidget* parent);

  QTreeWidget* iterations() const { return iterations_; }
  QTreeWidget* tickets() const { return tickets_; }
  QLabel* notice() const { return notice_; }
  std::optional<Uuid> selectedIteration() const;
  void selectIteration(const Uuid& iteration);

  void newIteration();
  void editIteration();
  void startIteration();
  void closeIteration();
  void deleteIteration();
  void takeTicketOut();
  // Puts the ticket chosen beside "Add to the iteration" into the selected one.
  void addTicket();

  // True while a forecast run has been started and its result not yet shown.
  bool isComputing() const { return forecastRuns_.busy(); }

 signals:
  void openTicketRequested(const orvane::Uuid& ticket);
  // The forecast cells now show the newest run.
  void forecastShown();

 protected:
  void reload() override;

 private:
  void fillTickets();
  void updateButtons();
  void forecastIterations();
  // The selected iteration's forecast written out, or why there is none.
  void showSelectedForecast();

  std::shared_ptr<const ProjectSnapshot> shown_;
  QTreeWidget* iterations_ = nullptr;
  QTreeWidget* tickets_ = nullptr;
  QLabel* goal_ = nullptr;
  QLabel* forecast_ = nullptr;
  QLabel* notice_ = nullptr;
  QPushButton* edit_ = nullptr;
  QPushButton* start_ = nullptr;
  QPushButton* close_ = nullptr;
  QPushButton* delete_ = nullptr;
  QComboBox* candidates_ = nullptr;
  QPushButton* add_ = nullptr;
  QPushButton* takeOut_ = nullptr;
  LatestRun forecastRuns_;
  // The forecasts shown, by iteration: those of the newest run, and the
  // refusals read on reload.
  std::map<Uuid, Outcome<IterationForecast>> forecasts_;
};

}  // namespace orvane::app
