#include "app/shell/AppContext.h"

#include <unicode/calendar.h>
#include <unicode/timezone.h>

#include <QWidget>
#include <chrono>
#include <exception>

#include "app/shell/UndoHistory.h"
#include "app/widgets/Alert.h"
#include "engine/LocalCivilDate.h"

namespace orvane::app {

namespace {

Timestamp systemNow() {
  const std::chrono::duration<double> sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  return Timestamp{sinceEpoch.count()};
}

}  // namespace

AppContext::AppContext(Store& store, QObject* parent)
    : QObject(parent),
      store_(store),
      board_(std::make_unique<BoardService>(store)),
      undo_(std::make_unique<UndoHistory>(store.db())),
      clock_(systemNow) {
  // Gregorian days in the user's time zone, weeks as the locale starts
  // them, whatever calendar the locale prefers.
  const std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createDefault());
  if (zone) calendar_ = userCalendar(*zone, icu::Locale::getDefault());
  if (!calendar_) {
    // Without the user's calendar every local date would be wrong; the ICU
    // data ships with the library, so this is a broken installation.
    throw std::runtime_error("The calendar of this system could not be loaded.");
  }
}

AppContext::~AppContext() = default;

Store& AppContext::store() { return store_; }
BoardService& AppContext::board() { return *board_; }
UndoHistory& AppContext::undoHistory() { return *undo_; }
const icu::Calendar& AppContext::calendar() const { return *calendar_; }
Timestamp AppContext::now() const { return clock_(); }
void AppContext::setClock(std::function<Timestamp()> clock) { clock_ = std::move(clock); }

bool AppContext::perform(const QString& label, const std::function<void(BoardService&)>& change, QWidget* alertParent) {
  try {
    undo_->record(label, [&] { change(*board_); });
  } catch (const std::exception& error) {
    showAlert(alertParent, QString::fromStdString(error.what()));
    return false;
  }
  emit storeChanged();
  return true;
}

void AppContext::undo(QWidget* alertParent) {
  if (!undo_->canUndo()) return;
  try {
    undo_->undo();
  } catch (const std::exception& error) {
    showAlert(alertParent, QString::fromStdString(error.what()));
  }
  // A refused undo clears the history; either way the screens reload.
  emit storeChanged();
}

void AppContext::redo(QWidget* alertParent) {
  if (!undo_->canRedo()) return;
  try {
    undo_->redo();
  } catch (const std::exception& error) {
    showAlert(alertParent, QString::fromStdString(error.what()));
  }
  emit storeChanged();
}

void AppContext::notifyStoreChanged() { emit storeChanged(); }

}  // namespace orvane::app
