#include "platform/linux/xml_encoding.h"

#include <iconv.h>

#include <cerrno>
#include <cstdint>

namespace twr {
namespace {

constexpr int kInvalid = -1;
constexpr int kTwoBytes = -2;

// The character of these bytes; kTwoBytes when they are only the beginning of one.
int Decode(iconv_t converter, const char* bytes, std::size_t count) {
    char in[2] = {};
    for (std::size_t i = 0; i < count; ++i) in[i] = bytes[i];
    std::uint32_t character = 0;
    char* from = in;
    char* to = reinterpret_cast<char*>(&character);
    std::size_t room = sizeof character;
    iconv(converter, nullptr, nullptr, nullptr, nullptr);
    if (iconv(converter, &from, &count, &to, &room) == static_cast<std::size_t>(-1)) return errno == EINVAL ? kTwoBytes : kInvalid;
    iconv(converter, nullptr, nullptr, &to, &room);  // some hold a character back to see whether an accent follows
    return room == 0 ? static_cast<int>(character) : kInvalid;
}

int DecodePair(void* converter, const char* bytes) {
    const int character = Decode(converter, bytes, 2);
    return character < 0 ? kInvalid : character;
}

}  // namespace

int FindXmlEncoding(void*, const XML_Char* name, XML_Encoding* encoding) {
    const iconv_t converter = iconv_open("UTF-32LE", name);
    if (converter == reinterpret_cast<iconv_t>(-1)) return XML_STATUS_ERROR;
    for (int byte = 0; byte < 256; ++byte) {
        const char in = static_cast<char>(byte);
        int& entry = encoding->map[byte];
        entry = Decode(converter, &in, 1);
        // Windows reads the gaps of its code pages as the control characters of these numbers.
        if (entry == kInvalid && byte >= 0x80 && byte < 0xA0) entry = byte;
    }
    encoding->data = converter;
    encoding->convert = DecodePair;
    encoding->release = [](void* used) { iconv_close(used); };
    return XML_STATUS_OK;
}

}  // namespace twr
