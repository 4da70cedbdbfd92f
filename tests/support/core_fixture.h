// SPDX-License-Identifier: MIT
// A core over a machine of fakes, with its record in view by literal offsets.
#pragma once
#include <gtest/gtest.h>

#include <memory>

#include "core/core.h"
#include "support/fakes.h"
#include "support/record_bytes.h"

namespace twr::testing {

struct CoreTest : ::testing::Test {
    CoreTest() : core(std::make_unique<CCore>(machine.Services())), record(core->View()) {}

    bool Publish(ChannelId channel, double value, BoatSlot boat = 0, double time = 0.0) {
        return core->SetChannel(channel, boat, value, time);
    }
    void SetFlag(std::size_t flag, bool on = true) { record.Set<std::uint8_t>(RecordBytes::SysFlag(flag), on); }
    double Own(ChannelId channel) const { return record.F64(RecordBytes::Value(0, channel)); }
    double OwnTime(ChannelId channel) const { return record.F64(RecordBytes::Time(0, channel)); }
    std::uint32_t Boats() const { return record.Get<std::uint32_t>(RecordBytes::kBoatCount); }

    FakeMachine machine;
    std::unique_ptr<CCore> core;
    RecordBytes record;
};

}  // namespace twr::testing
