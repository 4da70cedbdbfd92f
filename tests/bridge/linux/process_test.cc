// The whole program in processes of its own, without a terminal, under names of the test's own.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include "bridge/application.h"
#include "config/bridge_settings.h"
#include "core/core.h"
#include "support/child_process.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

// Runs the program. The line that it prints first says that it holds the record; what goes to standard error follows.
const Role bridge("bridge", [](const std::vector<std::string>& arguments) {
    dup2(STDOUT_FILENO, STDERR_FILENO);
    const auto system = SystemOf(arguments);
    const CCore core(system->Core());
    std::puts("attached");
    std::fflush(stdout);
    CHalyrig32App(*system).InitInstance();
    return 0;
});

// A system on which the program is asked to end while its dialog is being made.
class ImpatientSystem : public System {
public:
    explicit ImpatientSystem(System& system) : system_(system) {}
    CoreServices Core() override { return system_.Core(); }
    Libraries& GetLibraries() override {
        raise(SIGTERM);
        return system_.GetLibraries();
    }
    Instance& GetInstance() override { return system_.GetInstance(); }
    Executable& GetExecutable() override { return system_.GetExecutable(); }
    Console& GetConsole() override { return system_.GetConsole(); }

private:
    System& system_;
};

const Role stopped("bridge stopped at its start", [](const std::vector<std::string>& arguments) {
    const auto system = SystemOf(arguments);
    ImpatientSystem impatient(*system);
    CHalyrig32App(impatient).InitInstance();
    return 0;
});

TEST(Process, EndsAsByItsWindowWhenItIsToldToWhileItStarts) {
    const TestSystem test;
    EXPECT_EQ(0, StartRole("bridge stopped at its start", test.Arguments())->Wait());
}

TEST(Process, LeavesItsRecordToOthersWhenItIsAskedToQuit) {
    const TestSystem test;
    const auto start = [&] {
        auto program = StartRole("bridge", test.Arguments());
        EXPECT_EQ("attached", program->ReadLine());
        return program;
    };
    const auto join = [&] { return std::make_unique<CCore>(test.system->Core(), Attachment::kOpenOnly); };
    const auto asked = start();
    auto guest = join();
    guest->View()->sysFlag[kFlagQuitRequest] = 1;
    EXPECT_EQ(0, asked->Wait());
    EXPECT_TRUE(ReadSettings(test.system->Core().registry).depthInFeet);
    EXPECT_NE(nullptr, join()->View()) << "the guest has kept it";
    const auto late = start();
    EXPECT_TRUE(late->ReadLine().starts_with("Halyrig32: The suite has been asked to close"));
    EXPECT_EQ(0, late->Wait());
    guest.reset();
    EXPECT_EQ(nullptr, join()->View()) << "gone with its last holder";
}

}  // namespace
}  // namespace twr::testing
