// SPDX-License-Identifier: MIT
// The CoreRecord: the block of named shared memory through which the programs of the suite exchange all live data. A wire format:
// every program that maps it must agree with every offset, so each gap is a member and each offset is asserted below.
//
// No lock protects it. Fields are read and written one by one through record_access.h; a value and its time stamp are two stores.
// Texts end with a zero within their field. Values from other processes are never trusted as an index.
#pragma once
#include <cstddef>
#include <cstdint>

#include "base/channel_ids.h"

namespace twr {

inline constexpr std::uint32_t kRecordLayout = 356;
inline constexpr std::size_t kPathUnits = 260;
inline constexpr std::size_t kSysValueCount = 93;
inline constexpr std::size_t kSysIntCount = 13;
inline constexpr std::size_t kSysFlagCount = 60;
inline constexpr std::size_t kGpsCount = 64;
inline constexpr std::size_t kAlternateCount = 10;
inline constexpr std::size_t kAlternateSlots = 9;

// Indices into sysValue and sysInt that are read here.
inline constexpr std::size_t kValueBoatLength = 0;    // metres
inline constexpr std::size_t kValueTargetMargin = 7;  // degrees round the target TWA
inline constexpr std::size_t kValueGun = 36;          // the moment at which the start count reaches zero, days
inline constexpr std::size_t kIntDepthUnit = 1;
inline constexpr std::size_t kIntSpeedUnit = 2;
inline constexpr std::size_t kIntDistanceUnit = 3;
inline constexpr std::size_t kIntShortDistanceUnit = 4;
inline constexpr std::size_t kIntPositionSource = 6;  // see instrument_channels.h
inline constexpr std::size_t kIntPressureUnit = 9;

// Indices into sysFlag that have a name.
inline constexpr std::size_t kFlagLocalTime = 1;  // time of day is shown in the machine's zone
inline constexpr std::size_t kFlagMagnetic = 3;   // bearings are shown magnetic
inline constexpr std::size_t kFlagFahrenheit = 4;
inline constexpr std::size_t kFlagDeriveHeelTrimRate = 24;
inline constexpr std::size_t kFlagDeriveRot = 27;
inline constexpr std::size_t kFlagMastAngle = 33;    // AWA is corrected by the mast's angle
inline constexpr std::size_t kFlagQuitRequest = 35;  // every program of the suite that sees it closes
inline constexpr std::size_t kFlagAlternateFirst = 36;
inline constexpr std::size_t kFlagDataPublished = 38;
inline constexpr std::size_t kFlagAlternateLast = 46;
inline constexpr std::size_t kFlagHoldActive = 52;  // publication into channels marked `held` is refused

struct GpsRow {
    std::uint8_t tablePointer[8];  // of the class that other programs keep here; not written
    double reserved8;
    std::uint8_t reserved16;
    std::uint8_t padding17[7];
    double reserved24[3];
};

struct AlternateRow {
    std::int32_t slot[kAlternateSlots];  // ChannelIds, kNoChannel when empty
};

struct ChannelRow {
    std::uint8_t calibrated;  // publication passes the value through calibration
    std::uint8_t blocked;     // publication is refused
    std::uint8_t published;   // a real value has been published
    std::uint8_t log;
    std::uint8_t held;  // publication is refused while holdActive is set
    std::uint8_t padding5;
    std::uint16_t prec;  // decimals of the value's text, 255 for no fixed number
    std::uint16_t damp;  // damping period
    std::int16_t type;   // of a user channel
    char16_t userName[32];
    char16_t userShortName[16];
};

struct BoatRow {
    std::int32_t ageLimit;  // seconds: a lower bound of the age limits of a boat that has an MMSI
    std::uint8_t active;    // has received a real value
    std::uint8_t padding5;
    char16_t name[33];
    std::uint32_t mmsi;    // 0 for none
    std::uint32_t colour;  // red in the low byte, then green, then blue
};

// The store of a boat that holds every channel, indexed by ChannelId.
struct BoatBlock {
    double time[kChannelCount];   // days; 0.0 for never written
    double value[kChannelCount];  // internal units
    double aux[kChannelCount];    // of the suite's filter
    double damped[kChannelCount];
    std::uint8_t mark[kChannelCount];
    std::uint8_t padding13662[2];
};

// The store of a far boat, indexed by the catalogue's short index.
struct ShortBoatBlock {
    double time[kShortChannelCount];
    double value[kShortChannelCount];
    double damped[kShortChannelCount];
};

struct CoreRecord {
    double reserved0;
    std::int32_t reserved8[5];
    char16_t marksXmlPath[kPathUnits];
    char16_t databasePath[kPathUnits];
    char16_t dataFolder[kPathUnits];
    char16_t sailEvtText[32];
    char16_t reserved1652[32];
    char16_t reserved1716[32];
    char16_t sailText[32];
    char16_t sailMarkText[32];
    char16_t sailNextText[32];
    std::int32_t gpsCount;
    GpsRow gps[kGpsCount];
    char suiteText[32];
    AlternateRow alternates[kAlternateCount];  // row r belongs to channel kAlt0 + r
    double sysValue[kSysValueCount];
    std::int32_t sysInt[kSysIntCount];
    std::uint8_t sysFlag[kSysFlagCount];
    std::uint32_t boatCount;  // one more than the highest BoatSlot that has received a real value
    ChannelRow channels[kChannelCount];
    BoatRow boats[kBoatCount];
    std::uint8_t padding59012[4];
    BoatBlock fullBlocks[kFullBoatCount];
    ShortBoatBlock shortBlocks[kBoatCount - kFullBoatCount];
    std::int32_t reserved166312[2];
    std::uint8_t reserved166320;
    std::uint8_t padding166321;
    char16_t reserved166322[151];
    std::uint8_t filledMark;
    std::uint8_t padding166625;
    std::uint8_t reserved166626[4];  // an unaligned i32
    std::uint8_t padding166630[62];
    char reserved166692[32];
    char reserved166724[32];
    std::uint8_t padding166756[4];
    double reserved166760[2];
    std::uint16_t reserved166776;
    std::uint8_t padding166778[6];
};

static_assert(offsetof(GpsRow, tablePointer) == 0);
static_assert(offsetof(GpsRow, reserved8) == 8);
static_assert(offsetof(GpsRow, reserved16) == 16);
static_assert(offsetof(GpsRow, padding17) == 17);
static_assert(offsetof(GpsRow, reserved24) == 24);
static_assert(sizeof(GpsRow) == 48);
static_assert(sizeof(AlternateRow) == 36);
static_assert(offsetof(ChannelRow, calibrated) == 0);
static_assert(offsetof(ChannelRow, blocked) == 1);
static_assert(offsetof(ChannelRow, published) == 2);
static_assert(offsetof(ChannelRow, log) == 3);
static_assert(offsetof(ChannelRow, held) == 4);
static_assert(offsetof(ChannelRow, padding5) == 5);
static_assert(offsetof(ChannelRow, prec) == 6);
static_assert(offsetof(ChannelRow, damp) == 8);
static_assert(offsetof(ChannelRow, type) == 10);
static_assert(offsetof(ChannelRow, userName) == 12);
static_assert(offsetof(ChannelRow, userShortName) == 76);
static_assert(sizeof(ChannelRow) == 108);
static_assert(offsetof(BoatRow, ageLimit) == 0);
static_assert(offsetof(BoatRow, active) == 4);
static_assert(offsetof(BoatRow, padding5) == 5);
static_assert(offsetof(BoatRow, name) == 6);
static_assert(offsetof(BoatRow, mmsi) == 72);
static_assert(offsetof(BoatRow, colour) == 76);
static_assert(sizeof(BoatRow) == 80);
static_assert(offsetof(BoatBlock, time) == 0);
static_assert(offsetof(BoatBlock, value) == 3312);
static_assert(offsetof(BoatBlock, aux) == 6624);
static_assert(offsetof(BoatBlock, damped) == 9936);
static_assert(offsetof(BoatBlock, mark) == 13248);
static_assert(offsetof(BoatBlock, padding13662) == 13662);
static_assert(sizeof(BoatBlock) == 13664);
static_assert(offsetof(ShortBoatBlock, time) == 0);
static_assert(offsetof(ShortBoatBlock, value) == 272);
static_assert(offsetof(ShortBoatBlock, damped) == 544);
static_assert(sizeof(ShortBoatBlock) == 816);
static_assert(offsetof(CoreRecord, reserved0) == 0);
static_assert(offsetof(CoreRecord, reserved8) == 8);
static_assert(offsetof(CoreRecord, marksXmlPath) == 28);
static_assert(offsetof(CoreRecord, databasePath) == 548);
static_assert(offsetof(CoreRecord, dataFolder) == 1068);
static_assert(offsetof(CoreRecord, sailEvtText) == 1588);
static_assert(offsetof(CoreRecord, reserved1652) == 1652);
static_assert(offsetof(CoreRecord, reserved1716) == 1716);
static_assert(offsetof(CoreRecord, sailText) == 1780);
static_assert(offsetof(CoreRecord, sailMarkText) == 1844);
static_assert(offsetof(CoreRecord, sailNextText) == 1908);
static_assert(offsetof(CoreRecord, gpsCount) == 1972);
static_assert(offsetof(CoreRecord, gps) == 1976);
static_assert(offsetof(CoreRecord, suiteText) == 5048);
static_assert(offsetof(CoreRecord, alternates) == 5080);
static_assert(offsetof(CoreRecord, sysValue) == 5440);
static_assert(offsetof(CoreRecord, sysInt) == 6184);
static_assert(offsetof(CoreRecord, sysFlag) == 6236);
static_assert(offsetof(CoreRecord, boatCount) == 6296);
static_assert(offsetof(CoreRecord, channels) == 6300);
static_assert(offsetof(CoreRecord, boats) == 51012);
static_assert(offsetof(CoreRecord, padding59012) == 59012);
static_assert(offsetof(CoreRecord, fullBlocks) == 59016);
static_assert(offsetof(CoreRecord, shortBlocks) == 86344);
static_assert(offsetof(CoreRecord, reserved166312) == 166312);
static_assert(offsetof(CoreRecord, reserved166320) == 166320);
static_assert(offsetof(CoreRecord, padding166321) == 166321);
static_assert(offsetof(CoreRecord, reserved166322) == 166322);
static_assert(offsetof(CoreRecord, filledMark) == 166624);
static_assert(offsetof(CoreRecord, padding166625) == 166625);
static_assert(offsetof(CoreRecord, reserved166626) == 166626);
static_assert(offsetof(CoreRecord, padding166630) == 166630);
static_assert(offsetof(CoreRecord, reserved166692) == 166692);
static_assert(offsetof(CoreRecord, reserved166724) == 166724);
static_assert(offsetof(CoreRecord, padding166756) == 166756);
static_assert(offsetof(CoreRecord, reserved166760) == 166760);
static_assert(offsetof(CoreRecord, reserved166776) == 166776);
static_assert(offsetof(CoreRecord, padding166778) == 166778);
static_assert(sizeof(CoreRecord) == 166784);

}  // namespace twr
