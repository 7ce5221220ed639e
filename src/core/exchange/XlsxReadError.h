#pragma once

#include <exception>
#include <string>

namespace orvane {

// Why a workbook (or the ZIP archive around it) could not be read. what() is
// the complete sentence the user sees.
class XLSXReadError : public std::exception {
 public:
  enum class Case { unsupported, notAWorkbook, noSheet };

  // "This workbook cannot be read: " followed by the detail.
  static XLSXReadError unsupported(std::string detail) { return {Case::unsupported, std::move(detail)}; }
  static XLSXReadError notAWorkbook() { return {Case::notAWorkbook, {}}; }
  static XLSXReadError noSheet() { return {Case::noSheet, {}}; }

  Case kind() const { return kind_; }
  // The detail text of unsupported; empty otherwise.
  const std::string& detail() const { return detail_; }
  const char* what() const noexcept override { return message_.c_str(); }

  friend bool operator==(const XLSXReadError& a, const XLSXReadError& b) {
    return a.kind_ == b.kind_ && a.detail_ == b.detail_;
  }

 private:
  XLSXReadError(Case kind, std::string detail);

  Case kind_;
  std::string detail_;
  std::string message_;
};

}  // namespace orvane
