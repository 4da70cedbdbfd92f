// SPDX-License-Identifier: MIT
#include "halyrigctl/output/guest.h"

#include "halyrigctl/output/say.h"
#include "status/bridge_status.h"

namespace twr {

Guest::Guest(System& system, WithoutRecord without) : console_(system.GetConsole()) {
    core_.emplace(system.Core(), Attachment::kOpenOnly);
    if (core_->View() || without == WithoutRecord::kGoOn) return;
    core_.reset();
    const MemoryFault fault = CCore::FaultOfRecord(system.Core());
    if (RecordIsLost(system)) {
        Complain(console_, std::string(kRecordLost) + "; " + kRecordLostToDo + ".");
    } else if (!fault.what.empty()) {
        Complain(console_, Advice{fault.what, fault.todo}.Line());
    } else {
        Complain(console_, "there is no record, since no program of the suite is running. Start " HALYRIG_PROGRAM " first.");
    }
}

// The request lasts as long as the record, so while one program stays, any that starts ends at once.
void Guest::Release() {
    closing_ = closing_ || (core_ && core_->QuitRequested());
    lost_ = lost_ || (core_ && core_->RecordIsLost());
    core_.reset();
}

void Guest::Leave() {
    Release();
    if (!closing_) return;
    Notice(console_,
           "the suite has been asked to close; " HALYRIG_PROGRAM " stays open again only when all its programs have ended.");
}

}  // namespace twr
