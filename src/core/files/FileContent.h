#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string_view>

namespace orvane {

// What a file holds. It decides how an error names the file, the largest
// file that is read back, and who may read a file that is created new.
enum class FileContent {
  // A backup holds people's e-mail addresses and phone numbers: a new one is
  // readable by its owner only (0600). Read up to 1 GB (a store of 50,000
  // tickets backs up to about 73 MB).
  backup,
  // Ticket files (CSV and XLSX exports, imports and the import template): a
  // new one gets the usual mode (0666 less the umask). Read up to 50 MB.
  tickets,
  // A file linked to a ticket, read to go into a development pack's ZIP.
  // Read up to 512 MB; such a file is only ever read, never created.
  linkedFile,
};

// The largest file, in bytes, that is read for `content`.
std::uint64_t readLimit(FileContent content);

// The permission bits a new file of `content` asks for (the umask applies).
mode_t newFileMode(FileContent content);

// "The backup" or "The file": how the sentences of FileError start.
std::string_view fileNoun(FileContent content);

}  // namespace orvane
