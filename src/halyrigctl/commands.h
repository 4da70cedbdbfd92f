// SPDX-License-Identifier: MIT
// The commands of halyrigctl, one file each.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/channel_ids.h"
#include "halyrigctl/output/say.h"
#include "platform/system.h"

namespace twr {

class CCore;
class Circumstances;
struct CoreRecord;

// Runs the command that the arguments name.
Status RunCommandLine(System& system, std::vector<std::string> arguments);

enum class TableForm { kText, kTsv, kJson };

// Prints the channel catalogue.
Status ListChannels(Console& console, TableForm form);

// Prints what the record has in force for each channel.
Status ListLiveChannels(System& system, TableForm form);

struct GetOptions {
    std::vector<std::string> channels;  // as FindChannel takes them
    BoatSlot boat = 0;                  // below kBoatCount
    bool json = false;                  // the reason for a missing value then goes to standard output too
};

// Prints channels of one boat: each one's value and age, or why there is none. Fails if any has none.
Status GetChannelValues(System& system, const GetOptions& options);

struct ExplainOptions {
    std::vector<std::string> channels;  // as FindChannel takes them; none for all that the mapping names
    std::optional<BoatSlot> boat;       // below kBoatCount; nullopt for the own one, or for all if no channel is named
    bool links = false;                 // each link of all channels too, not only of those named
    bool json = false;
};

// Prints the way of each value from Deckman to its user, link by link, with the first broken link as the reason. Fails if one is
// broken.
Status Explain(System& system, const ExplainOptions& options);

// The same of one channel, as a line of JSON. The core must be attached.
std::string ExplainAsJson(CCore& core, ChannelId channel, BoatSlot boat, Circumstances& circumstances);

struct CheckOptions {
    std::optional<std::string> folder;  // the Dfw folder to look at, in place of the one in force or saved
    bool json = false;
    bool summary = false;  // a few lines for a journal
};

// Reads all files and settings that the bridge would read, and prints what comes of them. Writes nothing. Fails if something is
// passed over or missing.
Status Check(System& system, const CheckOptions& options);

struct BoatsOptions {
    bool all = false;  // those too of which the record has nothing to tell
    bool json = false;
};

// Prints the boats that are in use, named or known by an MMSI.
Status ListBoats(System& system, const BoatsOptions& options);

// The same as a table of JSON; `now` in days.
std::string BoatsAsJson(CoreRecord& record, double now);

enum class RowOrder { kId, kName, kAge };  // kAge: the oldest first

struct WatchOptions {
    std::vector<std::string> channels;  // as FindChannel takes them; all that are published if empty
    BoatSlot boat = 0;                  // below kBoatCount
    bool onlyMapped = false;            // those that the mapping feeds
    RowOrder order = RowOrder::kId;
    int intervalMs = 500;
    std::optional<int> snapshots;  // plain text, and end after so many
};

// Shows channels of a boat until the user or the suite asks to stop: a live table on a terminal, else one plain table after
// another.
Status Watch(System& system, const WatchOptions& options);

struct MapOptions {
    bool json = false;
    std::vector<std::string> pairs;  // to be added: Deckman's name or number of a variable, then a channel as FindChannel takes it
    std::string variable;            // Deckman's name or number; empty for any
    std::string channel;             // as FindChannel takes it
    BoatSlot boat = 0;               // below kBoatCount
    std::int32_t remote = 0;
    bool damped = false;
    bool apply = false;  // what is proposed
    bool yes = false;    // without a question
};

// Keeps Deckman's folder for the next start of the bridge, if its library can be used.
Status ChooseFolder(System& system, const std::string& folder);

// Prints the mapping with the values of now, then the lines of its file that are passed over.
Status ListMap(System& system, bool json);

// Prints commands that map what is not mapped yet, as far as the names leave no doubt, or adds it; and what is to be decided.
Status SuggestMap(System& system, const MapOptions& options);

// Change the mapping file, or say why not.
Status AddToMap(System& system, const MapOptions& options);
Status AddRemoteToMap(System& system, const MapOptions& options);
Status RemoveFromMap(System& system, const MapOptions& options);
Status RemoveRemoteFromMap(System& system, const MapOptions& options);

struct StreamOptions {
    std::string format = "json";        // the name of one of StreamFormats()
    std::vector<std::string> channels;  // as FindChannel takes them; none for all but Time and the alternating ones
    std::optional<BoatSlot> boat;       // below kBoatCount; nullopt for all in use, of sentences the own one
    std::optional<double> rate;         // looks a second, 10 at most; nullopt for the format's own
    bool all = false;                   // unchanged values once a second too
    std::vector<std::string> talkers;   // as TakeTalker takes them; of sentences
    std::optional<int> seconds;         // end after so many
    std::optional<std::string> listen;  // as ParseEndpoint takes it: serve clients there
    std::optional<std::string> udp;     // and send datagrams there
    bool allowRemote = false;           // beyond this machine
};

// Writes what is published to standard output, or else to the network, as it is published, until the user asks to stop.
Status Stream(System& system, const StreamOptions& options);

struct ServeOptions {
    std::string listen = "8377";  // as ParseEndpoint takes it
    bool allowRemote = false;     // beyond this machine
    std::string name;             // in place of the own boat's
    std::optional<std::string> allowOrigin;
};

// Serves the page of the instruments and Signal K to browsers and other programs, until the user asks to stop.
Status Serve(System& system, const ServeOptions& options);

struct RecordOptions {
    std::string file;  // with the fields of strftime for date and time of day; empty for one a day in the data folder
    std::vector<std::string> channels;  // as of StreamOptions
    std::optional<BoatSlot> boat;       // below kBoatCount; nullopt for all in use
    bool gzip = false;
    std::uint64_t maxSize = 0;  // bytes, after which a new file begins; 0 for no bound
    std::string keep;           // of those in the data folder, as ParseKeep takes it; empty for all
};

// Writes what is published to a file, until the user asks to stop or the file can't be written.
Status Record(System& system, const RecordOptions& options);

struct ReplayOptions {
    std::string file;                   // a recording, or an NMEA 0183 log
    double speed = 1.0;                 // times as fast as it was
    std::string from;                   // where to start, as ParseTypedTime takes it; empty for the beginning
    bool loop = false;                  // again and again
    std::vector<std::string> channels;  // as FindChannel takes them; none for all
    bool into = false;                  // even while the bridge runs
};

// Publishes a recording as a program of the suite, which makes the record if there is none, until its end, or until the user or the
// suite asks to stop.
Status ReplayRecording(System& system, const ReplayOptions& options);

struct InfoOptions {
    std::vector<std::string> files;  // recordings, or NMEA 0183 logs
    bool json = false;
};

// Prints what is in recordings: when, which gaps, and the values of each channel. Fails if one can't be read to its end, or nothing
// is in them.
Status ShowRecording(System& system, const InfoOptions& options);

struct ExportOptions {
    std::vector<std::string> files;                           // as of InfoOptions
    std::string format = "csv";                               // or "gpx" or "jsonl"
    std::string every = "1s";                                 // the step, as ParseDuration takes it
    std::vector<std::string> channels;                        // as FindChannel takes them; none for all that have a value
    std::optional<BoatSlot> boat;                             // below kBoatCount; nullopt for all
    std::string from, to;                                     // as ParseTypedTime takes them; empty for the whole
    std::optional<std::string> units, header, zone, decimal;  // "user", "internal" or "si"; "units"; "board" or "utc"; "comma"
    std::string output;                                       // a file that is not there yet; empty for standard output
};

// Writes recordings as a table over time or as a track.
Status ExportRecording(System& system, const ExportOptions& options);

struct ReportOptions {
    std::vector<std::string> files;  // as of InfoOptions
    BoatSlot boat = 0;               // below kBoatCount
    std::string from, to;            // as of ExportOptions
    std::string output;              // a file that is not there yet
};

// Writes what was sailed as a page in one file, for any browser.
Status ReportRace(System& system, const ReportOptions& options);

struct QuitOptions {
    bool wait = true;  // until all have closed, 10 s at most
};

// Asks every program of the suite to close.
Status Quit(System& system, const QuitOptions& options);

}  // namespace twr
