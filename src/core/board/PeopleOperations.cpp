// People (shared by all projects), ticket assignees, and who a project's
// reports are for.
#include <algorithm>

#include "core/board/BoardService.h"
#include "core/board/ClientEmail.h"
#include "core/board/ServiceRules.h"
#include "core/store/Rows.h"
#include "core/text/Text.h"

namespace orvane {
namespace {

// The trimmed address; an empty one is allowed (no address).
std::string checkedEmail(std::string_view email) {
  std::string address = text::trimmed(email);
  if (!address.empty() && !ClientEmail::isValid(address)) throw PMError(PMError::Case::invalidEmail);
  return address;
}

// Internal reports must never be able to reach the client.
void checkSeparateAddresses(const std::string& clientEmail, const std::string& internalEmail) {
  if (!clientEmail.empty() && !internalEmail.empty() && ClientEmail::same(clientEmail, internalEmail)) {
    throw PMError(PMError::Case::sameAddress);
  }
}

}  // namespace

Person BoardService::createPerson(std::string_view name, std::optional<std::string> colorHex) {
  return inTransaction([&] {
    Person person{Uuid::random(), rules::requireUniqueName(name, rows::select<Person>(db_, "")),
                  rules::trimmedColor(colorHex), "", ""};
    rows::insert(db_, person);
    return person;
  });
}

void BoardService::renamePerson(const Uuid& person, std::string_view name) {
  inTransaction([&] {
    Person row = requirePerson(person);
    row.name = rules::requireUniqueName(name, rows::select<Person>(db_, ""), row.id);
    rows::update(db_, row);
  });
}

void BoardService::updatePerson(const Uuid& person, std::string_view name, std::string_view email,
                                std::string_view phone) {
  inTransaction([&] {
    Person row = requirePerson(person);
    row.name = rules::requireUniqueName(name, rows::select<Person>(db_, ""), row.id);
    row.email = checkedEmail(email);
    row.phone = text::trimmed(phone);
    rows::update(db_, row);
  });
}

void BoardService::deletePerson(const Uuid& person) {
  inTransaction([&] {
    requirePerson(person);
    // The schema leaves the person's tickets in place, unassigned.
    rows::remove<Person>(db_, person);
  });
}

void BoardService::setAssignee(const Uuid& ticket, std::optional<Uuid> person) {
  inTransaction([&] {
    Ticket row = requireTicket(ticket);
    if (person) requirePerson(*person);
    if (row.assigneeId == person) return;
    row.assigneeId = person;
    rows::update(db_, row);
  });
}

void BoardService::updateClient(const Uuid& project, std::string_view name, std::string_view company,
                                std::string_view email) {
  inTransaction([&] {
    Project row = requireProject(project);
    row.clientEmail = checkedEmail(email);
    checkSeparateAddresses(row.clientEmail, row.internalEmail);
    row.clientName = text::trimmed(name);
    row.clientCompany = text::trimmed(company);
    rows::update(db_, row);
  });
}

void BoardService::updateSetup(const Uuid& project, const ProjectSetup& setup) {
  inTransaction([&] {
    Project row = requireProject(project);
    row.clientEmail = checkedEmail(setup.clientEmail);
    row.internalEmail = checkedEmail(setup.internalEmail);
    checkSeparateAddresses(row.clientEmail, row.internalEmail);
    row.clientName = text::trimmed(setup.clientName);
    row.clientCompany = text::trimmed(setup.clientCompany);
    row.internalName = text::trimmed(setup.internalName);
    rows::update(db_, row);
  });
}

}  // namespace orvane
