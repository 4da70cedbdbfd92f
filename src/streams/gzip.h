// SPDX-License-Identifier: MIT
// Bytes packed by gzip, and unpacked.
#pragma once
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "base/byte_source.h"

namespace twr {

// Packs bytes as they come.
class GzipPacker {
public:
    GzipPacker();
    ~GzipPacker();
    GzipPacker(const GzipPacker&) = delete;
    GzipPacker& operator=(const GzipPacker&) = delete;

    // Packs more bytes; with what was given before, the result can be unpacked up to their end.
    std::string Pack(std::string_view bytes);

    // The end of the whole, after which nothing may follow.
    std::string Finish();

private:
    struct State;
    std::string Deflate(std::string_view bytes, int flush);

    const std::unique_ptr<State> state_;
};

// Bytes in memory, unpacked if they are packed.
std::string Unpacked(std::string_view packed);

// The bytes of a file, unpacked if it is packed, which its first bytes tell. Packed parts may follow each other. A file that was
// cut, by a kill or a power cut, gives all that can be unpacked, and is no fault.
class UnpackingSource : public ByteSource {
public:
    // `goOn` is asked again and again, whatever the file holds, since a small one may unpack to any length, or to nothing for long.
    // Once it returns false, the bytes end.
    explicit UnpackingSource(std::unique_ptr<ByteSource> file, std::function<bool()> goOn = {});
    ~UnpackingSource() override;

    std::size_t Read(char* to, std::size_t room) override;
    std::string Failure() const override { return file_->Failure(); }

    // Why the bytes have ended early: they can't be read, or are not of gzip. Empty at the end, and while there is more.
    std::string Fault() const;

private:
    struct State;
    bool Refill();
    void Begin();
    void Count(std::size_t bytes);

    const std::unique_ptr<ByteSource> file_;
    const std::function<bool()> goOn_;
    std::size_t sinceAsked_ = 0;  // bytes that were read or unpacked
    const std::unique_ptr<State> state_;
    bool begun_ = false;
    bool packed_ = false;
    bool damaged_ = false;
    bool ended_ = false;
};

}  // namespace twr
