#include "base/wide_text.h"
#include "halyrigctl/check/check_setup.h"
#include "halyrigctl/commands.h"

namespace twr {

Status Check(System& system, const CheckOptions& options) {
    const auto folder = options.folder ? std::optional(FromUtf8(*options.folder)) : std::nullopt;
    const CheckReport report = LookAtSetup(system, folder);
    const Status printed = Print(system.GetConsole(), options.json      ? CheckAsJson(report)
                                                      : options.summary ? CheckAsSummary(report)
                                                                        : CheckAsText(report));
    return report.Faults() > 0 ? kFailed : printed;
}

}  // namespace twr
