#pragma once

#include <unicode/timezone.h>

#include <QApplication>
#include <QLocale>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>
#include <QStandardPaths>
#include <memory>

#include "app/shell/AppContext.h"
#include "core/support/TempStore.h"

namespace orvane::testing {

// The user's calendar is UTC in English for every app test, whatever the
// machine's zone and language; settings start empty, in a test location.
struct AppEnvironment {
  AppEnvironment() {
    icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone("UTC"));
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
    QStandardPaths::setTestModeEnabled(true);
    QSettings().clear();  // no view mode left over from another test
  }
};

// A real store in a temporary folder with the window's context over it; the
// clock is pinned and can be moved on.
struct AppFixture {
  AppFixture() {
    context->setClock([this] { return clock; });
  }

  AppEnvironment environment;
  TempStore t;
  Timestamp clock = at(2026, 3, 4, 10);
  std::unique_ptr<app::AppContext> context = std::make_unique<app::AppContext>(t.store);

  BoardService& board() { return context->board(); }
  ProjectSnapshot snapshot(const Uuid& project) { return *board().snapshot(project); }
};

// Waits until `view` shows its newest run (work that runs in the thread
// pool): while it is still computing, for its `shown` signal.
template <typename View, typename Signal>
void awaitNewest(View& view, Signal shown, int timeoutMs = 20000) {
  QSignalSpy spy(&view, shown);
  while (view.isComputing()) QVERIFY(spy.wait(timeoutMs));
}

}  // namespace orvane::testing
