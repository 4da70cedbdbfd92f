#include <gtest/gtest.h>

#include <string>

#include "simulator/bounded_lines.h"
#include "simulator/recording_replay.h"
#include "simulator/recording_survey.h"
#include "support/fakes.h"

namespace twr::testing {
namespace {

using enum Quantity;

// A recording whose boat speed says where in it the replay is.
class Replay {
public:
    explicit Replay(const std::string& bytes) : replay_((files.files = {{kPath, bytes}}, files), kPath) {}

    float After(double seconds, Quantity quantity = kBsp) {
        replay_.Advance(seconds);
        return replay_.Now()[quantity];
    }

    static constexpr const char16_t* kPath = u"/deckman/recording.nmea";
    FakeFiles files;

private:
    RecordingReplay replay_;
};

std::string Speed(int knots) { return "$IIVHW,,T,,M," + std::to_string(knots) + ",N,,K\r\n"; }
std::string At(const std::string& time) { return "$GPZDA," + time + ",,,,00,\r\n"; }

TEST(RecordingReplay, FollowsTheRecordingsOwnClock) {
    Replay replay(At("120000") + Speed(1) + At("120002") + Speed(2) + At("120002.50") + Speed(3) + At("120100") + Speed(4));
    const std::pair<double, float> steps[] = {{0.0, 1.0F}, {1.9, 1.0F},    {0.2, 2.0F},     {0.5, 3.0F},
                                              {9.5, 3.0F}, {1.0, kAbsent}, {46.0, kAbsent}, {1.0, 4.0F}};
    for (const auto& [seconds, speed] : steps) EXPECT_EQ(speed, replay.After(seconds)) << "a reading holds for ten seconds";
}

TEST(RecordingReplay, TellsTimeAsItCan) {
    const struct {
        const char* name;
        std::string bytes;
        double seconds;  // after which the second speed is due, and not a tenth before
    } rows[] = {
        {"midnight", At("235959") + Speed(1) + At("000001") + Speed(2), 2.0},
        {"position with time", "$GPGLL,,,,,120000,V\n" + Speed(1) + "$GPGLL,,,,,120002,V\n" + Speed(2), 2.0},
        {"no clock", Speed(1) + "$IIHDT,1,T\n$IIHDT,1,T\n" + Speed(2), 1.0},
        {"empty clock", At("") + Speed(1) + At("") + Speed(2), 1.0},
        {"clock after a second round", Speed(9) + Speed(1) + At("120000") + Speed(1) + At("120004") + Speed(2), 4.0},
        {"jitter within an epoch", At("120000.2") + At("120000") + Speed(1) + At("120001.2") + At("120001") + Speed(2), 1.0},
        {"clock set back", At("120000") + Speed(9) + At("110000") + Speed(1) + At("110002") + Speed(2), 2.0},
        {"broken time", At("120000") + Speed(1) + At("129900") + At("120002") + Speed(2), 2.0},
        {"a gap of hours", At("120000") + Speed(1) + At("180000") + Speed(2), 60.0},
    };
    for (const auto& row : rows) {
        Replay replay(row.bytes);
        EXPECT_EQ(1.0F, replay.After(0.0)) << row.name;
        EXPECT_NE(2.0F, replay.After(row.seconds - 0.1)) << row.name;
        EXPECT_EQ(2.0F, replay.After(0.2)) << row.name;
    }
}

TEST(RecordingReplay, GoesOnByRoundsWhenTheClockIsLost) {
    std::string bytes = At("120000") + Speed(1);
    for (int i = 0; i < 1000; ++i) bytes += Speed(2);
    Replay replay(bytes + Speed(3));
    EXPECT_EQ(2.0F, replay.After(300.0));
    EXPECT_EQ(2.0F, replay.After(300.0));
    EXPECT_EQ(3.0F, replay.After(102.5));
}

TEST(RecordingReplay, SkipsBrokenLinesAndEmptyFields) {
    Replay replay(Speed(1) + "$IIVHW,,T,,M,5,N,,K*00\n" + "$IIVHW,,T,,M,,N,,K\n" + std::string(100000, 'x') + "\n\n\x01\x1A\n" +
                  "$IIMTW,14.5,C");
    EXPECT_EQ(1.0F, replay.After(0.0));
    EXPECT_EQ(14.5F, replay.After(1.0, kSeaTemp));
    EXPECT_EQ(1.0F, replay.After(0.0)) << "an empty field changes nothing yet";
}

TEST(RecordingReplay, LoopsWithNothingLeftFromTheRoundBefore) {
    Replay replay(At("120000") + Speed(1) + At("120002") + "$IIMTW,14.5,C\n");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(1.0F, replay.After(0.0)) << round;
        EXPECT_EQ(kAbsent, replay.After(0.0, kSeaTemp)) << round;
        EXPECT_EQ(14.5F, replay.After(2.1, kSeaTemp)) << round;
        replay.After(0.95);
    }
}

TEST(RecordingReplay, HasNothingWhileTheRecordingIsGone) {
    Replay replay(At("120000") + Speed(1) + At("120002") + Speed(2));
    replay.files.files.clear();
    EXPECT_EQ(2.0F, replay.After(2.5)) << "what is open plays on";
    EXPECT_EQ(kAbsent, replay.After(1.0));
    EXPECT_EQ(kAbsent, replay.After(100.0));
    replay.files.files = {{Replay::kPath, Speed(7)}};
    EXPECT_EQ(7.0F, replay.After(1.0));
}

TEST(RecordingReplay, EndsEveryAdvanceWhateverTheFile) {
    for (const std::string& bytes :
         {std::string(), std::string(300000, '\n'), std::string(300000, '$'), std::string(300000, '\0')}) {
        Replay replay(bytes);
        EXPECT_EQ(kAbsent, replay.After(1000.0));
        EXPECT_EQ(kAbsent, replay.After(1e12));
    }
}

TEST(RecordingSurvey, SaysWhatIsOfUse) {
    const std::pair<std::string, const char*> rows[] = {
        {Speed(1) + "\n" + At("120000") + Speed(2) + "$IIVHW,,T,,M,,N,,K\n$GPGSV,1\n# a remark\n" + Speed(3) +
             "$IIVHW,,T,,M,5,N,,K*00",
         "8 lines, of which 2 (25.0 %) are broken\n  used: VHW 3, ZDA 1\n  empty, or of no use to the stand-in: GSV 1, VHW 1\n"},
        {std::string(200, 'x') + "\n" + Speed(1),
         "2 lines, of which 1 (50.0 %) are broken\n  used: VHW 1\n  empty, or of no use to the stand-in: none\n"},
        {"", "it is empty"},
        {"\r\n\r\n", "it is empty"},
        {"\x1F\x8B\x08" + Speed(1), "it is packed by gzip: unpack it first"},
        {"2026-11-19;12.5;13.1\n" + std::string(300, 'x'), "no line in it is an NMEA 0183 sentence"},
        {At("120000") + "$IIHDT,,T\n", "none of its sentences holds a value that the stand-in reads"},
    };
    FakeFiles files;
    EXPECT_EQ("it can't be read", WhyUseless(SurveyRecording(files, Replay::kPath)));
    for (const auto& [bytes, expected] : rows) {
        files.files = {{Replay::kPath, bytes}};
        const RecordingSurvey survey = SurveyRecording(files, Replay::kPath);
        const std::string why = WhyUseless(survey);
        EXPECT_EQ(expected, why.empty() ? Described(survey) : why);
    }
}

TEST(BoundedLines, CutsAtEveryKindOfEnd) {
    const std::string longest(BoundedLines::kLongest, 'a');
    FakeFiles files;
    files.files = {{u"/f", "one\r\ntwo\rthree\n" + longest + "\n" + longest + "b\nlast"}};
    const auto source = files.Open(u"/f");
    BoundedLines lines(*source);
    std::string all;
    for (std::string_view line; lines.Next(line);) {
        if (!line.empty()) all.append(line).append("|");
    }
    EXPECT_EQ("one|two|three|" + longest + "|last|", all);
}

}  // namespace
}  // namespace twr::testing
