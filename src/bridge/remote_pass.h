// SPDX-License-Identifier: MIT
// The second half of a tick: from the record to Deckman's remotes.
#pragma once
#include <span>

#include "config/bridge_settings.h"
#include "core/core.h"
#include "deckman/deckman_library.h"
#include "mapping/mapping_rows.h"

namespace twr {

class RemotePass {
public:
    explicit RemotePass(const CCore& core) : core_(core) {}

    // Sends every row whose value has changed, and its name if that is due; the rows keep what was last sent. The record must be
    // attached. Sends nothing unless the library has both functions.
    void Run(const DeckmanLibrary& library, std::span<MappingRemote> rows, const Settings& settings) const;

private:
    const CCore& core_;
};

}  // namespace twr
