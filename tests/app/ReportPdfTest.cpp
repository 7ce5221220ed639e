#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QPainter>
#include <QPdfDocument>
#include <QPdfView>
#include <QPdfWriter>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include "app/AppFixture.h"
#include "app/reports/ReportContent.h"
#include "app/reports/ReportDocument.h"
#include "app/reports/ReportLayout.h"
#include "app/reports/ReportsWindow.h"
#include "app/settings/BrandingSettings.h"
#include "app/shell/ProjectSetupDialog.h"
#include "core/accuracy/FlowHealth.h"
#include "core/accuracy/ForecastNarrative.h"
#include "core/model/ProjectSnapshot.h"

using namespace orvane;
using namespace orvane::app;
using orvane::testing::AppFixture;
using orvane::testing::at;

namespace {

const ReportBranding branding{"Ann Example", "Example Ltd", "ann@example.com", std::nullopt};

// The text pdftotext reads from `pdf`, every run of white space one space:
// a sentence wrapped over two lines is still found whole.
QString textOf(const QString& pdf, bool layout = false) {
  QProcess process;
  QStringList arguments;
  if (layout) arguments << QStringLiteral("-layout");
  process.start(QStringLiteral("pdftotext"), arguments << pdf << QStringLiteral("-"));
  if (!process.waitForFinished(30000) || process.exitCode() != 0) qFatal("pdftotext failed on %s", qPrintable(pdf));
  const QString text = QString::fromUtf8(process.readAllStandardOutput());
  return layout ? text : text.simplified();
}

QString q(const std::string& text) { return QString::fromStdString(text); }

// A project a team has worked on for ten weeks: two epics, two people, work
// finished week by week (some of it inside the report's period), work in
// progress, one blocked ticket, and a "When" forecast logged a month ago.
Uuid generatedProject(AppFixture& f) {
  BoardService& board = f.board();
  const Timestamp began = at(2025, 12, 20);
  const Project project = board.createProject("Harbour portal", "HARB", began);
  board.updateClient(project.id, "Ivo Client", "Quay Holdings", "ivo@quay.example");
  const Epic mobile = board.createEpic(project.id, "Mobile app", std::nullopt, at(2026, 4, 30));
  const Epic billing = board.createEpic(project.id, "Billing", std::nullopt, at(2026, 2, 20));
  const Person quentin = board.createPerson("Quentin Ashdown", std::nullopt);
  const Person yolanda = board.createPerson("Yolanda Brightwater", std::nullopt);
  const ProjectSnapshot empty = f.snapshot(project.id);
  const Uuid inProgress = empty.columns[2].id;
  const Uuid done = empty.columns.back().id;
  for (int n = 0; n < 24; ++n) {
    const Timestamp created = Timestamp{began.secondsSince1970 + n * 86400.0};
    NewTicket ticket;
    ticket.title = "Zebra crossing task " + std::to_string(n + 1);
    ticket.epic = n % 3 == 0 ? billing.id : mobile.id;
    const Ticket made = board.createTicket(project.id, ticket, created);
    board.setAssignee(made.id, n % 2 == 0 ? quentin.id : yolanda.id);
    if (n < 16) {
      // Finished two a week, the last ones inside the week before now.
      const Timestamp finished = Timestamp{at(2026, 1, 1).secondsSince1970 + n * 3.8 * 86400.0};
      board.moveTicket(made.id, inProgress, std::nullopt, Timestamp{finished.secondsSince1970 - 2 * 86400.0});
      board.moveTicket(made.id, done, std::nullopt, finished);
    } else if (n < 20) {
      board.moveTicket(made.id, inProgress, std::nullopt, at(2026, 2, 25));
      if (n == 16) board.setBlocked(made.id, true);
    }
  }
  ForecastService forecasts(f.t.store);
  const WhenForecast logged = forecasts.input(project.id, CivilDate(2026, 2, 4)).runWhen();
  forecasts.log(logged, project.id, "", at(2026, 2, 4));
  return project.id;
}

// The report drawn in this process, as a file in `dir`.
QString drawnReport(AppFixture& f, const Uuid& project, ReportAudience audience, const QTemporaryDir& dir) {
  ForecastService forecasts(f.t.store);
  const CivilDate today = CivilDate::fromUtc(f.clock);
  const ReportReading reading = readReport(forecasts, std::make_shared<const ProjectSnapshot>(f.snapshot(project)),
                                           audience, periodEndingOn(today, 7), f.clock, f.context->calendar());
  const QString path = dir.filePath(QString::fromUtf8(rawValue(audience).data()) + ".pdf");
  if (const auto problem = writeReportFile(reportPdf(computeReport(reading), storedBranding()), path))
    qFatal("%s", qPrintable(*problem));
  return path;
}

// What only an internal report may say: every ticket's title, every
// person's name, and the blocked flag's detail.
QStringList internalOnly(const ProjectSnapshot& snapshot) {
  QStringList texts{QStringLiteral("flagged as blocked")};
  for (const Ticket& ticket : snapshot.tickets) texts << q(ticket.title);
  for (const Person& person : snapshot.people) texts << q(person.name);
  return texts;
}

// Every sentence a report of the project must carry, whoever it is for:
// the narrative of the project's "When" forecast and the footer.
QStringList commonTexts(AppFixture& f, const Uuid& project) {
  const ProjectSnapshot snapshot = f.snapshot(project);
  ForecastService forecasts(f.t.store);
  const WhenForecast when = forecasts.input(project, CivilDate::fromUtc(f.clock)).runWhen();
  // The chart's axis title too: its "fi" must not come out as a ligature.
  QStringList texts{QStringLiteral("Created with Orvane"), QStringLiteral("Page 1 of"),
                    QStringLiteral("Prepared by Ann Example, Example Ltd"), QStringLiteral("ann@example.com"),
                    QStringLiteral("with the confidence levels reached in each")};
  for (const std::string& line : ForecastNarrative::lines(when, latestBefore(forecastHistory(snapshot), f.clock)))
    texts << q(line);
  return texts;
}

void expectContains(const QString& text, const QStringList& expected, const char* report) {
  for (const QString& sentence : expected)
    QVERIFY2(text.contains(sentence), qPrintable(QStringLiteral("%1 lacks: %2").arg(report, sentence)));
}

void expectLacks(const QString& text, const QStringList& forbidden, const char* report) {
  for (const QString& sentence : forbidden)
    QVERIFY2(!text.contains(sentence), qPrintable(QStringLiteral("%1 shows: %2").arg(report, sentence)));
}

// Each epic's row carries its status label: the line that names the epic
// ends with the label.
void expectEpicLabels(AppFixture& f, const Uuid& project, const QString& pdf) {
  const QString layout = textOf(pdf, true);
  for (const EpicStatusRow& row : epicStatuses(f.snapshot(project), f.clock, f.context->calendar())) {
    const QRegularExpression line(QStringLiteral("^%1 .* %2$")
                                      .arg(QRegularExpression::escape(q(row.name)),
                                           QRegularExpression::escape(q(std::string(label(row.status))))),
                                  QRegularExpression::MultilineOption);
    QVERIFY2(line.match(layout).hasMatch(), qPrintable(q(row.name)));
  }
}

// The real command-line program, with the settings of a user whose
// branding is `branding`; returns its exit code and its error output.
std::pair<int, QString> runCli(AppFixture& f, const QStringList& arguments, const QTemporaryDir& home) {
  QProcess process;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home.path());
  environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
  environment.remove(QStringLiteral("DISPLAY"));
  process.setProcessEnvironment(environment);
  const QStringList common{"--store", QString::fromStdString((f.t.dir.path() / "orvane.sqlite").string()), "--now",
                           "2026-03-04T10:00:00Z"};
  process.start(QStringLiteral(ORVANE_CLI), common + arguments);
  if (!process.waitForFinished(60000)) qFatal("orvane-cli did not finish");
  return {process.exitCode(), QString::fromUtf8(process.readAllStandardError()).trimmed()};
}

