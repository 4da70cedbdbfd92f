// SPDX-License-Identifier: MIT
// How 'halyrigctl map' and its own commands are typed.
#pragma once
#include "halyrigctl/commands.h"

namespace CLI {
class App;
}

namespace twr {

// The command is run at the end of parsing, with its outcome in `status`.
void AddMap(CLI::App& app, System& system, Status& status);

}  // namespace twr
