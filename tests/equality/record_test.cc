// A record made from the same registry and files holds the same bytes in every build, but for its paths.
#include <gtest/gtest.h>

#include <vector>

#include "core/core.h"
#include "equality/checksum.h"
#include "platform/wide_text.h"
#include "support/fakes.h"
#include "support/record_bytes.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

constexpr std::u16string_view kKey = u"Software\\Tidewright\\core";

TEST(Record, IsTheSameInEveryBuild) {
    TestSystem test;
    const std::string config = "ProgramData/Tidewright/config/";
    test.folder.Write(config + "boats.xml",
                      "<boats><boat id='0' name='J\xC3\xA4ger' mmsi='211000001' r='255'/><boat id='99' b='7'/></boats>");
    test.folder.Write(
        config + "channels.xml",
        "<channels><channel id='1' damp='3' prec='1' log='false'/><channel id='172' type='12' user='Jib lead'/></channels>");
    test.folder.Write(config + "alternate.csv", "0,1,2,3,4,5,204,7,8,9\n9,0,0,117,413\n9,0,0,117,413,0,0,0,0\n");
    CoreServices services = test.system->Core();
    for (std::uint32_t i = 0; i < 16; ++i) {
        services.registry.Write(kKey, u"Sys_v" + FromBytes(std::to_string(i)), StringValue(FromBytes(std::to_string(i) + ".1e-1")));
        services.registry.Write(kKey, u"Sys_b" + FromBytes(std::to_string(i)), DwordValue(i % 3));
        services.registry.Write(kKey, u"Sys_i" + FromBytes(std::to_string(i)), DwordValue(i - 3));
    }
    services.registry.Write(kKey, u"LogBsp", StringValue(u"12345.678"));
    FakeClock clock;
    FakeMemory memory;
    FakeDesktop desktop;
    CCore core({clock, services.zone, memory, services.registry, services.files, services.xml, desktop});
    core.SetChannel(kTwd, 0, -10.0, 0.0);
    core.SetChannel(kBsp, 99, 7.1, 0.0);

    const RecordBytes record(core.View());
    Checksum sum;
    for (std::size_t offset = 0; offset < RecordBytes::kSize; ++offset) {
        if (offset < 28 || offset >= 1588) sum.Add(record.U8(offset));
    }
    EXPECT_EQ(3092269661925598711u, sum.Sum());
}

}  // namespace
}  // namespace twr::testing
