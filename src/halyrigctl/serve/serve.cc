// SPDX-License-Identifier: MIT
#include <chrono>

#include "base/wide_text.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/serve/site.h"
#include "platform/network.h"

namespace twr {
namespace {

constexpr int kBeatMs = 50;  // twice as often as the bridge publishes, so that none of that is missed, nor late
constexpr const char* kSignalKText = "roles=main";

Status Fail(Console& console, const std::string& fault, Status status = kFailed) {
    Complain(console, Harmless(FromUtf8(fault)));
    return status;
}

// Two rows of a code in a line of half blocks, dark on light: cameras want it that way round on a dark terminal too.
std::string AsText(const QrCode& code) {
    constexpr const char* kBlocks[] = {"\u2588", "\u2580", "\u2584", " "};  // light, the upper half light, the lower half, dark
    constexpr std::size_t kMargin = 2;
    const std::size_t width = code.width + 2 * kMargin;
    const auto dark = [&](std::size_t row, std::size_t column) {
        const std::size_t y = row - kMargin, x = column - kMargin;
        return y < code.width && x < code.width && code.dark[y * code.width + x];
    };
    std::string text;
    for (std::size_t row = 0; row < width; row += 2) {
        for (std::size_t column = 0; column < width; ++column) {
            const bool upper = dark(row, column), lower = dark(row + 1, column);
            text += kBlocks[upper && lower ? 3 : lower ? 1 : upper ? 2 : 0];
        }
        text += '\n';
    }
    return text;
}

std::string Url(const std::string& host, std::uint16_t port) { return "http://" + Endpoint{host, port}.Text() + "/"; }

bool IsEachAddress(const Endpoint& at) { return at.address == "0.0.0.0" || at.address == "::"; }

// What is to be typed on a tablet; the first is the surest.
std::vector<std::string> Addresses(const Endpoint& at) {
    if (!IsEachAddress(at)) return {Url(at.address, at.port)};
    std::vector<std::string> addresses;
    for (const std::string& address : OwnAddresses()) {
        if (at.address == "::" || address.find(':') == address.npos) addresses.push_back(Url(address, at.port));
    }
    if (addresses.empty()) addresses.push_back(Url("127.0.0.1", at.port));
    return addresses;
}

// Others look for a web page, and for Signal K.
std::unique_ptr<Announcement> AnnounceAll(const std::string& name, const Endpoint& at) {
    return Announce(name, at.port,
                    {{"_http._tcp", "path=/"}, {"_signalk-http._tcp", kSignalKText}, {"_signalk-ws._tcp", kSignalKText}});
}

void TellWhere(Console& console, const Endpoint& at, bool remote) {
    const auto addresses = Addresses(at);
    std::string told = "serves the page until Ctrl-C, at";
    for (const std::string& address : addresses) told += (addresses.size() > 1 ? "\n  " : " ") + address;
    Complain(console, told);
    const auto code = remote ? DrawQrCode(addresses.front()) : std::nullopt;
    if (code) Print(console, AsText(*code));
}

// The announcement, which may come about late, or never.
class Announcer {
public:
    Announcer(Console& console, const std::string& name, const Endpoint& at)
        : console_(console), at_(at), announcement_(AnnounceAll(name.empty() ? "Halyrig" : name, at)) {}

    void Go() {
        if (!announcement_) return;
        announcement_->Go();
        if (told_ || !announcement_->IsHeard()) return;
        told_ = true;
        const std::string machine = MachineName();
        if (!IsEachAddress(at_) || machine.empty()) return;
        Complain(console_, "has a name in this network too: " + Url(machine.substr(0, machine.find('.')) + ".local", at_.port));
    }

private:
    Console& console_;
    const Endpoint at_;
    const std::unique_ptr<Announcement> announcement_;
    bool told_ = false;
};

}  // namespace

Status Serve(System& system, const ServeOptions& options) {
    Console& console = system.GetConsole();
    const EndpointReading at = ParseEndpoint(options.listen, EndpointUse::kListen, options.allowRemote);
    if (!at.endpoint) return Fail(console, at.fault, kMisunderstood);
    Lookout lookout(system);
    Site site(system, lookout, options.name);
    WebServer server(site);
    if (const std::string fault = server.Listen(*at.endpoint, options.allowOrigin); !fault.empty()) return Fail(console, fault);
    const Endpoint served = server.At();
    TellWhere(console, served, options.allowRemote);
    std::optional<Announcer> announcer;
    if (options.allowRemote) announcer.emplace(console, options.name, served);
    Beat beat(system.Core().clock);
    do {
        lookout.Look();
        site.Take();
        server.SayAll();
        if (announcer) announcer->Go();
        server.Serve(std::chrono::milliseconds(beat.UntilNext(kBeatMs).left));
    } while (console.Wait(0));
    return kDone;
}

}  // namespace twr
