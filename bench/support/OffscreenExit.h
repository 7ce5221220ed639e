#pragma once

#include <functional>

namespace orvane::bench {

// Runs `cleanup` when the benchmarks are done, while the application that
// widgets need still exists (a static's destructor would run after it).
// Cleanups run in the reverse order of their registration.
void atOffscreenExit(std::function<void()> cleanup);

// The screen a benchmark program shares between its benchmarks: made on first
// use, destroyed at the offscreen exit.
template <typename Screen>
Screen& sharedScreen() {
  static Screen* screen = [] {
    auto* made = new Screen;
    atOffscreenExit([made] { delete made; });
    return made;
  }();
  return *screen;
}

}  // namespace orvane::bench
