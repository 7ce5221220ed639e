#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>
#include <map>

#include "app/AppFixture.h"
#include "app/reports/PackSheet.h"
#include "app/reports/PackWriter.h"
#include "core/exchange/ZipReader.h"
#include "core/support/PackProject.h"

using namespace orvane;
using namespace orvane::app;
using orvane::testing::AppFixture;
using orvane::testing::PackProject;
using orvane::testing::TempDir;

namespace {

// The text pdftotext finds in a PDF, lines joined by spaces so wrapped
// sentences still match.
QString pdfText(const QString& path) {
  QProcess pdftotext;
  pdftotext.start(QStringLiteral("pdftotext"), {path, QStringLiteral("-")});
  if (!pdftotext.waitForFinished(30000) || pdftotext.exitCode() != 0)
    qFatal("pdftotext failed on %s: %s", qPrintable(path), pdftotext.readAllStandardError().constData());
  return QString::fromUtf8(pdftotext.readAllStandardOutput()).simplified();
}

// Every member of the ZIP at `path` as Python's zipfile reads it, with a
// check that each one is stored, not compressed, and passes its CRC.
std::map<std::string, std::string> pythonMembers(const QString& path) {
  QProcess python;
  python.start(QStringLiteral("/usr/bin/python3"),
               {QStringLiteral("-c"),
                QStringLiteral("import base64, json, sys, zipfile\n"
                               "z = zipfile.ZipFile(sys.argv[1])\n"
                               "assert z.testzip() is None\n"
                               "assert all(i.compress_type == zipfile.ZIP_STORED for i in z.infolist())\n"
                               "print(json.dumps({n: base64.b64encode(z.read(n)).decode() for n in z.namelist()}))\n"),
                path});
  if (!python.waitForFinished(30000) || python.exitCode() != 0)
    qFatal("zipfile could not read %s: %s", qPrintable(path), python.readAllStandardError().constData());
  std::map<std::string, std::string> members;
  const QJsonObject object = QJsonDocument::fromJson(python.readAllStandardOutput()).object();
  for (auto it = object.begin(); it != object.end(); ++it)
    members[it.key().toStdString()] = QByteArray::fromBase64(it.value().toString().toLatin1()).toStdString();
  return members;
}

std::map<std::string, std::string> coreMembers(const QString& path) {
  return ZipReader::entries(testing::bytesOf(path.toStdString()));
}

QStringList filesIn(const QString& folder) { return QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name); }

struct PackFixture : AppFixture {
  TempDir files;
  TempDir out;
  PackProject p{board(), files.path(), clock};
  QString folder = QString::fromStdString(out.path().string());
};

// Writes the packs through the sheet and waits for it to finish.
void writeThroughSheet(PackSheet& sheet, const QString& folder) {
  QSignalSpy written(&sheet, &PackSheet::packsWritten);
  sheet.writeInto(folder);
  QVERIFY(written.wait(30000));
}

}  // namespace

class PackTest : public QObject {
  Q_OBJECT

 private slots:
  void sheetShowsWhatWillBeWrittenBeforeWriting();
  void writtenPacksHoldEveryTicketAndEveryFileByteForByte();
  void fileGoneSinceListingIsListedMissingAndLeftOutOfTheZip();
  void commandLineWritesTheSameSet();
  void longPackCountsItsPagesOnEveryPage();
};

void PackTest::sheetShowsWhatWillBeWrittenBeforeWriting() {
  PackFixture f;
  PackSheet sheet(*f.context, f.p.project);
  auto* table = sheet.findChild<QTableWidget*>("packTable");
  QCOMPARE(table->rowCount(), 2);
  const auto text = [&](int row, int column) { return table->item(row, column)->text(); };
  // Person, e-mail, tickets, files, missing, plan.
  QCOMPARE(QStringList({text(0, 0), text(0, 1), text(0, 2), text(0, 3), text(0, 4), text(0, 5)}),
           QStringList(
               {"Ada Lovelace", "ada@example.com", "2", "3", "1", "PDF and ZIP (2 files), sent to ada@example.com"}));
  QCOMPARE(QStringList({text(1, 0), text(1, 1), text(1, 2), text(1, 3), text(1, 4), text(1, 5)}),
           QStringList({"Bob: the builder", "none", "1", "1", "0",
                        "PDF and ZIP (1 file); no e-mail address: hand it over yourself"}));
  QVERIFY(table->item(0, 4)->toolTip().contains(QString::fromStdString(f.p.missingFile.string())));
  const QString status = sheet.findChild<QLabel*>("packStatus")->text();
  QVERIFY(status.contains("Missing for Ada Lovelace: SHOP-2: " + QString::fromStdString(f.p.missingFile.string())));
  QVERIFY(status.contains("1 ticket flagged “this week” has nobody assigned and is in no pack."));
  // Nothing is written and nothing can be sent yet.
  QVERIFY(filesIn(f.folder).isEmpty());
  QVERIFY(!sheet.findChild<QPushButton*>("email0")->isEnabled());
  QVERIFY(sheet.findChild<QPushButton*>("writePacks")->isEnabled());
}

