#include <algorithm>

#include "base/wide_text.h"
#include "config/bridge_settings.h"
#include "core/days.h"
#include "core/record_access.h"
#include "displays/displays.h"
#include "halyrigctl/channel_reading.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/guest.h"
#include "halyrigctl/screen.h"

namespace twr {
namespace {

// Every channel that has ever been published for the own boat.
std::vector<ChannelLine> ReadChannels(CCore& core, Circumstances& circumstances) {
    std::vector<ChannelLine> lines;
    for (ChannelId channel = 1; channel < kChannelCount; ++channel) {
        if (Load(core.View()->fullBlocks[0].time[channel]) == 0.0) continue;
        const ChannelReading reading = ReadChannel(core, channel, 0, circumstances);
        lines.push_back({channel, Harmless(core.ChannelName(channel)), Harmless(reading.text), ToUtf8(reading.textUnit),
                         reading.age.value_or(0.0), !reading.missing});
    }
    return lines;
}

std::string ShownBytes(const std::string& bytes) { return Harmless(FromBytes(bytes)); }

// The texts sent to the stand-in for Deckman; none with the real one, whose displays are on the mast.
std::vector<RemoteLine> ReadRemotes(const CoreServices& services) {
    const std::u16string folder = ReadSettings(services.registry).dfwFolder;
    const DisplayReader displays(services.memory, Trimmed(std::u16string_view(folder)));
    std::vector<RemoteLine> lines;
    for (int remote = 1; remote <= kRemoteCount; ++remote) {
        const DisplayedText value = displays.Value(remote);
        if (value.updates > 0) lines.push_back({remote, ShownBytes(value.text), ShownBytes(displays.Name(remote).text)});
    }
    return lines;
}

// The next look may be an hour away, and holding the record until then would keep a request to close alive.
constexpr int kSliceMs = 100;

// False as soon as the user or the suite asks to stop.
bool WaitForNextLook(Console& console, const CCore& core, int milliseconds) {
    for (; milliseconds > 0; milliseconds -= kSliceMs) {
        if (core.QuitRequested() || !console.Wait(std::min(milliseconds, kSliceMs))) return false;
    }
    return !core.QuitRequested();
}

}  // namespace

Status Watch(System& system, const WatchOptions& options) {
    Guest guest(system);
    if (!guest) return kFailed;
    const CoreServices services = system.Core();
    Console& console = system.GetConsole();
    const auto goOn = [&] { return !guest.Core().QuitRequested() && console.Wait(0); };
    std::string picture = console.Size() ? kClearScreen : "";
    Output output;
    int shown = 0;
    do {
        Circumstances circumstances(system, guest.Record());
        const auto channels = ReadChannels(guest.Core(), circumstances);
        picture += DrawScreen(channels, ReadRemotes(services), console.Size());
        output = console.Write(picture, goOn);
        picture.clear();
    } while (output == Output::kWritten && ++shown != options.snapshots &&
             WaitForNextLook(console, guest.Core(), options.intervalMs));
    guest.Leave();
    return StatusOf(console, output);
}

}  // namespace twr
