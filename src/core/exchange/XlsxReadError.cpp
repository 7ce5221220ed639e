#include "core/exchange/XlsxReadError.h"

namespace orvane {

namespace {

std::string sentence(XLSXReadError::Case kind, const std::string& detail) {
  switch (kind) {
    case XLSXReadError::Case::unsupported:
      return "This workbook cannot be read: " + detail;
    case XLSXReadError::Case::notAWorkbook:
      return "The file is not an Excel workbook (.xlsx).";
    case XLSXReadError::Case::noSheet:
      return "The workbook has no sheet to read.";
  }
  return {};
}

}  // namespace

XLSXReadError::XLSXReadError(Case kind, std::string detail)
    : kind_(kind), detail_(std::move(detail)), message_(sentence(kind_, detail_)) {}

}  // namespace orvane
