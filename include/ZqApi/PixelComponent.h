#pragma once

#include <ZqApi/Types.h>

namespace ZqApi {

class IZqImage;

/// What one value of a pixel is: bits 24 to 31 hold the kind (1 mono, 2 red, 3 green, 4 blue, 5 green beside
/// red in a Bayer mosaic, 6 green beside blue, 7 luma, 8 and 9 blue- and red-difference chroma, 10 U, 11 V),
/// bits 16 to 23 the bit count.
enum EZqPixelComponent_t : uint32_t {
    ZqPixelComponent_Unknown = 0x00000000,
    ZqPixelComponent_Mono1 = 0x01010000,
    ZqPixelComponent_Mono2 = 0x01020000,
    ZqPixelComponent_Mono4 = 0x01040000,
    ZqPixelComponent_Mono8 = 0x01080000,
    ZqPixelComponent_Mono10 = 0x010A0000,
    ZqPixelComponent_Mono12 = 0x010C0000,
    ZqPixelComponent_Mono14 = 0x010E0000,
    ZqPixelComponent_Mono16 = 0x01100000,
    ZqPixelComponent_R4 = 0x02040000,
    ZqPixelComponent_R8 = 0x02080000,
    ZqPixelComponent_R10 = 0x020A0000,
    ZqPixelComponent_R12 = 0x020C0000,
    ZqPixelComponent_R14 = 0x020E0000,
    ZqPixelComponent_R16 = 0x02100000,
    ZqPixelComponent_G4 = 0x03040000,
    ZqPixelComponent_G8 = 0x03080000,
    ZqPixelComponent_G10 = 0x030A0000,
    ZqPixelComponent_G12 = 0x030C0000,
    ZqPixelComponent_G14 = 0x030E0000,
    ZqPixelComponent_G16 = 0x03100000,
    ZqPixelComponent_B4 = 0x04040000,
    ZqPixelComponent_B8 = 0x04080000,
    ZqPixelComponent_B10 = 0x040A0000,
    ZqPixelComponent_B12 = 0x040C0000,
    ZqPixelComponent_B14 = 0x040E0000,
    ZqPixelComponent_B16 = 0x04100000,
    ZqPixelComponent_Gr4 = 0x05040000,
    ZqPixelComponent_Gr8 = 0x05080000,
    ZqPixelComponent_Gr10 = 0x050A0000,
    ZqPixelComponent_Gr12 = 0x050C0000,
    ZqPixelComponent_Gr14 = 0x050E0000,
    ZqPixelComponent_Gr16 = 0x05100000,
    ZqPixelComponent_Gb4 = 0x06040000,
    ZqPixelComponent_Gb8 = 0x06080000,
    ZqPixelComponent_Gb10 = 0x060A0000,
    ZqPixelComponent_Gb12 = 0x060C0000,
    ZqPixelComponent_Gb14 = 0x060E0000,
    ZqPixelComponent_Gb16 = 0x06100000,
    ZqPixelComponent_Y8 = 0x07080000,
    ZqPixelComponent_Cb8 = 0x08080000,
    ZqPixelComponent_Cr8 = 0x09080000,
    ZqPixelComponent_U8 = 0x0A080000,
    ZqPixelComponent_V8 = 0x0B080000,
};

/// Name and depth of one kind of pixel component. Owned by the library until the last ZqApiTerminate; any
/// thread.
class IZqPixelComponentInfo {
public:
    virtual EZqPixelComponent_t GetValue() const = 0;
    /// "Mono8", "Gr12", "Cb8", ...
    virtual gcstring GetName() const = 0;
    virtual size_t GetBitCount() const = 0;

protected:
    ~IZqPixelComponentInfo() = default;
};

/// The components of one pixel: one for monochrome and Bayer pixels, three for colour ones; raw samples, not
/// scaled.
///
/// The object belongs to its image and changes with the image's next GetIZqPixelComponentValue.
class IZqPixelComponentValue {
public:
    virtual size_t GetCount() = 0;
    /// Throws GenICam::OutOfRangeException when `index` is not below the count.
    virtual uint64_t GetValue(size_t index) = 0;
    virtual EZqPixelComponent_t GetPixelComponent(size_t index) = 0;
    /// Reads the pixel at column `x` and line `y` of the image; null stops the process. Throws
    /// GenICam::OutOfRangeException outside the image and GenICam::RuntimeException "Not supported
    /// pixelformat %s".
    virtual void SetPixelComponent(IZqImage* pIZqImage, size_t x, size_t y) = 0;

protected:
    ~IZqPixelComponentValue() = default;
};

} // namespace ZqApi
