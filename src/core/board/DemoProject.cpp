// The demonstration project: a small web-shop team's last fourteen weeks.
//
// Everything is made through the service's own operations, replayed in the
// order it would have happened (each at its past instant), so every rule,
// event, started and completed date, iteration counter and position is what
// real use would have produced. Days are counted from the Monday of the week
// of `now`; all history lies before that Monday, so it is in the past
// whatever the time of `now`. The same `now` always gives the same content.

#include <algorithm>
#include <array>
#include <climits>
#include <functional>
#include <map>
#include <stdexcept>

#include "core/board/BoardService.h"
#include "core/store/Rows.h"
#include "core/text/Text.h"

namespace orvane {
namespace {

constexpr int never = INT_MIN;

// Day `weekday` (0 = Monday ... 4 = Friday) of the week `week` weeks from
// the current one.
constexpr int day(int week, int weekday) { return week * 7 + weekday; }
constexpr bool isWorkday(int d) { return ((d % 7) + 7) % 7 < 5; }
constexpr int workdaysBefore(int d, int n) {
  while (n > 0) {
    --d;
    if (isWorkday(d)) --n;
  }
  return d;
}

// The day the project was created; nothing happens before it.
constexpr int firstDay = day(-14, 0);

enum class Stage { backlog, toDo, inProgress, review, done };
constexpr std::array<std::string_view, 5> stageColumns{"Backlog", "To Do", "In Progress", "Review", "Done"};

// The days on which a ticket entered each column (`never` when it did not).
struct Flow {
  Stage stage = Stage::backlog;
  int created = never;
  int toDo = never;
  int started = never;
  int review = never;
  int done = never;
};

// A ticket finished on `doneDay` after `cycle` working days, created `wait`
// working days before work began. Work of two days or more passes through
// Review; a wait of two days or more through To Do the day before the start.
constexpr Flow finished(int doneDay, int cycle, int wait) {
  Flow flow{Stage::done};
  flow.done = doneDay;
  flow.started = workdaysBefore(doneDay, cycle);
  flow.created = std::max(workdaysBefore(flow.started, wait), firstDay);
  if (wait >= 2) flow.toDo = std::max(workdaysBefore(flow.started, 1), flow.created);
  if (cycle >= 2) flow.review = std::max(workdaysBefore(doneDay, cycle / 3), flow.started);
  return flow;
}

constexpr Flow open(Stage stage, int created, int toDo = never, int started = never, int review = never) {
  return Flow{stage, created, toDo, started, review, never};
}

enum PersonIndex { maya, jonas, priya, tom, lena, nobody = -1 };
enum EpicIndex { catalogue, checkout, accounts, tracking, launch, noEpic = -1 };

struct DemoPerson {
  std::string_view name;
  std::string_view color;
  std::string_view email;
};
constexpr std::array<DemoPerson, 5> people{{
    {"Maya Chen", "#E4572E", "maya@webshop.example"},
    {"Jonas Berg", "#17BEBB", "jonas@webshop.example"},
    {"Priya Nair", "#F2A541", "priya@webshop.example"},
    {"Tom Okafor", "#76B041", "tom@webshop.example"},
    {"Lena Fischer", "#8E6C8A", "lena@webshop.example"},
}};

struct DemoEpic {
  std::string_view name;
  std::string_view color;
  int start;
  int due;
  std::string_view details;
};
constexpr std::array<DemoEpic, 5> epics{{
    {"Catalogue & search", "#3D5A80", day(-14, 0), day(-8, 4), "Products, categories and a search that finds them."},
    {"Checkout & payments", "#EE6C4D", day(-10, 0), day(-2, 4), "Cart, addresses, shipping, VAT and card payments."},
    {"Customer accounts", "#98C1D9", day(-7, 0), day(1, 4), "Sign-up, login, profile, order history, GDPR."},
    {"Order tracking & e-mails", "#6A994E", day(-2, 0), day(4, 4), "Tell customers where their parcel is."},
    {"Launch readiness", "#BC4749", day(2, 0), day(8, 4), "Speed, search engines and the public launch."},
}};

// Successor waits for predecessor.
constexpr std::array<std::pair<EpicIndex, EpicIndex>, 5> epicDependencies{{
    {checkout, catalogue},
    {accounts, catalogue},
    {tracking, checkout},
    {tracking, accounts},
    {launch, tracking},
}};

struct DemoTicket {
  std::string_view title;
  EpicIndex epic;
  PersonIndex person;
  TicketPriority priority;
  std::string_view tags;  // comma-separated
  Flow flow;
  int sprint = 0;  // 1 (closed), 2 (active), 3 (planned); 0 for none
  int due = never;
};

using P = TicketPriority;
constexpr DemoTicket tickets[] = {
    {"Set up repository and CI pipeline", noEpic, jonas, P::high, "infra", finished(day(-14, 3), 3, 0)},
    {"Product data model", catalogue, maya, P::high, "backend", finished(day(-14, 4), 4, 0)},
    {"Import products from the supplier's CSV", catalogue, jonas, P::high, "backend,import",
     finished(day(-13, 1), 5, 1)},
    {"Product list page", catalogue, priya, P::medium, "frontend", finished(day(-13, 2), 4, 2)},
    {"Design system: colours and type", noEpic, lena, P::medium, "design", finished(day(-13, 4), 6, 2)},
    {"Product detail page", catalogue, priya, P::medium, "frontend", finished(day(-12, 0), 4, 3)},
    {"Product images on a CDN", catalogue, jonas, P::low, "infra", finished(day(-12, 2), 2, 4)},
    {"Staging environment", noEpic, jonas, P::high, "infra", finished(day(-12, 3), 3, 5)},
    {"Spike: compare search engines", catalogue, maya, P::medium, "research", finished(day(-12, 4), 2, 6)},
    {"Category navigation", catalogue, priya, P::medium, "frontend", finished(day(-11, 2), 6, 3)},
    {"Full-text product search", catalogue, maya, P::high, "backend,search", finished(day(-11, 4), 7, 2)},
    {"Search filters: price, size and colour", catalogue, priya, P::medium, "frontend,search",
     finished(day(-10, 1), 5, 4)},
    {"Shopping cart", checkout, maya, P::high, "frontend,backend", finished(day(-10, 2), 6, 5)},
    {"Stock levels from the warehouse feed", catalogue, jonas, P::medium, "backend,import",
     finished(day(-10, 3), 4, 8)},
    {"Cookie banner", noEpic, lena, P::low, "legal,frontend", finished(day(-10, 4), 1, 10)},
    {"Search results ranking", catalogue, maya, P::medium, "search", finished(day(-9, 1), 4, 3)},
    {"Cart: save for later", checkout, priya, P::low, "frontend", finished(day(-9, 2), 3, 6)},
    {"Sitemap and readable product URLs", catalogue, jonas, P::low, "seo", finished(day(-9, 4), 2, 9)},
    {"Catalogue QA pass", catalogue, tom, P::high, "qa", finished(day(-8, 2), 3, 4)},
    {"Shipping cost calculator", checkout, jonas, P::high, "backend", finished(day(-8, 3), 5, 6)},
    {"Fix: search ignores accents", catalogue, maya, P::urgent, "bug,search", finished(day(-8, 3), 1, 0)},
    {"Catalogue go-live checklist", catalogue, tom, P::medium, "release", finished(day(-8, 4), 1, 3), 0, day(-8, 4)},
    {"Checkout address form", checkout, priya, P::high, "frontend", finished(day(-7, 1), 6, 3)},
    {"Payment provider sandbox", checkout, jonas, P::high, "payments", finished(day(-7, 3), 7, 5)},
    {"Card payments", checkout, jonas, P::urgent, "payments,backend", finished(day(-6, 2), 8, 2)},
    {"Sign-up and login", accounts, maya, P::high, "backend,security", finished(day(-6, 3), 6, 4)},
    {"Order confirmation page", checkout, priya, P::medium, "frontend", finished(day(-6, 4), 3, 5)},
    {"Discount codes", checkout, maya, P::medium, "backend", finished(day(-5, 1), 4, 6)},
    {"Password reset e-mail", accounts, maya, P::high, "backend,email", finished(day(-5, 2), 3, 3)},
    {"Guest checkout", checkout, priya, P::high, "frontend", finished(day(-5, 3), 5, 4)},
    {"Payment failure messages", checkout, lena, P::medium, "payments,copy", finished(day(-5, 4), 2, 7)},
    {"Fix: cart total off by one cent", checkout, jonas, P::urgent, "bug", finished(day(-5, 4), 1, 0)},
    {"VAT per country", checkout, jonas, P::high, "backend,legal", finished(day(-4, 2), 6, 2)},
    {"Address autocomplete", checkout, priya, P::low, "frontend", finished(day(-4, 3), 4, 10)},
    {"Profile page", accounts, priya, P::medium, "frontend", finished(day(-4, 4), 5, 6)},
    {"Order history", accounts, maya, P::medium, "frontend,backend", finished(day(-3, 3), 3, 5), 1},
    {"Refunds in the admin", checkout, jonas, P::high, "admin,payments", finished(day(-3, 2), 2, 8), 1},
    {"Accessibility audit of the checkout", checkout, tom, P::medium, "qa,a11y", finished(day(-3, 3), 3, 5), 1},
    {"Fix: login loop in Safari", accounts, maya, P::urgent, "bug", finished(day(-3, 4), 1, 0), 1},
    {"Saved addresses", accounts, priya, P::medium, "frontend", finished(day(-2, 1), 5, 4), 1},
    {"Checkout end-to-end tests", checkout, tom, P::high, "qa", finished(day(-2, 2), 4, 6), 1},
    {"Go live with real payments", checkout, jonas, P::urgent, "payments,release", finished(day(-2, 3), 2, 7), 1,
     day(-2, 4)},
    {"Order confirmation e-mail", tracking, lena, P::medium, "email", finished(day(-2, 4), 3, 7), 1},
    {"Wishlist", accounts, priya, P::low, "frontend", finished(day(-1, 1), 6, 3), 1},
    {"E-mail templates", tracking, lena, P::medium, "email,design", finished(day(-1, 2), 4, 5), 2},
    {"Fix: duplicate order e-mails", tracking, jonas, P::urgent, "bug,email", finished(day(-1, 3), 1, 0), 2},
    {"Two-factor login", accounts, maya, P::high, "security",
     open(Stage::inProgress, day(-4, 1), day(-4, 4), day(-3, 1)), 1},
    {"Shipment tracking page", tracking, priya, P::high, "frontend",
     open(Stage::inProgress, day(-3, 2), day(-3, 4), day(-2, 2)), 1},
    {"Carrier API integration", tracking, jonas, P::high, "backend,integration",
     open(Stage::inProgress, day(-3, 0), day(-2, 3), day(-1, 0)), 2},
    {"Delete my account (GDPR)", accounts, maya, P::high, "legal,backend",
     open(Stage::review, day(-4, 2), day(-2, 3), day(-1, 1), day(-1, 3)), 2, day(-1, 4)},
    {"Returns form", tracking, lena, P::medium, "frontend,forms",
     open(Stage::review, day(-3, 1), day(-3, 3), day(-2, 1), day(-1, 3)), 1},
    {"Delivery time estimates", tracking, jonas, P::medium, "backend", open(Stage::toDo, day(-2, 1), day(-2, 3)), 2},
    {"E-mail preferences in the account", accounts, priya, P::low, "frontend,email",
     open(Stage::toDo, day(-2, 2), day(-2, 3)), 2},
    {"Fix: product images blurry on retina screens", catalogue, priya, P::urgent, "bug,frontend",
     open(Stage::toDo, day(-1, 3), day(-1, 3)), 2, day(-1, 4)},
    {"Lazy-load product images", launch, nobody, P::medium, "performance", open(Stage::backlog, day(-9, 2)), 3},
    {"Structured data for products", launch, jonas, P::low, "seo", open(Stage::backlog, day(-8, 1))},
    {"Launch landing page", launch, lena, P::medium, "marketing", open(Stage::backlog, day(-2, 2)), 0, day(6, 4)},
    {"Load test the checkout", launch, tom, P::high, "qa,performance", open(Stage::backlog, day(-3, 3)), 3},
    {"Accessibility audit of the account pages", accounts, tom, P::medium, "qa,a11y", open(Stage::backlog, day(-1, 2)),
     3},
    {"Gift cards", checkout, nobody, P::low, "idea", open(Stage::backlog, day(-11, 3))},
    {"Product reviews", noEpic, nobody, P::low, "idea", open(Stage::backlog, day(-6, 1))},
    {"Dark mode", noEpic, nobody, P::low, "idea", open(Stage::backlog, day(-12, 1))},
    {"Order status e-mails", tracking, lena, P::medium, "email", open(Stage::backlog, day(-1, 2)), 3},
};

struct DemoDetails {
  std::string_view ticket;
  std::string_view details;
};
constexpr DemoDetails details[] = {
    {"Import products from the supplier's CSV", "Nightly import of the supplier's price list; about 2,400 products."},
    {"Full-text product search", "Search names, descriptions and brands; typo tolerant."},
    {"Card payments", "Visa and Mastercard through the payment provider, with 3-D Secure."},
    {"VAT per country", "Prices shown with the VAT of the delivery country."},
    {"Two-factor login", "Optional second factor with an authenticator app."},
    {"Carrier API integration", "Pull parcel status from the carrier every 15 minutes."},
    {"Delete my account (GDPR)", "Customers can delete their account and personal data themselves."},
    {"Launch landing page", "A page for the launch campaign with the spring collection."},
};

// Moves beyond the plain flow: work that was sent back.
struct ExtraMove {
  std::string_view ticket;
  int day;
  int hour;
  Stage to;
};
constexpr ExtraMove extraMoves[] = {
    {"VAT per country", day(-5, 4), 16, Stage::done},
    {"VAT per country", day(-4, 0), 10, Stage::inProgress},  // reopened after review
    {"Two-factor login", day(-3, 3), 10, Stage::toDo},       // paused for the Safari bug
    {"Two-factor login", day(-1, 0), 10, Stage::inProgress},
};

struct DemoComment {
  std::string_view ticket;
  int day;
  int hour;
  int minute;
  std::string_view body;
};
constexpr DemoComment comments[] = {
    {"Import products from the supplier's CSV", day(-14, 2), 15, 0,
     "The supplier sends prices with a decimal comma; the importer accepts both."},
    {"Full-text product search", day(-12, 2), 15, 0, "Going with the engine from the spike, see the related ticket."},
    {"Card payments", day(-8, 4), 15, 0, "Sandbox keys are in the team vault."},
    {"Card payments", day(-6, 1), 15, 30, "3-D Secure works with all test cards. Ready for review."},
    {"Fix: cart total off by one cent", day(-5, 3), 10, 30,
     "Reported by the client: three items at 9.99 show a total of 29.96."},
    {"Fix: cart total off by one cent", day(-5, 4), 15, 0, "Rounding now happens once, on the total."},
    {"VAT per country", day(-4, 0), 10, 5, "Reopened: Norway and Switzerland were missing."},
    {"Two-factor login", day(-3, 3), 10, 5, "Paused for the Safari login bug; back next sprint."},
    {"Go live with real payments", day(-2, 3), 17, 40, "The first real order arrived this afternoon."},
    {"Shipment tracking page", day(-2, 2), 15, 0, "The status timeline needs the carrier API first."},
    {"E-mail preferences in the account", day(-2, 3), 12, 0, "Waiting for the final wording from marketing."},
    {"Delete my account (GDPR)", day(-1, 3), 15, 30, "Legal wants to check the retention rules before this ships."},
    {"Returns form", day(-1, 4), 11, 0, "Reviewed on staging; two small copy fixes left."},
};

struct DemoChecklistItem {
  std::string_view ticket;
  std::string_view title;
  bool done;
};
constexpr DemoChecklistItem checklist[] = {
    {"Catalogue go-live checklist", "DNS switched", true},
    {"Catalogue go-live checklist", "Search index rebuilt", true},
    {"Catalogue go-live checklist", "Analytics tag checked", true},
    {"Card payments", "Visa and Mastercard", true},
    {"Card payments", "3-D Secure", true},
    {"Card payments", "Refund webhook", true},
    {"Go live with real payments", "Live keys installed", true},
    {"Go live with real payments", "Test order refunded", true},
    {"Two-factor login", "Authenticator apps", true},
    {"Two-factor login", "Recovery codes", true},
    {"Two-factor login", "Remember this device", false},
    {"Two-factor login", "Help page", false},
    {"Delete my account (GDPR)", "Delete personal data", true},
    {"Delete my account (GDPR)", "Keep invoices for ten years", true},
    {"Delete my account (GDPR)", "Confirmation e-mail", false},
    {"Launch landing page", "Hero copy", false},
    {"Launch landing page", "Product photos", false},
    {"Launch landing page", "Newsletter form", false},
};

struct DemoLink {
  std::string_view source;
  std::string_view target;
  LinkKind kind;
};
constexpr DemoLink links[] = {
    {"Shipment tracking page", "Carrier API integration", LinkKind::blockedBy},
    {"Delivery time estimates", "Carrier API integration", LinkKind::blockedBy},
    {"Go live with real payments", "Card payments", LinkKind::blockedBy},
    {"Full-text product search", "Spike: compare search engines", LinkKind::relatedTo},
    {"Returns form", "Refunds in the admin", LinkKind::relatedTo},
    {"Password reset e-mail", "E-mail templates", LinkKind::relatedTo},
};

struct DemoArchive {
  std::string_view ticket;
  int day;
};
constexpr DemoArchive archived[] = {
    {"Spike: compare search engines", day(-10, 0)},
    {"Catalogue go-live checklist", day(-7, 0)},
    {"Dark mode", day(-6, 2)},  // dropped
};

// Blocked by hand: waiting for something outside the board.
struct DemoFlag {
  std::string_view ticket;
  int day;
  int hour;
};
constexpr DemoFlag blockedFlags[] = {{"E-mail preferences in the account", day(-2, 3), 12}};

constexpr std::string_view thisWeek[] = {
    "Two-factor login", "Shipment tracking page", "Carrier API integration", "Delete my account (GDPR)", "Returns form",
};

struct DemoIteration {
  std::string_view name;
  std::string_view goal;
  int planned;  // created on this day at 13:00
  int start;
  int end;
};
constexpr std::array<DemoIteration, 3> sprints{{
    {"Sprint 1", "Checkout ready for real payments", day(-4, 4), day(-3, 0), day(-2, 4)},
    {"Sprint 2", "Customers can follow their orders", day(-2, 3), day(-1, 0), day(0, 4)},
    {"Sprint 3", "Accounts beta and launch preparation", day(-1, 4), day(1, 0), day(2, 4)},
}};

struct DemoMilestone {
  std::string_view name;
  EpicIndex epic;
  int date;
  int doneDay;  // `never` while open
  std::string_view details;
};
constexpr DemoMilestone milestones[] = {
    {"Payment provider contract signed", noEpic, day(-9, 2), day(-9, 1), "Signed a day early."},
    {"Catalogue live", catalogue, day(-8, 4), day(-8, 4), "The catalogue is public, without checkout."},
    {"First paid order", checkout, day(-2, 4), day(-2, 3), ""},
    {"Accounts beta", accounts, day(1, 4), never, "Invite 50 regular customers."},
    {"Public launch", launch, day(8, 4), never, "Spring campaign starts."},
};

std::vector<std::string> splitTags(std::string_view tags) {
  std::vector<std::string> split;
  while (!tags.empty()) {
    const std::size_t comma = tags.find(',');
    split.emplace_back(tags.substr(0, comma));
    tags = comma == std::string_view::npos ? std::string_view() : tags.substr(comma + 1);
  }
  return split;
}

std::size_t ticketIndex(std::string_view title) {
  for (std::size_t i = 0; i < std::size(tickets); ++i) {
    if (tickets[i].title == title) return i;
  }
  throw std::logic_error("the demo names an unknown ticket");
}

// The service calls of the demo, each at its instant, run in time order.
class Timeline {
 public:
  void add(Timestamp at, std::function<void()> step) { steps_.push_back({at, std::move(step)}); }
  void run() {
    std::stable_sort(steps_.begin(), steps_.end(), [](const Step& a, const Step& b) { return a.at < b.at; });
    for (const Step& step : steps_) step.run();
  }

