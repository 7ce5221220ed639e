#include "app/shell/AppResources.h"

#include <QtGlobal>

// Q_INIT_RESOURCE declares the initialiser where it stands, so it must
// stand outside any namespace.
static void initialiseOrvaneResources() { Q_INIT_RESOURCE(orvane); }

namespace orvane::app {

void loadAppResources() { initialiseOrvaneResources(); }

}  // namespace orvane::app
