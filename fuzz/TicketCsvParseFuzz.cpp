// Any bytes given as a ticket file must be read into rows and issues or
// refused with TicketCSVError or CSVError. What is read keeps its promises:
// every row has a title, rows and issues come in file order, and every row
// skipped for an error is absent from the rows.
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string_view>

#include "core/exchange/CsvCodec.h"
#include "core/exchange/TicketCsv.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace orvane;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  ParsedImport parsed;
  try {
    parsed = TicketCSV::parse(text);
  } catch (const TicketCSVError&) {
    return 0;
  } catch (const CSVError&) {
    return 0;
  }
  std::int64_t previous = 1;
  for (const auto& row : parsed.rows) {
    if (row.title.empty() || row.rowNumber <= previous) std::abort();
    previous = row.rowNumber;
  }
  std::set<std::int64_t> skipped;
  previous = 1;
  for (const auto& issue : parsed.issues) {
    if (issue.rowNumber < previous || issue.message.empty()) std::abort();
    if (issue.rowNumber == 1 && issue.isError) std::abort();
    previous = issue.rowNumber;
    if (issue.isError) skipped.insert(issue.rowNumber);
  }
  for (const auto& row : parsed.rows) {
    if (skipped.contains(row.rowNumber)) std::abort();
  }
  return 0;
}
