// Packs bytes by gzip, as they come.
#pragma once
#include <memory>
#include <string>
#include <string_view>

namespace twr {

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

}  // namespace twr
