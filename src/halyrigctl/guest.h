// How halyrigctl meets the record: as a guest of the programs that hold it.
#pragma once
#include "core/core.h"

namespace twr {

class Guest {
public:
    // Joins the record. Where there is none it says so on standard error, with what to start.
    explicit Guest(System& system);

    explicit operator bool() const { return core_.View() != nullptr; }
    CCore& Core() { return core_; }
    CoreRecord& Record() { return *core_.View(); }

    // Says on standard error, while a request to close stands in the record, what comes of it.
    void TellIfClosing() const;

private:
    Console& console_;
    CCore core_;
};

}  // namespace twr
