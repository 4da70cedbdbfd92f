// The links between Deckman and the record.
#pragma once
#include <optional>
#include <string>

#include "core/core.h"
#include "core/record_access.h"
#include "halyrigctl/setup/circumstances.h"
#include "halyrigctl/setup/links.h"

namespace twr {

// One channel of one boat, as it stands in the record.
struct Subject {
    Subject(CCore& ofRecord, ChannelId itsChannel, BoatSlot itsBoat, double now);

    CCore& core;
    CoreRecord& record;
    ChannelId channel;  // not an alternating one
    BoatSlot boat;
    Entry entry;
    double stored = kNoValue;   // fresh or not
    std::optional<double> age;  // seconds since the last publication; nullopt if it was never published
    std::int16_t limit;         // seconds after which a value is stale; 0 or less for never
    bool stale = false;         // published, but too long ago
};

void AddSourceLinks(Links& links, const Subject& subject, Circumstances& circumstances);

// A fault: `giver`, such as "Deckman gives ", gives NaN or an infinity `forWhat`. The suite refuses an infinity if the channel has
// a range, but never NaN.
Advice Unusable(const std::string& giver, double value, const std::string& forWhat, bool ranged, const char* todo);

// "file:line: "
std::string PlaceInWords(std::u16string_view path, std::size_t line);

// "HDG (13)"
std::string ChannelInWords(CCore& core, ChannelId channel);

}  // namespace twr
