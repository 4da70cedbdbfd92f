// SPDX-License-Identifier: MIT
// How halyrigctl attaches to the record: as a guest of the programs that hold it.
#pragma once
#include <optional>

#include "core/core.h"

namespace twr {

enum class WithoutRecord {
    kComplain,  // on standard error, with what to start
    kGoOn,      // with a core that is not attached
};

class Guest {
public:
    // Joins the record if there is one.
    explicit Guest(System& system, WithoutRecord without = WithoutRecord::kComplain);

    explicit operator bool() const { return core_ && core_->View(); }
    CCore& Core() { return *core_; }  // unattached without a record, and none if that was a complaint
    CoreRecord& Record() { return *core_->View(); }

    // Releases the record, which ends the use of both.
    void Release();

    bool RecordWasLost() const { return lost_; }  // when it was released

    // The same, then explains on standard error a request to close if the record had one. To be called before anything is written:
    // while output is held up, the request would persist with the record.
    void Leave();

private:
    Console& console_;
    std::optional<CCore> core_;
    bool closing_ = false;  // the suite had been asked to close
    bool lost_ = false;
};

}  // namespace twr
