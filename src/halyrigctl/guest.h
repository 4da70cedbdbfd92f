// How halyrigctl meets the record: as a guest of the programs that hold it.
#pragma once
#include <optional>

#include "core/core.h"

namespace twr {

class Guest {
public:
    // Joins the record. Where there is none it says so on standard error, with what to start.
    explicit Guest(System& system);

    explicit operator bool() const { return core_ && core_->View(); }
    CCore& Core() { return *core_; }
    CoreRecord& Record() { return *core_->View(); }

    // Lets go of the record, which ends the use of both, then says on standard error what comes of a request to close that stands
    // in it. To be called before anything is written: as long as that is held up, the request would live on with the record.
    void Leave();

private:
    Console& console_;
    std::optional<CCore> core_;
};

}  // namespace twr
