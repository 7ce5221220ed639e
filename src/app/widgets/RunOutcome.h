#pragma once

#include <QString>
#include <exception>
#include <optional>
#include <type_traits>

namespace orvane::app {

// What a forecast run in the thread pool hands back: its result, or the
// sentence of the error that stopped it.
template <typename Result>
struct Outcome {
  std::optional<Result> result;
  QString error;
};

// Calls `work`, turning a thrown error into its sentence.
template <typename Work>
Outcome<std::invoke_result_t<Work>> outcomeOf(Work&& work) {
  try {
    return {work(), QString()};
  } catch (const std::exception& error) {
    return {std::nullopt, QString::fromStdString(error.what())};
  }
}

}  // namespace orvane::app
