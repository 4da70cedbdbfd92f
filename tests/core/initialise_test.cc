// The new record, byte for byte, as a reader sees it that knows nothing but offsets.
#include "core/initialise.h"

#include <vector>

#include "support/core_fixture.h"

namespace twr::testing {
namespace {

// A block of memory of the record's size, zeroed.
struct Block {
    std::vector<double> memory = std::vector<double>(RecordBytes::kSize / sizeof(double));
    RecordBytes bytes{memory.data()};
    CoreRecord& record = *reinterpret_cast<CoreRecord*>(memory.data());

    template <class T>
    void Repeat(std::size_t offset, std::size_t count, std::size_t step, T value) {
        for (; count > 0; --count, offset += step) bytes.Set(offset, value);
    }
};

TEST(InitialiseRecord, WritesEveryByteOfANewRecord) {
    Block actual, expected;
    InitialiseRecord(actual.record);

    RecordBytes& bytes = expected.bytes;
    for (std::size_t gps = 0; gps < 64; ++gps) expected.Repeat(1976 + 48 * gps + 24, 3, 8, 32767.0);
    std::size_t at = 5048;
    for (const char c : std::string("Tidewright suite.")) bytes.Set(at++, c);
    expected.Repeat<std::int32_t>(5080, 90, 4, 32767);
    at = 5440;
    for (const double value : {15.85, 15.8, 4.4, 0.0, 3.0, 1.0, 1.0, 10.0, 5.0, 5.0, 5.0, 3.0}) bytes.Set(at, value), at += 8;
    expected.Repeat(5440 + 8 * 16, 93 - 16, 8, 32767.0);
    bytes.Set<std::int32_t>(6208, 7);
    bytes.Set<std::int32_t>(6224, 60);
    for (const std::size_t flag : {1, 3, 7, 21, 40, 41, 42}) bytes.SetFlag(flag, true);
    for (const std::size_t logged :
         {0,  1,  2,  3,  4,   5,   6,   10,  11,  12,  13,  16,  17,  18,  19,  20,  22,  39,  41,  43,  47, 48,
          49, 50, 51, 60, 146, 161, 162, 163, 164, 165, 166, 167, 204, 205, 206, 207, 208, 256, 282, 283, 284}) {
        bytes.Set<std::uint8_t>(6300 + 108 * logged + 3, 1);
    }
    for (const ChannelInfo& info : ChannelCatalogue()) bytes.Set<std::uint16_t>(6300 + 108 * info.id + 6, info.prec);
    expected.Repeat<std::int32_t>(51012, 100, 80, 32767);
    expected.Repeat<std::uint32_t>(51012 + 76, 100, 80, 0x90EE90);
    for (const std::size_t boat : {0, 1}) expected.Repeat(59016 + 13664 * boat + 3312, 3 * 414, 8, 32767.0);
    for (std::size_t boat = 0; boat < 98; ++boat) expected.Repeat(86344 + 816 * boat + 272, 2 * 34, 8, 32767.0);
    bytes.Set<std::uint8_t>(166624, 8);
    bytes.Set<std::int32_t>(166626, 32767);
    expected.Repeat(166760, 2, 8, 32767.0);

    for (std::size_t offset = 0; offset < RecordBytes::kSize && !HasFailure(); ++offset) {
        EXPECT_EQ(bytes.U8(offset), actual.bytes.U8(offset)) << "byte " << offset;
    }
}

TEST(BuildSuiteText, RotatesReversesAndSubtracts) {
    const std::string_view rows[][2] = {
        {"", ""},
        {"a", "a"},
        {"abcd", "dca`"},
        {"abcdefgh", "dca`fecb"},
        {"abcdefghijklmnopqrstuvwxyz01234", "0zxwutrqonlkihfecb`_]\\ZYWVT'%$\""},
    };
    for (const auto& [input, output] : rows) {
        Block block;
        input.copy(block.record.suiteText, input.size());
        BuildSuiteText(block.record);
        EXPECT_EQ(output, block.record.suiteText);
    }
}

}  // namespace
}  // namespace twr::testing