 private:
  struct Step {
    Timestamp at;
    std::function<void()> run;
  };
  std::vector<Step> steps_;
};

}  // namespace

Project BoardService::loadDemoProject(Timestamp now) {
  const CivilDate today = CivilDate::fromUtc(now);
  const std::int64_t weekday = ((today.daysSinceEpoch() + 3) % 7 + 7) % 7;  // 1970-01-01 was a Thursday
  const double monday = today.addingDays(-weekday).utcMidnight().secondsSince1970;
  const auto at = [monday](int d, int hour, int minute = 0) {
    return Timestamp{monday + d * 86400.0 + hour * 3600.0 + minute * 60.0};
  };

  // One transaction for the whole project: each operation below is a
  // savepoint inside it, so a failure part-way (a full disk, a kill) leaves
  // nothing behind, not even an empty project.
  return inTransaction([&] {
    std::string name = "Demo: Web Shop";
    const std::vector<Project> existing = projects();
    for (int n = 2; std::any_of(existing.begin(), existing.end(),
                                [&](const Project& p) { return text::sameName(p.name, name); });
         ++n) {
      name = "Demo: Web Shop " + std::to_string(n);
    }
    const Project project = createProject(name, "SHOP", at(firstDay, 8, 30));

    std::map<std::string, Uuid, std::less<>> columns;
    for (const BoardColumn& column : rows::select<BoardColumn>(db_, "WHERE project_id = ?1", project.id)) {
      columns.emplace(column.name, column.id);
    }
    const auto columnOf = [&](Stage stage) {
      return columns.find(stageColumns[static_cast<std::size_t>(stage)])->second;
    };

    updateSetup(project.id, ProjectSetup{"Sara Lindqvist", "Nordic Outfitters", "sara@nordic-outfitters.example",
                                         "Maya Chen", "maya@webshop.example"});

    // People are shared by all projects: one of the same name is reused as is.
    std::vector<Uuid> personIds;
    const std::vector<Person> everyone = rows::select<Person>(db_, "");
    for (const DemoPerson& person : people) {
      const auto found = std::find_if(everyone.begin(), everyone.end(),
                                      [&](const Person& p) { return text::sameName(p.name, person.name); });
      if (found != everyone.end()) {
        personIds.push_back(found->id);
        continue;
      }
      const Uuid id = createPerson(person.name, std::string(person.color)).id;
      updatePerson(id, person.name, person.email, "");
      personIds.push_back(id);
    }

    std::vector<Uuid> epicIds;
    for (const DemoEpic& epic : epics) {
      const Uuid id = createEpic(project.id, epic.name, std::string(epic.color), at(epic.due, 17)).id;
      updateEpic(id, epic.name, epic.details, at(epic.start, 9), at(epic.due, 17), std::string(epic.color));
      epicIds.push_back(id);
    }
    for (const auto& [successor, predecessor] : epicDependencies) {
      addEpicDependency(epicIds[successor], epicIds[predecessor], at(firstDay, 8, 45));
    }
    for (const DemoMilestone& milestone : milestones) {
      const std::optional<Uuid> epic = milestone.epic == noEpic ? std::nullopt : std::optional(epicIds[milestone.epic]);
      const Uuid id = createMilestone(project.id, milestone.name, at(milestone.date, 17), epic, milestone.details).id;
      if (milestone.doneDay != never) setMilestone(id, true, at(milestone.doneDay, 17, 30));
    }

    Timeline timeline;
    std::vector<Uuid> sprintIds(sprints.size());
    for (std::size_t s = 0; s < sprints.size(); ++s) {
      const DemoIteration& sprint = sprints[s];
      timeline.add(at(sprint.planned, 13), [&, s] {
        sprintIds[s] = createIteration(project.id, sprints[s].name, sprints[s].goal, at(sprints[s].start, 9),
                                       at(sprints[s].end, 17))
                           .id;
      });
    }
    // Sprint 1 ran and closed, its open work carried into Sprint 2, which
    // is under way; Sprint 3 is planned.
    timeline.add(at(sprints[0].start, 8, 45), [&] { startIteration(sprintIds[0], at(sprints[0].start, 8, 45)); });
    timeline.add(at(sprints[0].end, 17, 30), [&] {
      closeIteration(sprintIds[0], IterationCarryOver::into(sprintIds[1]), at(sprints[0].end, 17, 30));
    });
    timeline.add(at(sprints[1].start, 8, 45), [&] { startIteration(sprintIds[1], at(sprints[1].start, 8, 45)); });

    std::vector<Uuid> ticketIds(std::size(tickets));
    std::vector<Timestamp> createdAt(std::size(tickets));
    for (std::size_t i = 0; i < std::size(tickets); ++i) {
      const DemoTicket& ticket = tickets[i];
      const Flow& flow = ticket.flow;
      const int shift = static_cast<int>(i % 2);  // spreads the hours a little
      createdAt[i] = at(flow.created, 9 + static_cast<int>(i % 3));
      timeline.add(createdAt[i], [&, i] {
        const DemoTicket& t = tickets[i];
        NewTicket fields{std::string(t.title), "", t.priority};
        if (t.epic != noEpic) fields.epic = epicIds[t.epic];
        if (t.due != never) fields.dueDate = at(t.due, 17);
        fields.tags = splitTags(t.tags);
        for (const DemoDetails& d : details) {
          if (d.ticket == t.title) fields.details = d.details;
        }
        ticketIds[i] = createTicket(project.id, fields, createdAt[i]).id;
        if (t.person != nobody) setAssignee(ticketIds[i], personIds[t.person]);
      });
      const auto move = [&, i](Stage stage, Timestamp when) {
        timeline.add(when, [&, i, stage, when] { moveTicket(ticketIds[i], columnOf(stage), std::nullopt, when); });
      };
      if (flow.toDo != never) move(Stage::toDo, at(flow.toDo, 11, 45));
      if (flow.started != never) move(Stage::inProgress, at(flow.started, 12 + shift, 30));
      if (flow.review != never) move(Stage::review, at(flow.review, 14 + shift));
      if (flow.done != never) move(Stage::done, at(flow.done, 16 + shift, 15));
      if (ticket.sprint != 0) {
        const std::size_t s = static_cast<std::size_t>(ticket.sprint - 1);
        const Timestamp when = std::max(at(sprints[s].planned, 13, 5), Timestamp{createdAt[i].secondsSince1970 + 60});
        timeline.add(when, [&, i, s] { setIteration(ticketIds[i], sprintIds[s]); });
      }
    }
    for (const ExtraMove& extra : extraMoves) {
      const std::size_t i = ticketIndex(extra.ticket);
      const Timestamp when = at(extra.day, extra.hour);
      timeline.add(when, [&, i, extra, when] { moveTicket(ticketIds[i], columnOf(extra.to), std::nullopt, when); });
    }
    for (const DemoComment& comment : comments) {
      const std::size_t i = ticketIndex(comment.ticket);
      const Timestamp when = at(comment.day, comment.hour, comment.minute);
      timeline.add(when, [&, i, comment, when] { addComment(ticketIds[i], comment.body, when); });
    }
    for (const DemoChecklistItem& item : checklist) {
      const std::size_t i = ticketIndex(item.ticket);
      timeline.add(Timestamp{createdAt[i].secondsSince1970 + 300}, [&, i, item] {
        const Uuid id = addChecklistItem(ticketIds[i], item.title).id;
        if (item.done) setChecklistItem(id, true);
      });
    }
    for (const DemoLink& link : links) {
      const std::size_t source = ticketIndex(link.source);
      const std::size_t target = ticketIndex(link.target);
      const Timestamp when{std::max(createdAt[source], createdAt[target]).secondsSince1970 + 900};
      timeline.add(when,
                   [&, source, target, link, when] { addLink(ticketIds[source], ticketIds[target], link.kind, when); });
    }
    for (const DemoArchive& archive : archived) {
      const std::size_t i = ticketIndex(archive.ticket);
      const Timestamp when = at(archive.day, 9, 30);
      timeline.add(when, [&, i, when] { this->archive(ticketIds[i], when); });
    }
    for (const DemoFlag& flag : blockedFlags) {
      const std::size_t i = ticketIndex(flag.ticket);
      timeline.add(at(flag.day, flag.hour), [&, i] { setBlocked(ticketIds[i], true); });
    }
    for (std::string_view title : thisWeek) {
      const std::size_t i = ticketIndex(title);
      timeline.add(at(sprints[1].start, 9, 30), [&, i] { setThisWeek(ticketIds[i], true); });
    }
    timeline.run();
    return requireProject(project.id);
  });
}

}  // namespace orvane
