// Reports failures after which the program can't continue.
#include "base/calendar.h"
#include "base/wide_text.h"
#include "core/core.h"
#include "core/days.h"
#include "platform/paths.h"

namespace twr {

void CCore::WriteSystemLog(std::u16string_view message) {
    services_.desktop.ShowBox(message, u"Halyrig32", BoxButtons::kOk, BoxIcon::kStop);

    // Without a record there is no folder, and the file goes to the root of the drive. Its date is in the zone shown, the time in
    // the line is UTC.
    const std::u16string folder = GetDataFolder(u"log_system");
    const double now = UtcNowDays(services_.clock);
    const std::u16string path = JoinPath(folder, DateTimeFormat(ToDisplayTime(now), u"log_system_%d%b%Y.log"));
    std::string line = ToBytes(DateTimeFormat(now, u"%H:%M:%S : ")) + ToBytes(message);
    line += kLineEnd;
    services_.files.Append(path, line);
}

}  // namespace twr
