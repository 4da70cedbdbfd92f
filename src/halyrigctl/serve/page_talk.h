// SPDX-License-Identifier: MIT
// The stream of the page: a browser names the channels that it shows, and hears what changes of them.
#pragma once
#include <memory>
#include <string_view>
#include <vector>

#include "halyrigctl/serve/lookout.h"
#include "streams/web_server.h"

namespace twr {

class PageTalk : public WebTalk {
public:
    explicit PageTalk(Lookout& lookout) : lookout_(lookout) {}

    bool Hear(std::string_view message) override;
    void Say(std::vector<WebMessage>& messages) override;

private:
    struct Watched {
        std::shared_ptr<const Tile> tile;
        std::uint64_t changes = 0;  // as last told
        double published = 0.0;     // the same
        double toldAt = 0.0;        // days; 0.0 before that
    };
    bool Tell(Watched& watched) const;

    Lookout& lookout_;
    std::vector<Watched> watched_;
    std::string_view bridge_;  // as last told
    double saidAt_ = 0.0;      // days
    bool replays_ = false;
    bool all_ = true;  // the next message holds every one
};

}  // namespace twr
