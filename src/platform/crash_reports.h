// SPDX-License-Identifier: MIT
// What is left to read when the process crashes, or when other code in it ends it. After a crash it ends as it would without: with
// the same status, core file and debugger; else with a status other than 0.
#pragma once
#include <string_view>

namespace twr {

class CrashReports {
public:
    virtual ~CrashReports() = default;

    // From now on a crash adds a line to `file`, whose folder is made if it is missing: when, by what, in which program or library
    // and where in that. Linux writes it to standard error too. While Calling(true) holds it ends with `calling`: a library often
    // crashes in another one that it has called, such as the C library.
    //
    // To be called again when one of the two changes, and when a library has been loaded, which may have put itself in the way.
    virtual void Prepare(std::u16string_view file, std::u16string_view calling) = 0;

    // Costs no more than a store.
    virtual void Calling(bool calls) = 0;
};

}  // namespace twr
