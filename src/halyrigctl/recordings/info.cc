// SPDX-License-Identifier: MIT
#include <algorithm>

#include "base/numbers.h"
#include "base/wide_text.h"
#include "core/units.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/output/cells.h"
#include "halyrigctl/output/json.h"
#include "halyrigctl/recordings/board_time.h"
#include "halyrigctl/recordings/recorded_files.h"
#include "halyrigctl/recordings/survey.h"
#include "halyrigctl/setup/dry_run.h"
#include "halyrigctl/setup/names.h"

namespace twr {
namespace {

constexpr std::size_t kGapsShown = 20;

// One line of the table: a channel of a boat.
struct InfoRow {
    ChannelId channel;
    BoatSlot boat;
    std::string name, unit;
    ChannelSurvey survey;
    std::optional<double> mean;
};

class Info {
public:
    explicit Info(System& system, const InfoOptions& options)
        : system_(system),
          options_(options),
          board_(dryRun_.Core(), system.Core().zone),
          files_(system.Core().files, options.files, [this] { return system_.GetConsole().Wait(0); }),
          survey_(dryRun_.Core()) {}

    Status Run();

private:
    std::vector<InfoRow> Rows();
    std::string Words();
    std::string FileWords(const RecordedFile& file) const;
    std::string MomentWords(double utc) const;
    std::string TimeWords() const;
    std::string TableWords();
    Json Told();

