#pragma once

#include <QString>
#include <QStringList>
#include <filesystem>
#include <optional>

#include "core/reports/DevelopmentPack.h"
#include "core/reports/ReportBranding.h"

namespace orvane::app {

// What writing one pack left in the folder.
struct WrittenPack {
  QString personName;
  QString email;  // empty: the pack cannot be mailed
  QString pdfPath;
  QString zipPath;  // empty when no linked file could be read: no ZIP is written
  int zippedFiles = 0;
  QStringList missing;  // paths of linked files that were not found or could not be read
};

// Writes `pack` into `folder`: its PDF and, when at least one of its linked
// files can be read, a ZIP that stores (never compresses) those files under
// the names of packMemberNames. A file found earlier that cannot be read now
// is listed under "Missing files" like one that was never there. Each file is
// written to a temporary name and renamed into place, so the folder never
// holds half a pack file; a pack of the same name is replaced.
// Throws FileError (the sentence names the file and why) when a file cannot
// be written, and std::runtime_error with a sentence when the linked files
// are too large for one ZIP. Needs a QGuiApplication (see packPdf).
WrittenPack writePack(const DevelopmentPacks& set, const DevelopmentPack& pack, const ReportBranding& branding,
                      const std::filesystem::path& folder);

}  // namespace orvane::app
