#pragma once

#include <QColor>
#include <QString>
#include <exception>
#include <optional>
#include <type_traits>

namespace orvane::app {

// A chance in percent as every screen writes it, with one decimal: "87.5%".
QString chanceText(double pct);

// The colour of the word the forecast narrative uses for a chance: high
// (green) from 85%, moderate (amber) from 50%, low (red) below.
QColor chanceColour(double pct);

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