    System& system_;
    const InfoOptions options_;
    DryRun dryRun_{system_.Core()};
    BoardZone board_;
    RecordedFiles files_;
    Survey survey_;
};

Status Info::Run() {
    while (const auto next = files_.Next()) survey_.Take(*next);
    const std::string fault = files_.Fault();
    const Status printed = Print(system_.GetConsole(), options_.json ? JsonLine(Told()) + "\n" : Words());
    if (!fault.empty()) Complain(system_.GetConsole(), fault);
    return printed == kDone && fault.empty() && !survey_.IsEmpty() ? kDone : kFailed;
}

std::vector<InfoRow> Info::Rows() {
    CCore& core = dryRun_.Core();
    std::vector<InfoRow> rows;
    for (const BoatSlot boat : survey_.Boats()) {
        for (const ChannelId channel : survey_.Channels()) {
            const ChannelSurvey* const survey = survey_.Of(channel, boat);
            const std::int16_t type = core.ChannelTypeOf(channel);
            if (!survey) continue;
            rows.push_back(
                {channel, boat, Harmless(NameForPeople(core, channel)), ToUtf8(InternalUnit(type)), *survey, survey->Mean(type)});
        }
    }
    return rows;
}

std::string Info::Words() {
    std::string words;
    for (const RecordedFile& file : files_.All()) words += FileWords(file);
    if (survey_.IsEmpty()) return words + "no value in it\n";
    return words + TimeWords() + TableWords();
}

std::string Info::FileWords(const RecordedFile& file) const {
    std::string words = Harmless(file.path) + ": ";
    if (file.form.kind == RecordedForm::kNeither) return words + Harmless(FromUtf8(file.fault)) + "\n";
    if (file.form.kind == RecordedForm::kRecording) {
        words += "a recording\n";
    } else {
        words += "a log of NMEA 0183, " + Described(file.tally);
        if (!file.IsDated())
            words += file.form.hasClock ? "  it tells no date\n"
                                        : "  it tells no time: a round of its sentences is taken for a second\n";
    }
    if (file.torn) words += "  its last line is torn: it was killed while it was written, or the power failed\n";
    if (!file.fault.empty()) words += "  " + Harmless(FromUtf8(file.fault)) + "; read no further\n";
    return words;
}

std::string Info::MomentWords(double utc) const {
    std::string words, inUtc;
    board_.Append(words, utc);
    AppendUtc(inUtc, utc);
    return words == inUtc ? words : words + " (" + inUtc + ")";
}

std::string Info::TimeWords() const {
    std::string words = "from   " + MomentWords(survey_.From()) + "\nto     " + MomentWords(survey_.To()) + "\n";
    words += "lasts  " + DurationWords(survey_.RecordedSeconds()) + ", without the gaps\n";
    words += "gaps   " + (survey_.GapCount() == 0 ? "none" : std::to_string(survey_.GapCount())) + "\n";
    const auto& gaps = survey_.Gaps();
    for (std::size_t i = 0; i < std::min(gaps.size(), kGapsShown); ++i) {
        const double length = gaps[i].to - gaps[i].from;
        words += "  " + MomentWords(gaps[i].from) + " to " + MomentWords(gaps[i].to) + ", ";
        words += length < 0 ? "the clock was set back\n" : DurationWords(length * kSecondsPerDay) + "\n";
    }
    if (survey_.GapCount() > kGapsShown) words += "  and " + std::to_string(survey_.GapCount() - kGapsShown) + " more\n";
    return words;
}

std::string Info::TableWords() {
    const std::vector<InfoRow> rows = Rows();
    std::vector<std::vector<std::string>> lines{{"id", "name", "boat", "count", "least", "mean", "greatest", "last", "unit"}};
    const auto number = [](double value) { return Printed("%.6g", value); };
    for (const InfoRow& row : rows) {
        const ChannelSurvey& survey = row.survey;
        lines.push_back({std::to_string(row.channel), row.name, std::to_string(row.boat), std::to_string(survey.count),
                         number(survey.least), row.mean ? number(*row.mean) : "-", number(survey.greatest), number(survey.last),
                         row.unit});
    }
    std::vector<std::size_t> widths(lines[0].size());
    for (const auto& line : lines) {
        for (std::size_t i = 0; i < line.size(); ++i) widths[i] = std::max(widths[i], WidthOf(line[i]));
    }
    std::string words;
    for (const auto& line : lines) {
        std::string text;
        for (std::size_t i = 0; i < line.size(); ++i) {
            const bool isText = i == 1 || i + 1 == line.size();
            text += (i == 0 ? "" : "  ") + (isText ? Padded(line[i], widths[i]) : PaddedLeft(line[i], widths[i]));
        }
        words += text.substr(0, text.find_last_not_of(' ') + 1) + "\n";
    }
    return words;
}

Json TimeJson(double utc) {
    std::string text;
    AppendUtc(text, utc);
    return text;
}

Json FileJson(const RecordedFile& file) {
    constexpr const char* kForms[] = {"neither", "recording", "nmea"};
    Json json{{"path", ToUtf8(file.path)},
              {"form", kForms[file.form.kind]},
              {"fault", TextOrNull(FromUtf8(file.fault))},
              {"torn", file.torn}};
    if (file.form.kind == RecordedForm::kLog) {
        json["lines"] = file.tally.lines;
        json["broken"] = file.tally.broken;
        json["used"] = file.tally.used;
        json["unused"] = file.tally.unused;
    }
    return json;
}

Json Info::Told() {
    Json json{{"files", Json::array()}};
    for (const RecordedFile& file : files_.All()) json["files"].push_back(FileJson(file));
    const bool any = !survey_.IsEmpty();
    json["from"] = any ? TimeJson(survey_.From()) : Json();
    json["to"] = any ? TimeJson(survey_.To()) : Json();
    json["seconds"] = ToMilliseconds(survey_.RecordedSeconds());
    json["gap_count"] = survey_.GapCount();
    json["gaps"] = Json::array();
    for (const RecordedGap& gap : survey_.Gaps()) json["gaps"].push_back({{"from", TimeJson(gap.from)}, {"to", TimeJson(gap.to)}});
    json["boats"] = survey_.Boats();
    json["channels"] = Json::array();
    for (const InfoRow& row : Rows()) {
        json["channels"].push_back({{"id", row.channel},
                                    {"name", row.name},
                                    {"boat", row.boat},
                                    {"count", row.survey.count},
                                    {"least", row.survey.least},
                                    {"mean", row.mean ? Json(*row.mean) : Json()},
                                    {"greatest", row.survey.greatest},
                                    {"last", row.survey.last},
                                    {"unit", TextOrNull(FromUtf8(row.unit))}});
    }
    return json;
}

}  // namespace

Status ShowRecording(System& system, const InfoOptions& options) { return Info(system, options).Run(); }

}  // namespace twr