void PackTest::writtenPacksHoldEveryTicketAndEveryFileByteForByte() {
  PackFixture f;
  PackSheet sheet(*f.context, f.p.project);
  writeThroughSheet(sheet, f.folder);

  // The week starts on the locale's first weekday: Sunday 1 or Monday 2 March.
  const CivilDate week = sheet.packs().weekStart;
  QVERIFY(week == CivilDate(2026, 3, 1) || week == CivilDate(2026, 3, 2));
  const QString weekText = QString::fromStdString(week.description());
  const QString ada = QStringLiteral("Web - Shop - Ada Lovelace - week of ") + weekText;
  const QString bob = QStringLiteral("Web - Shop - Bob- the builder - week of ") + weekText;
  // Both packs whole, and no temporary file left beside them.
  QCOMPARE(filesIn(f.folder), QStringList({ada + ".pdf", ada + ".zip", bob + ".pdf", bob + ".zip"}));

  // Two files of one name: ordered by path, so other/plan.pdf comes first.
  const std::map<std::string, std::string> adaFiles{{"SHOP-2/plan.pdf", f.p.sketchBytes},
                                                    {"SHOP-2/plan (2).pdf", f.p.planBytes}};
  const std::map<std::string, std::string> bobFiles{{"SHOP-4/widths.csv", f.p.bobBytes}};
  for (const auto& [stem, expected] : {std::pair{ada, adaFiles}, std::pair{bob, bobFiles}}) {
    const QString zip = f.folder + "/" + stem + ".zip";
    QVERIFY(coreMembers(zip) == expected);
    QVERIFY(pythonMembers(zip) == expected);
  }

  const QString adaText = pdfText(f.folder + "/" + ada + ".pdf");
  for (const char* expected :
       {"Ada Lovelace", "SHOP-2 Checkout page", "Due 2026-03-07", "Checkout page in detail.",
        "Second line of the details.", "☐ Card form", "☑ Address form", "Blocked by SHOP-1 Agree the payment provider",
        "Blocks SHOP-3 Receipt e-mail", "2026-03-03", "Use the new button style.", "Ask about VAT numbers.",
        "SHOP-3 Receipt e-mail", "Missing files", "gone.png", "Page 1 of 1", "Created with Orvane"})
    QVERIFY2(adaText.contains(QString::fromUtf8(expected)), expected);
  QVERIFY(adaText.contains(QString::fromStdString(f.p.missingFile.string())));
  QVERIFY(adaText.contains("week of " + weekText + " to " + QString::fromStdString(week.addingDays(6).description())));
  // Other people's tickets, done and archived ones stay out.
  for (const char* absent : {"SHOP-5", "SHOP-6", "SHOP-7", "Finished last week", "Shelved idea", "Nobody's yet"})
    QVERIFY2(!adaText.contains(absent), absent);
  QCOMPARE(adaText.count("Table widths"), 1);  // Bob's ticket, named only as a link
  const QString bobText = pdfText(f.folder + "/" + bob + ".pdf");
  QVERIFY(bobText.contains("SHOP-4 Table widths"));
  QVERIFY(bobText.contains("Related to SHOP-2 Checkout page"));
  QVERIFY(!bobText.contains("Missing files"));

  // Only a person with an address can be sent their pack.
  QVERIFY(sheet.findChild<QPushButton*>("email0")->isEnabled());
  QVERIFY(!sheet.findChild<QPushButton*>("email1")->isEnabled());
  QVERIFY(sheet.findChild<QLabel*>("packStatus")
              ->text()
              .contains("Bob: the builder has no e-mail address: hand the files over yourself."));

  // Without a mail program the sheet says where the files are and whom to
  // send them to.
  const QByteArray path = qgetenv("PATH");
  qputenv("PATH", "/nonexistent");
  sheet.findChild<QPushButton*>("email0")->click();
  qputenv("PATH", path);
  auto* fallback = sheet.findChild<QMessageBox*>("mailFallback");
  QVERIFY(fallback != nullptr);
  QVERIFY(fallback->text().contains(f.folder));
  QVERIFY(fallback->text().contains("ada@example.com"));
}

void PackTest::fileGoneSinceListingIsListedMissingAndLeftOutOfTheZip() {
  PackFixture f;
  PackSheet sheet(*f.context, f.p.project);
  std::filesystem::remove(f.p.planFile);  // after the sheet counted it
  writeThroughSheet(sheet, f.folder);
  const WrittenPack& ada = sheet.written().at(0);
  QCOMPARE(ada.missing, QStringList({QString::fromStdString(f.p.missingFile.string()),
                                     QString::fromStdString(f.p.planFile.string())}));
  QVERIFY(coreMembers(ada.zipPath) == (std::map<std::string, std::string>{{"SHOP-2/plan.pdf", f.p.sketchBytes}}));
  const QString text = pdfText(ada.pdfPath);
  const qsizetype missingAt = text.indexOf("Missing files");
  QVERIFY(missingAt >= 0);
  QVERIFY(text.indexOf(QString::fromStdString(f.p.planFile.string()), missingAt) > missingAt);

  // With no file left to zip, the PDF is written alone.
  std::filesystem::remove(f.p.bobFile);
  TempDir second;
  const DevelopmentPacks packs = developmentPacks(f.snapshot(f.p.project), f.clock, f.context->calendar());
  const WrittenPack bob = writePack(packs, packs.packs.at(1), ReportBranding{}, second.path());
  QVERIFY(bob.zipPath.isEmpty());
  QCOMPARE(filesIn(QString::fromStdString(second.path().string())).size(), 1);
}

