// SPDX-License-Identifier: MIT
#include "platform/network.h"

#include <arpa/inet.h>
#include <dlfcn.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>

#include <algorithm>
#include <ctime>

namespace twr {
namespace {

// A library's functions; none if it isn't installed. It stays loaded.
class Functions {
public:
    explicit Functions(const char* library) : handle_(dlopen(library, RTLD_NOW | RTLD_LOCAL)) {}

    template <class Function>
    bool Find(Function*& function, const char* name) const {
        function = handle_ ? reinterpret_cast<Function*>(dlsym(handle_, name)) : nullptr;
        return function != nullptr;
    }

private:
    void* const handle_;
};

std::string TextOf(const sockaddr& address) {
    char text[INET6_ADDRSTRLEN] = "";
    const void* digits = address.sa_family == AF_INET
                             ? static_cast<const void*>(&reinterpret_cast<const sockaddr_in&>(address).sin_addr)
                             : &reinterpret_cast<const sockaddr_in6&>(address).sin6_addr;
    return inet_ntop(address.sa_family, digits, text, sizeof text) ? text : "";
}

bool IsLinkLocal(const sockaddr& address) {
    return address.sa_family == AF_INET6 && IN6_IS_ADDR_LINKLOCAL(&reinterpret_cast<const sockaddr_in6&>(address).sin6_addr);
}

// --- libqrencode, as its header has it ---

struct QrLibraryCode {
    int version, width;
    unsigned char* data;
};

// --- Avahi's client, by its own loop, as its headers have them ---

struct AvahiSimplePoll;
struct AvahiPoll;
struct AvahiClient;
struct AvahiEntryGroup;
struct AvahiStringList;

using ClientCallback = void(AvahiClient*, int, void*);
using GroupCallback = void(AvahiEntryGroup*, int, void*);

constexpr int kAnyInterface = -1, kAnyProtocol = -1;
constexpr int kNoFail = 2;   // a daemon that comes later is waited for
constexpr int kRunning = 2;  // of the states of a client; the others of a group
constexpr int kEstablished = 2, kCollision = 3;

class Avahi {
public:
    bool Load() {
        const Functions common("libavahi-common.so.3"), client("libavahi-client.so.3");
        return common.Find(newPoll, "avahi_simple_poll_new") && common.Find(freePoll, "avahi_simple_poll_free") &&
               common.Find(getPoll, "avahi_simple_poll_get") && common.Find(iterate, "avahi_simple_poll_iterate") &&
               common.Find(newText, "avahi_string_list_new") && common.Find(freeText, "avahi_string_list_free") &&
               client.Find(newClient, "avahi_client_new") && client.Find(freeClient, "avahi_client_free") &&
               client.Find(newGroup, "avahi_entry_group_new") && client.Find(addService, "avahi_entry_group_add_service_strlst") &&
               client.Find(commit, "avahi_entry_group_commit") && client.Find(reset, "avahi_entry_group_reset");
    }

    AvahiSimplePoll* (*newPoll)() = nullptr;
    void (*freePoll)(AvahiSimplePoll*) = nullptr;
    const AvahiPoll* (*getPoll)(AvahiSimplePoll*) = nullptr;
    int (*iterate)(AvahiSimplePoll*, int) = nullptr;
    AvahiStringList* (*newText)(const char*, ...) = nullptr;
    void (*freeText)(AvahiStringList*) = nullptr;
    AvahiClient* (*newClient)(const AvahiPoll*, int, ClientCallback*, void*, int*) = nullptr;
    void (*freeClient)(AvahiClient*) = nullptr;
    AvahiEntryGroup* (*newGroup)(AvahiClient*, GroupCallback*, void*) = nullptr;
    int (*addService)(AvahiEntryGroup*, int, int, int, const char*, const char*, const char*, const char*, std::uint16_t,
                      AvahiStringList*) = nullptr;
    int (*commit)(AvahiEntryGroup*) = nullptr;
    int (*reset)(AvahiEntryGroup*) = nullptr;
};

class ByAvahi final : public Announcement {
public:
    ByAvahi(const Avahi& avahi, std::string name, std::uint16_t port, std::vector<AnnouncedService> services)
        : avahi_(avahi), name_(std::move(name)), port_(port), services_(std::move(services)), poll_(avahi_.newPoll()) {
        int error = 0;
        if (poll_) client_ = avahi_.newClient(avahi_.getPoll(poll_), kNoFail, OnClient, this, &error);
    }
    ~ByAvahi() override {
        if (client_) avahi_.freeClient(client_);
        if (poll_) avahi_.freePoll(poll_);
    }
    ByAvahi(const ByAvahi&) = delete;
    ByAvahi& operator=(const ByAvahi&) = delete;

