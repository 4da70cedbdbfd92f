// SPDX-License-Identifier: MIT
// log_report: prints what the stand-in can use of a log of NMEA 0183. The exit status is 1 if that is nothing.
#include "base/wide_text.h"
#include "platform/console.h"
#include "platform/system.h"
#include "stand_in/log_survey.h"

int main(int argc, char** argv) {
    const auto system = twr::MakeSystem(twr::UserRoots());
    twr::Console& console = system->GetConsole();
    const auto arguments = twr::Arguments(argc, argv);
    if (arguments.size() != 1) {
        console.WriteError("usage: log_report FILE, with its full path\n");
        return 2;
    }
    const std::string& file = arguments.front();
    const twr::LogSurvey survey = twr::SurveyLog(system->Core().files, twr::FromUtf8(file));
    if (const std::string why = twr::WhyUseless(survey); !why.empty()) {
        console.WriteError("the log " + file + " can't be played: " + why + "\n");
        return 1;
    }
    const auto notStopped = [&] { return console.Wait(0); };
    return console.Write(twr::Described(survey), notStopped) == twr::Output::kWritten ? 0 : 1;
}
