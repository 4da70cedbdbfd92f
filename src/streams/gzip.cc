// SPDX-License-Identifier: MIT
#include "streams/gzip.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <new>

namespace twr {
namespace {

constexpr int kGzipWindow = 15 + 16;             // zlib's word for the largest window, and gzip's frame
constexpr int kMemory = 8;                       // zlib's usual
constexpr std::size_t kBetweenAsking = 1 << 16;  // bytes; a reader takes some milliseconds for so many
constexpr unsigned char kMark[] = {0x1F, 0x8B};

}  // namespace

struct GzipPacker::State {
    z_stream stream{};
};

// With these arguments only memory can be lacking.
GzipPacker::GzipPacker() : state_(std::make_unique<State>()) {
    if (deflateInit2(&state_->stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGzipWindow, kMemory, Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::bad_alloc();
}

GzipPacker::~GzipPacker() { deflateEnd(&state_->stream); }

std::string GzipPacker::Pack(std::string_view bytes) { return Deflate(bytes, Z_SYNC_FLUSH); }

std::string GzipPacker::Finish() { return Deflate({}, Z_FINISH); }

std::string GzipPacker::Deflate(std::string_view bytes, int flush) {
    z_stream& stream = state_->stream;
    std::string input(bytes);  // zlib takes no pointer to const
    stream.next_in = reinterpret_cast<Bytef*>(input.data());
    stream.avail_in = static_cast<uInt>(input.size());
    std::string packed;
    char chunk[16384];
    do {
        stream.next_out = reinterpret_cast<Bytef*>(chunk);
        stream.avail_out = sizeof chunk;
        deflate(&stream, flush);
        packed.append(chunk, sizeof chunk - stream.avail_out);
    } while (stream.avail_out == 0);
    return packed;
}

struct UnpackingSource::State {
    z_stream stream{};
    std::array<char, 16384> buffer{};
};

UnpackingSource::UnpackingSource(std::unique_ptr<ByteSource> file, std::function<bool()> goOn)
    : file_(std::move(file)), goOn_(std::move(goOn)), state_(std::make_unique<State>()) {
    if (inflateInit2(&state_->stream, kGzipWindow) != Z_OK) throw std::bad_alloc();
}

UnpackingSource::~UnpackingSource() { inflateEnd(&state_->stream); }

void UnpackingSource::Count(std::size_t bytes) {
    sinceAsked_ += bytes;
    if (sinceAsked_ < kBetweenAsking) return;
    sinceAsked_ = 0;
    ended_ = ended_ || (goOn_ && !goOn_());
}

// Behind what is left in the buffer, of which there is less than the mark. False at the file's end.
bool UnpackingSource::Refill() {
    z_stream& stream = state_->stream;
    auto& buffer = state_->buffer;
    std::copy_n(stream.next_in, stream.avail_in, reinterpret_cast<Bytef*>(buffer.data()));
    stream.next_in = reinterpret_cast<Bytef*>(buffer.data());
    const std::size_t got = file_->Read(buffer.data() + stream.avail_in, buffer.size() - stream.avail_in);
    stream.avail_in += static_cast<uInt>(got);
    Count(got);
    return got > 0;
}

void UnpackingSource::Begin() {
    z_stream& stream = state_->stream;
    stream.next_in = reinterpret_cast<Bytef*>(state_->buffer.data());
    while (stream.avail_in < sizeof kMark && Refill()) continue;
    packed_ = stream.avail_in >= sizeof kMark && std::equal(std::begin(kMark), std::end(kMark), stream.next_in);
    begun_ = true;
}

std::string UnpackingSource::Fault() const {
    if (const std::string failure = Failure(); !failure.empty()) return "what follows can't be read: " + failure;
    return damaged_ ? "what follows is damaged, or not packed by gzip" : "";
}

std::size_t UnpackingSource::Read(char* to, std::size_t room) {
    if (!begun_) Begin();
    z_stream& stream = state_->stream;
    if (!packed_) {
        if (stream.avail_in == 0 && !ended_) Refill();
        const std::size_t count = std::min<std::size_t>(room, stream.avail_in);
        std::copy_n(stream.next_in, count, reinterpret_cast<Bytef*>(to));
        stream.next_in += count;
        stream.avail_in -= static_cast<uInt>(count);
        return count;
    }
    stream.next_out = reinterpret_cast<Bytef*>(to);
    stream.avail_out = static_cast<uInt>(room);
    while (stream.avail_out == room && !ended_) {
        if (stream.avail_in == 0 && !Refill()) break;
        const int result = inflate(&stream, Z_NO_FLUSH);
        if (result == Z_STREAM_END) {
            if (stream.avail_in == 0 && !Refill()) ended_ = true;
            inflateReset(&stream);
        } else if (result != Z_OK && result != Z_BUF_ERROR) {
            ended_ = damaged_ = true;
        }
    }
    Count(room - stream.avail_out);
    return room - stream.avail_out;
}

std::string Unpacked(std::string_view packed) {
    struct Packed : ByteSource {
        explicit Packed(std::string_view bytes) : left(bytes) {}
        std::size_t Read(char* to, std::size_t room) override {
            const std::size_t count = left.copy(to, room);
            left.remove_prefix(count);
            return count;
        }
        std::string_view left;
    };
    UnpackingSource source(std::make_unique<Packed>(packed));
    std::string all;
    char bytes[16'384];
    while (const std::size_t count = source.Read(bytes, sizeof bytes)) all.append(bytes, count);
    return all;
}

}  // namespace twr
