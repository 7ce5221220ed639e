#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "core/store/Rows.h"
#include "core/support/StoreDump.h"
#include "core/support/TempStore.h"

namespace orvane::testing {

// A call the service must refuse with exactly this sentence.
struct Refusal {
  std::string label;
  std::function<void()> call;
  std::string message;
};

// A store holding one project, "Shop", on the standard board.
class ProjectFixture : public ::testing::Test {
 protected:
  TempStore t;
  BoardService& service = t.service;
  Database& db = t.store.db();
  Project project = service.createProject("Shop", std::nullopt, at(2026, 1, 5));

  Uuid ticket(const std::string& title, std::optional<Uuid> inProject = {}) {
    return service.createTicket(inProject.value_or(project.id), NewTicket{.title = title}, at(2026, 1, 6)).id;
  }
  template <typename T>
  T row(const Uuid& id) {
    return *rows::find<T>(db, id);
  }

  // Each call must throw a PMError or BoardError with its exact sentence and
  // leave every row as it was.
  void expectRefusals(const std::vector<Refusal>& refusals) {
    for (const Refusal& r : refusals) {
      SCOPED_TRACE(r.label);
      const std::string before = dumpStore(db);
      try {
        r.call();
        ADD_FAILURE() << "accepted";
      } catch (const PMError& error) {
        EXPECT_EQ(std::string(error.what()), r.message);
      } catch (const BoardError& error) {
        EXPECT_EQ(std::string(error.what()), r.message);
      }
      EXPECT_EQ(dumpStore(db), before);
    }
  }
};

}  // namespace orvane::testing
