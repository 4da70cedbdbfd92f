// Where a stream goes: standard output, or those who listen at a port.
#pragma once
#include <string_view>

namespace twr {

class Outlet {
public:
    virtual ~Outlet() = default;

    // Sends bytes to whoever listens; false once nobody ever will again. Called ten times a second at least, with nothing to send
    // if need be, so that an outlet can serve those who come and go.
    virtual bool Put(std::string_view bytes) = 0;
};

}  // namespace twr
