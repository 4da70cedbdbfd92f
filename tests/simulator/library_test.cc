// The built library itself, in a folder of the test's own, through the four functions that a program gets to see.
#include "platform/library.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/system.h"
#include "simulator/displays.h"
#include "simulator/variables.h"
#include "support/temp_folder.h"

namespace twr {
namespace {

using ReadFunction = void(TWR_EXPORT_CALL*)(std::int32_t, float*);
using PositionFunction = void(TWR_EXPORT_CALL*)(float*, float*);
using TextFunction = void(TWR_EXPORT_CALL*)(std::uint32_t*, std::int32_t, const char*);

class LoadedStandIn : public ::testing::Test {
protected:
    void SetUp() override {
        const std::filesystem::path built(SIMULATOR_LIBRARY);
        std::filesystem::copy_file(built, folder_.Path() / built.filename());
        folder_.Write("recording.nmea", "$GPGLL,6005.071,N,02332.346,W,120000,A\n$IIVHW,,T,,M,6.5,N,,K\n");
        library_ = system_->GetLibraries().Load(folder_.File(built.filename().string()));
        ASSERT_TRUE(library_);
        read_ = reinterpret_cast<ReadFunction>(library_->Find("Usr_Read"));
        position_ = reinterpret_cast<PositionFunction>(library_->Find("Usr_GetPosition"));
        data_ = reinterpret_cast<TextFunction>(library_->Find("Usr_SetISData"));
        name_ = reinterpret_cast<TextFunction>(library_->Find("Usr_SetISName"));
        ASSERT_TRUE(read_ && position_ && data_ && name_);
    }

    testing::TempFolder folder_;
    std::unique_ptr<System> system_ = MakeSystem(UserRoots());
    std::unique_ptr<Library> library_;
    ReadFunction read_ = nullptr;
    PositionFunction position_ = nullptr;
    TextFunction data_ = nullptr;
    TextFunction name_ = nullptr;
};

TEST_F(LoadedStandIn, ReadsAndShows) {
    float value = 0.0F;
    read_(1, &value);
    EXPECT_EQ(6.5F, value);
    read_(-5, &value);
    EXPECT_EQ(32767.0F, value);
    float latitude = 0.0F;
    float longitude = 0.0F;
    position_(&latitude, &longitude);
    EXPECT_NEAR(60.08452, latitude, 1e-4);
    EXPECT_NEAR(-23.5391, longitude, 1e-4);

    std::uint32_t word = 0;
    data_(&word, 1, "7.25");
    name_(&word, 1, "BSP");
    const DisplayReader reader(system_->Core().memory, std::filesystem::canonical(folder_.Path()).u16string());
    EXPECT_EQ("7.25", reader.Value(1).text);
    EXPECT_EQ("BSP", reader.Name(1).text);
}

TEST_F(LoadedStandIn, TakesOddArguments) {
    read_(1, nullptr);
    position_(nullptr, nullptr);
    float latitude = 0.0F;
    position_(&latitude, nullptr);
    EXPECT_NEAR(60.08452, latitude, 1e-4);
    for (const std::int32_t remote : {0, -1, 33, INT32_MAX, INT32_MIN}) {
        data_(nullptr, remote, "7.25");
        name_(nullptr, remote, nullptr);
    }
    data_(nullptr, 1, nullptr);
}

TEST_F(LoadedStandIn, IsGoneWhenFreedAndComesBack) {
    data_(nullptr, 1, "7.25");
    const std::u16string folder = std::filesystem::canonical(folder_.Path()).u16string();
    EXPECT_TRUE(DisplayReader(system_->Core().memory, folder).Found());
    library_.reset();
    EXPECT_FALSE(DisplayReader(system_->Core().memory, folder).Found());
}

}  // namespace
}  // namespace twr
