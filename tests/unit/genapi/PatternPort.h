#pragma once

#include <GenApi/GenApi.h>

#include <map>
#include <utility>

/// Memory in which the byte at address `a` is a*31 + 7, and which counts how often each place is read.
class PatternPort final : public GenApi::IPort {
public:
    void Read(void* buffer, int64_t address, int64_t length) override {
        ++reads[{address, length}];
        for (int64_t i = 0; i < length; ++i)
            static_cast<uint8_t*>(buffer)[i] =
                static_cast<uint8_t>(static_cast<uint64_t>(address + i) * 31 + 7);
    }
    void Write(const void*, int64_t, int64_t) override { ++writes; }
    GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }

    std::map<std::pair<int64_t, int64_t>, int> reads;
    int writes = 0;
};
