// The built library itself, in a folder of the test's own, through the four functions that a program gets to see.
#include "platform/library.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/system.h"
#include "simulator/displays.h"
#include "support/temp_folder.h"

namespace twr {
namespace {

TEST(BuiltLibrary, ReadsAndShowsUntilItIsFreed) {
    const testing::TempFolder folder;
    const std::filesystem::path built(SIMULATOR_LIBRARY);
    std::filesystem::copy_file(built, folder.Path() / built.filename());
    folder.Write("recording.nmea", "$GPGLL,6005.071,N,02332.346,W,120000,A\n$IIVHW,,T,,M,6.5,N,,K\n");
    const auto system = MakeSystem(UserRoots());
    auto library = system->GetLibraries().Load(folder.File(built.filename().string()));
    ASSERT_TRUE(library);
    using TextFunction = void(TWR_EXPORT_CALL*)(std::uint32_t*, std::int32_t, const char*);
    const auto read = reinterpret_cast<void(TWR_EXPORT_CALL*)(std::int32_t, float*)>(library->Find("Usr_Read"));
    const auto position = reinterpret_cast<void(TWR_EXPORT_CALL*)(float*, float*)>(library->Find("Usr_GetPosition"));
    const auto showData = reinterpret_cast<TextFunction>(library->Find("Usr_SetISData"));
    const auto showName = reinterpret_cast<TextFunction>(library->Find("Usr_SetISName"));
    ASSERT_TRUE(read && position && showData && showName);

    float value = 0.0F, latitude = 0.0F, longitude = 0.0F;
    read(1, &value);
    EXPECT_EQ(6.5F, value);
    read(-5, &value);
    EXPECT_EQ(32767.0F, value);
    position(&latitude, &longitude);
    EXPECT_NEAR(60.08452, latitude, 1e-4);
    EXPECT_NEAR(-23.5391, longitude, 1e-4);
    std::uint32_t word = 0;
    showData(&word, 1, "7.25");
    showName(&word, 1, "BSP");

    // Odd arguments do no harm.
    read(1, nullptr);
    position(nullptr, nullptr);
    position(&value, nullptr);
    EXPECT_EQ(latitude, value);
    for (const std::int32_t remote : {0, 1, -1, 33, INT32_MAX, INT32_MIN}) {
        showData(nullptr, remote, nullptr);
        showName(nullptr, remote, nullptr);
        if (remote != 1) showData(nullptr, remote, "9");
    }

    const auto displays = [&] {
        return DisplayReader(system->Core().memory, std::filesystem::canonical(folder.Path()).u16string());
    };
    EXPECT_EQ("7.25", displays().Value(1).text);
    EXPECT_EQ("BSP", displays().Name(1).text);
    library.reset();
    EXPECT_FALSE(displays().Found());
}

}  // namespace
}  // namespace twr
