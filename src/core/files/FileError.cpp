#include "core/files/FileError.h"

#include <cerrno>
#include <cstring>

namespace orvane {

namespace {

std::string sentence(FileContent content, std::string_view verb, const std::filesystem::path& path,
                     std::string_view reason) {
  std::string text(fileNoun(content));
  text += " could not be ";
  text += verb;
  text += ": ";
  text += path.string();
  text += ". ";
  text += reason;
  return text;
}

// The system's own text as a sentence, for numbers met too rarely to word.
std::string systemSentence(int error) {
  std::string text = std::strerror(error);
  if (!text.empty() && text.back() != '.') text += '.';
  return text;
}

// Reasons that read the same whichever way the file was being used.
const char* commonProblem(int error) {
  switch (error) {
    case ENOTDIR:
      return "A part of the path is not a folder.";
    case ELOOP:
      return "Its links lead round in a circle.";
    case ENAMETOOLONG:
      return "The name is too long.";
    case EIO:
      return "The disk reported an error.";
    case EISDIR:
      return "It is a folder, not a file.";
    default:
      return nullptr;
  }
}

}  // namespace

FileError FileError::reading(FileContent content, const std::filesystem::path& path, std::string_view reason) {
  return FileError(sentence(content, "read", path, reason));
}

FileError FileError::writing(FileContent content, const std::filesystem::path& path, std::string_view reason) {
  return FileError(sentence(content, "written", path, reason));
}

std::string readProblem(int error) {
  if (const char* common = commonProblem(error)) return common;
  switch (error) {
    case ENOENT:
      return "There is no such file.";
    case EACCES:
    case EPERM:
      return "You do not have permission to read it.";
    default:
      return systemSentence(error);
  }
}

std::string writeProblem(int error) {
  if (const char* common = commonProblem(error)) return common;
  switch (error) {
    case ENOSPC:
      return "The disk is full.";
    case EDQUOT:
      return "Your disk quota is used up.";
    case EFBIG:
      return "It would be larger than the file size limit allows.";
    case EROFS:
      return "The disk is read-only.";
    case EACCES:
    case EPERM:
      return "You do not have permission to write there.";
    case ENOENT:
      return "The folder does not exist.";
    default:
      return systemSentence(error);
  }
}

}  // namespace orvane