// Waits until the window shows its newest preview (drawn in the pool).
void settle(ReportsWindow& window) {
  QSignalSpy shown(&window, &ReportsWindow::previewShown);
  while (window.isDrawing()) QVERIFY(shown.wait(30000));
}

QString previewText(const ReportsWindow& window, const QTemporaryDir& dir) {
  const QString path = dir.filePath(QStringLiteral("preview.pdf"));
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly) || file.write(window.pdf()) != window.pdf().size()) qFatal("cannot write");
  file.close();
  return textOf(path);
}

}  // namespace

class ReportPdfTest : public QObject {
  Q_OBJECT

 private slots:
  void demoReportsSayWhatTheirAudienceMayRead() {
    AppFixture f;
    storeBranding(branding);
    const Uuid project = f.board().loadDemoProject(f.clock).id;
    const ProjectSnapshot snapshot = f.snapshot(project);
    QTemporaryDir dir;
    const QString client = textOf(drawnReport(f, project, ReportAudience::client, dir));
    const QString internal = textOf(drawnReport(f, project, ReportAudience::internal, dir));

    const QStringList common = commonTexts(f, project);
    expectContains(client, common + QStringList{"For " + q(snapshot.project.clientLine())}, "client");
    expectContains(internal, common, "internal");
    expectLacks(client, internalOnly(snapshot), "client");

    // The internal report holds the risks, the people and flow health.
    QStringList internalTexts{QStringLiteral("flagged as blocked")};
    for (const std::string& note : flowHealth(snapshot, f.clock).notes) internalTexts << q(note);
    for (const WorkloadRow& row : workload(snapshot, f.clock, reportRecentDays, f.context->calendar()))
      internalTexts << q(row.name);
    expectContains(internal, internalTexts, "internal");
    expectEpicLabels(f, project, dir.filePath("client.pdf"));
    expectEpicLabels(f, project, dir.filePath("internal.pdf"));
  }

