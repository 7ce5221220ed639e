#include "engine/Fatal.h"

#include <cstdio>
#include <cstdlib>

namespace orvane {

void fatalError(const char* what) {
  std::fprintf(stderr, "orvane: fatal programming error: %s\n", what);
  std::abort();
}

}  // namespace orvane
