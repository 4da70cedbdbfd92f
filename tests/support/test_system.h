// The real services of this system, under roots that no running suite and no other test uses.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "platform/system.h"
#include "support/temp_folder.h"

namespace twr::testing {

// Roots that follow from `name` and `folder` alone, so that a second process can make the same.
Roots TestRoots(const std::string& name, const std::u16string& folder);

struct TestSystem {
    TempFolder folder;
    std::string name = UniqueName();
    std::unique_ptr<System> system = MakeSystem(TestRoots(name, folder.Text()));

    // What a second process needs to make the same system.
    std::vector<std::string> Arguments() const;
};

std::unique_ptr<System> SystemOf(const std::vector<std::string>& arguments);

}  // namespace twr::testing
