// The displays on the mast as a part of the screen.
#pragma once
#include <cstddef>
#include <string>
#include <vector>

namespace twr {

struct RemoteLine {
    int number;
    std::string value, name;
};

inline constexpr std::size_t kSmallDisplayWidth = 20;

// Lines of at most `width` characters, at most `height` of them, which is at least 1: framed displays if all fit, else small ones
// of one line under a heading, with the number of those that are left out.
std::vector<std::string> DrawDisplays(const std::vector<RemoteLine>& remotes, std::size_t width, std::size_t height);

}  // namespace twr
