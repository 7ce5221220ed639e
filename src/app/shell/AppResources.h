#pragma once

namespace orvane::app {

// Registers the app's resources (":/orvane/..."). They are compiled into
// the app's static library, whose initialiser nothing references, so the
// linker leaves it out unless this is called; calling it again is harmless.
void loadAppResources();

}  // namespace orvane::app
