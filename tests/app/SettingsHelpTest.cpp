#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>
#include <QTreeWidget>

#include "app/AppFixture.h"
#include "app/help/AboutDialog.h"
#include "app/help/HelpWindow.h"
#include "app/settings/BrandingSettings.h"
#include "app/settings/LogoFile.h"
#include "app/settings/SettingsDialog.h"
#include "app/shell/MainWindow.h"
#include "app/shell/ProjectSetupDialog.h"
#include "app/shell/StoreCommands.h"

using namespace orvane;
using namespace orvane::app;
using orvane::testing::AppEnvironment;
using orvane::testing::AppFixture;

class SettingsHelpTest : public QObject {
  Q_OBJECT

 private slots:
  void saveWritesOneRecordOfFourKeysAndReadsBack();
  void unreadableRecordGivesEmptyFields_data();
  void unreadableRecordGivesEmptyFields();
  void refusesALogoThatIsNoSmallReadablePng_data();
  void refusesALogoThatIsNoSmallReadablePng();
  void cancelLeavesTheStoredRecordAsItWas();
  void helpNamesEveryShortcutTheWindowHas();
  void keysAndMenusOpenSettingsHelpAndAbout();
  void recipientsSheetOpensTheSettings();
};

namespace {

const QString brandingKey = QStringLiteral("reportBranding.v1");

QByteArray pngBytes(int width, int height, QColor colour) {
  QImage image(width, height, QImage::Format_ARGB32);
  image.fill(colour);
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  image.save(&buffer, "PNG");
  return bytes;
}

QString writeFile(const QTemporaryDir& dir, const QString& name, const QByteArray& bytes) {
  const QString path = dir.filePath(name);
  QFile file(path);
  file.open(QIODevice::WriteOnly);
  file.write(bytes);
  return path;
}

QString storedRecord() { return QSettings().value(brandingKey).toString(); }

// 1280x800 less a task bar: every control must stay reachable there.
void fitsASmallScreen(const QWidget* widget) {
  const QSize needed = widget->minimumSizeHint().expandedTo(widget->minimumSize());
  QVERIFY2(
      needed.width() <= 1280 && needed.height() <= 800 - 48,
      qPrintable(QStringLiteral("%1 needs %2x%3").arg(widget->objectName()).arg(needed.width()).arg(needed.height())));
}

}  // namespace

void SettingsHelpTest::saveWritesOneRecordOfFourKeysAndReadsBack() {
  AppEnvironment environment;
  QTemporaryDir dir;
  const QByteArray logo = pngBytes(60, 20, QColor(0x1f, 0x6f, 0xb2));
  {
    SettingsDialog dialog(nullptr);
    dialog.field("preparedBy")->setText(QStringLiteral("  Ada Lovelace\n"));
    dialog.field("organisation")->setText(QStringLiteral("Analytical Ltd "));
    dialog.field("contact")->setText(QStringLiteral("ada@analytical.example"));
    QVERIFY(dialog.chooseLogo(writeFile(dir, QStringLiteral("logo.png"), logo)));
    // The footer follows the fields before anything is saved.
    QCOMPARE(dialog.preparedByLine(), QStringLiteral("Prepared by Ada Lovelace, Analytical Ltd"));
    QCOMPARE(dialog.findChild<QLabel*>(QStringLiteral("preparedByLine"))->text(), dialog.preparedByLine());
    QVERIFY(!dialog.footerPreview()->pixmap().isNull());
    QVERIFY(storedRecord().isEmpty());
    dialog.findChild<QPushButton*>(QStringLiteral("save"))->click();
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
  }

  QCOMPARE(QSettings().allKeys(), QStringList{brandingKey});
  const QJsonObject record = QJsonDocument::fromJson(storedRecord().toUtf8()).object();
  QStringList keys = record.keys();
  keys.sort();
  QCOMPARE(keys, (QStringList{"contact", "logoPNG", "organisation", "preparedBy"}));
  QCOMPARE(record.value("preparedBy").toString(), QStringLiteral("Ada Lovelace"));
  QCOMPARE(record.value("organisation").toString(), QStringLiteral("Analytical Ltd"));
  QCOMPARE(record.value("contact").toString(), QStringLiteral("ada@analytical.example"));
  QCOMPARE(QByteArray::fromBase64(record.value("logoPNG").toString().toLatin1()), logo);

  // A second opening shows what was saved; removing the logo stores null.
  SettingsDialog again(nullptr);
  QCOMPARE(again.field("preparedBy")->text(), QStringLiteral("Ada Lovelace"));
  QCOMPARE(again.field("contact")->text(), QStringLiteral("ada@analytical.example"));
  QCOMPARE(again.branding().logoPNG, std::optional<std::string>(logo.toStdString()));
  again.removeLogo();
  again.save();
  QVERIFY(QJsonDocument::fromJson(storedRecord().toUtf8()).object().value("logoPNG").isNull());
}

