// SPDX-License-Identifier: MIT
// The machine in its networks: its addresses, and how others find what it serves. What a machine lacks for it is not needed: the
// libraries are looked for while the program runs.
#pragma once
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace twr {

// In digits, those of IPv4 first; without those that only this machine or a single cable knows.
std::vector<std::string> OwnAddresses();

// A square of dark and light, row by row, that a camera reads as a text.
struct QrCode {
    std::size_t width = 0;
    std::vector<bool> dark = {};
};

// nullopt if the machine can't draw one.
std::optional<QrCode> DrawQrCode(const std::string& text);

// A web server as others find it without an address, by mDNS, for as long as the object lives.
class Announcement {
public:
    virtual ~Announcement() = default;

    // To be called now and then, so that it can answer.
    virtual void Go() {}

    // Whether the network knows of it by now.
    virtual bool IsHeard() const = 0;
};

struct AnnouncedService {
    const char* type;  // such as "_http._tcp"
    const char* text;  // "key=value"
};

// nullptr if the machine has nobody that does it. `name` in UTF-8.
std::unique_ptr<Announcement> Announce(const std::string& name, std::uint16_t port, const std::vector<AnnouncedService>& services);

}  // namespace twr
