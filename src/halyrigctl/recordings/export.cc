// SPDX-License-Identifier: MIT
#include <algorithm>
#include <set>

#include "base/wide_text.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/recordings/exporting.h"
#include "halyrigctl/recordings/marks.h"
#include "halyrigctl/recordings/survey.h"
#include "halyrigctl/recordings/table_formats.h"
#include "halyrigctl/setup/dry_run.h"
#include "halyrigctl/setup/names.h"

namespace twr {
namespace {

constexpr double kLeastStep = 0.01, kMostStep = 86400.0;  // seconds

class Export {
public:
    Export(System& system, const ExportOptions& options)
        : system_(system),
          options_(options),
          board_(dryRun_.Core(), system.Core().zone),
          files_(system.Core().files, options.files, [this] { return GoesOn(); }),
          survey_(dryRun_.Core()),
          sink_(system, options.output) {}

    Status Run();

private:
    CCore& Core() { return dryRun_.Core(); }
    bool GoesOn() { return system_.GetConsole().Wait(0); }
    bool Understands();
    bool TakesBounds();
    bool TakesChannels();
    bool LooksThrough();
    void ReadRows(const TableWish& wish, const std::function<void(const TableRow&)>& tell);
    void WriteTable();
    void WriteGpx();
    std::vector<TableColumn> Columns();
    bool Complains(Status status, const std::string& what);

    System& system_;
    const ExportOptions options_;
    DryRun dryRun_{system_.Core()};  // the names, the units and the zone that a start of the suite would take from its files
    BoardZone board_;
    RecordedFiles files_;
    Survey survey_;
    MarksSeen marks_;
    TableWish wish_{};
    Sink sink_;
    Status status_ = kDone;
};

Status Export::Run() {
    if (!Understands() || !TakesChannels() || !TakesBounds() || !LooksThrough() || !sink_.Open())
        return status_ == kDone ? kFailed : status_;
    options_.format == "gpx" ? WriteGpx() : WriteTable();
    if (!sink_.Close()) return kFailed;
    if (!GoesOn()) Complains(kFailed, "ended before the whole was written, as you asked.");
    if (const std::string fault = files_.Fault(); !fault.empty()) Complains(kFailed, fault + "; what comes before is exported.");
    return status_;
}

bool Export::Complains(Status status, const std::string& what) {
    Complain(system_.GetConsole(), what);
    status_ = status;
    return false;
}

bool Export::Understands() {
    const auto step = ParseDuration(options_.every);
    if (!step || *step < kLeastStep || *step > kMostStep)
        return Complains(kMisunderstood, "--every must be a time such as 1s, 100ms or 5min, from 10 ms to a day; not " +
                                             Harmless(FromUtf8(options_.every)));
    wish_.step = std::llround(*step * 1000);
    const bool forTables = !options_.channels.empty() || options_.units || options_.header || options_.zone || options_.decimal;
    if (options_.format == "gpx" && forTables)
        return Complains(kMisunderstood,
                         "GPX has a form of its own: --channels, --units, --header, --zone and --decimal are for csv and jsonl.");
    if (options_.format == "jsonl" && options_.decimal)
        return Complains(kMisunderstood, "JSON knows the decimal point alone: --decimal is for csv.");
    return true;
}

bool Export::TakesChannels() {
    const NamedChannels named = FindChannels(Core(), options_.channels);
    if (named.unknown) {
        status_ = ComplainOfChannel(system_.GetConsole(), named);
        return false;
    }
    for (const ChannelId channel : named.found) {  // the time is in each row anyway
        if (channel != kTime && std::ranges::find(wish_.channels, channel) == wish_.channels.end())
            wish_.channels.push_back(channel);
    }
    return true;
}

bool Export::TakesBounds() {
    Span span;
    if (const auto refusal = TakeSpan(files_, board_, options_.from, options_.to, span))
        return Complains(refusal->status, refusal->why);
    wish_.from = span.from, wish_.to = span.to;
    return true;
}

// Which boats and channels there are has to be known before the first row.
bool Export::LooksThrough() {
    while (const auto next = files_.Next()) {
        if (next->time > wish_.to) continue;
        survey_.Take(*next);
        if (options_.format == "gpx") marks_.Take(*next);
    }
    if (!GoesOn()) return Complains(kFailed, "ended before anything was written, as you asked.");
    wish_.boats = survey_.Boats();
    if (options_.boat) std::erase_if(wish_.boats, [&](BoatSlot boat) { return boat != *options_.boat; });
    if (wish_.channels.empty()) wish_.channels = options_.format == "gpx" ? GpxTrack::Channels() : survey_.Channels();
    if (!wish_.boats.empty()) return true;
    const std::string fault = files_.Fault();
    return Complains(kFailed, !fault.empty() ? fault : "there is no value of what you want in these files.");
}

void Export::ReadRows(const TableWish& wish, const std::function<void(const TableRow&)>& tell) {
    TableRows rows(Core(), wish, tell);
    files_.Rewind();
    for (auto next = files_.Next(); next && sink_.Put(); next = files_.Next()) rows.Take(*next);
    rows.Finish();
}

std::vector<TableColumn> Export::Columns() {
    const std::string units = options_.units.value_or("user");
    const TableUnits chosen = units == "si" ? TableUnits::kSi : units == "user" ? TableUnits::kUser : TableUnits::kInternal;
    std::set<std::string> taken{"time", "boat"};
    std::vector<TableColumn> columns;
    for (const ChannelId channel : wish_.channels) {
        std::string name = ToUtf8(NameForPeople(Core(), channel));
        if (!taken.insert(name).second) name += " " + std::to_string(channel);
        columns.push_back({name, ColumnUnit(Core(), channel, chosen)});
    }
    return columns;
}

void Export::WriteTable() {
    TableLook look{Columns(), wish_.boats.size() > 1, options_.header == "units", options_.decimal == "comma", AppendUtc};
    if (options_.zone == "board") look.moment = [this](std::string& out, double utc) { board_.Append(out, utc); };
    const auto format = options_.format == "csv" ? MakeCsv(look) : MakeJsonRows(look);
    format->Begin(sink_.Bytes());
    ReadRows(wish_, [&](const TableRow& row) { format->Append(sink_.Bytes(), row); });
}

void Export::WriteGpx() {
    AppendGpxBegin(sink_.Bytes());
    for (const GpxMark& mark : marks_.All()) AppendGpxMark(sink_.Bytes(), mark);
    for (const BoatSlot boat : wish_.boats) {
        const std::string name = ToUtf8(FieldText(Core().View()->boats[boat].name));
        GpxTrack track(name.empty() ? "Boat " + std::to_string(boat) : name, wish_.step);
        TableWish alone = wish_;
        alone.boats = {boat};
        ReadRows(alone, [&](const TableRow& row) { track.Append(sink_.Bytes(), row); });
        track.End(sink_.Bytes());
    }
    AppendGpxEnd(sink_.Bytes());
}

}  // namespace

Status ExportRecording(System& system, const ExportOptions& options) { return Export(system, options).Run(); }

}  // namespace twr
