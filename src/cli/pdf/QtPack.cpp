#include "cli/pdf/QtPack.h"

#include <QGuiApplication>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

#include "app/reports/PackWriter.h"
#include "app/settings/BrandingSettings.h"
#include "cli/CliError.h"
#include "cli/OptionParser.h"
#include "cli/ProjectLookup.h"
#include "cli/StoreAccess.h"
#include "cli/TextLayout.h"
#include "core/files/FileError.h"

namespace orvane::cli {
namespace {

using nlohmann::json;

constexpr std::string_view packUsage =
    "Usage: orvane-cli pack PROJECT --out DIR [--json]\n"
    "\n"
    "Writes the week's development packs of PROJECT into DIR (made when missing):\n"
    "for each person with open tickets flagged \"this week\", a PDF of those\n"
    "tickets and a ZIP of the files linked to them (no ZIP when none of them can\n"
    "be read). Done and archived tickets are left out; linked files that are not\n"
    "there are listed in the PDF under \"Missing files\" and printed here. Files of\n"
    "the same name in DIR are replaced.\n"
    "\n"
    "  --out DIR  the folder to write into\n"
    "  --json     print what was written as one JSON object\n"
    "  --help     print this text\n";

constexpr OptionSpec packSpecs[] = {{"--out", true}, {"--json", false}, {"--help", false}};

// The PDF writer needs a QGuiApplication for its fonts. Made here, and only
// here, so no other command starts Qt; offscreen unless the caller chose a
// platform, so cron and ssh sessions need no display.
std::unique_ptr<QGuiApplication> guiApplication() {
  if (QCoreApplication::instance()) return nullptr;
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  // Qt's own notes (a missing runtime folder, an offscreen plugin's limits)
  // are no business of the user's: a scheduled run prints only its result.
  qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtFatalMsg) {
      std::fputs(qPrintable(message + QLatin1Char('\n')), stderr);
      std::abort();
    }
  });
  static int argc = 1;
  static char name[] = "orvane-cli";
  static char* argv[] = {name, nullptr};
  auto application = std::make_unique<QGuiApplication>(argc, argv);
  // The same names as the desktop application: the branding it stored is
  // the branding read here.
  QCoreApplication::setApplicationName(QStringLiteral("orvane"));
  QCoreApplication::setOrganizationName(QStringLiteral("orvane"));
  return application;
}

std::filesystem::path outputFolder(const std::string& text) {
  const std::filesystem::path folder(text);
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (!std::filesystem::is_directory(folder))
    throw CliError("The packs cannot be written to " + text + ": it is not a folder that can be made.", exitFailure);
  return folder;
}

json writtenJson(const app::WrittenPack& pack) {
  json missing = json::array();
  for (const QString& path : pack.missing) missing.push_back(path.toStdString());
  return {{"person", pack.personName.toStdString()},
          {"email", pack.email.toStdString()},
          {"pdf", pack.pdfPath.toStdString()},
          {"zip", pack.zipPath.isEmpty() ? json(nullptr) : json(pack.zipPath.toStdString())},
          {"zippedFiles", pack.zippedFiles},
          {"missingFiles", missing}};
}

}  // namespace

int runPackWithQt(std::span<const std::string> args, const CommandContext& context) {
  const ParsedOptions parsed = parseArguments(args, packSpecs, "pack");
  if (parsed.has("--help")) {
    context.out << packUsage;
    return exitOk;
  }
  expectPositionals(parsed, {"PROJECT"}, "pack");
  const std::optional<std::string_view> out = parsed.value("--out");
  if (!out) throw CliError("pack needs --out DIR: the folder to write the packs into.");

  const ProjectSnapshot snapshot = loadProject(context.store.service(), parsed.positionals()[0]);
  const DevelopmentPacks packs = developmentPacks(snapshot, context.now, context.calendar);
  const std::filesystem::path folder = outputFolder(std::string(*out));

  const std::unique_ptr<QGuiApplication> application = guiApplication();
  const ReportBranding branding = app::storedBranding();
  std::vector<app::WrittenPack> written;
  try {
    for (const DevelopmentPack& pack : packs.packs) written.push_back(app::writePack(packs, pack, branding, folder));
  } catch (const FileError& error) {
    throw CliError(error.what(), exitFailure);
  } catch (const std::runtime_error& error) {
    throw CliError(error.what(), exitFailure);
  }

  if (parsed.has("--json")) {
    json list = json::array();
    for (const app::WrittenPack& pack : written) list.push_back(writtenJson(pack));
    context.out << json{{"project", snapshot.project.name},
                        {"weekStart", packs.weekStart.description()},
                        {"folder", folder.string()},
                        {"packs", list},
                        {"unassignedTickets", packs.unassignedTickets}}
                       .dump(2)
                << '\n';
    return exitOk;
  }
  if (written.empty())
    context.out << "No open tickets of " << snapshot.project.name
                << " are flagged this week with someone assigned: nothing was written.\n";
  for (const app::WrittenPack& pack : written) {
    context.out << pack.personName.toStdString() << ":\n  " << pack.pdfPath.toStdString() << '\n';
    if (!pack.zipPath.isEmpty())
      context.out << "  " << pack.zipPath.toStdString() << " (" << counted(pack.zippedFiles, "file") << ")\n";
    for (const QString& path : pack.missing) context.out << "  missing: " << path.toStdString() << '\n';
    if (pack.email.isEmpty()) context.out << "  (no e-mail address: hand this pack over yourself)\n";
  }
  if (packs.unassignedTickets > 0)
    context.out << counted(packs.unassignedTickets, "ticket") << " flagged this week "
                << (packs.unassignedTickets == 1 ? "has" : "have") << " nobody assigned and "
                << (packs.unassignedTickets == 1 ? "is" : "are") << " in no pack.\n";
  return exitOk;
}

}  // namespace orvane::cli
