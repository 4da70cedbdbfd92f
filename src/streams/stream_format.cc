// SPDX-License-Identifier: MIT
#include "streams/stream_format.h"

#include <algorithm>

#include "streams/udp_sender.h"

namespace twr {

// Each is defined in the format's own file.
std::unique_ptr<StreamFormat> MakeJsonLines(), MakeSignalKDeltas(), MakeSentences();

namespace {

// The bridge publishes ten times a second. With two looks in that time a late one still finds each of its publications.
constexpr double kEachPublication = 20.0;

constexpr StreamFormatRow kFormats[] = {
    {"json", "lines of JSON", kEachPublication, UdpSender::kUsualDatagram, MakeJsonLines},
    {"signalk", "deltas", kEachPublication, 0, MakeSignalKDeltas},  // its readers take a datagram for one message
    {"nmea", "sentences", 1.0, UdpSender::kUsualDatagram, MakeSentences},
};

}  // namespace

std::span<const StreamFormatRow> StreamFormats() { return kFormats; }

const StreamFormatRow& StreamFormatOf(std::string_view name) { return *std::ranges::find(kFormats, name, &StreamFormatRow::name); }

}  // namespace twr
