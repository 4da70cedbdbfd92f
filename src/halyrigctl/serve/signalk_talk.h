// SPDX-License-Identifier: MIT
// A stream of Signal K: what a client subscribes to, as often as it wants it.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "halyrigctl/serve/messages.h"
#include "halyrigctl/serve/signalk_tree.h"
#include "halyrigctl/serve/target.h"
#include "streams/web_server.h"

namespace twr {

class SignalKTalk : public WebTalk {
public:
    // As its address wants it: subscribe=self|all|none, sendMeta=all, sendCachedValues=false.
    SignalKTalk(const Lookout& lookout, const SignalKTree& tree, const Target& target);

    bool Hear(std::string_view message) override;
    void Say(std::vector<WebMessage>& messages) override;

private:
    // Each client has hundreds, so they are small.
    struct Followed {
        const SignalKLeaf* leaf;
        std::uint64_t changes;                  // as last told
        double toldAt = 0.0;                    // days
        float period = 0.0f, minPeriod = 0.0f;  // seconds
        SignalKPolicy policy = SignalKPolicy::kIdeal;
        bool hasMeta = false;  // it was told
    };

    void FollowNew();
    const SignalKSubscription* WantedAs(const SignalKLeaf& leaf) const;
    bool IsDue(const Followed& followed) const;
    void Tell(Followed& followed, SignalKUpdates& updates, std::string& meta) const;
    bool WantsEachChange() const;
    void LeaveStep();
    std::string ContextIn(const std::string& named) const;

    const Lookout& lookout_;
    const SignalKTree& tree_;
    std::vector<SignalKSubscription> subscriptions_;
    std::vector<Followed> followed_;  // boat by boat
    std::vector<std::string> replies_;
    std::size_t seen_ = 0;  // leaves of the tree
    bool inStep_ = false;   // all was told, and each change of the own boat is wanted: the text that all share will do
    const bool sendsMeta_;
    const bool sendsKnown_;  // what was there before
};

}  // namespace twr
