// SPDX-License-Identifier: MIT
#include "stand_in/log_survey.h"

#include "base/wide_text.h"

namespace twr {
namespace {

bool IsGzip(Files& files, std::u16string_view path) {
    char start[2] = {};
    const auto source = files.Open(path);
    return source && source->Read(start, sizeof start) == sizeof start && start[0] == '\x1F' && start[1] == '\x8B';
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
        if (const auto sentence = ParseSentence(lines.Line())) {
            survey.Count(*sentence, readings.Take(*sentence, 0.0));
        } else {
            survey.CountBroken();
        }
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

}  // namespace twr
