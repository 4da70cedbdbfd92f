#include <string_view>

#include "platform/linux/registry_text.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    twr::RegistryText text(std::string_view(reinterpret_cast<const char*>(data), size));
    text.Find(u"HKEY_CURRENT_USER\\Software\\Tidewright\\core", u"Sys_v0");
    text.Set(u"HKEY_CURRENT_USER\\Software\\Tidewright\\core", u"Sys_v0", twr::StringValue(u"1"));
    // What was set is found again, whatever stood there before.
    const twr::RegistryText again(text.Bytes());
    if (again.Find(u"HKEY_CURRENT_USER\\Software\\Tidewright\\core", u"Sys_v0") != twr::StringValue(u"1")) __builtin_trap();
    return 0;
}
