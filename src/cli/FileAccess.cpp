#include "cli/FileAccess.h"

#include <iterator>

#include "cli/CliError.h"
#include "core/files/FileError.h"
#include "core/files/FileReader.h"
#include "core/files/FileWriter.h"

namespace orvane::cli {

std::string readFile(const std::string& path, std::istream& standardInput, FileContent content) {
  if (path == "-") return std::string(std::istreambuf_iterator<char>(standardInput), {});
  try {
    return readRegularFile(path, content);
  } catch (const FileError& error) {
    throw CliError(error.what());
  }
}

void writeAtomically(const std::string& path, std::string_view bytes, FileContent content) {
  try {
    replaceFile(path, bytes, content);
  } catch (const FileError& error) {
    throw CliError(error.what(), exitFailure);
  }
}

}  // namespace orvane::cli
