#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/store/Database.h"
#include "core/store/EntityTables.h"

namespace orvane::rows {

// Row access for any entity with a Table<T> mapping. The statements are
// cached on the connection, so repeated calls parse no SQL.

template <typename T>
const std::string& selectSql() {
  static const std::string sql = [] {
    std::string text = "SELECT ";
    for (std::size_t i = 0; i < Table<T>::columns.size(); ++i) {
      if (i > 0) text += ", ";
      // Qualified, so a condition may join other tables.
      text.append(Table<T>::name).append(".").append(Table<T>::columns[i]);
    }
    return text + " FROM " + std::string(Table<T>::name);
  }();
  return sql;
}

template <typename T>
void insert(Database& db, const T& row) {
  static const std::string sql = [] {
    std::string names;
    std::string marks;
    for (std::size_t i = 0; i < Table<T>::columns.size(); ++i) {
      names += (i > 0 ? ", " : "") + std::string(Table<T>::columns[i]);
      marks += i > 0 ? ", ?" : "?";
    }
    return "INSERT INTO " + std::string(Table<T>::name) + " (" + names + ") VALUES (" + marks + ")";
  }();
  Statement& statement = db.cached(sql);
  Table<T>::bind(statement, row);
  statement.run();
}

// Writes every field of the row with the same id.
template <typename T>
void update(Database& db, const T& row) {
  static const std::string sql = [] {
    std::string text = "UPDATE " + std::string(Table<T>::name) + " SET ";
    for (std::size_t i = 1; i < Table<T>::columns.size(); ++i) {
      text += (i > 1 ? ", " : "") + std::string(Table<T>::columns[i]) + " = ?" + std::to_string(i + 1);
    }
    return text + " WHERE id = ?1";
  }();
  Statement& statement = db.cached(sql);
  Table<T>::bind(statement, row);
  statement.run();
}

template <typename T>
void remove(Database& db, const Uuid& id) {
  static const std::string sql = "DELETE FROM " + std::string(Table<T>::name) + " WHERE id = ?1";
  db.cached(sql).bindAll(id).run();
}

// Rows matching an SQL condition (with JOIN and ORDER BY if wanted), e.g.
// select<Ticket>(db, "WHERE column_id = ?1 ORDER BY position", columnId).
template <typename T, typename... Params>
std::vector<T> select(Database& db, std::string_view condition, const Params&... params) {
  Statement& statement = db.cached(selectSql<T>() + " " + std::string(condition));
  statement.bindAll(params...);
  std::vector<T> found;
  while (statement.step()) found.push_back(Table<T>::read(statement));
  statement.reset();
  return found;
}

template <typename T>
std::optional<T> find(Database& db, const Uuid& id) {
  auto found = select<T>(db, "WHERE id = ?1", id);
  if (found.empty()) return std::nullopt;
  return std::move(found.front());
}

}  // namespace orvane::rows
