#include <QTest>

#include "app/AppFixture.h"
#include "app/ticket/TicketListView.h"
#include "app/ticket/TicketTableModel.h"

using namespace orvane;
using namespace orvane::app;
using orvane::testing::AppFixture;
using orvane::testing::at;
using Field = TicketTableModel::Field;

class TicketTableModelTest : public QObject {
  Q_OBJECT

 private slots:
  void sortsByColumn_data();
  void sortsByColumn();
  void listViewShowsEveryActiveTicket();
};

namespace {

TicketCard card(std::int64_t number, TicketPriority priority, std::optional<Timestamp> due, const QString& assignee) {
  TicketCard c;
  c.number = number;
  c.reference = QStringLiteral("WEB-%1").arg(number);
  c.title = QStringLiteral("Ticket %1").arg(number);
  c.priority = priority;
  c.dueDate = due;
  c.dueText = due ? QString::number(due->secondsSince1970) : QString();
  c.assignee = assignee;
  return c;
}

QList<int> numbers(const TicketTableModel& model) {
  QList<int> shown;
  for (int row = 0; row < model.rowCount(); ++row) shown << static_cast<int>(model.card(row).number);
  return shown;
}

}  // namespace

void TicketTableModelTest::sortsByColumn_data() {
  QTest::addColumn<int>("column");
  QTest::addColumn<int>("order");
  QTest::addColumn<QList<int>>("expected");
  // Columns: reference, priority, due, assignee.
  QTest::newRow("reference by number, not text") << 0 << int(Qt::AscendingOrder) << QList<int>{2, 9, 10, 11};
  QTest::newRow("reference descending") << 0 << int(Qt::DescendingOrder) << QList<int>{11, 10, 9, 2};
  QTest::newRow("priority, ties by number") << 1 << int(Qt::AscendingOrder) << QList<int>{9, 2, 10, 11};
  QTest::newRow("priority descending") << 1 << int(Qt::DescendingOrder) << QList<int>{11, 2, 10, 9};
  QTest::newRow("due, none last") << 2 << int(Qt::AscendingOrder) << QList<int>{10, 2, 9, 11};
  QTest::newRow("due descending, none still last") << 2 << int(Qt::DescendingOrder) << QList<int>{2, 10, 9, 11};
  QTest::newRow("assignee ignores case, empty last") << 3 << int(Qt::AscendingOrder) << QList<int>{11, 2, 10, 9};
}

void TicketTableModelTest::sortsByColumn() {
  QFETCH(int, column);
  QFETCH(int, order);
  QFETCH(QList<int>, expected);
  TicketTableModel model({Field::reference, Field::priority, Field::due, Field::assignee});
  model.setCards(
      {card(10, TicketPriority::medium, at(2026, 3, 1), "bob"), card(2, TicketPriority::medium, at(2026, 3, 9), "Bob"),
       card(11, TicketPriority::urgent, std::nullopt, "anna"), card(9, TicketPriority::low, std::nullopt, "")});
  model.sort(column, Qt::SortOrder(order));
  QCOMPARE(numbers(model), expected);
  // The sort holds when the rows are replaced by a reload.
  model.setCards({card(9, TicketPriority::low, std::nullopt, ""),
                  card(2, TicketPriority::medium, at(2026, 3, 9), "Bob"),
                  card(11, TicketPriority::urgent, std::nullopt, "anna"),
                  card(10, TicketPriority::medium, at(2026, 3, 1), "bob")});
  QCOMPARE(numbers(model), expected);
}

void TicketTableModelTest::listViewShowsEveryActiveTicket() {
  AppFixture f;
  const Uuid project = f.board().createProject("Web", std::nullopt, f.clock).id;
  for (int i = 1; i <= 12; ++i) f.board().createTicket(project, NewTicket{.title = "T" + std::to_string(i)}, f.clock);
  const Uuid archived = f.board().createTicket(project, NewTicket{.title = "Old"}, f.clock).id;
  f.board().archive(archived, f.clock);
  TicketListView view(*f.context, nullptr);
  view.showProject(project);
  view.reloadNow();
  QCOMPARE(view.model()->rowCount(), 12);
  QCOMPARE(view.model()->card(0).reference, QString("WEB-1"));
  QCOMPARE(view.model()->card(11).reference, QString("WEB-12"));  // numeric, not WEB-10 after WEB-1
  QCOMPARE(view.model()->data(view.model()->index(1, 2), Qt::DisplayRole).toString(), QString("Backlog"));
}

QTEST_MAIN(TicketTableModelTest)
#include "TicketTableModelTest.moc"
