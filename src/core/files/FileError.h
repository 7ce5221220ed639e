#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

#include "core/files/FileContent.h"

namespace orvane {

// A file that could not be read or written. what() is the complete sentence
// the user sees: "The file could not be read: PATH. It is a folder, not a
// file." or "The backup could not be written: PATH. The disk is full."
class FileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;

  static FileError reading(FileContent content, const std::filesystem::path& path, std::string_view reason);
  static FileError writing(FileContent content, const std::filesystem::path& path, std::string_view reason);
};

// The sentence for a system error number met while reading or writing;
// numbers without a sentence of their own fall back to the system's text.
std::string readProblem(int error);
std::string writeProblem(int error);

// Reasons found by looking at the file rather than by a failed call.
inline constexpr std::string_view folderProblem = "It is a folder, not a file.";
inline constexpr std::string_view notRegularProblem = "It is not a regular file.";
inline constexpr std::string_view danglingLinkProblem = "It is a link to a file that does not exist.";

}  // namespace orvane
