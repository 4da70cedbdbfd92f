// SPDX-License-Identifier: MIT
// What a boat streams that has a value in every channel, for the scripts that compare it with schemas, decoders and documents. The
// argument says what is printed:
// - signalk: deltas of boats 0 and 1, of which channel N has the value 1 + N / 128 and its end, and boat 2 has no MMSI
// - nmea: sentences, of 10.5 in most channels
// - without: for each channel the sentences without its value, each behind the channel's number
// - paths: the rows of the table of paths
#include <cstdio>

#include "base/wide_text.h"
#include "streams/signalk_paths.h"
#include "streams/stream_format.h"
#include "support/fakes.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

struct Sample {
    void Publish(ChannelId channel, double value) {
        if (channel == kGpsTime) value = machine.clock.Days() - 0.25;
        for (const BoatSlot boat : {0u, 1u, 2u}) core.SetChannel(channel, boat, value, 0.0);
    }
    void PublishNormal(ChannelId channel) { Publish(channel, channel == kGpsMethod ? 2.0 : channel == kMagVar ? -3.0 : 10.5); }
    std::string Sentences() {
        std::string out;
        StreamFormatOf("nmea").make()->Append(out, follower.Look(), follower);
        return out;
    }

    FakeMachine machine;
    CCore core{machine.Services()};
    Follower follower{core, machine.clock, {}};
};

void PrintDeltas(Sample& sample) {
    for (ChannelId channel = 1; channel < kChannelCount; ++channel) sample.Publish(channel, 1.0 + channel / 128.0);
    Put(sample.core.View()->boats[1].mmsi, 211234560u);
    const std::unique_ptr<StreamFormat> deltas = StreamFormatOf("signalk").make();
    std::string out;
    deltas->Append(out, sample.follower.Look(), sample.follower);
    deltas->Append(out, sample.follower.Gone(), sample.follower);
    std::fputs(out.c_str(), stdout);
}

void PrintPaths() {
    for (const SignalKPath& path : SignalKPaths()) {
        if (IsOurs(path)) continue;
        for (const SignalKPart& part : path.parts)
            std::printf("| %u | %s | `%s%s%s` | %s%s |\n", part.channel, ToUtf8(ChannelCatalogue()[part.channel].name).c_str(),
                        path.path, *part.member ? "` `" : "", part.member, part.unit->name, part.trueBearing ? ", true" : "");
    }
}

void PrintWithout(Sample& sample) {
    for (ChannelId channel = 1; channel < kChannelCount; ++channel) {
        sample.core.SetChannel(channel, 0, kNoValue, 0.0);
        for (const std::string& line : LinesOf(sample.Sentences())) std::printf("%u %s\n", channel, line.c_str());
        sample.PublishNormal(channel);
    }
}

}  // namespace
}  // namespace twr::testing

int main(int, char** arguments) {
    const std::string what = arguments[1];
    twr::testing::Sample sample;
    if (what == "signalk") return twr::testing::PrintDeltas(sample), 0;
    if (what == "paths") return twr::testing::PrintPaths(), 0;
    for (twr::ChannelId channel = 1; channel < twr::kChannelCount; ++channel) sample.PublishNormal(channel);
    if (what == "nmea") std::fputs(sample.Sentences().c_str(), stdout);
    if (what == "without") twr::testing::PrintWithout(sample);
}
