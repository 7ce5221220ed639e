#pragma once

#include <stdexcept>
#include <string>

#include "core/model/ColumnType.h"

namespace orvane {

// A broken board rule. what() is the complete sentence the user sees.
class BoardError : public std::exception {
 public:
  enum class Case {
    duplicateName,
    columnNotEmpty,
    lastColumnOfType,
    emptyText,
    invalidWIPLimit,
    archivedTicket,
    columnNotInProject,
    epicNotInProject,
    noColumns,
  };

  static BoardError duplicateName(std::string name) { return {Case::duplicateName, std::move(name)}; }
  static BoardError columnNotEmpty(std::string columnName) { return {Case::columnNotEmpty, std::move(columnName)}; }
  static BoardError lastColumnOfType(ColumnType type) { return {Case::lastColumnOfType, std::string(rawValue(type))}; }
  static BoardError emptyText() { return {Case::emptyText, {}}; }
  static BoardError invalidWIPLimit() { return {Case::invalidWIPLimit, {}}; }
  static BoardError archivedTicket() { return {Case::archivedTicket, {}}; }
  static BoardError columnNotInProject() { return {Case::columnNotInProject, {}}; }
  static BoardError epicNotInProject() { return {Case::epicNotInProject, {}}; }
  static BoardError noColumns() { return {Case::noColumns, {}}; }

  Case kind() const { return kind_; }
  // The name, or the column type's raw value for lastColumnOfType.
  const std::string& payload() const { return payload_; }
  const char* what() const noexcept override { return message_.c_str(); }

  friend bool operator==(const BoardError& a, const BoardError& b) {
    return a.kind_ == b.kind_ && a.payload_ == b.payload_;
  }

 private:
  BoardError(Case kind, std::string payload);

  Case kind_;
  std::string payload_;
  std::string message_;
};

// An operation named a record that is no longer in the store (deleted in
// another window, or by the other front end).
class MissingRecordError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace orvane
