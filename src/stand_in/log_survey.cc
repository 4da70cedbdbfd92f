// SPDX-License-Identifier: MIT
#include "stand_in/log_survey.h"

#include "base/numbers.h"
#include "base/wide_text.h"
#include "nmea/readings.h"
#include "nmea/sentence.h"

namespace twr {
namespace {

bool IsGzip(Files& files, std::u16string_view path) {
    char start[2] = {};
    const auto source = files.Open(path);
    return source && source->Read(start, sizeof start) == sizeof start && start[0] == '\x1F' && start[1] == '\x8B';
}

std::string BrokenShare(const LogSurvey& survey) {
    const double percent = 100.0 * static_cast<double>(survey.broken) / static_cast<double>(survey.lines);
    return std::to_string(survey.lines) + " lines, of which " + std::to_string(survey.broken) +
           Printed(" (%.1f %%) are broken", percent);
}

std::string Listed(const char* heading, const LogSurvey::Counts& counts) {
    std::string text = heading;
    const char* separator = " ";
    for (const auto& [type, count] : counts) {
        text += separator + type + " " + std::to_string(count);
        separator = ", ";
    }
    return text + (counts.empty() ? " none\n" : "\n");
}

}  // namespace

LogSurvey SurveyLog(Files& files, std::u16string_view path) {
    LogSurvey survey;
    const auto source = files.Open(path);
    survey.opened = source != nullptr;
    survey.packed = IsGzip(files, path);
    if (!source || survey.packed) return survey;

    BoundedLines lines(*source, kLogLines);
    Readings readings;
    while (lines.Next()) {
        if (Trimmed(std::string_view(lines.Line())).empty() && !lines.Cut()) continue;
        ++survey.lines;
        const auto sentence = ParseSentence(lines.Line());
        if (!sentence) {
            ++survey.broken;
            continue;
        }
        const bool heard = readings.Take(*sentence, 0.0);
        survey.hasReading = survey.hasReading || heard;
        ++(heard || TimeOfDayOf(*sentence) ? survey.used : survey.unused)[std::string(sentence->type)];
    }
    survey.failure = source->Failure();
    return survey;
}

std::string WhyUseless(const LogSurvey& survey) {
    if (!survey.opened) return "it can't be read";
    if (!survey.failure.empty()) return "it can't be read to its end: " + survey.failure;
    if (survey.packed) return "it is packed by gzip: unpack it first";
    if (survey.lines == 0) return "it is empty";
    if (survey.hasReading) return "";
    if (survey.broken == survey.lines) return "no line in it is an NMEA 0183 sentence";
    return "none of its sentences holds a value that the stand-in reads";
}

std::string Described(const LogSurvey& survey) {
    return BrokenShare(survey) + "\n" + Listed("  used:", survey.used) +
           Listed("  empty, or of no use to the stand-in:", survey.unused);
}

}  // namespace twr
