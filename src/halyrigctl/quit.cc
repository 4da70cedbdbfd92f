#include <cstdio>

#include "core/shared_field.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/guest.h"

namespace twr {

int Quit(System& system) {
    Guest guest(system);
    if (!guest) return 1;
    Put(guest.Record().sysFlag[kFlagQuitRequest], std::uint8_t{1});
    system.GetConsole().Write("Asked the programs of the suite to close.\n");
    return 0;
}

}  // namespace twr
