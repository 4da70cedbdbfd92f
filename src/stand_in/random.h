// SPDX-License-Identifier: MIT
// Random numbers that are the same on every system for one seed.
#pragma once
#include <cmath>
#include <cstdint>

namespace twr {

class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    // SplitMix64: an odd step through all 64-bit numbers, each well mixed.
    std::uint64_t Next() {
        std::uint64_t z = state_ += 0x9E3779B97F4A7C15U;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
        return z ^ (z >> 31);
    }

    double Uniform(double from, double to) { return from + (to - from) * (static_cast<double>(Next() >> 11) * 0x1p-53); }

    // Close to a normal deviate with mean 0 and deviation 1, and never beyond 6.
    double Normal() {
        double sum = -6.0;
        for (int i = 0; i < 12; ++i) sum += Uniform(0.0, 1.0);
        return sum;
    }

private:
    std::uint64_t state_;
};

// First-order noise: wanders about zero with a deviation and forgets within a time.
class Wander {
public:
    Wander(double deviation, double seconds, double step)
        : keep_(std::exp(-step / seconds)), kick_(deviation * std::sqrt(1.0 - keep_ * keep_)) {}

    void Step(Random& random) { value_ = value_ * keep_ + kick_ * random.Normal(); }
    double Value() const { return value_; }

private:
    double keep_, kick_;
    double value_ = 0.0;
};

}  // namespace twr
