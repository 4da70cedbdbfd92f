// SPDX-License-Identifier: MIT
// Sends a stream as UDP datagrams.
#pragma once
#include <memory>
#include <string>
#include <string_view>

#include "streams/endpoint.h"
#include "streams/outlet.h"

namespace twr {

class UdpSender final : public Outlet {
public:
    // Fits the packets of every usual network; only a longer line makes a longer datagram.
    static constexpr std::size_t kUsualDatagram = 1400;

    UdpSender();
    ~UdpSender() override;

    // Empty, or why nothing can be sent and what to do. Lines go together as far as they fit so many bytes; 0 for each by itself.
    std::string Open(const Endpoint& to, std::size_t fits = kUsualDatagram);

    // Sends whole lines. Always true: what the network doesn't take now is lost, as with UDP
    // it may be anywhere.
    bool Put(std::string_view lines) override;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace twr
