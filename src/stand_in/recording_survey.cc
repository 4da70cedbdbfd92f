#include "stand_in/recording_survey.h"

#include <array>
#include <cstdio>

#include "base/wide_text.h"
#include "stand_in/bounded_lines.h"
#include "stand_in/nmea_sentence.h"
#include "stand_in/readings.h"

namespace twr {
namespace {

bool IsGzip(Files& files, std::u16string_view path) {
    char start[2] = {};
    const auto source = files.Open(path);
    return source && source->Read(start, sizeof start) == sizeof start && start[0] == '\x1F' && start[1] == '\x8B';
}

std::string BrokenShare(const RecordingSurvey& survey) {
    const double percent = 100.0 * static_cast<double>(survey.broken) / static_cast<double>(survey.lines);
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), " (%.1f %%)", percent);
    return std::to_string(survey.lines) + " lines, of which " + std::to_string(survey.broken) + text.data() + " are broken";
}

std::string Listed(const char* heading, const RecordingSurvey::Counts& counts) {
    std::string text = heading;
    const char* separator = " ";
    for (const auto& [type, count] : counts) {
        text += separator + type + " " + std::to_string(count);
        separator = ", ";
    }
    return text + (counts.empty() ? " none\n" : "\n");
}

}  // namespace

RecordingSurvey SurveyRecording(Files& files, std::u16string_view path) {
    RecordingSurvey survey;
    const auto source = files.Open(path);
    survey.opened = source != nullptr;
    survey.packed = IsGzip(files, path);
    if (!source || survey.packed) return survey;

    BoundedLines lines(*source);
    Readings readings;
    for (std::string_view line; lines.Next(line);) {
        if (Trimmed(line).empty() && !lines.WasTooLong()) continue;
        ++survey.lines;
        const auto sentence = ParseSentence(line);
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

std::string WhyUseless(const RecordingSurvey& survey) {
    if (!survey.opened) return "it can't be read";
    if (!survey.failure.empty()) return "it can't be read to its end: " + survey.failure;
    if (survey.packed) return "it is packed by gzip: unpack it first";
    if (survey.lines == 0) return "it is empty";
    if (survey.hasReading) return "";
    if (survey.broken == survey.lines) return "no line in it is an NMEA 0183 sentence";
    return "none of its sentences holds a value that the stand-in reads";
}

std::string Described(const RecordingSurvey& survey) {
    return BrokenShare(survey) + "\n" + Listed("  used:", survey.used) +
           Listed("  empty, or of no use to the stand-in:", survey.unused);
}

}  // namespace twr
