// The new record, byte for byte, as a reader sees it that knows nothing but offsets.
#include "core/initialise.h"

#include <cstring>
#include <set>
#include <vector>

#include "support/core_fixture.h"

namespace twr::testing {
namespace {

constexpr double kNone = 32767.0;

// What a new record holds before any setting is read, written down field by field.
class ExpectedRecord {
public:
    ExpectedRecord() : bytes_(RecordBytes::kSize / sizeof(double)), record_(bytes_.data()) {
        std::memset(static_cast<void*>(bytes_.data()), 0, RecordBytes::kSize);
        for (std::size_t row = 0; row < 64; ++row) Doubles(1976 + 48 * row + 24, 3);
        std::memcpy(reinterpret_cast<char*>(bytes_.data()) + 5048, "Tidewright suite.", 17);
        for (std::size_t slot = 0; slot < 90; ++slot) record_.Set<std::int32_t>(5080 + 4 * slot, 32767);
        const double values[] = {15.85, 15.8, 4.4, 0.0, 3.0, 1.0, 1.0, 10.0, 5.0, 5.0, 5.0, 3.0};
        for (std::size_t i = 0; i < std::size(values); ++i) record_.Set(5440 + 8 * i, values[i]);
        Doubles(5440 + 8 * 16, 93 - 16);
        record_.Set<std::int32_t>(6208, 7);
        record_.Set<std::int32_t>(6224, 60);
        for (const std::size_t flag : {1, 3, 7, 21, 40, 41, 42}) record_.Set<std::uint8_t>(6236 + flag, 1);
        Channels();
        for (std::size_t boat = 0; boat < 100; ++boat) {
            record_.Set<std::int32_t>(51012 + 80 * boat, 32767);
            record_.Set<std::uint32_t>(51012 + 80 * boat + 76, 0x90EE90);
        }
        for (std::size_t boat = 0; boat < 2; ++boat) Doubles(59016 + 13664 * boat + 3312, 3 * 414);
        for (std::size_t boat = 0; boat < 98; ++boat) Doubles(86344 + 816 * boat + 272, 2 * 34);
        record_.Set<std::uint8_t>(166624, 8);
        record_.Set<std::int32_t>(166626, 32767);
        Doubles(166760, 2);
    }

    RecordBytes& Bytes() { return record_; }

private:
    void Doubles(std::size_t offset, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) record_.Set(offset + 8 * i, kNone);
    }

    void Channels() {
        const std::set<int> logged = {0,   1,   2,   3,   4,   5,   6,   10,  11,  12,  13,  16,  17,  18,  19,
                                      20,  22,  39,  41,  43,  47,  48,  49,  50,  51,  60,  146, 161, 162, 163,
                                      164, 165, 166, 167, 204, 205, 206, 207, 208, 256, 282, 283, 284};
        for (std::size_t c = 0; c < 414; ++c) {
            record_.Set<std::uint8_t>(6300 + 108 * c + 3, static_cast<std::uint8_t>(logged.count(static_cast<int>(c))));
            record_.Set<std::uint16_t>(6300 + 108 * c + 6, ChannelCatalogue()[c].prec);
        }
    }

    std::vector<double> bytes_;
    RecordBytes record_;
};

TEST(InitialiseRecord, WritesEveryByteOfANewRecord) {
    std::vector<double> memory(RecordBytes::kSize / sizeof(double), 0.0);
    InitialiseRecord(*reinterpret_cast<CoreRecord*>(memory.data()));
    const RecordBytes actual(memory.data());
    ExpectedRecord expected;
    int differences = 0;
    for (std::size_t offset = 0; offset < RecordBytes::kSize && differences < 10; ++offset) {
        if (actual.U8(offset) == expected.Bytes().U8(offset)) continue;
        ++differences;
        ADD_FAILURE() << "byte " << offset << " is " << int{actual.U8(offset)} << " instead of "
                      << int{expected.Bytes().U8(offset)};
    }
}

TEST(BuildSuiteText, RotatesReversesAndSubtracts) {
    const struct {
        std::string input, output;
    } rows[] = {
        {"", ""},
        {"a", "a"},
        {"abcd", "dca`"},
        {"abcdefgh", "dca`fecb"},
        {"abcdefghijklmnopqrstuvwxyz01234", "0zxwutrqonlkihfecb`_]\\ZYWVT'%$\""},
    };
    std::vector<double> memory(RecordBytes::kSize / sizeof(double), 0.0);
    auto& record = *reinterpret_cast<CoreRecord*>(memory.data());
    for (const auto& row : rows) {
        std::memset(record.suiteText, 0, sizeof record.suiteText);
        std::memcpy(record.suiteText, row.input.data(), row.input.size());
        BuildSuiteText(record);
        EXPECT_EQ(row.output, record.suiteText) << row.input;
    }
}

}  // namespace
}  // namespace twr::testing
