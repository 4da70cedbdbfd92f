// SPDX-License-Identifier: MIT
// Two programs at the same record, here as two threads: under the sanitizer of threads any access that is not one atomic access of
// the field's width is a fault. Values are also never seen that were not published.
#include <atomic>
#include <thread>

#include "core/record_access.h"
#include "support/core_fixture.h"

namespace twr::testing {
namespace {

TEST_F(CoreTest, OneProgramWritesWhileAnotherReads) {
    FakeMachine another;
    const CoreServices own = another.Services();
    const CCore reader({own.clock, own.zone, machine.memory, own.registry, own.files, own.xml, own.desktop});
    ASSERT_EQ(core->View(), reader.View());
    std::atomic<bool> enough = false;
    std::thread writer([&] {
        for (int i = 0; !enough; ++i) {
            for (const BoatSlot boat : {0u, 1u, 2u, 99u}) {
                for (ChannelId channel = 0; channel < kChannelCount; ++channel)
                    Publish(channel, i % 2 == 0 ? 0.75 : kNoValue, boat);
            }
            for (std::uint32_t index = 0; index < kSysValueCount; ++index) core->SetSystemValue(index, 5.0);
            for (std::uint32_t index = 0; index < kSysIntCount; ++index) core->SetSystemInt(index, i % 2);
            core->SetMarksPath(i % 2 == 0 ? u"/a/marks.xml" : u"/another/marks.xml");
            core->LoadAlternatesFile(), core->LoadBoatsFile(), core->LoadChannelsFile();
            SetFieldText(core->View()->dataFolder, i % 2 == 0 ? u"/a" : u"/another");
            SetFieldText(core->View()->channels[kUser0].userShortName, i % 2 == 0 ? u"" : u"another");
        }
    });
    for (int round = 0; round < 10; ++round) {
        for (const BoatSlot boat : {0u, 1u, 2u, 99u}) {
            for (ChannelId channel = 0; channel < kChannelCount; ++channel) {
                double value = 0.0;
                if (reader.GetChannel(channel, value, boat, round % 2 == 0, true, false) && channel == kTwd) {
                    EXPECT_EQ(0.75, value);
                }
                reader.GetFreshChannel(channel, value, boat, false, false, kNoValue);
                reader.ChannelText(channel, 0.75), reader.ChannelName(channel), reader.RemoteLabel(channel);
            }
        }
        EXPECT_FALSE(reader.QuitRequested() || FieldTextIs(reader.View()->dataFolder, u"/nowhere"));
    }
    enough = true;
    writer.join();
}

}  // namespace
}  // namespace twr::testing
