#include "app/help/AboutDialog.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QTextBrowser>
#include <QVBoxLayout>
#include <QtGlobal>

#include "app/shell/AppResources.h"

#ifndef ORVANE_VERSION
#error "ORVANE_VERSION comes from the project version in CMake"
#endif

namespace orvane::app {

namespace {

struct Library {
  const char* name;
  const char* use;
  const char* licence;
};

// Exactly what the build links, application and core together; a library
// added to a CMakeLists.txt belongs here too.
constexpr Library libraries[] = {
    {"Qt 6 (Core, GUI, Widgets, Concurrent, PDF)", "the window, PDF pages and their preview", "GNU LGPL version 3"},
    {"Qt Charts", "the charts", "GNU GPL version 3"},
    {"PDFium, inside Qt PDF", "reading PDFs for the preview", "BSD 3-clause licence"},
    {"SQLite", "the store", "public domain"},
    {"ICU", "the calendar, time zones and Unicode text", "Unicode licence"},
    {"nlohmann/json", "JSON output and backups", "MIT licence"},
    {"zlib", "compressed members of Excel files", "zlib licence"},
    {"Expat", "the XML inside Excel files", "MIT licence"},
    {"OpenSSL (libcrypto)", "SHA-256 for forecast seeds", "Apache licence 2.0"},
};

}  // namespace

QString AboutDialog::version() { return QStringLiteral(ORVANE_VERSION); }

AboutDialog::AboutDialog(QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("aboutDialog"));
  setWindowTitle(QStringLiteral("About Orvane"));

  text_ = QStringLiteral(
              "<h2>Orvane</h2><p>Version %1, built with Qt %2.</p>"
              "<p>Boards, forecasts and flow for small software projects.</p>"
              "<p>Orvane is built from these libraries, each under its own licence:</p><table>")
              .arg(version(), QStringLiteral(QT_VERSION_STR));
  for (const Library& library : libraries) {
    text_ +=
        QStringLiteral("<tr><td><b>%1</b></td><td>%2</td><td>%3</td></tr>")
            .arg(QString::fromUtf8(library.name), QString::fromUtf8(library.licence), QString::fromUtf8(library.use));
  }
  text_ += QStringLiteral("</table>");

  loadAppResources();
  auto* icon = new QLabel(this);
  icon->setPixmap(QIcon(QStringLiteral(":/orvane/orvane.svg")).pixmap(64, 64));
  icon->setAlignment(Qt::AlignTop);
  // Without Qt's SVG plugin the icon draws as nothing: no empty gap then.
  icon->setVisible(!icon->pixmap().isNull());
  auto* body = new QTextBrowser(this);
  body->setObjectName(QStringLiteral("aboutText"));
  body->setFrameShape(QFrame::NoFrame);
  body->setStyleSheet(QStringLiteral("QTextBrowser { background: transparent; }"));
  body->setHtml(QStringLiteral("<style>td { padding: 2px 10px 2px 0; }</style>") + text_);
  auto* top = new QHBoxLayout;
  top->addWidget(icon);
  top->addWidget(body, 1);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(top, 1);
  layout->addWidget(buttons);
  resize(720, 400);
}

}  // namespace orvane::app
