// SPDX-License-Identifier: MIT
#include "base/wide_text.h"
#include "halyrigctl/stream/streamer.h"
#include "streams/network.h"

namespace twr {
namespace {

class StandardOutput : public Outlet {
public:
    StandardOutput(Console& console, Streamer& streamer) : console_(console), streamer_(streamer) {}

    bool Put(std::string_view bytes) override {
        if (!bytes.empty()) last_ = console_.Write(bytes, [&] { return streamer_.GoOn(); });
        return last_ == Output::kWritten;
    }
    Output Last() const { return last_; }

private:
    Console& console_;
    Streamer& streamer_;
    Output last_ = Output::kWritten;
};

// Those who connect, those to whom it is sent, or both.
class Network : public Outlet {
public:
    // kDone, or else the reason is said.
    Status Open(Console& console, const StreamOptions& options, Streamer& streamer) {
        if (options.listen) {
            const EndpointReading at = ParseEndpoint(*options.listen, EndpointUse::kListen, options.allowRemote);
            if (!at.endpoint) return Fail(console, at.fault, kMisunderstood);
            if (const std::string fault = server_.emplace().Listen(*at.endpoint); !fault.empty()) return Fail(console, fault);
            server_->SetGreeting([&streamer] { return streamer.Greeting(); });
            Complain(console, "serves clients at " + server_->At().Text() + " until Ctrl-C");
        }
        if (options.udp) {
            const EndpointReading to = ParseEndpoint(*options.udp, EndpointUse::kSend, options.allowRemote);
            if (!to.endpoint) return Fail(console, to.fault, kMisunderstood);
            const std::size_t fits = StreamFormatOf(options.format).datagram;
            if (const std::string fault = sender_.emplace().Open(*to.endpoint, fits); !fault.empty()) return Fail(console, fault);
        }
        return kDone;
    }

    bool Put(std::string_view bytes) override { return (!server_ || server_->Put(bytes)) && (!sender_ || sender_->Put(bytes)); }

private:
    static Status Fail(Console& console, const std::string& fault, Status status = kFailed) {
        Complain(console, Harmless(FromUtf8(fault)));
        return status;
    }

    std::optional<StreamServer> server_;
    std::optional<UdpSender> sender_;
};

}  // namespace

Status Stream(System& system, const StreamOptions& options) {
    Streamer streamer(system, options);
    if (options.listen || options.udp) {
        Network network;
        const Status status = network.Open(system.GetConsole(), options, streamer);
        return status == kDone ? streamer.Run(network) : status;
    }
    StandardOutput output(system.GetConsole(), streamer);
    const Status status = streamer.Run(output);
    return status == kDone ? StatusOf(system.GetConsole(), output.Last()) : status;
}

}  // namespace twr
