#pragma once

#include <string>

#include "core/store/Database.h"

namespace orvane::testing {

// Every row of every table, in a stable order, as text: two dumps are equal
// exactly when the stores hold the same data.
inline std::string dumpStore(Database& db) {
  std::string dump;
  Statement tables = db.prepare("SELECT name FROM sqlite_schema WHERE type = 'table' ORDER BY name");
  while (tables.step()) {
    const std::string table = tables.text(0);
    dump += "## " + table + "\n";
    Statement rows = db.prepare("SELECT * FROM \"" + table + "\" ORDER BY 1");
    while (rows.step()) {
      for (int c = 0; c < rows.columnCount(); ++c) {
        dump += rows.isNull(c) ? std::string("NULL") : rows.text(c);
        dump += '|';
      }
      dump += '\n';
    }
  }
  return dump;
}

}  // namespace orvane::testing
