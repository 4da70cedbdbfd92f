// SPDX-License-Identifier: MIT
#include <algorithm>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "base/calendar.h"
#include "base/wide_text.h"
#include "core/days.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/output/cells.h"
#include "halyrigctl/output/guest.h"
#include "halyrigctl/setup/circumstances.h"
#include "halyrigctl/setup/explanation.h"
#include "halyrigctl/setup/names.h"
#include "halyrigctl/watch/displays_picture.h"
#include "halyrigctl/watch/watch_table.h"
#include "halyrigctl/watch/watch_view.h"
#include "halyrigctl/watch/watched_channels.h"

namespace twr {
namespace {

// Asked to close, or out of reach of every other program.
bool HasEnded(const CCore& core) { return core.QuitRequested() || core.RecordIsLost(); }

// Looks at everything that is shown.
class Watcher {
public:
    Watcher(System& system, Guest& guest, const WatchOptions& options, std::vector<ChannelId> named)
        : memory_(system.Core().memory),
          core_(guest.Core()),
          circumstances_(system, guest.Core()),
          channels_(core_, options, std::move(named)) {}

    // Times of day as "12:34:56", or with the date.
    WatchedLook Look(bool dated, std::optional<ChannelId> explains = std::nullopt) {
        circumstances_.LookAgain();
        const double time = core_.ToDisplayTime(circumstances_.now);
        return {ToUtf8(DateTimeFormat(time, dated ? u"%d-%b-%Y %H:%M:%S" : u"%H:%M:%S")),
                circumstances_.BridgeWords(),
                circumstances_.bridge && !circumstances_.StandsStill(),
                channels_.Look(circumstances_),
                ReadRemotes(memory_, circumstances_.settings.dfwFolder),
                explains ? Lines(*explains) : std::vector<std::string>()};
    }

private:
    std::vector<std::string> Lines(ChannelId channel) {
        std::istringstream text(AsText(ExplainChannel(core_, channel, channels_.Boat(), circumstances_)));
        std::vector<std::string> lines;
        for (std::string line; std::getline(text, line);) lines.push_back(line);
        return lines;
    }

    SharedMemory& memory_;
    CCore& core_;
    Circumstances circumstances_;
    WatchedChannels channels_;
};

// Until the user or the suite asks to stop. A key is answered by a look of its own.
void WatchLive(ConsoleScreen& screen, const CCore& core, Watcher& watcher, const WatchOptions& options) {
    WatchView view(options.order);
    int left = 0;
    while (!HasEnded(core)) {
        if (left <= 0) left = options.intervalMs;
        screen.Draw(view.Draw(watcher.Look(false, view.Explains()), screen.Size()));
        std::optional<char32_t> key;
        while (left > 0 && !key && !HasEnded(core)) {
            const int slice = std::min(left, kSliceMs);
            key = screen.Wait(slice);
            if (!key) left -= slice;
        }
        if (key && (*key == Key::kStop || !view.OnKey(*key))) return;
    }
}

// False as soon as the user or the suite asks to stop.
bool WaitForNextLook(Console& console, const CCore& core, int milliseconds) {
    for (; milliseconds > 0; milliseconds -= kSliceMs) {
        if (HasEnded(core) || !console.Wait(std::min(milliseconds, kSliceMs))) return false;
    }
    return !HasEnded(core);
}

std::string PlainText(WatchedLook look, RowOrder order) {
    Sort(look.rows, order);
    std::string text = look.clock + "  " + look.bridge + "\n" + PlainTableHeading();
    for (const WatchedRow& row : look.rows) text += PlainTableRow(row);
    if (look.rows.empty()) text += std::string(kNothingToShow) + "\n";
    for (const RemoteLine& remote : look.remotes) {
        text += "remote " + PaddedLeft(std::to_string(remote.number), 2) + "  " + Padded(remote.name, 10) + remote.value + "\n";
    }
    return text + "\n";
}

Output WatchAsText(Console& console, const CCore& core, Watcher& watcher, const WatchOptions& options) {
    const auto goOn = [&] { return !HasEnded(core) && console.Wait(0); };
    Output output;
    int shown = 0;
    do output = console.Write(PlainText(watcher.Look(true), options.order), goOn);
    while (output == Output::kWritten && ++shown != options.snapshots && WaitForNextLook(console, core, options.intervalMs));
    return output;
}

}  // namespace

Status Watch(System& system, const WatchOptions& options) {
    Guest guest(system);
    if (!guest) return kFailed;
    Console& console = system.GetConsole();
    NamedChannels named = FindChannels(guest.Core(), options.channels);
    if (named.unknown) {
        guest.Leave();
        return ComplainOfChannel(console, named);
    }
    Output output = Output::kWritten;
    {
        Watcher watcher(system, guest, options, std::move(named.found));
        // A screen that vanishes with the last snapshot would show nothing.
        auto screen = options.snapshots ? nullptr : console.TakeScreen();
        if (screen) {
            WatchLive(*screen, guest.Core(), watcher, options);
            guest.Release();
        } else {
            output = WatchAsText(console, guest.Core(), watcher, options);
        }
    }
    guest.Leave();
    return guest.RecordWasLost() ? kFailed : StatusOf(console, output);
}

}  // namespace twr
