#pragma once

// Programming errors in the engine (a broken precondition, a 64-bit overflow
// in day arithmetic) stop the process: they are never silently wrapped and
// never reported to the user as if they were bad input.
namespace orvane {

[[noreturn]] void fatalError(const char* what);

#define ORVANE_REQUIRE(condition, what) \
  do {                                  \
    if (!(condition)) ::orvane::fatalError(what); \
  } while (false)

}  // namespace orvane
