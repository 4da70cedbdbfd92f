// SPDX-License-Identifier: MIT
#include "halyrigctl/serve/signalk_talk.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/days.h"
#include "halyrigctl/output/json.h"
#include "streams/iso_time.h"

namespace twr {
namespace {

constexpr std::size_t kMostSubscriptions = 500;
constexpr double kEarly = 0.025;  // seconds by which a look may come before its time

std::string RefusalLine(const std::string& requestId, int status) {
    return JsonLine({{"requestId", requestId}, {"state", "COMPLETED"}, {"statusCode", status}});
}

}  // namespace

SignalKTalk::SignalKTalk(const Lookout& lookout, const SignalKTree& tree, const Target& target)
    : lookout_(lookout),
      tree_(tree),
      sendsMeta_(target.Text("sendMeta") == "all"),
      sendsKnown_(target.Text("sendCachedValues") != "false") {
    const std::string subscribe = target.Text("subscribe", "self");
    const std::string context = subscribe == "all" ? "*" : "vessels.self";
    if (subscribe != "none") subscriptions_.push_back({context, "*", SignalKPolicy::kInstant});
    std::string hello = R"({"name":"halyrig","version":"1.7.0","timestamp":")";
    AppendIsoTime(hello, lookout.Time());
    replies_.push_back(hello + R"(","self":")" + tree.ContextOf(0) + R"(","roles":["main"]})");
    FollowNew();
    if (!sendsKnown_) {
        for (Followed& followed : followed_) followed.changes = followed.leaf->changes;
    }
}

// An empty message only shows that the client is there.
bool SignalKTalk::Hear(std::string_view message) {
    if (message.find_first_not_of(" \r\n") == message.npos) return true;
    auto said = ParseSignalK(message);
    if (!said) return false;
    LeaveStep();
    for (auto* rows : {&said->subscribe, &said->unsubscribe}) {
        for (SignalKSubscription& row : *rows) row.context = ContextIn(row.context);
    }
    if (said->refusal != 0) replies_.push_back(RefusalLine(said->requestId, said->refusal));
    for (const SignalKSubscription& ended : said->unsubscribe) {
        std::erase_if(subscriptions_, [&](const SignalKSubscription& one) {
            return MatchesPattern(ended.context, one.context) && MatchesPattern(ended.path, one.path);
        });
    }
    std::ranges::move(said->subscribe, std::back_inserter(subscriptions_));
    // Each is followed as its last subscription wants it; what is no longer wanted is let go.
    seen_ = 0;
    return subscriptions_.size() <= kMostSubscriptions;
}

// As subscriptions have it. The own boat goes by several names, any boat with or without what she is.
std::string SignalKTalk::ContextIn(const std::string& named) const {
    constexpr std::string_view kOwn = "vessels.self";
    const std::string context = named == "self" || named.starts_with("urn:") ? "vessels." + named : named;
    return context == tree_.ContextOf(0) ? std::string(kOwn) : context;
}

const SignalKSubscription* SignalKTalk::WantedAs(const SignalKLeaf& leaf) const {
    const std::string context = tree_.ContextOf(leaf.boat);
    const auto wants = [&](const SignalKSubscription& one) {
        const bool boat = MatchesPattern(one.context, context) || (leaf.boat == 0 && one.context == "vessels.self");
        return !context.empty() && boat && MatchesPattern(one.path, leaf.path->path);
    };
    const auto last = std::find_if(subscriptions_.rbegin(), subscriptions_.rend(), wants);
    return last == subscriptions_.rend() ? nullptr : &*last;
}

// What is followed already goes on from where it is.
void SignalKTalk::FollowNew() {
    if (seen_ == tree_.Leaves().size()) return;
    seen_ = tree_.Leaves().size();
    std::vector<Followed> before = std::exchange(followed_, {});
    for (const SignalKLeaf& leaf : tree_.Leaves()) {
        const SignalKSubscription* as = WantedAs(leaf);
        if (!as) continue;
        const auto known = std::ranges::find(before, &leaf, &Followed::leaf);
        Followed& one = followed_.emplace_back(known == before.end() ? Followed{&leaf, 0} : *known);
        one.period = static_cast<float>(as->period);
        one.minPeriod = static_cast<float>(as->minPeriod);
        one.policy = as->policy;
    }
    std::ranges::stable_sort(followed_, {}, [](const Followed& one) { return one.leaf->boat; });
}

bool SignalKTalk::IsDue(const Followed& followed) const {
    const double since = std::fabs(lookout_.Time() - followed.toldAt) * kSecondsPerDay + kEarly;
    const bool changed = followed.changes != followed.leaf->changes;
    const double period = followed.period, minPeriod = followed.minPeriod;
    if (followed.policy == SignalKPolicy::kFixed) return since >= period;
    return (changed && since >= minPeriod) || (followed.policy == SignalKPolicy::kIdeal && since >= period);
}

void SignalKTalk::Tell(Followed& followed, SignalKUpdates& updates, std::string& meta) const {
    const SignalKLeaf& leaf = *followed.leaf;
    followed.changes = leaf.changes;
    followed.toldAt = lookout_.Time();
    updates.Add(leaf);
    if (!sendsMeta_ || std::exchange(followed.hasMeta, true)) return;
    const std::string ofLeaf = tree_.MetaOf(leaf);
    if (ofLeaf.empty()) return;
    ((((meta += meta.empty() ? R"({"path":")" : R"(,{"path":")") += leaf.path->path) += R"(","value":)") += ofLeaf) += '}';
}

// As without a word about it.
bool SignalKTalk::WantsEachChange() const {
    const SignalKSubscription each{"vessels.self", "*", SignalKPolicy::kInstant};
    return sendsKnown_ && subscriptions_.size() == 1 && subscriptions_.front() == each;
}

// All was told up to the last look.
void SignalKTalk::LeaveStep() {
    if (!std::exchange(inStep_, false)) return;
    for (Followed& followed : followed_) followed.changes = followed.leaf->changes;
}

void SignalKTalk::Say(std::vector<WebMessage>& messages) {
    for (std::string& reply : std::exchange(replies_, {}))
        messages.push_back(std::make_shared<const std::string>(std::move(reply)));
    const bool grown = seen_ != tree_.Leaves().size();
    if (inStep_ && !grown) {
        if (tree_.OwnChanges()) messages.push_back(tree_.OwnChanges());
        return;
    }
    FollowNew();
    SignalKUpdates updates;
    std::string meta;
    for (std::size_t i = 0; i < followed_.size(); ++i) {
        Followed& followed = followed_[i];
        if (IsDue(followed)) Tell(followed, updates, meta);
        const bool last = i + 1 == followed_.size() || followed_[i + 1].leaf->boat != followed.leaf->boat;
        if (!last || updates.Empty()) continue;
        const std::string context = tree_.ContextOf(followed.leaf->boat);
        WebMessage message = updates.TakeMessage(context, std::exchange(meta, {}));
        if (!context.empty()) messages.push_back(std::move(message));
    }
    inStep_ = WantsEachChange();
}

}  // namespace twr
