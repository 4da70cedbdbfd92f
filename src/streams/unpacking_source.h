// The bytes of a file, unpacked if it is packed by gzip.
#pragma once
#include <memory>
#include <string>

#include "base/byte_source.h"

namespace twr {

// gzip is recognised by its first bytes. Packed parts may follow each other. A file that was cut, by a kill or a power cut, gives
// all that can be unpacked, and is no fault.
class UnpackingSource : public ByteSource {
public:
    explicit UnpackingSource(std::unique_ptr<ByteSource> file);
    ~UnpackingSource() override;

    std::size_t Read(char* to, std::size_t room) override;

    // Whether it has ended early because what follows is not of gzip.
    bool Damaged() const { return damaged_; }

private:
    struct State;
    bool Refill();
    void Begin();

    const std::unique_ptr<ByteSource> file_;
    const std::unique_ptr<State> state_;
    bool begun_ = false;
    bool packed_ = false;
    bool damaged_ = false;
    bool ended_ = false;
};

}  // namespace twr
