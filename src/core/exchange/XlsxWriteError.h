#pragma once

#include <cstddef>
#include <exception>
#include <string>

namespace orvane {

// Why tickets cannot be written to a workbook without losing text. Raised
// before anything is written; what() is the complete sentence the user sees.
class XLSXWriteError : public std::exception {
 public:
  enum class Case { cellTooLong, unwritableCharacter };

  // The `field` (a ticket CSV header such as "description") of the ticket
  // `reference` takes `units` UTF-16 units, more than a cell holds.
  static XLSXWriteError cellTooLong(const std::string& reference, const std::string& field, std::size_t units);
  // The field holds a control character (or bytes that are not UTF-8) that
  // a workbook cannot carry.
  static XLSXWriteError unwritableCharacter(const std::string& reference, const std::string& field);

  Case kind() const { return kind_; }
  const char* what() const noexcept override { return message_.c_str(); }

 private:
  XLSXWriteError(Case kind, std::string message) : kind_(kind), message_(std::move(message)) {}

  Case kind_;
  std::string message_;
};

}  // namespace orvane
