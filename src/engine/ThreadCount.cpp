#include "engine/ThreadCount.h"

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace orvane {

std::size_t threadsFromSetting(const char* setting, std::size_t hardwareThreads) {
  const std::size_t fallback = hardwareThreads == 0 ? 1 : hardwareThreads;
  if (setting == nullptr) return fallback;
  const char* end = setting + std::strlen(setting);
  std::size_t threads = 0;
  const auto [rest, error] = std::from_chars(setting, end, threads);
  if (error != std::errc() || rest != end || threads < 1 || threads > 1024) return fallback;
  return threads;
}

std::size_t engineThreads() {
  static const std::size_t threads =
      threadsFromSetting(std::getenv("ORVANE_THREADS"), std::thread::hardware_concurrency());
  return threads;
}

}  // namespace orvane
