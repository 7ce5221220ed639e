#include "core/board/ProjectFixture.h"

namespace orvane {
namespace {

class PeopleOperations : public testing::ProjectFixture {};

TEST_F(PeopleOperations, refusesEmptyAndDuplicateNamesThenBadAddresses) {
  const Person ann = service.createPerson(" Ann Lee\n", " #FF8800 ");
  const Person bob = service.createPerson("Bob", std::nullopt);
  service.updateSetup(project.id, {" Cy ", "", "", " Team\n", " team@shop.io "});
  const std::string empty = "A name, title or path cannot be empty.";
  const std::string badEmail = "That does not look like an email address.";
  const std::string same =
      "The internal address cannot be the client's address, or internal reports could reach the client.";

  expectRefusals({
      {"create empty", [&] { service.createPerson(" \n ", std::nullopt); }, empty},
      {"create duplicate", [&] { service.createPerson("  ANN LEE ", std::nullopt); }, "\"ANN LEE\" is already in use."},
      {"rename empty", [&] { service.renamePerson(bob.id, "\t"); }, empty},
      {"rename duplicate", [&] { service.renamePerson(bob.id, "ann lee"); }, "\"ann lee\" is already in use."},
      {"update duplicate before email", [&] { service.updatePerson(bob.id, "Ann Lee", "bob", ""); },
       "\"Ann Lee\" is already in use."},
      {"update domain without dot", [&] { service.updatePerson(bob.id, "Bob", "bob@shop", ""); }, badEmail},
      {"update space inside", [&] { service.updatePerson(bob.id, "Bob", "bob @shop.io", ""); }, badEmail},
      {"client bad email", [&] { service.updateClient(project.id, "Cy", "Acme", "cy@acme"); }, badEmail},
      {"client is the stored internal", [&] { service.updateClient(project.id, "", "", " TEAM@Shop.io\n"); }, same},
      {"setup bad internal", [&] { service.updateSetup(project.id, {"", "", "cy@acme.com", "", "team@"}); }, badEmail},
      {"setup same", [&] { service.updateSetup(project.id, {"", "", "Cy@Acme.com ", "", " cy@acme.COM"}); }, same},
  });

  service.renamePerson(ann.id, "ann lee");  // a person may change the case of their own name
  service.updatePerson(bob.id, " Bob Ray ", " bob@shop.io ", " +49 30 1234 ");
  EXPECT_EQ(row<Person>(ann.id), (Person{ann.id, "ann lee", "#FF8800", "", ""}));
  EXPECT_EQ(row<Person>(bob.id), (Person{bob.id, "Bob Ray", std::nullopt, "bob@shop.io", "+49 30 1234"}));

  service.updateClient(project.id, " Dee ", " Acme ", " dee@acme.com ");
  const Project stored = row<Project>(project.id);
  EXPECT_EQ((std::vector{stored.clientName, stored.clientCompany, stored.clientEmail, stored.internalName,
                         stored.internalEmail}),
            (std::vector<std::string>{"Dee", "Acme", "dee@acme.com", "Team", "team@shop.io"}));
}

TEST_F(PeopleOperations, deletingAPersonLeavesTheirTicketsUnassigned) {
  const Person ann = service.createPerson("Ann", std::nullopt);
  const Uuid first = ticket("First");
  const Uuid second = ticket("Second");
  service.setAssignee(first, ann.id);
  service.setAssignee(second, ann.id);
  EXPECT_THROW(service.setAssignee(first, Uuid::random()), MissingRecordError);

  service.deletePerson(ann.id);
  EXPECT_EQ(row<Ticket>(first).assigneeId, std::nullopt);
  EXPECT_EQ(row<Ticket>(second).assigneeId, std::nullopt);
}

}  // namespace
}  // namespace orvane
