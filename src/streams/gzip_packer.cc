#include "streams/gzip_packer.h"

#include <zlib.h>

#include <new>

namespace twr {
namespace {

constexpr int kGzipWindow = 15 + 16;  // zlib's word for the largest window, and gzip's frame
constexpr int kMemory = 8;            // zlib's usual

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

}  // namespace twr
