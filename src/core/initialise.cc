// SPDX-License-Identifier: MIT
#include "core/initialise.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "base/no_value.h"
#include "core/channel_catalogue.h"
#include "core/record_access.h"

namespace twr {
namespace {

// BuildSuiteText turns it into "Tidewright suite.".
constexpr std::string_view kSuiteTextInput = "{x%xljltyfeiT6l{o";

constexpr double kInitialSysValues[] = {15.85, 15.8, 4.4, 0.0, 3.0, 1.0, 1.0, 10.0, 5.0, 5.0, 5.0, 3.0, 0.0, 0.0, 0.0, 0.0};
constexpr std::size_t kInitialSysFlags[] = {1, 3, 7, 21, 40, 41, 42};
// The log marks until the files are read. LoadChannelsFile then replaces them by the catalogue's `logDefault`, so only a program
// that joins in between sees these.
constexpr ChannelId kFirstLogMarks[] = {0,   1,   2,   3,   4,   5,   6,   10,  11,  12,  13,  16,  17,  18,  19,
                                        20,  22,  39,  41,  43,  47,  48,  49,  50,  51,  60,  146, 161, 162, 163,
                                        164, 165, 166, 167, 204, 205, 206, 207, 208, 256, 282, 283, 284};

// Above every valid choice.
constexpr std::int32_t kNoPositionSource = 7;

template <std::size_t Count>
void Fill(double (&entries)[Count], double value) {
    for (double& entry : entries) Put(entry, value);
}

void InitialiseSettings(CoreRecord& record) {
    Put(record.reserved0, 0.0);
    std::ranges::fill(record.reserved8, 0);
    for (char16_t* text : {record.marksXmlPath, record.databasePath, record.dataFolder, record.sailEvtText, record.reserved1652,
                           record.reserved1716, record.sailText, record.sailMarkText, record.sailNextText}) {
        text[0] = 0;
    }
    for (std::size_t i = 0; i < kSysValueCount; ++i) {
        Put(record.sysValue[i], i < std::size(kInitialSysValues) ? kInitialSysValues[i] : kNoValue);
    }
    std::ranges::fill(record.sysInt, 0);
    record.sysInt[kIntPositionSource] = kNoPositionSource;
    record.sysInt[10] = 60;
    std::ranges::fill(record.sysFlag, std::uint8_t{0});
    for (const std::size_t flag : kInitialSysFlags) record.sysFlag[flag] = 1;
}

void InitialiseGps(CoreRecord& record) {
    record.gpsCount = 0;
    for (GpsRow& row : record.gps) {
        Put(row.reserved8, 0.0);
        row.reserved16 = 0;
        Fill(row.reserved24, kNoValue);
    }
}

void InitialiseTail(CoreRecord& record) {
    constexpr std::int32_t kNone = kNoInt;
    std::ranges::fill(record.reserved166312, 0);
    record.reserved166320 = 0;
    record.reserved166322[0] = 0;
    record.filledMark = kFilledMark;
    std::memcpy(record.reserved166626, &kNone, sizeof kNone);
    record.reserved166692[0] = 0;
    record.reserved166724[0] = 0;
    Fill(record.reserved166760, kNoValue);
    record.reserved166776 = 0;
}

void InitialiseBoats(CoreRecord& record) {
    for (BoatRow& boat : record.boats) {
        boat.ageLimit = kNoInt;
        boat.active = 0;
        SetFieldText(boat.name, {});
        boat.mmsi = 0;
        boat.colour = kDefaultBoatColour;
    }
    for (BoatBlock& block : record.fullBlocks) {
        Fill(block.time, 0.0);
        Fill(block.value, kNoValue);
        Fill(block.aux, kNoValue);
        Fill(block.damped, kNoValue);
        std::ranges::fill(block.mark, std::uint8_t{0});
    }
    for (ShortBoatBlock& block : record.shortBlocks) {
        Fill(block.time, 0.0);
        Fill(block.value, kNoValue);
        Fill(block.damped, kNoValue);
    }
}

void InitialiseChannels(CoreRecord& record) {
    for (const ChannelInfo& info : ChannelCatalogue()) {
        ChannelRow& row = record.channels[info.id];
        row.calibrated = row.blocked = row.published = row.log = row.held = 0;
        row.prec = info.prec;
        row.damp = 0;
        row.type = 0;
        SetFieldText(row.userName, {});
        SetFieldText(row.userShortName, {});
    }
    for (const ChannelId channel : kFirstLogMarks) {
        if (channel < kChannelCount) record.channels[channel].log = 1;
    }
}

}  // namespace

void InitialiseRecord(CoreRecord& record) {
    InitialiseSettings(record);
    std::ranges::copy(kSuiteTextInput, record.suiteText);
    record.suiteText[std::size(record.suiteText) - 1] = 0;
    InitialiseGps(record);
    BuildSuiteText(record);
    InitialiseTail(record);
    for (AlternateRow& row : record.alternates) std::ranges::fill(row.slot, kNoInt);
    Put(record.boatCount, 0u);
    InitialiseBoats(record);
    InitialiseChannels(record);
}

void BuildSuiteText(CoreRecord& record) {
    constexpr std::size_t kRotated = 4;
    std::array<char, sizeof record.suiteText> text{};
    std::ranges::copy(record.suiteText, text.begin());
    text.back() = 0;
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::strlen(text.data()));
    if (end - text.begin() > static_cast<std::ptrdiff_t>(kRotated)) std::rotate(text.begin(), end - kRotated, end);
    std::reverse(text.begin(), end);
    for (auto byte = text.begin(); byte != end; ++byte) *byte = static_cast<char>(*byte - (byte - text.begin()) / 2);
    std::ranges::copy(text, record.suiteText);
    record.suiteText[std::size(record.suiteText) - 1] = 0;
}

}  // namespace twr
