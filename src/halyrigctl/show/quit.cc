// SPDX-License-Identifier: MIT
#include "core/record_access.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/output/guest.h"

namespace twr {
namespace {

constexpr int kPatienceMs = 10000;
constexpr int kBetweenLooksMs = 100;

// Whether the record with the request is still held. Between two checks it isn't held here, or it would never be removed.
bool StillHeld(System& system) { return CCore(system.Core(), Attachment::kOpenOnly).QuitRequested(); }

// False if they have not all left in time, or the user stops waiting. A program releases the record a moment before it ends, and
// until then the bridge does not start again: one pause more.
bool WaitUntilAllHaveLeft(System& system) {
    bool held = true;
    for (int waited = 0; waited < kPatienceMs; waited += kBetweenLooksMs) {
        const bool heldBefore = held;
        held = StillHeld(system);
        if (!held && !heldBefore) return true;
        if (!system.GetConsole().Wait(kBetweenLooksMs)) break;
    }
    return !held;
}

}  // namespace

Status Quit(System& system, const QuitOptions& options) {
    {
        Guest guest(system);
        if (!guest) return kFailed;
        Put(guest.Record().sysFlag[kFlagQuitRequest], std::uint8_t{1});
    }
    Console& console = system.GetConsole();
    const Status printed = Print(console, "Asked the programs of the suite to close.\n");
    if (!options.wait || WaitUntilAllHaveLeft(system)) return printed;
    Notice(console, "programs of the suite still hold the record; until all have ended, one that starts ends at once. End them.");
    return kFailed;
}

}  // namespace twr