void SettingsHelpTest::unreadableRecordGivesEmptyFields_data() {
  QTest::addColumn<QString>("record");
  QTest::newRow("not JSON") << "Prepared by Ada";
  QTest::newRow("a list") << R"(["Ada", "Analytical Ltd", "", null])";
  QTest::newRow("texts of the wrong kind") << R"({"preparedBy": 7, "organisation": [], "contact": {}, "logoPNG": 1})";
  QTest::newRow("cut short") << R"({"preparedBy": "Ada", "organisation": "Anal)";
}

void SettingsHelpTest::unreadableRecordGivesEmptyFields() {
  QFETCH(QString, record);
  AppEnvironment environment;
  QSettings().setValue(brandingKey, record);
  SettingsDialog dialog(nullptr);
  for (const char* name : {"preparedBy", "organisation", "contact"}) QCOMPARE(dialog.field(name)->text(), QString());
  QVERIFY(!dialog.branding().logoPNG);
  QVERIFY(!dialog.findChild<QPushButton*>(QStringLiteral("removeLogo"))->isEnabled());
  QCOMPARE(dialog.preparedByLine(), QString());
}

void SettingsHelpTest::refusesALogoThatIsNoSmallReadablePng_data() {
  QTest::addColumn<QString>("name");
  QTest::addColumn<QByteArray>("bytes");  // empty: the file is not written
  QTest::addColumn<QString>("sentence");  // empty: taken
  const QByteArray png = pngBytes(40, 40, Qt::red);
  QByteArray jpeg;
  {
    QBuffer buffer(&jpeg);
    buffer.open(QIODevice::WriteOnly);
    QImage(40, 40, QImage::Format_RGB32).save(&buffer, "JPG");
  }
  // A PNG decoder stops at the image's end, so padding keeps it readable and
  // only its size changes.
  QByteArray atLimit = png;
  atLimit.append(QByteArray(maxLogoBytes - png.size(), '\0'));
  QByteArray overLimit = atLimit + '\0';

  QTest::newRow("text named .png") << "notes.png" << QByteArray("not an image at all")
                                   << "\"notes.png\" is not a readable PNG image. Choose a PNG file.";
  QTest::newRow("JPEG named .png") << "photo.png" << jpeg
                                   << "\"photo.png\" is not a readable PNG image. Choose a PNG file.";
  QTest::newRow("PNG cut short") << "cut.png" << png.left(40)
                                 << "\"cut.png\" is not a readable PNG image. Choose a PNG file.";
  QTest::newRow("one byte over 1 MB") << "big.png" << overLimit
                                      << "\"big.png\" is larger than 1 MB. Choose a smaller PNG logo.";
  QTest::newRow("missing") << "gone.png" << QByteArray() << "\"gone.png\" is not a file that can be read.";
  QTest::newRow("exactly 1 MB") << "limit.png" << atLimit << QString();
}

void SettingsHelpTest::refusesALogoThatIsNoSmallReadablePng() {
  QFETCH(QString, name);
  QFETCH(QByteArray, bytes);
  QFETCH(QString, sentence);
  AppEnvironment environment;
  QTemporaryDir dir;
  const QByteArray before = pngBytes(30, 10, Qt::blue);
  SettingsDialog dialog(nullptr);
  QVERIFY(dialog.chooseLogo(writeFile(dir, QStringLiteral("before.png"), before)));

  const QString path = bytes.isEmpty() ? dir.filePath(name) : writeFile(dir, name, bytes);
  QCOMPARE(dialog.chooseLogo(path), sentence.isEmpty());
  QCOMPARE(dialog.logoProblem(), sentence);
  // A refused file leaves the logo there was.
  const QByteArray kept = sentence.isEmpty() ? bytes : before;
  QCOMPARE(dialog.branding().logoPNG, std::optional<std::string>(kept.toStdString()));
  // A good choice afterwards clears the sentence.
  QVERIFY(dialog.chooseLogo(dir.filePath(QStringLiteral("before.png"))));
  QCOMPARE(dialog.logoProblem(), QString());
}

