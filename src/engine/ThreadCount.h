#pragma once

#include <cstddef>

namespace orvane {

// How many threads the engine's own work may use when the caller does not
// say: the value of the environment variable ORVANE_THREADS if it is a whole
// number from 1 to 1024 (ORVANE_THREADS=1 forces every forecast onto the
// calling thread), otherwise one per hardware thread. Read once per process;
// the number never changes a result, only how fast it comes.
std::size_t engineThreads();

// The same rule on a given text (null when the variable is not set).
std::size_t threadsFromSetting(const char* setting, std::size_t hardwareThreads);

}  // namespace orvane
