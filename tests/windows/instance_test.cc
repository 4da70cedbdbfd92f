// The window of a first instance, and a second one that brings it forward.
#include <gtest/gtest.h>

#include <iostream>

#include "platform/windows/desktop.h"
#include "support/child_process.h"
#include "support/scripted_dialog.h"
#include "support/test_system.h"
#include "support/windows/window_probe.h"

namespace twr {
namespace {

constexpr DialogTemplate kMain{102, u"Halyrig32", 281, 195, {}};

const testing::Role firstInstance("first-instance", [](const std::vector<std::string>&) {
    testing::ScriptedDialog dialog;
    dialog.onInit = [&] { dialog.window->StartTimer(1, 10); };
    bool minimised = false;
    dialog.onTimer = [&] {
        const HWND window = testing::WindowProbe::Find(u"Halyrig32", GetCurrentProcessId())->Handle();
        if (!minimised) {
            ShowWindow(window, SW_MINIMIZE);
            minimised = true;
            std::cout << "minimised" << std::endl;
        } else if (!IsIconic(window)) {
            std::cout << "restored" << std::endl;
            dialog.window->End(DialogResult::kOk);
        }
    };
    WindowsDesktop().RunDialog(kMain, dialog);
    return 0;
});

TEST(InstanceWindow, IsRestoredByASecondInstance) {
    const testing::TestSystem test;
    const auto first = testing::StartRole("first-instance", {});
    ASSERT_EQ("minimised", first->ReadLine());
    test.system->GetInstance().RaiseOther(u"No such window");
    test.system->GetInstance().RaiseOther(u"Halyrig32");
    EXPECT_EQ("restored", first->ReadLine());
    EXPECT_EQ(0, first->Wait());
}

}  // namespace
}  // namespace twr
