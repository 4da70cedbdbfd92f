// SPDX-License-Identifier: MIT
// What a request asks for: its path and the parameters behind it, decoded.
#pragma once
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace twr {

struct Target {
    std::string path;
    std::map<std::string, std::string> parameters;  // of one that is given twice, the last

    // The whole number from 0 that a parameter holds, if it is below the bound; `otherwise` if there is no such parameter.
    std::optional<unsigned> Number(const std::string& name, unsigned bound, std::optional<unsigned> otherwise = {}) const;
    std::string Text(const std::string& name, std::string otherwise = {}) const;
};

// nullopt if it isn't a path of this server, or wrongly coded.
std::optional<Target> ParseTarget(std::string_view target);

}  // namespace twr
