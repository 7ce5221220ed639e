#include "core/board/ProjectFixture.h"

namespace orvane {
namespace {

using testing::at;

class EpicOperations : public testing::ProjectFixture {
 protected:
  Uuid epic(const std::string& name, std::optional<Uuid> inProject = {}) {
    return service.createEpic(inProject.value_or(project.id), name, std::nullopt, std::nullopt).id;
  }
  void waits(const Uuid& successor, const Uuid& predecessor) {
    service.addEpicDependency(successor, predecessor, at(2026, 1, 7));
  }
};

TEST_F(EpicOperations, refusesBrokenRulesInOrder) {
  const Uuid x = epic("Checkout");
  const Uuid y = epic("Payments");
  const Uuid z = epic("Search");
  const Project other = service.createProject("Other", std::nullopt, at(2026, 1, 5));
  const Uuid foreign = epic("Checkout", other.id);  // names are per project
  waits(x, y);
  waits(y, z);
  const std::string empty = "A name, title or path cannot be empty.";
  const std::string foreignEpic = "That epic belongs to a different project.";

  expectRefusals({
      {"create empty", [&] { service.createEpic(project.id, "\n", std::nullopt, std::nullopt); }, empty},
      {"create duplicate", [&] { service.createEpic(project.id, " checkout ", "#00F", std::nullopt); },
       "\"checkout\" is already in use."},
      {"update duplicate before range",
       [&] { service.updateEpic(y, "SEARCH", "", at(2026, 3, 1), at(2026, 2, 1), std::nullopt); },
       "\"SEARCH\" is already in use."},
      {"update range", [&] { service.updateEpic(y, "Payments", "", at(2026, 3, 1), at(2026, 2, 28), std::nullopt); },
       "The due date cannot be before the start date."},
      {"on self", [&] { waits(x, x); }, "An epic cannot wait for itself."},
      {"other project", [&] { waits(x, foreign); }, "Epics can only be linked inside one project."},
      {"again", [&] { waits(x, y); }, "That epic already waits for the other one."},
      {"direct loop", [&] { waits(y, x); }, "That would make the epics wait on each other in a loop."},
      {"loop through a chain", [&] { waits(z, x); }, "That would make the epics wait on each other in a loop."},
      {"milestone empty", [&] { service.createMilestone(project.id, " ", at(2026, 3, 1), foreign, ""); }, empty},
      {"milestone foreign epic", [&] { service.createMilestone(project.id, "Beta", at(2026, 3, 1), foreign, ""); },
       foreignEpic},
  });

  const Milestone beta = service.createMilestone(project.id, " Beta ", at(2026, 3, 1), x, " first users ");
  EXPECT_EQ(row<Milestone>(beta.id), (Milestone{beta.id, "Beta", "first users", at(2026, 3, 1), {}, project.id, x}));
  expectRefusals({
      {"update milestone empty", [&] { service.updateMilestone(beta.id, "", at(2026, 3, 1), x, ""); }, empty},
      {"update milestone foreign epic",
       [&] { service.updateMilestone(beta.id, "Beta", at(2026, 3, 1), foreign, ""); }, foreignEpic},
  });

  waits(x, z);  // already implied through y, but not a loop
  service.updateEpic(x, " CHECKOUT ", " flow ", at(2026, 2, 1), at(2026, 2, 1), " #0A0 ");
  EXPECT_EQ(row<Epic>(x), (Epic{x, "CHECKOUT", "#0A0", at(2026, 2, 1), at(2026, 2, 1), "flow", project.id}));
}

TEST_F(EpicOperations, deletingAnEpicKeepsItsTicketsAndTakesItsDependenciesAndMilestones) {
  const Uuid x = epic("Checkout");
  const Uuid y = epic("Payments");
  waits(x, y);
  waits(y, epic("Search"));
  const Uuid ticketId = service.createTicket(project.id, NewTicket{.title = "Cart", .epic = x}, at(2026, 1, 6)).id;
  service.createMilestone(project.id, "Beta", at(2026, 3, 1), x, "");
  const Milestone launch = service.createMilestone(project.id, "Launch", at(2026, 4, 1), std::nullopt, "");

  service.deleteEpic(x);
  EXPECT_EQ(row<Ticket>(ticketId).epicId, std::nullopt);
  EXPECT_EQ(rows::select<EpicDependency>(db, "").size(), 1u);
  EXPECT_EQ(rows::select<Milestone>(db, "").size(), 1u);

  service.setMilestone(launch.id, true, at(2026, 3, 30));
  EXPECT_EQ(row<Milestone>(launch.id).completedAt, at(2026, 3, 30));
  service.setMilestone(launch.id, false, at(2026, 3, 31));
  EXPECT_EQ(row<Milestone>(launch.id).completedAt, std::nullopt);
}

}  // namespace
}  // namespace orvane
