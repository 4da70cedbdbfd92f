// SPDX-License-Identifier: MIT
// In the place of libFuzzer: gives a fuzz target each file of a folder, so that any compiler tries what was once kept.
//   fuzz_NAME FOLDER
#include <cstddef>
#include <cstdio>
#include <filesystem>

#include "support/test_system.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

int main(int argc, char** argv) {
    int inputs = 0;
    for (const auto& input : std::filesystem::directory_iterator(argc == 2 ? argv[1] : "")) {
        const std::string bytes = twr::testing::BytesOf(input.path());
        std::printf("%s\n", input.path().filename().c_str());
        std::fflush(stdout);
        LLVMFuzzerTestOneInput(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
        ++inputs;
    }
    std::printf("%d inputs, no fault\n", inputs);
    return inputs == 0;
}