    void Go() override {
        constexpr int kMost = 3;  // events; more wait
        for (int i = 0; client_ && i < kMost && avahi_.iterate(poll_, 0) == 0; ++i) continue;
    }

    bool IsHeard() const override { return heard_; }

private:
    static void OnClient(AvahiClient* client, int state, void* self) { static_cast<ByAvahi*>(self)->Publish(client, state); }
    static void OnGroup(AvahiEntryGroup* group, int state, void* self) { static_cast<ByAvahi*>(self)->Settle(group, state); }

    void Publish(AvahiClient* client, int state) {
        if (state != kRunning) return;
        AvahiEntryGroup* group = avahi_.newGroup(client, OnGroup, this);
        if (group) Add(group);
    }

    void Add(AvahiEntryGroup* group) {
        for (const AnnouncedService& service : services_) {
            AvahiStringList* text = avahi_.newText(service.text, static_cast<const char*>(nullptr));
            avahi_.addService(group, kAnyInterface, kAnyProtocol, 0, name_.c_str(), service.type, nullptr, nullptr, port_, text);
            avahi_.freeText(text);
        }
        avahi_.commit(group);
    }

    // Another machine has the name: it is made one that none has.
    void Settle(AvahiEntryGroup* group, int state) {
        heard_ = state == kEstablished;
        if (state != kCollision) return;
        name_ += " 2";
        avahi_.reset(group);
        Add(group);
    }

    const Avahi avahi_;
    std::string name_;
    const std::uint16_t port_;
    const std::vector<AnnouncedService> services_;
    AvahiSimplePoll* const poll_;
    AvahiClient* client_ = nullptr;
    bool heard_ = false;
};

}  // namespace

std::vector<std::string> OwnAddresses() {
    std::vector<std::string> v4, v6;
    ifaddrs* all = nullptr;
    if (getifaddrs(&all) != 0) return {};
    for (const ifaddrs* one = all; one; one = one->ifa_next) {
        const sockaddr* address = one->ifa_addr;
        if (!address || !(one->ifa_flags & IFF_UP) || (one->ifa_flags & IFF_LOOPBACK) != 0) continue;
        if (address->sa_family == AF_INET) v4.push_back(TextOf(*address));
        if (address->sa_family == AF_INET6 && !IsLinkLocal(*address)) v6.push_back(TextOf(*address));
    }
    freeifaddrs(all);
    v4.insert(v4.end(), v6.begin(), v6.end());
    return v4;
}

std::optional<QrCode> DrawQrCode(const std::string& text) {
    const Functions library("libqrencode.so.4");
    QrLibraryCode* (*encode)(const char*, int, int) = nullptr;
    void (*release)(QrLibraryCode*) = nullptr;
    if (!library.Find(encode, "QRcode_encodeString8bit") || !library.Find(release, "QRcode_free")) return std::nullopt;
    constexpr int kSmallest = 0, kMedium = 1;
    QrLibraryCode* drawn = encode(text.c_str(), kSmallest, kMedium);
    if (!drawn) return std::nullopt;
    QrCode code{static_cast<std::size_t>(drawn->width)};
    for (std::size_t i = 0; i < code.width * code.width; ++i) code.dark.push_back((drawn->data[i] & 1) != 0);
    release(drawn);
    return code;
}

std::unique_ptr<Announcement> Announce(const std::string& name, std::uint16_t port, const std::vector<AnnouncedService>& services) {
    Avahi avahi;
    if (!avahi.Load()) return nullptr;
    return std::make_unique<ByAvahi>(avahi, name, port, services);
}

}  // namespace twr
