// SPDX-License-Identifier: MIT
#include "streams/stream_format.h"

#include <algorithm>

#include "streams/network.h"

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

bool TakeTalker(Talkers& talkers, std::string_view typed) {
    constexpr std::string_view kGps = "gps=";
    const bool ofGps = typed.starts_with(kGps);
    if (ofGps) typed.remove_prefix(kGps.size());
    const auto isFit = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); };
    if (typed.size() != 2 || typed[0] == 'P' || !std::ranges::all_of(typed, isFit)) return false;  // P is a maker's own
    (ofGps ? talkers.gps : talkers.all) = typed;
    return true;
}

std::span<const StreamFormatRow> StreamFormats() { return kFormats; }

const StreamFormatRow& StreamFormatOf(std::string_view name) { return *std::ranges::find(kFormats, name, &StreamFormatRow::name); }

}  // namespace twr
