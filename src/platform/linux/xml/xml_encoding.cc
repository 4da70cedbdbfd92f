// SPDX-License-Identifier: MIT
#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <memory>

#include "platform/linux/xml/xml.h"

namespace twr {
namespace {

constexpr int kInvalid = -1;
constexpr int kIncomplete = -2;
constexpr std::size_t kLongest = 4;  // bytes of a character; expat takes none beyond U+FFFF

// The characters of one encoding, in which the first byte tells how many bytes a character has.
class Characters {
public:
    explicit Characters(const char* encoding) : converter_(iconv_open("UTF-32LE", encoding)) {}
    Characters(const Characters&) = delete;
    ~Characters() {
        if (Known()) iconv_close(converter_);
    }

    bool Known() const { return converter_ != reinterpret_cast<iconv_t>(-1); }

    // What expat needs to know of a first byte: its character, kInvalid, or how many bytes there are, as a negative number.
    int EntryOf(unsigned char first) {
        std::array<char, kLongest> bytes{static_cast<char>(first)};
        const int character = Decode(bytes.data(), 1);
        // Windows reads the gaps of its code pages as the control characters of these numbers.
        if (character == kInvalid && first >= 0x80 && first < 0xA0) return first;
        if (character != kIncomplete) return character;
        for (std::size_t length = 2; length <= kLongest; ++length) {
            for (int next = 0x40; next < 0xFF; ++next) {
                std::fill_n(bytes.begin() + 1, length - 1, static_cast<char>(next));
                if (Decode(bytes.data(), length) < 0) continue;
                lengths_[first] = length;
                return -static_cast<int>(length);
            }
        }
        return kInvalid;
    }

    // The character of a sequence, or kInvalid.
    int CharacterOf(const char* bytes) { return std::max(Decode(bytes, lengths_[static_cast<unsigned char>(*bytes)]), kInvalid); }

private:
    // The character of these bytes; kIncomplete when they are only the beginning of one.
    int Decode(const char* bytes, std::size_t count) {
        std::array<char, kLongest> in{};
        std::copy_n(bytes, count, in.begin());
        std::uint32_t character = 0;
        char* from = in.data();
        char* to = reinterpret_cast<char*>(&character);
        std::size_t room = sizeof character;
        iconv(converter_, nullptr, nullptr, nullptr, nullptr);
        if (iconv(converter_, &from, &count, &to, &room) == static_cast<std::size_t>(-1))
            return errno == EINVAL ? kIncomplete : kInvalid;
        iconv(converter_, nullptr, nullptr, &to, &room);  // some hold a character back to see whether an accent follows
        return room == 0 ? static_cast<int>(character) : kInvalid;
    }

    iconv_t converter_;
    std::array<std::size_t, 256> lengths_{};
};

}  // namespace

int FindXmlEncoding(void*, const XML_Char* name, XML_Encoding* encoding) {
    auto characters = std::make_unique<Characters>(name);
    if (!characters->Known()) return XML_STATUS_ERROR;
    for (int byte = 0; byte < 256; ++byte) encoding->map[byte] = characters->EntryOf(static_cast<unsigned char>(byte));
    encoding->data = characters.release();
    encoding->convert = [](void* used, const char* bytes) { return static_cast<Characters*>(used)->CharacterOf(bytes); };
    encoding->release = [](void* used) { delete static_cast<Characters*>(used); };
    return XML_STATUS_OK;
}

}  // namespace twr
