// The two passes of a tick alone: rows as data, over a core of fakes and a Deckman of the test's own.
#pragma once
#include "bridge/instrument_pass.h"
#include "bridge/remote_pass.h"
#include "support/core_fixture.h"
#include "support/stub_deckman.h"

namespace twr::testing {

inline MappingVar Mapped(ChannelId channel, std::int32_t variable, std::int32_t boat = 0) {
    MappingVar row;
    row.channel = static_cast<std::int32_t>(channel);
    row.dfwId = variable;
    row.boat = boat;
    return row;
}

class PassTest : public CoreTest {
protected:
    PassTest() { LoadLibrary(); }

    void LoadLibrary(const std::string& withoutFunction = "") {
        deckman.missing = {withoutFunction};
        deckman.Install(u"");
        library.Load(u"");
    }

    void Tick(int count = 1) {
        for (; count > 0; --count) {
            machine.clock.AdvanceMs(100);
            deckman.reads.clear();
            deckman.sent.clear();
            instruments.Run(library, variables, timer, settings);
            remotesPass.Run(library, remotes, settings);
        }
    }

    // What one tick reads, and what it sends.
    std::vector<int> TickReads() { return Tick(), deckman.reads; }
    std::vector<std::string> TickSends() { return Tick(), deckman.sent; }

    StubDeckman deckman;
    DeckmanLibrary library{deckman};
    std::vector<MappingVar> variables;
    std::vector<MappingRemote> remotes;
    std::int32_t timer = -1;
    Settings settings;
    InstrumentPass instruments{*core, machine.clock};
    RemotePass remotesPass{*core};
};

}  // namespace twr::testing
