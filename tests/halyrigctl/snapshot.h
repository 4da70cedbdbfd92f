// SPDX-License-Identifier: MIT
// All that a test's system keeps in files and registry.
#pragma once
#include <filesystem>
#include <map>
#include <string>

#include "base/wide_text.h"
#include "support/test_system.h"

namespace twr::testing {

// Paths with their bytes, folders with none, and the registry's values, where it is no file.
inline std::map<std::string, std::string> Snapshot(const TestSystem& test) {
    std::map<std::string, std::string> all;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(test.folder.Path())) {
        const std::string name = entry.path().lexically_relative(test.folder.Path()).generic_string();
        all[name] = entry.is_regular_file() ? test.folder.Read(name) : "";
    }
    const Registry& registry = test.system->Core().registry;
    for (const auto& key : {u"Software\\Tidewright\\core", u"Software\\Tidewright\\Halyrig32\\settings"}) {
        for (const std::u16string& name : registry.Names(key)) {
            const auto data = registry.Read(key, name).value_or(RegistryValue{}).data;
            all[ToUtf8(key) + ToUtf8(name)].assign(data.begin(), data.end());
        }
    }
    return all;
}

}  // namespace twr::testing