void SettingsHelpTest::cancelLeavesTheStoredRecordAsItWas() {
  AppEnvironment environment;
  storeBranding(ReportBranding{"Ada", "Analytical Ltd", "ada@analytical.example", "\x89PNG-ish"});
  const QString before = storedRecord();
  SettingsDialog dialog(nullptr);
  dialog.field("preparedBy")->setText(QStringLiteral("Someone else"));
  dialog.field("contact")->clear();
  dialog.removeLogo();
  QTest::keyClick(&dialog, Qt::Key_Escape);
  QCOMPARE(dialog.result(), int(QDialog::Rejected));
  QCOMPARE(storedRecord(), before);
  QCOMPARE(QSettings().allKeys(), QStringList{brandingKey});
}

void SettingsHelpTest::helpNamesEveryShortcutTheWindowHas() {
  AppFixture f;
  MainWindow window(*f.context);
  window.commands()->loadDemoProject();
  const QString help = HelpWindow(nullptr).browser()->toPlainText();
  QVERIFY(!help.isEmpty());
  int shortcuts = 0;
  for (const QAction* action : window.findChildren<QAction*>()) {
    for (const QKeySequence& key : action->shortcuts()) {
      const QString text = key.toString(QKeySequence::NativeText);
      QVERIFY2(help.contains(text), qPrintable(QStringLiteral("%1 (%2) is not in the help").arg(text, action->text())));
      ++shortcuts;
    }
  }
  // The menus, the nine views and the card commands at the least.
  QVERIFY2(shortcuts >= 20, qPrintable(QString::number(shortcuts)));

  // Each section of the text is listed, in order, with its parts under it.
  HelpWindow browser(nullptr);
  QStringList titles;
  for (int row = 0; row < browser.contents()->topLevelItemCount(); ++row)
    titles << browser.contents()->topLevelItem(row)->text(0);
  QCOMPARE(titles, (QStringList{"Finding your way", "How the forecasts work", "The flow measures",
                                "Who prepared the reports", "Keyboard shortcuts", "Your data and its backup"}));
  QCOMPARE(browser.contents()->topLevelItem(1)->childCount(), 11);
  // Choosing a part brings it into sight.
  browser.resize(800, 400);
  browser.show();
  QVERIFY(QTest::qWaitForWindowExposed(&browser));
  browser.showSection(QStringLiteral("calibration"));
  QCOMPARE(browser.contents()->currentItem()->text(0), QStringLiteral("Logging forecasts and calibration"));
  QVERIFY(browser.browser()->verticalScrollBar()->value() > 0);
}

void SettingsHelpTest::keysAndMenusOpenSettingsHelpAndAbout() {
  AppFixture f;
  MainWindow window(*f.context);
  window.show();
  QApplication::setActiveWindow(&window);
  QVERIFY(QTest::qWaitForWindowActive(&window));

  QTest::keyClick(&window, Qt::Key_F1);
  const QList<HelpWindow*> helps = window.findChildren<HelpWindow*>();
  QCOMPARE(helps.size(), 1);
  QVERIFY(helps.front()->isVisible());
  fitsASmallScreen(helps.front());
  // Asked for again, the same window comes forward.
  QCOMPARE(window.showHelp(), helps.front());
  QCOMPARE(window.findChildren<HelpWindow*>().size(), 1);
  helps.front()->close();

  QApplication::setActiveWindow(&window);
  QVERIFY(QTest::qWaitForWindowActive(&window));
  QTest::keyClick(&window, Qt::Key_Comma, Qt::ControlModifier);
  auto* settings = window.findChild<SettingsDialog*>();
  QVERIFY(settings != nullptr);
  QVERIFY(settings->isVisible());
  fitsASmallScreen(settings);
  settings->reject();

  AboutDialog* about = window.showAbout();
  fitsASmallScreen(about);
  QVERIFY(QRegularExpression(QStringLiteral("^\\d+\\.\\d+\\.\\d+$")).match(AboutDialog::version()).hasMatch());
  QVERIFY(about->text().contains(QStringLiteral("Version ") + AboutDialog::version()));
  for (const char* library : {"Qt 6", "SQLite", "ICU", "nlohmann/json", "zlib", "Expat", "OpenSSL"})
    QVERIFY2(about->text().contains(QString::fromLatin1(library)), library);
  about->reject();
}

void SettingsHelpTest::recipientsSheetOpensTheSettings() {
  AppFixture f;
  const Uuid project = f.board().createProject("Shop", std::nullopt, f.clock).id;
  ProjectSetupDialog sheet(*f.context, project, nullptr);
  sheet.show();
  sheet.findChild<QPushButton*>(QStringLiteral("openSettings"))->click();
  auto* settings = sheet.findChild<SettingsDialog*>();
  QVERIFY(settings != nullptr);
  QVERIFY(settings->isVisible());
}

QTEST_MAIN(SettingsHelpTest)
#include "SettingsHelpTest.moc"
