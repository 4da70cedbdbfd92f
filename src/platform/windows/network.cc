// SPDX-License-Identifier: MIT
#include "platform/network.h"

// In the order that they need.
// clang-format off
#include "platform/windows/win32.h"
#include <ws2tcpip.h>
#include <iphlpapi.h>
// clang-format on

#include <atomic>
#include <deque>

#include "base/wide_text.h"

namespace twr {
namespace {

// dnsapi.dll's, of Windows 10 and later, as its header has them.
struct ServiceInstance;
struct RegisterRequest {
    ULONG version = 1;  // DNS_QUERY_REQUEST_VERSION1
    ULONG interfaceIndex = 0;
    ServiceInstance* instance = nullptr;
    void(WINAPI* done)(DWORD, void*, ServiceInstance*) = nullptr;
    void* context = nullptr;
    HANDLE credentials = nullptr;
    BOOL unicast = FALSE;
};

class DnsApi {
public:
    bool Load() {
        const HMODULE library = LoadLibraryExW(L"dnsapi.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
        return library && Find(library, construct, "DnsServiceConstructInstance") && Find(library, add, "DnsServiceRegister") &&
               Find(library, remove, "DnsServiceDeRegister");
    }

    ServiceInstance*(WINAPI* construct)(PCWSTR, PCWSTR, void*, void*, WORD, WORD, WORD, DWORD, PCWSTR*, PCWSTR*) = nullptr;
    DWORD(WINAPI* add)(RegisterRequest*, void*) = nullptr;
    DWORD(WINAPI* remove)(RegisterRequest*, void*) = nullptr;

private:
    template <class Function>
    static bool Find(HMODULE library, Function& function, const char* name) {
        function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
        return function != nullptr;
    }
};

std::atomic<bool> heard = false;

// The system may use an instance for as long as the process runs, so it is never released. What comes of a request is told in a
// thread of the system.
void WINAPI Hear(DWORD status, void*, ServiceInstance*) {
    if (status == ERROR_SUCCESS) heard = true;
}

class ByDnsApi final : public Announcement {
public:
    explicit ByDnsApi(const DnsApi& api) : api_(api) {}
    ~ByDnsApi() override {
        for (RegisterRequest& request : requests_) api_.remove(&request, nullptr);
    }
    ByDnsApi(const ByDnsApi&) = delete;
    ByDnsApi& operator=(const ByDnsApi&) = delete;

    bool IsHeard() const override { return heard; }

    void Add(const std::string& name, const std::wstring& host, std::uint16_t port, const AnnouncedService& service) {
        const std::string text = service.text;
        const std::wstring key = ToWide(FromUtf8(text.substr(0, text.find('='))));
        const std::wstring value = ToWide(FromUtf8(text.substr(text.find('=') + 1)));
        const std::wstring whole = ToWide(FromUtf8(name + "." + service.type + ".local"));
        const std::wstring machine = host + L".local";
        PCWSTR keys[] = {key.c_str()}, values[] = {value.c_str()};
        ServiceInstance* instance = api_.construct(whole.c_str(), machine.c_str(), nullptr, nullptr, port, 0, 0, 1, keys, values);
        if (!instance) return;
        requests_.emplace_back().instance = instance;
        requests_.back().done = Hear;
        api_.add(&requests_.back(), nullptr);
    }

private:
    const DnsApi api_;
    std::deque<RegisterRequest> requests_;
};

std::string TextOf(SOCKADDR& address) {
    char text[INET6_ADDRSTRLEN] = "";
    void* digits = address.sa_family == AF_INET ? static_cast<void*>(&reinterpret_cast<sockaddr_in&>(address).sin_addr)
                                                : &reinterpret_cast<sockaddr_in6&>(address).sin6_addr;
    return inet_ntop(address.sa_family, digits, text, sizeof text) ? text : "";
}

bool IsLinkLocal(SOCKADDR& address) {
    return address.sa_family == AF_INET6 && IN6_IS_ADDR_LINKLOCAL(&reinterpret_cast<sockaddr_in6&>(address).sin6_addr);
}

}  // namespace

std::vector<std::string> OwnAddresses() {
    constexpr ULONG kFlags = GAA_FLAG_SKIP_ANYCAST | GAA_FLAG_SKIP_MULTICAST | GAA_FLAG_SKIP_DNS_SERVER;
    ULONG size = 0;
    GetAdaptersAddresses(AF_UNSPEC, kFlags, nullptr, nullptr, &size);
    std::vector<std::uint64_t> room(size / sizeof(std::uint64_t) + 1);
    auto* all = reinterpret_cast<IP_ADAPTER_ADDRESSES*>(room.data());
    size = static_cast<ULONG>(room.size() * sizeof(std::uint64_t));
    if (GetAdaptersAddresses(AF_UNSPEC, kFlags, nullptr, all, &size) != NO_ERROR) return {};
    std::vector<std::string> v4, v6;
    for (; all; all = all->Next) {
        if (all->OperStatus != IfOperStatusUp || all->IfType == IF_TYPE_SOFTWARE_LOOPBACK) continue;
        for (const auto* one = all->FirstUnicastAddress; one; one = one->Next) {
            SOCKADDR& address = *one->Address.lpSockaddr;
            if (address.sa_family == AF_INET) v4.push_back(TextOf(address));
            if (address.sa_family == AF_INET6 && !IsLinkLocal(address)) v6.push_back(TextOf(address));
        }
    }
    v4.insert(v4.end(), v6.begin(), v6.end());
    return v4;
}

// Windows has none.
std::optional<QrCode> DrawQrCode(const std::string&) { return std::nullopt; }

std::unique_ptr<Announcement> Announce(const std::string& name, std::uint16_t port, const std::vector<AnnouncedService>& services) {
    DnsApi api;
    wchar_t host[256] = L"";
    DWORD length = 256;
    if (!api.Load() || !GetComputerNameExW(ComputerNameDnsHostname, host, &length)) return nullptr;
    auto announcement = std::make_unique<ByDnsApi>(api);
    for (const AnnouncedService& service : services) announcement->Add(name, host, port, service);
    return announcement;
}

}  // namespace twr
