#include "halyrigctl/guest.h"

namespace twr {

Guest::Guest(System& system) : console_(system.GetConsole()), core_(system.Core(), Attachment::kOpenOnly) {
    if (!*this) {
        console_.WriteError("halyrigctl: there is no record, since no program of the suite is running. Start " HALYRIG_PROGRAM
                            " first.\n");
    }
}

// The request goes with the record, so one program that stays makes all that start anew leave.
void Guest::TellIfClosing() const {
    if (!core_.QuitRequested()) return;
    console_.WriteError("halyrigctl: the suite has been asked to close; " HALYRIG_PROGRAM
                        " stays open again only when all its programs have ended.\n");
}

}  // namespace twr
