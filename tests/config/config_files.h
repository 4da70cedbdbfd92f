// A new record filled from configuration files that the test writes.
#pragma once
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <string_view>

#include "core/core.h"
#include "platform/wide_text.h"
#include "support/fakes.h"
#include "support/record_bytes.h"
#include "support/test_system.h"

namespace twr::testing {

// Files and XML are the system's own, all else is fake. What the files did to the record is told as a text, so that a test can
// compare all of it at once; the record is read by its offsets, as another program would.
class ConfigFilesTest : public ::testing::Test {
protected:
    ConfigFilesTest() { real_.folder.Write("ProgramData/keep", ""); }

    void Write(std::string_view name, std::string_view bytes) {
        real_.folder.Write("ProgramData/Tidewright/config/" + std::string(name), bytes);
    }

    // Attaches as the first program of the suite, which reads the files.
    void Attach() {
        core.reset();
        const CoreServices real = real_.system->Core();
        core = std::make_unique<CCore>(
            CoreServices{machine.clock, machine.zone, machine.memory, machine.registry, real.files, real.xml, machine.desktop});
        record = RecordBytes(core->View());
    }

    // A text field of the record as Latin-1, which ends within its units.
    std::string Text(std::size_t offset, std::size_t units) const {
        std::u16string text;
        for (char16_t c; text.size() < units && (c = record.Get<char16_t>(offset)) != 0; offset += 2) text += c;
        EXPECT_LT(text.size(), units) << "no room for the zero";
        return ToBytes(text);
    }

    // The record without the part from `begin` to `end`.
    std::string Without(std::size_t begin, std::size_t end) const {
        const char* bytes = reinterpret_cast<const char*>(core->View());
        return std::string(bytes, begin) + std::string(bytes + end, R::kSize - end);
    }

    void TearDown() override { EXPECT_TRUE(machine.desktop.boxes.empty()) << "configuration is read in silence"; }

    using R = RecordBytes;

    FakeMachine machine;
    std::unique_ptr<CCore> core;
    RecordBytes record{nullptr};

private:
    TestSystem real_;
};

// The text with a few bytes changed, left out or doubled.
inline std::string Damaged(std::string text, std::mt19937& random) {
    constexpr std::string_view kBytes = "<>/=\"'&;!,\t\r\n 0179-xX\x80\xFF";
    for (std::size_t count = 1 + random() % 4; count > 0 && !text.empty(); --count) {
        const std::size_t at = random() % text.size();
        switch (random() % 4) {
            case 0:
                text[at] = kBytes[random() % kBytes.size()];
                break;
            case 1:
                text[at] = static_cast<char>(random() % 256);
                break;
            case 2:
                text.erase(at, 1 + random() % 5);
                break;
            default:
                text.insert(at, text.substr(random() % text.size(), random() % 20));
                break;
        }
    }
    return text;
}

}  // namespace twr::testing
