// SPDX-License-Identifier: MIT
// One core on a machine of fakes for all inputs of a target. To make a record for each input takes most of the time otherwise.
#pragma once
#include <cstring>
#include <vector>

#include "core/core.h"
#include "support/fakes.h"
#include "support/record_bytes.h"

namespace twr::testing {

class KeptCore {
public:
    // `xml` in place of the machine's, which reads nothing.
    explicit KeptCore(Xml* xml = nullptr) : core(Services(xml)) {}

    // As a new record is, so that an input does the same after any other.
    void Reset() {
        std::memcpy(core.View(), pristine_.data(), sizeof(CoreRecord));
        machine.clock.ticks = FakeClock().ticks;
        machine.files.files.clear();
        machine.files.folders.clear();
        heard.found.clear();
    }

    // Whether these bytes of the record are as in a new one.
    bool IsPristine(const void* bytes, std::size_t count) const {
        const auto offset = static_cast<const char*>(bytes) - reinterpret_cast<const char*>(core.View());
        return std::memcmp(bytes, pristine_.data() + offset, count) == 0;
    }

    FakeMachine machine;
    CollectedFindings heard;  // of the core's own readers
    CCore core;

private:
    CoreServices Services(Xml* xml) {
        return {machine.clock,   machine.zone, machine.memory, machine.registry, machine.files, xml ? *xml : machine.xml,
                machine.desktop, &heard};
    }
    std::vector<char> CopyOfRecord() const {
        const auto* const bytes = reinterpret_cast<const char*>(core.View());
        return {bytes, bytes + sizeof(CoreRecord)};
    }

    const std::vector<char> pristine_ = CopyOfRecord();
};

}  // namespace twr::testing
