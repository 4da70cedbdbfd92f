// A record filled from configuration files that the test writes, and what they did to it, told as a text, so that a test can
// compare all of it at once.
#pragma once
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "base/wide_text.h"
#include "core/core.h"
#include "support/fakes.h"
#include "support/record_bytes.h"
#include "support/test_system.h"

namespace twr::testing {

// Files and XML are the system's own, all else is fake. The record is read by its offsets, as another program would.
class ConfigFilesTest : public ::testing::Test {
protected:
    ConfigFilesTest() { real_.folder.Write("ProgramData/keep", ""); }
    void TearDown() override { EXPECT_TRUE(machine.desktop.boxes.empty()) << "configuration is read in silence"; }

    void Write(const std::string& name, std::string_view bytes) {
        real_.folder.Write("ProgramData/Tidewright/config/" + name, bytes);
    }

    // Attaches as the first program of the suite, which reads the files.
    void Attach() {
        core.reset();
        const CoreServices real = real_.system->Core();
        core = std::make_unique<CCore>(
            CoreServices{machine.clock, machine.zone, machine.memory, machine.registry, real.files, real.xml, machine.desktop});
        record = RecordBytes(core->View());
    }

    struct Row {
        const char* what;
        std::string content;
        const char* told;
    };

    // Attaches anew with each content of a file, for XML within its root.
    void Check(const std::string& file, const std::string& root, const std::vector<Row>& rows) {
        for (const Row& row : rows) {
            Write(file, root.empty() ? row.content : "<" + root + ">" + row.content + "</" + root + ">");
            Attach();
            EXPECT_EQ(row.told, Told()) << row.what;
        }
    }

    std::string Told() const { return Alternates() + Boats() + Channels(); }

    // "slot:name,mmsi,colour" of each boat that isn't as without a file; the colour is hexadecimal.
    std::string Boats() const {
        std::ostringstream changes;
        for (std::size_t slot = 0; slot < 100; ++slot) {
            const std::size_t at = RecordBytes::Boat(slot);
            const std::string name = Text(at + 6, 32), usual = slot == 0 ? "" : "Boat " + std::to_string(slot);
            const auto mmsi = record.Get<std::uint32_t>(at + 72), colour = record.Get<std::uint32_t>(at + 76);
            if (name == usual && mmsi == 0 && colour == 0x90EE90) continue;
            changes << std::dec << slot << ":" << name << "," << mmsi << "," << std::hex << colour << " ";
        }
        return changes.str();
    }

    // "channel:field=value,..." of each channel that isn't as without a file.
    std::string Channels() const {
        std::string changes;
        for (std::size_t channel = 0; channel < kChannelCount; ++channel) {
            const ChannelInfo& info = ChannelCatalogue()[channel];
            const std::size_t at = RecordBytes::Channel(channel);
            std::ostringstream row;
            const auto field = [&](const char* name, const auto& usual, const auto& value) {
                if (value != usual) row << name << "=" << value << ",";
            };
            for (const std::size_t flag : {0, 1, 2, 4}) field("flag", 0, int{record.U8(at + flag)});
            field("log", info.logDefault, int{record.U8(at + 3)});
            field("prec", info.prec, record.Get<std::uint16_t>(at + 6));
            field("damp", 0, record.Get<std::uint16_t>(at + 8));
            field("type", 0, record.Get<std::int16_t>(at + 10));
            field("user", "", Text(at + 12, 32));
            field("short", "", Text(at + 76, 16));
            if (row.tellp() > 0) changes += std::to_string(channel) + ":" + row.str() + " ";
        }
        return changes;
    }

    // "row:slot,slot,..." of each alternating channel with channels to stand for; an empty slot is a dash.
    std::string Alternates() const {
        std::string table;
        for (std::size_t row = 0; row < 10; ++row) {
            std::string slots;
            for (std::size_t slot = 0; slot < 9; ++slot) {
                const std::int32_t channel = record.I32(kAlternates + 36 * row + 4 * slot);
                EXPECT_TRUE(channel == 32767 || (channel > 0 && channel < 414)) << channel;
                slots += channel == 32767 ? "-" : std::to_string(channel);
            }
            if (slots != "---------") table += std::to_string(row) + ":" + slots + " ";
        }
        return table;
    }

    static constexpr std::size_t kAlternates = 5080;

    FakeMachine machine;
    std::unique_ptr<CCore> core;
    RecordBytes record{nullptr};

private:
    // A text field as Latin-1, which ends within its units.
    std::string Text(std::size_t offset, std::size_t units) const {
        const std::u16string text = record.Text(offset);
        EXPECT_LT(text.size(), units) << "no room for the zero";
        return ToBytes(text);
    }

    TestSystem real_;
};

}  // namespace twr::testing
