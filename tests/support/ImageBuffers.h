#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include <ZqApi/ZqApi.h>

namespace ZqTest {

/// Gives heap memory of exactly the size asked for, so that a sanitizer sees every byte beyond it, and writes
/// down what it was asked.
class RecordingAllocator final : public ZqApi::IZqAllocator {
public:
    void Allocate(void** ppBuffer, size_t size, void** ppContext) override {
        calls.push_back("Allocate " + std::to_string(size));
        *ppContext = context;
        if (throws)
            throw std::bad_alloc();
        if (!givesNothing)
            *ppBuffer = ::operator new(size);
    }
    void Deallocate(void* pBuffer, size_t size, void* pContext) override {
        calls.push_back("Deallocate " + std::to_string(size) + (pContext == context ? "" : " other context"));
        ::operator delete(pBuffer);
    }
    void OnDeregister() override { calls.push_back("OnDeregister"); }

    std::vector<std::string> calls;
    void* context = &calls;
    bool givesNothing = false;
    bool throws = false;
};

struct ImageReleaser {
    void operator()(ZqApi::IZqImageBufferReleasable* buffer) const { buffer->Release(); }
};
using ImageBuffer = std::unique_ptr<ZqApi::IZqImageBufferReleasable, ImageReleaser>;

inline ImageBuffer MakeImageBuffer(ZqApi::IZqAllocator* allocator = nullptr) {
    return ImageBuffer(ZqApi::CreateIZqImageBuffer(allocator));
}

/// An image of that size, pitch aligned as given.
inline ImageBuffer MakeImage(ZqApi::EZqPixelFormatNamingConvention_t format, size_t width, size_t height,
                             size_t alignment = 0, ZqApi::IZqAllocator* allocator = nullptr) {
    ImageBuffer buffer = MakeImageBuffer(allocator);
    buffer->SetSize(width, height, format, alignment);
    return buffer;
}

inline uint8_t* BytesOf(ZqApi::IZqImage& image) {
    return static_cast<uint8_t*>(image.GetImageBuffer());
}

/// What the image's lines take, planes one after another.
inline size_t SizeOf(ZqApi::IZqImage& image) {
    return image.GetImagePlanePitch() *
           ZqApi::GetIZqPixelFormatInfo(image.GetImagePixelFormat())->GetPlaneCount();
}

/// A pattern without a period that a line or a plane could hide.
inline uint8_t PatternAt(size_t offset) {
    const uint64_t mixed = (offset + 1) * 0x9E3779B97F4A7C15u;
    return static_cast<uint8_t>((mixed ^ mixed >> 29) >> 24);
}

inline void FillWithPattern(ZqApi::IZqImage& image) {
    uint8_t* const bytes = BytesOf(image);
    const size_t size = SizeOf(image);
    for (size_t offset = 0; offset < size; ++offset)
        bytes[offset] = PatternAt(offset);
}

} // namespace ZqTest