  void generatedReportsCountAndListTheCompletedWork() {
    AppFixture f;
    storeBranding(branding);
    const Uuid project = generatedProject(f);
    const ProjectSnapshot snapshot = f.snapshot(project);
    QTemporaryDir dir;
    const QString client = textOf(drawnReport(f, project, ReportAudience::client, dir));
    const QString internal = textOf(drawnReport(f, project, ReportAudience::internal, dir));
    expectContains(client, commonTexts(f, project) + QStringList{"For Ivo Client, Quay Holdings"}, "client");
    expectLacks(client, internalOnly(snapshot), "client");
    expectLacks(client, {QStringLiteral("Workload"), QStringLiteral("Risks"), QStringLiteral("Flow health")}, "client");

    // The period is the 7 days through today, both included: the work
    // finished in it, and nothing finished before.
    const CompletedReport week =
        completedReport(snapshot, CivilDate(2026, 2, 26), CivilDate(2026, 3, 4), f.context->calendar());
    QVERIFY(week.total >= 1);
    QVERIFY(client.contains(QStringLiteral("Total %1").arg(week.total)));
    for (const CompletedGroup& group : week.groups) {
      QVERIFY(client.contains(QStringLiteral("%1 %2").arg(q(group.epicName)).arg(group.items.size())));
      for (const CompletedItem& item : group.items)
        QVERIFY(internal.contains(QStringLiteral("%1 %2").arg(q(item.reference), q(item.title))));
    }
    QVERIFY(!internal.contains(QStringLiteral("HARB-1 Zebra crossing task 1 ")));

    // The accuracy of the forecast logged a month ago, level by level.
    const AccuracyReport accuracy = accuracyReport(snapshot, f.clock);
    QCOMPARE(accuracy.whenOutcomes.size(), std::size_t{1});
    QVERIFY(internal.contains(QStringLiteral("Accuracy of past forecasts")));
    QVERIFY(internal.contains(q(accuracy.whenOutcomes.front().verdict.label())));
    for (const CalibrationRow& row : accuracy.whenCalibration)
      QVERIFY(internal.contains(QStringLiteral("%1% %2").arg(row.level).arg(
          row.total == 0 ? QStringLiteral("–") : QStringLiteral("%1 of %2").arg(row.hits).arg(row.total))));
    expectContains(internal,
                   {QStringLiteral("Quentin Ashdown"), QStringLiteral("Yolanda Brightwater"),
                    QStringLiteral("flagged as blocked")},
                   "internal");
  }