void PackTest::commandLineWritesTheSameSet() {
  PackFixture f;
  PackSheet sheet(*f.context, f.p.project);
  writeThroughSheet(sheet, f.folder);

  TempDir cliOut;
  const QString cliFolder = QString::fromStdString((cliOut.path() / "made by the command").string());
  QProcess cli;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("TZ", "UTC");        // the fixture's calendar
  environment.remove("QT_QPA_PLATFORM");  // the command picks offscreen itself
  environment.remove("DISPLAY");
  cli.setProcessEnvironment(environment);
  cli.start(QStringLiteral(ORVANE_CLI),
            {"--store", QString::fromStdString((f.t.dir.path() / "orvane.sqlite").string()), "--now",
             "2026-03-04T10:00:00Z", "pack", "SHOP", "--out", cliFolder, "--json"});
  QVERIFY(cli.waitForFinished(60000));
  QVERIFY2(cli.exitCode() == 0, cli.readAllStandardError().constData());
  const QJsonObject json = QJsonDocument::fromJson(cli.readAllStandardOutput()).object();
  QCOMPARE(json["unassignedTickets"].toInt(), 1);
  const QJsonArray packs = json["packs"].toArray();
  QCOMPARE(packs.size(), 2);
  QCOMPARE(packs[0].toObject()["missingFiles"].toArray().size(), 1);
  QCOMPARE(packs[0].toObject()["zippedFiles"].toInt(), 2);

  // A folder that is a file is refused with a sentence, and nothing is written.
  QProcess refused;
  refused.setProcessEnvironment(environment);
  const QString plainFile = QString::fromStdString(f.p.bobFile.string());
  refused.start(QStringLiteral(ORVANE_CLI),
                {"--store", QString::fromStdString((f.t.dir.path() / "orvane.sqlite").string()), "pack", "SHOP",
                 "--out", plainFile});
  QVERIFY(refused.waitForFinished(60000));
  QCOMPARE(refused.exitCode(), 1);
  QVERIFY(QString::fromUtf8(refused.readAllStandardError())
              .contains("The packs cannot be written to " + plainFile + ": it is not a folder that can be made."));
  QCOMPARE(testing::bytesOf(f.p.bobFile), f.p.bobBytes);

  // The same files; the ZIPs byte for byte, the PDFs by their text.
  QCOMPARE(filesIn(cliFolder), filesIn(f.folder));
  for (const QString& name : filesIn(f.folder)) {
    const QString mine = f.folder + "/" + name;
    const QString theirs = cliFolder + "/" + name;
    if (name.endsWith(".zip"))
      QVERIFY(testing::bytesOf(mine.toStdString()) == testing::bytesOf(theirs.toStdString()));
    else
      QCOMPARE(pdfText(theirs), pdfText(mine));
  }
}

void PackTest::longPackCountsItsPagesOnEveryPage() {
  testing::AppEnvironment environment;
  DevelopmentPacks set;
  set.projectName = "Long";
  set.weekStart = CivilDate(2026, 3, 2);
  DevelopmentPack pack;
  pack.personName = "Ada";
  pack.fileStem = "long";
  for (int i = 1; i <= 40; ++i) {
    PackTicket ticket;
    ticket.reference = "L-" + std::to_string(i);
    ticket.title = "Ticket number " + std::to_string(i);
    ticket.details = std::string(400, 'x');  // one unbroken word, wrapped anywhere
    pack.tickets.push_back(ticket);
  }
  pack.tickets.back().files.push_back({"last.txt", "/nowhere/last.txt", false});
  TempDir folder;
  const WrittenPack written = writePack(set, pack, ReportBranding{}, folder.path());
  const QString text = pdfText(written.pdfPath);
  // Every ticket arrives, the last one with its missing file, and each page
  // knows how many there are.
  QVERIFY(text.contains("L-1 Ticket number 1") && text.contains("L-40 Ticket number 40"));
  QVERIFY(text.contains("Missing files last.txt /nowhere/last.txt"));
  const qsizetype pages = text.count("Created with Orvane");
  QVERIFY(pages >= 3);
  for (qsizetype page = 1; page <= pages; ++page)
    QVERIFY(text.contains(QStringLiteral("Page %1 of %2").arg(page).arg(pages)));
}

QTEST_MAIN(PackTest)
#include "PackTest.moc"
