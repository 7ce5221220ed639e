#pragma once

#include <QString>
#include <string>
#include <variant>

namespace orvane::app {

// A report logo read from a file the user picked: the PNG's bytes, or the
// sentence that says why the file cannot be the logo. Only a readable PNG
// of at most maxLogoBytes is taken; the bytes go into the user's settings
// and into every page, so a large file would weigh down both.
inline constexpr qint64 maxLogoBytes = 1024 * 1024;

struct LogoProblem {
  QString sentence;
};

std::variant<std::string, LogoProblem> readLogoFile(const QString& path);

}  // namespace orvane::app
