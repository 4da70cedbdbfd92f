// The bridge with its dialog open, over the real machine and a Deckman that answers at once.
#pragma once
#include "bridge/main_dialog.h"
#include "support/scripted_host.h"
#include "support/test_system.h"

namespace twr {

// Gives every variable its own value, the same on every call or another one each time.
class InstantDeckman : public Libraries {
public:
    std::unique_ptr<Library> Load(std::u16string_view path) override;

    static inline bool changing = false;
};

class BenchMachine : public System {
public:
    // Variables and remotes from 1 on, each mapped to the channel of its number; those without such a channel to channel 1.
    BenchMachine(int varRows, int remoteRows);

    CoreServices Core() override;
    Libraries& GetLibraries() override { return deckman_; }
    Instance& GetInstance() override { return real_.system->GetInstance(); }
    Executable& GetExecutable() override { return real_.system->GetExecutable(); }
    Console& GetConsole() override { return real_.system->GetConsole(); }

    testing::ScriptedHost host;

private:
    testing::TestSystem real_;
    InstantDeckman deckman_;
};

}  // namespace twr
