// SPDX-License-Identifier: MIT
#include "halyrigctl/serve/signalk_tree.h"

#include "base/numbers.h"
#include "base/version.h"
#include "core/record_access.h"
#include "halyrigctl/output/json.h"
#include "streams/iso_time.h"

namespace twr {
namespace {

constexpr const char* kVersion = "1.7.0";

// Of a boat without an MMSI: made from the machine's name, so that it stays the same.
std::string OwnUuid() {
    std::uint64_t hash[2] = {0xCBF29CE484222325, 0x9E3779B97F4A7C15};  // FNV-1a, from two starts
    for (const char c : MachineName()) {
        for (std::uint64_t& half : hash) half = (half ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    }
    const auto part = [&](int half, int shift, std::uint64_t mask) { return static_cast<unsigned>(hash[half] >> shift & mask); };
    return Printed("urn:mrn:signalk:uuid:%08x-%04x-4%03x-8%03x-%08x%04x", part(0, 32, 0xFFFFFFFF), part(0, 16, 0xFFFF),
                   part(0, 0, 0xFFF), part(1, 0, 0xFFF), part(1, 32, 0xFFFFFFFF), part(1, 16, 0xFFFF));
}

// The part of a path up to `end`, which is taken off with it.
std::string TakeStep(std::string_view& path, char end) {
    const std::string step(path.substr(0, path.find(end)));
    path.remove_prefix(std::min(step.size() + 1, path.size()));
    return step;
}

Json AsJson(const SignalKLeaf& leaf, const std::string& meta) {
    Json json{{"value", Json::parse(leaf.value)}, {"timestamp", IsoTime(leaf.time)}, {"$source", "halyrig"}};
    if (!meta.empty()) json["meta"] = Json::parse(meta);
    return json;
}

void Put(Json& vessel, const SignalKLeaf& leaf, const std::string& meta) {
    Json* at = &vessel;
    for (std::string_view path = leaf.path->path; !path.empty();) at = &(*at)[TakeStep(path, '.')];
    at->update(AsJson(leaf, meta));
}

}  // namespace

std::string SignalKDiscovery(std::string_view host) {
    const std::string at = std::string(host) + "/signalk/v1/";
    return JsonLine(
        {{"endpoints",
          {{"v1", {{"version", kVersion}, {"signalk-http", "http://" + at + "api/"}, {"signalk-ws", "ws://" + at + "stream"}}}}},
         {"server", {{"id", "halyrig"}, {"version", HALYRIG_VERSION}}}});
}

void SignalKUpdates::Add(const SignalKLeaf& leaf) {
    const std::int64_t at = ToMillisecond(leaf.time);
    if (text_.empty() || at != millisecond_) {
        text_ += text_.empty() ? R"({"$source":"halyrig","timestamp":")" : R"(]},{"$source":"halyrig","timestamp":")";
        AppendIsoTime(text_, leaf.time);
        text_ += R"(","values":[)";
    } else {
        text_ += ',';
    }
    millisecond_ = at;
    ((((text_ += R"({"path":")") += leaf.path->path) += R"(","value":)") += leaf.value) += '}';
}

WebMessage SignalKUpdates::TakeMessage(const std::string& context, const std::string& meta) {
    std::string message = R"({"context":")" + context + R"(","updates":[)";
    if (!meta.empty()) message += R"({"$source":"halyrig","meta":[)" + meta + "]},";
    message += text_ + "]}]}";
    text_.clear();
    return std::make_shared<const std::string>(std::move(message));
}

void SignalKTree::Take() {
    if (!lookout_.Core()) EndAll();
    auto changes = lookout_.Changes();
    while (!changes.empty()) {
        const auto ofBoat = TakeBoat(changes);
        Take(ofBoat.front().boat, SignalKChanges(ofBoat));
    }
    ownChanges_ = own_.Empty() ? nullptr : own_.TakeMessage(ContextOf(0));
}

void SignalKTree::Take(BoatSlot boat, const SignalKChanges& changes) {
    for (const SignalKPath& path : SignalKPaths()) {
        const std::optional<double> time = changes.TimeOf(path);
        if (!time) continue;
        SetSignalKValue(value_, path, boat, lookout_.Following());
        SignalKLeaf*& leaf = byPlace_[{boat, &path}];
        if (value_.empty() && (!leaf || leaf->value == "null")) continue;
        if (!leaf) leaf = &leaves_.emplace_back(SignalKLeaf{boat, &path});
        leaf->value = value_.empty() ? "null" : value_;
        leaf->time = *time;
        ++leaf->changes;
        if (boat == 0) own_.Add(*leaf);
    }
}

// With the record gone, nothing holds any more.
void SignalKTree::EndAll() {
    for (SignalKLeaf& leaf : leaves_) {
        if (leaf.value == "null") continue;
        leaf.value = "null";
        leaf.time = lookout_.Time();
        ++leaf.changes;
        if (leaf.boat == 0) own_.Add(leaf);
    }
}

std::string SignalKTree::ContextOf(BoatSlot boat) const {
    static const std::string kOwn = "vessels." + OwnUuid();
    const CCore* core = lookout_.Core();
    if (boat != 0) return core ? SignalKContext(*core->View(), boat) : std::string();
    const std::string byMmsi = core ? SignalKMmsi(*core->View(), 0) : std::string();
    return byMmsi.empty() ? kOwn : "vessels." + byMmsi;
}

std::string SignalKTree::MetaOf(const SignalKLeaf& leaf) const {
    return lookout_.Core() ? SignalKMeta(*leaf.path, *lookout_.Core()) : std::string();
}

std::optional<std::string> SignalKTree::At(std::string_view path) const {
    const std::string self = ContextOf(0);
    Json all{{"version", kVersion},
             {"self", self},
             {"vessels", Json::object()},
             {"sources", {{"halyrig", {{"label", "halyrig"}, {"type", "halyrig"}}}}}};
    Json& vessels = all["vessels"];
    vessels[self.substr(self.find('.') + 1)] = Json::object();
    for (const SignalKLeaf& leaf : leaves_) {
        const std::string context = ContextOf(leaf.boat);
        if (!context.empty()) Put(vessels[context.substr(context.find('.') + 1)], leaf, MetaOf(leaf));
    }
    if (lookout_.Core()) {
        const std::string name = ToUtf8(FieldText(lookout_.Core()->View()->boats[0].name));
        if (!name.empty()) vessels[self.substr(self.find('.') + 1)]["name"] = name;
    }
    const Json* at = &all;
    for (bool ofVessels = false; !path.empty();) {
        std::string step = TakeStep(path, '/');
        if (ofVessels && step == "self") step = self.substr(self.find('.') + 1);
        ofVessels = at == &all && step == "vessels";
        const auto found = at->is_object() ? at->find(step) : at->end();
        if (found == at->end()) return std::nullopt;
        at = &*found;
    }
    return JsonLine(*at);
}

}  // namespace twr
