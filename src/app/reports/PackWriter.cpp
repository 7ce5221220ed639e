#include "app/reports/PackWriter.h"

#include <stdexcept>
#include <vector>

#include "app/reports/PackDocument.h"
#include "core/exchange/ZipArchive.h"
#include "core/files/FileError.h"
#include "core/files/FileReader.h"
#include "core/files/FileWriter.h"

namespace orvane::app {

WrittenPack writePack(const DevelopmentPacks& set, const DevelopmentPack& pack, const ReportBranding& branding,
                      const std::filesystem::path& folder) {
  // Read the files first: what cannot be read now is missing in the PDF too,
  // and the ZIP's names are given to the files that are really in it.
  DevelopmentPack checked = pack;
  std::vector<std::vector<std::string>> contents;
  for (PackTicket& ticket : checked.tickets) {
    std::vector<std::string>& read = contents.emplace_back(ticket.files.size());
    for (std::size_t i = 0; i < ticket.files.size(); ++i) {
      PackFile& file = ticket.files[i];
      if (!file.present) continue;
      try {
        read[i] = readRegularFile(file.path, FileContent::linkedFile);
      } catch (const FileError&) {
        file.present = false;
      }
    }
  }
  std::vector<ZipArchive::File> members;
  for (std::size_t t = 0; t < checked.tickets.size(); ++t) {
    const PackTicket& ticket = checked.tickets[t];
    const std::vector<std::string> names = packMemberNames(ticket);
    for (std::size_t i = 0; i < ticket.files.size(); ++i)
      if (ticket.files[i].present) members.push_back({names[i], std::move(contents[t][i])});
  }

  WrittenPack written;
  written.personName = QString::fromStdString(pack.personName);
  written.email = QString::fromStdString(pack.email);
  for (const PackTicket& ticket : checked.tickets)
    for (const PackFile& file : ticket.files)
      if (!file.present) written.missing << QString::fromStdString(file.path);

  std::string archive;
  if (!members.empty()) {
    try {
      archive = ZipArchive::stored(members);
    } catch (const std::length_error&) {
      throw std::runtime_error("The files linked to the tickets of " + pack.personName +
                               " are too large for one ZIP archive (4 GB at most).");
    }
  }

  const QByteArray pdf = packPdf(set, checked, branding);
  const std::filesystem::path pdfPath = folder / checked.pdfName();
  replaceFile(pdfPath, std::string_view(pdf.constData(), static_cast<std::size_t>(pdf.size())), FileContent::tickets);
  written.pdfPath = QString::fromStdString(pdfPath.string());
  if (!members.empty()) {
    const std::filesystem::path zipPath = folder / checked.zipName();
    replaceFile(zipPath, archive, FileContent::tickets);
    written.zipPath = QString::fromStdString(zipPath.string());
    written.zippedFiles = static_cast<int>(members.size());
  }
  return written;
}

}  // namespace orvane::app