  void commandLineWritesTheSameReportsWithoutADisplay() {
    AppFixture f;
    const Uuid project = f.board().loadDemoProject(f.clock).id;
    const ProjectSnapshot snapshot = f.snapshot(project);
    QTemporaryDir home;
    QDir().mkpath(home.filePath("orvane"));
    QSettings(home.filePath("orvane/orvane.conf"), QSettings::NativeFormat)
        .setValue(QString::fromUtf8(ReportBranding::settingsKey.data(), ReportBranding::settingsKey.size()),
                  q(branding.encoded()));
    const QString client = home.filePath("client.pdf");
    const QString internal = home.filePath("internal.pdf");
    QCOMPARE(runCli(f, {"report", "pdf", "SHOP", "--audience", "client", "--out", client}, home).first, 0);
    QCOMPARE(runCli(f,
                    {"report", "pdf", "SHOP", "--audience", "internal", "--from", "2026-02-01", "--to", "2026-03-04",
                     "--out", internal},
                    home)
                 .first,
             0);
    const QString clientText = textOf(client);
    const QString internalText = textOf(internal);
    const QStringList common = commonTexts(f, project);
    expectContains(clientText, common, "client");
    expectContains(internalText, common + QStringList{"Completed from 1 Feb 2026 to 4 Mar 2026"}, "internal");
    expectLacks(clientText, internalOnly(snapshot), "client");
    QVERIFY(clientText.contains(QStringLiteral("Period: 26 Feb 2026 to 4 Mar 2026.")));

    // A page rasterises.
    QProcess raster;
    raster.start(QStringLiteral("pdftoppm"), {"-r", "40", "-f", "1", "-l", "1", "-png", client, home.filePath("page")});
    QVERIFY(raster.waitForFinished(30000));
    QCOMPARE(raster.exitCode(), 0);
    const QStringList pages = QDir(home.path()).entryList({"page*.png"});
    QCOMPARE(pages.size(), 1);
    QVERIFY(QFileInfo(home.filePath(pages.front())).size() > 1000);
  }

  void windowPreviewsTheChosenReport() {
    AppFixture f;
    storeBranding(branding);
    const Uuid project = f.board().loadDemoProject(f.clock).id;
    const ProjectSnapshot snapshot = f.snapshot(project);
    QTemporaryDir dir;
    ReportsWindow window(*f.context, project, nullptr);
    settle(window);
    QCOMPARE(window.audience(), ReportAudience::client);
    QVERIFY(window.findChild<QPdfView*>()->document()->pageCount() >= 1);
    const QString client = previewText(window, dir);
    expectContains(client, commonTexts(f, project) + QStringList{"Period: 26 Feb 2026 to 4 Mar 2026."}, "client");
    expectLacks(client, internalOnly(snapshot), "client");

    window.setAudience(ReportAudience::internal);
    window.setPeriod({CivilDate(2026, 2, 1), CivilDate(2026, 2, 28)});
    settle(window);
    const QString internal = previewText(window, dir);
    expectContains(internal,
                   {QStringLiteral("flagged as blocked"), QStringLiteral("Period: 1 Feb 2026 to 28 Feb 2026.")},
                   "internal");

    // What is saved is what is shown.
    const QString saved = dir.filePath(QStringLiteral("saved.pdf"));
    QVERIFY(window.saveTo(saved));
    QCOMPARE(textOf(saved), internal);
  }

  void emailWithoutTheAudiencesAddressAsksForItFirst() {
    AppFixture f;
    const Project bare = f.board().createProject("Bare", std::nullopt, at(2026, 2, 1));
    ReportsWindow window(*f.context, bare.id, nullptr);
    settle(window);
    QVERIFY(window.recipientAddress().isEmpty());
    window.email();
    auto* sheet = window.findChild<ProjectSetupDialog*>();
    QVERIFY(sheet != nullptr);
    QVERIFY(sheet->isVisible());
  }

