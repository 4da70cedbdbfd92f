// SPDX-License-Identifier: MIT
// Where a stream goes: standard output, those who listen at a port, or a file.
#pragma once
#include <string_view>

namespace twr {

class Outlet {
public:
    virtual ~Outlet() = default;

    // Whether there is room for a look. While there is none no look is made, so that the next one tells all that has changed since.
    virtual bool HasRoom() { return true; }

    // Sends bytes to whoever listens; false once nobody ever will again. Called ten times a second at least, with nothing to send
    // if need be, so that an outlet can serve those who come and go.
    virtual bool Put(std::string_view bytes) = 0;
};

}  // namespace twr
