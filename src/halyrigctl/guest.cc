#include "halyrigctl/guest.h"

namespace twr {

Guest::Guest(System& system) : core_(system.Core(), Attachment::kOpenOnly) {
    if (!*this) {
        system.GetConsole().WriteError(
            "halyrigctl: there is no record, since no program of the suite is running. Start Halyrig32 first.\n");
    }
}

}  // namespace twr