  void longTablesRunOverPagesWithTheirHeaderAndWholeRows() {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("layout.pdf"));
    int pages = 0;
    {
      QPdfWriter writer(path);
      writer.setResolution(300);
      writer.setPageSize(QPageSize(QPageSize::A4));
      ReportLayout layout(writer);
      layout.title(QStringLiteral("Layout"));
      std::vector<QStringList> rows;
      for (int n = 1; n <= 150; ++n)
        rows.push_back({QStringLiteral("Row %1.").arg(n), QStringLiteral("A cell long enough to wrap onto a second "
                                                                         "line in its narrow column, row %1.")
                                                              .arg(n)});
      layout.heading(QStringLiteral("First table"));
      layout.table({QStringLiteral("Name"), QStringLiteral("Description")}, rows, {0.2, 0.3});
      layout.heading(QStringLiteral("Second table"));
      layout.table({QStringLiteral("Other"), QStringLiteral("Column")}, {{QStringLiteral("Last row.")}}, {0.5, 0.5});
      QPainter painter(&writer);
      pages = layout.paint(painter, writer, branding);
    }
    QVERIFY(pages >= 4);
    QString all;
    for (int page = 1; page <= pages; ++page) {
      QProcess process;
      process.start(QStringLiteral("pdftotext"),
                    {"-f", QString::number(page), "-l", QString::number(page), path, QStringLiteral("-")});
      QVERIFY(process.waitForFinished(30000));
      const QString text = QString::fromUtf8(process.readAllStandardOutput()).simplified();
      QVERIFY2(text.contains(QStringLiteral("Page %1 of %2").arg(page).arg(pages)), qPrintable(text));
      // Every page the first table runs onto starts with its header.
      if (text.contains(QStringLiteral("Row ")))
        QVERIFY2(text.contains(QStringLiteral("Name Description")), qPrintable(QString::number(page)));
      all += text + QLatin1Char(' ');
    }
    // No row lost or cut in two, and the second heading stays with its table.
    for (int n = 1; n <= 150; ++n) {
      QCOMPARE(all.count(QStringLiteral("Row %1. ").arg(n)), 1);
      QCOMPARE(all.count(QStringLiteral("column, row %1.").arg(n)), 1);
    }
    QVERIFY(all.contains(QStringLiteral("Second table Other Column Last row.")));
  }

  void windowRefusesAPeriodThatEndsBeforeItStarts() {
    AppFixture f;
    const Uuid project = f.board().loadDemoProject(f.clock).id;
    ReportsWindow window(*f.context, project, nullptr);
    settle(window);
    window.setPeriod({CivilDate(2026, 3, 4), CivilDate(2026, 3, 1)});
    QCOMPARE(window.findChild<QLabel*>(QStringLiteral("reportStatus"))->text(),
             QStringLiteral("The period starts after it ends: choose a first day on or before the last."));
    QVERIFY(!window.findChild<QPushButton*>(QStringLiteral("saveReport"))->isEnabled());
    QVERIFY(!window.findChild<QPushButton*>(QStringLiteral("emailReport"))->isEnabled());
  }

  void commandLineRefusesBadRequestsAndWritesNothing_data() {
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("audience") << QStringList{"--audience", "board"}
                              << "Unknown audience \"board\"; the audiences are client and internal.";
    QTest::newRow("no audience") << QStringList{} << "report pdf needs --audience client or --audience internal.";
    QTest::newRow("bad day") << QStringList{"--audience", "client", "--from", "2026-02-30"}
                             << "--from needs a day like 2026-04-30; \"2026-02-30\" is not one.";
    QTest::newRow("from after to") << QStringList{"--audience", "internal", "--from",
                                                  "2026-03-05", "--to",     "2026-03-01"}
                                   << "The period starts after it ends: 2026-03-05 is after 2026-03-01.";
  }

  void commandLineRefusesBadRequestsAndWritesNothing() {
    QFETCH(QStringList, options);
    QFETCH(QString, sentence);
    AppFixture f;
    f.board().loadDemoProject(f.clock);
    QTemporaryDir home;
    const QString out = home.filePath("report.pdf");
    const auto [code, error] =
        runCli(f, QStringList{"report", "pdf", "SHOP"} + options + QStringList{"--out", out}, home);
    QCOMPARE(code, 2);
    QCOMPARE(error, sentence);
    QVERIFY(!QFileInfo::exists(out));
  }

  void commandLineSaysWhyAFileCannotBeWritten() {
    AppFixture f;
    f.board().loadDemoProject(f.clock);
    QTemporaryDir home;
    const QString out = home.filePath("no such folder/report.pdf");
    const auto [code, error] = runCli(f, {"report", "pdf", "SHOP", "--audience", "client", "--out", out}, home);
    QCOMPARE(code, 1);
    QVERIFY2(error.contains(QStringLiteral("no such folder/report.pdf")), qPrintable(error));
    QVERIFY(!QFileInfo::exists(out));
  }
};

QTEST_MAIN(ReportPdfTest)
#include "ReportPdfTest.moc"
