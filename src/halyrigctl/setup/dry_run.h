// SPDX-License-Identifier: MIT
// What a start of the bridge would make of the user's files and registry, found out by the suite's own code without any effect.
#pragma once
#include <memory>

#include "core/core.h"

namespace twr {

class DryRun {
public:
    // Fills a record of its own as the first program of the suite does. Nothing is written, no folder made, no other process's
    // memory opened. `findings`, if given, is told what is passed over; it must live as long as the object.
    explicit DryRun(const CoreServices& services, Findings* findings = nullptr);
    ~DryRun();

    // Over the record; never without a view. Its writing operations have no effect outside.
    CCore& Core() const;
    const CoreRecord& Record() const;

    // The machine's services, as they were given, but of those that could write none does: what a reader of the bridge is to be
    // tried with. A folder that was to be made counts as existing from then on.
    CoreServices Services() const;

private:
    struct Stage;
    std::unique_ptr<Stage> stage_;
};

}  // namespace twr
