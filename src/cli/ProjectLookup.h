#pragma once

#include <string_view>

#include "core/board/BoardService.h"

namespace orvane::cli {

// Finds what a command line names. Each throws CliError (exit 2) with a
// sentence saying what was not found and what there is instead.

// A project by its name (ignoring case) or, failing that, by its key. A name
// or key that several projects share is refused with the candidates listed.
ProjectSnapshot loadProject(BoardService& service, std::string_view nameOrKey);

// "SHOP-12", "shop-12" or just "12"; archived tickets included.
const Ticket& findTicket(const ProjectSnapshot& project, std::string_view reference);

// By name, ignoring case and surrounding white space.
const BoardColumn& findColumn(const ProjectSnapshot& project, std::string_view name);
const Epic& findEpic(const ProjectSnapshot& project, std::string_view name);
const Iteration& findIteration(const ProjectSnapshot& project, std::string_view name);

}  // namespace orvane::cli
