// SPDX-License-Identifier: MIT
#include <algorithm>

#include "base/numbers.h"
#include "base/wide_text.h"
#include "core/record_access.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/recordings/exporting.h"
#include "halyrigctl/recordings/race_log.h"
#include "halyrigctl/recordings/report_data.h"
#include "halyrigctl/serve/page_files.h"
#include "halyrigctl/setup/dry_run.h"
#include "streams/gzip.h"

namespace twr {
namespace {

class Reporter {
public:
    Reporter(System& system, const ReportOptions& options)
        : system_(system),
          options_(options),
          board_(dryRun_.Core(), system.Core().zone),
          files_(system.Core().files, options.files, [this] { return GoesOn(); }),
          sink_(system, options.output) {}

    Status Run() {
        Span span;
        if (const auto refusal = TakeSpan(files_, board_, options_.from, options_.to, span)) return Complains(*refusal);
        RaceLog log(dryRun_.Core(), options_.boat, span.from, span.to);
        for (auto next = files_.Next(); next && !log.IsFull(); next = files_.Next()) log.Take(*next);
        log.Finish();
        if (!GoesOn()) return Complains({kFailed, "ended before anything was written, as you asked."});
        if (log.IsFull()) return Complains({kFailed, "that is over a week; name a part of it by --from and --to."});
        const std::string fault = files_.Fault();
        if (log.Rows().empty())
            return Complains({kFailed, fault.empty() ? "there is no value of what a report shows in these files." : fault});
        if (!sink_.Open()) return kFailed;
        sink_.Bytes() = Page(ReportData(dryRun_.Core(), board_, Analysed(log, fault)));
        if (!sink_.Close()) return kFailed;
        return fault.empty() ? kDone : Complains({kFailed, fault + "; what comes before is in the report."});
    }

private:
    bool GoesOn() { return system_.GetConsole().Wait(0); }

    Status Complains(const Refusal& refusal) {
        Complain(system_.GetConsole(), refusal.why);
        return refusal.status;
    }

    RaceReport Analysed(const RaceLog& log, const std::string& fault) {
        const std::string own = ToUtf8(FieldText(dryRun_.Core().View()->boats[options_.boat].name));
        RaceReport report;
        report.name = own;
        if (own.empty()) report.name = options_.boat == 0 ? "Own boat" : "Boat " + std::to_string(options_.boat);
        for (const RecordedFile& file : files_.All()) {
            report.files.push_back(ToUtf8(file.path.substr(file.path.find_last_of(u"/\\") + 1)));
            if (file.start) report.dated = file.IsDated();
        }
        if (!fault.empty()) report.notes.push_back("Read no further than here: " + fault);
        if (log.Repeated() > 0)
            report.notes.push_back("The clock was set back: " + DurationWords(static_cast<double>(log.Repeated())) +
                                   " that came twice are left out the second time.");
        report.rows = log.Rows();
        report.turns = FindTurns(report.rows);
        report.starts = FindStarts(report.rows, log.Guns());
        report.legs = FindLegs(report.rows, log.Guns(), report.turns);
        FindCosts(report.rows, report.legs.all, report.turns);
        report.bands = FindPolarBands(report.rows, report.turns);
        return report;
    }

    static std::string Page(const std::string& data) {
        std::string page = Unpacked(ReportPage());
        return page.replace(page.find(kReportData), kReportData.size(), data);
    }

    System& system_;
    const ReportOptions options_;
    DryRun dryRun_{system_.Core()};  // the names, the units and the zone that a start of the suite would take from its files
    BoardZone board_;
    RecordedFiles files_;
    Sink sink_;
};

}  // namespace

Status ReportRace(System& system, const ReportOptions& options) { return Reporter(system, options).Run(); }

}  // namespace twr
