// What a boat streams that has a value in every channel: sample_stream signalk | nmea. The tables of the documents, from the code:
// sample_stream paths | sentences.
#include <cstdio>
#include <set>
#include <sstream>

#include "base/wide_text.h"
#include "streams/nmea.h"
#include "streams/signalk.h"
#include "support/fakes.h"

namespace twr::testing {
namespace {

struct Sample {
    Sample() {
        for (ChannelId channel = 1; channel < kChannelCount; ++channel) Publish(channel);
        follower.Look();
    }
    void Publish(ChannelId channel) {
        double value = 10.5;
        if (channel == kGpsTime) value = machine.clock.Days() - 0.25;
        if (channel == kGpsMethod) value = 2.0;
        if (channel == kMagVar) value = -3.0;
        for (const BoatSlot boat : {0u, 1u, 2u}) core.SetChannel(channel, boat, value, 0.0);
    }
    std::string Sentences() {
        std::string out;
        follower.Look();
        AppendSentences(out, follower, 0);
        return out;
    }

    FakeMachine machine;
    CCore core{machine.Services()};
    Follower follower{core, machine.clock, {}};
};

// All values, then their end. Boat 1 has an MMSI.
void PrintDeltas(Sample& sample) {
    Put(sample.core.View()->boats[1].mmsi, 211234560u);
    Follower follower(sample.core, sample.machine.clock, {});
    SignalKDeltas deltas;
    std::string out;
    deltas.Append(out, follower.Look(), follower, *sample.core.View());
    deltas.Append(out, follower.Gone(), follower, *sample.core.View());
    std::fputs(out.c_str(), stdout);
}

void PrintPaths() {
    for (const SignalKPath& path : SignalKPaths()) {
        for (const SignalKPart& part : path.parts)
            std::printf("| %u | %s | `%s%s%s` | %s%s |\n", part.channel, ToUtf8(ChannelCatalogue()[part.channel].name).c_str(),
                        path.path, *part.member ? "` `" : "", part.member, part.unit->name, part.trueBearing ? ", true" : "");
    }
}

// Which sentences differ without a channel.
void PrintSentences(Sample& sample) {
    const std::string all = sample.Sentences();
    for (ChannelId channel = 1; channel < kChannelCount; ++channel) {
        sample.core.SetChannel(channel, 0, kNoValue, 0.0);
        const std::string without = sample.Sentences();
        std::istringstream lines(all);
        std::set<std::string> told;
        for (std::string line; std::getline(lines, line);) {
            if (without.find(line) == without.npos) told.insert(line.substr(3, 3));
        }
        sample.Publish(channel);
        if (told.empty()) continue;
        std::printf("| %u | %s |", channel, ToUtf8(ChannelCatalogue()[channel].name).c_str());
        for (const std::string& sentence : told) std::printf("%s %s", sentence == *told.begin() ? "" : ",", sentence.c_str());
        std::printf(" |\n");
    }
}

}  // namespace
}  // namespace twr::testing

int main(int count, char** arguments) {
    const std::string what = count > 1 ? arguments[1] : "";
    twr::testing::Sample sample;
    if (what == "signalk") twr::testing::PrintDeltas(sample);
    if (what == "nmea") std::fputs(sample.Sentences().c_str(), stdout);
    if (what == "paths") twr::testing::PrintPaths();
    if (what == "sentences") twr::testing::PrintSentences(sample);
}
