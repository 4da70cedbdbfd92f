// SPDX-License-Identifier: MIT
#include "core/core.h"

#include <cmath>
#include <cstdio>

#include "base/calendar.h"
#include "base/wide_text.h"
#include "core/days.h"
#include "core/initialise.h"
#include "core/record_access.h"
#include "platform/files.h"

namespace twr {
namespace {

constexpr double kTimeToFill = 1.0 / kSecondsPerDay;

// Layout and size are part of the name, so that a program built for another layout opens another block.
std::u16string RecordName() {
    char name[64];
    std::snprintf(name, sizeof name, "TwrCore_%d_%u", static_cast<int>(kRecordLayout), static_cast<unsigned>(sizeof(CoreRecord)));
    return FromBytes(name);
}

// Whether the initial values are written, which overwrite anything stored before. Only the creator writes the mark, after the
// flags; the first stamp of the Time channel comes last.
bool IsFilled(const CoreRecord& record) {
    return Load(record.filledMark) == kFilledMark && Load(record.fullBlocks[0].time[kTime]) != 0.0;
}

}  // namespace

CCore::CCore(const CoreServices& services, Attachment attachment) : services_(services), attachedAt_(UtcNowDays(services.clock)) {
    if (attachment == Attachment::kOpenOnly) {
        AttachAsGuest();
    } else {
        Attach();
        StampTime();
    }
}

CCore::~CCore() = default;

void CCore::Attach() {
    mapping_ = services_.memory.CreateOrOpen(RecordName(), sizeof(CoreRecord));
    if (!mapping_ || !mapping_->Data()) {
        WriteSystemLog(mapping_ ? u"Unable to map shared memory" : u"Unable to create shared memory map");
        services_.desktop.PostQuit();
        return;
    }
    view_ = static_cast<CoreRecord*>(mapping_->Data());
    if (mapping_->Existed()) {
        beingFilled_ = !IsFilled(*view_);
        return;
    }
    InitialiseRecord(*view_);
    LoadSavedSettings();
}

void CCore::AttachAsGuest() {
    mapping_ = services_.memory.OpenExisting(RecordName(), sizeof(CoreRecord));
    auto* const record = mapping_ ? static_cast<CoreRecord*>(mapping_->Data()) : nullptr;
    if (record && IsFilled(*record)) view_ = record;
}

bool CCore::IsBeingFilled() {
    if (!beingFilled_) return false;
    beingFilled_ = !IsFilled(*view_) && std::fabs(UtcNowDays(services_.clock) - attachedAt_) <= kTimeToFill;
    if (!beingFilled_) StampTime();  // in place of the constructor
    return beingFilled_;
}

bool CCore::RecordHasName(const CoreServices& services) { return services.memory.HasName(RecordName()); }

MemoryFault CCore::FaultOfRecord(const CoreServices& services) { return services.memory.FaultOf(RecordName(), sizeof(CoreRecord)); }

bool CCore::QuitRequested() const { return view_ && Load(view_->sysFlag[kFlagQuitRequest]) != 0; }

void CCore::WriteSystemLog(std::u16string_view message) {
    services_.desktop.ShowBox(message, u"Halyrig32", BoxButtons::kOk, BoxIcon::kStop);

    // Without a record there is no folder, and the file goes to the root of the drive. Its date is in the zone shown, the time in
    // the line is UTC.
    const std::u16string folder = GetDataFolder(u"log_system");
    const double now = UtcNowDays(services_.clock);
    const std::u16string path = JoinPath(folder, DateTimeFormat(ToDisplayTime(now), u"log_system_%d%b%Y.log"));
    std::string line = ToBytes(DateTimeFormat(now, u"%H:%M:%S : ")) + ToBytes(message);
    line += kLineEnd;
    services_.files.Append(path, line);
}

}  // namespace twr
