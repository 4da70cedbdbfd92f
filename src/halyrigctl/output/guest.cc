// SPDX-License-Identifier: MIT
#include "halyrigctl/output/guest.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/days.h"
#include "core/record_access.h"
#include "halyrigctl/output/say.h"
#include "status/bridge_status.h"

namespace twr {
namespace {

constexpr double kIdle = 10.0 / kSecondsPerDay;  // after which most values are stale
constexpr std::int64_t kTicksPerMs = 10'000;
constexpr std::int64_t kMostEarly = 20 * kTicksPerMs;  // of a wait, by the coarse clock of Windows
constexpr std::int64_t kMostLate = 1000 * kTicksPerMs;

bool IsIdle(const CoreRecord& record, const Clock& clock) {
    return std::fabs(UtcNowDays(clock) - Load(record.fullBlocks[0].time[kTime])) > kIdle;
}

}  // namespace

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

bool LastingGuest::Join() {
    const CoreServices services = system_.Core();
    auto core = std::make_unique<CCore>(services, Attachment::kOpenOnly);
    if (!core->View() || core->QuitRequested() || IsIdle(*core->View(), services.clock)) return false;
    core_ = std::move(core);
    return true;
}

void LastingGuest::Welcome() {
    if (std::exchange(saysWaiting_, false)) Complain(system_.GetConsole(), "the record is there.");
}

void LastingGuest::SayThatItWaits() {
    if (std::exchange(saysWaiting_, true)) return;
    Complain(system_.GetConsole(),
             "there is no record yet, since no program of the suite is publishing; waiting for it. Start " HALYRIG_PROGRAM ".");
}

const char* LastingGuest::WhyLeave() const {
    if (!core_) return nullptr;
    if (core_->QuitRequested()) return "the suite has been asked to close; waiting for the next record.";
    if (core_->RecordIsLost()) return "waiting for the next record.";
    if (!IsIdle(*core_->View(), system_.Core().clock)) return nullptr;
    return "no program of the suite has published anything for 10 s; waiting for one that does.";
}

void LastingGuest::Leave(const char* why) {
    core_.reset();
    Complain(system_.GetConsole(), why);
    saysWaiting_ = true;
}

Beat::Next Beat::UntilNext(int periodMs) {
    const std::int64_t now = clock_.Ticks(), period = periodMs * kTicksPerMs;
    std::int64_t late = now - due_;
    if (late < -kMostEarly || late > std::max(kMostLate, period)) late = 0;
    const std::int64_t beats = 1 + std::max<std::int64_t>(late, 0) / period;
    due_ = now - late + beats * period;
    const auto left = static_cast<int>((due_ - now + kTicksPerMs - 1) / kTicksPerMs);
    return {left, beats * periodMs - left};
}

}  // namespace twr
