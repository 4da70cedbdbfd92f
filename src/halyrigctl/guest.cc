#include "halyrigctl/guest.h"

#include <cstdio>

namespace twr {

Guest::Guest(System& system) : core_(system.Core(), Attachment::kOpenOnly) {
    if (!*this)
        std::fputs("halyrigctl: there is no record, since no program of the suite is running. Start Halyrig32 first.\n", stderr);
}

}  // namespace twr
