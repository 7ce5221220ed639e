#pragma once

#include "core/model/Uuid.h"

class QWidget;

namespace orvane::app {

class AppContext;

// Opens the ticket window for `ticket` over `parent` (non-blocking) and
// returns it; it deletes itself when closed.
QWidget* openTicketWindow(AppContext& context, const Uuid& ticket, QWidget* parent);
// Opens the people window (people are global to the store).
QWidget* openPeopleWindow(AppContext& context, QWidget* parent);

}  // namespace orvane::app
