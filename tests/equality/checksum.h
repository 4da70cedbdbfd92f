// One number for many results, so that every build can be held to the same ones.
#pragma once
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>

namespace twr::testing {

// 64-bit FNV-1a.
class Checksum {
public:
    void Add(const void* bytes, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i) {
            sum_ = (sum_ ^ static_cast<const unsigned char*>(bytes)[i]) * 1099511628211u;
        }
    }
    template <class Number>
        requires std::is_arithmetic_v<Number>
    void Add(Number number) {
        Add(&number, sizeof number);
    }
    void Add(std::u16string_view text) { Add(text.data(), text.size() * sizeof(char16_t)); }

    std::uint64_t Sum() const { return sum_; }

private:
    std::uint64_t sum_ = 14695981039346656037u;
};

// The same numbers in every build, which the standard library's distributions don't promise.
class Random {
public:
    explicit Random(std::uint32_t seed) : state_(seed) {}

    std::uint32_t Next() { return state_ = state_ * 1664525u + 1013904223u; }
    double Between(double low, double high) { return low + (high - low) * (Next() >> 8) / 16777216.0; }

private:
    std::uint32_t state_;
};

}  // namespace twr::testing
