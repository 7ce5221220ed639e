#pragma once

#include <unicode/utypes.h>

#include <QObject>
#include <QString>
#include <functional>
#include <memory>

#include "core/board/BoardService.h"
#include "core/store/Store.h"
#include "engine/Timestamp.h"

U_NAMESPACE_BEGIN
class Calendar;
U_NAMESPACE_END

class QWidget;

namespace orvane::app {

class UndoHistory;

// What every screen of the window shares: the open store, the one service
// that changes it, the user's calendar, the clock and the undo history.
// Screens read snapshots through board() and change the store only through
// perform(), so every change is undoable and every refusal reaches the user
// as the service's sentence.
class AppContext : public QObject {
  Q_OBJECT

 public:
  AppContext(Store& store, QObject* parent = nullptr);
  ~AppContext() override;

  Store& store();
  BoardService& board();
  UndoHistory& undoHistory();
  // Gregorian, in the user's time zone, weeks starting as the locale starts
  // them (userCalendar).
  const icu::Calendar& calendar() const;
  Timestamp now() const;                  // the clock; tests may pin it
  void setClock(std::function<Timestamp()> clock);

  // Runs `change` as one undoable step named `label`. A BoardError, PMError
  // or other std::exception is shown in an alert over `alertParent` (its
  // what() is the sentence) and false is returned; the store is unchanged.
  // On success emits storeChanged() and returns true.
  bool perform(const QString& label, const std::function<void(BoardService&)>& change, QWidget* alertParent);

  // Undo / redo the last step; refusals are shown in an alert.
  void undo(QWidget* alertParent);
  void redo(QWidget* alertParent);

  // Asks every screen to reload, e.g. after an outside change to the file.
  void notifyStoreChanged();

 signals:
  void storeChanged();

 private:
  Store& store_;
  std::unique_ptr<BoardService> board_;
  std::unique_ptr<UndoHistory> undo_;
  std::unique_ptr<icu::Calendar> calendar_;
  std::function<Timestamp()> clock_;
};

}  // namespace orvane::app
