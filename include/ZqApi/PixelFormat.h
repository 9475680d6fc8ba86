#pragma once

#include <cstddef>
#include <cstdint>

#include <Base/GCString.h>

namespace ZqApi {

using GenICam::gcstring;

/// Pixel formats, as the 32-bit codes of the GenICam Pixel Format Naming Convention.
///
/// The top byte is 1 for monochrome and Bayer, 2 for colour formats; bits 16 to 23 hold the bits per pixel.
/// Bit 31 marks a maker's own code.
enum EZqPixelFormatNamingConvention_t : uint32_t {
    // Monochrome, from 1 bit packed to 16 bit; "p" packs pixels without gaps, least significant bit first.
    ZqPixelFormat_Mono1p = 0x01010037,
    ZqPixelFormat_Mono2p = 0x01020038,
    ZqPixelFormat_Mono4p = 0x01040039,
    ZqPixelFormat_Mono8 = 0x01080001,
    ZqPixelFormat_Mono10 = 0x01100003,
    ZqPixelFormat_Mono10p = 0x010A0046,
    ZqPixelFormat_Mono12 = 0x01100005,
    ZqPixelFormat_Mono12p = 0x010C0047,
    ZqPixelFormat_Mono14 = 0x01100025,
    ZqPixelFormat_Mono14p = 0x010E0104,
    ZqPixelFormat_Mono16 = 0x01100007,
    // Raw Bayer mosaics; the letters are the colours of the first two pixels of the first line.
    ZqPixelFormat_BayerGR4p = 0x0104010D,
    ZqPixelFormat_BayerRG4p = 0x0104010E,
    ZqPixelFormat_BayerGB4p = 0x0104010F,
    ZqPixelFormat_BayerBG4p = 0x01040110,
    ZqPixelFormat_BayerGR8 = 0x01080008,
    ZqPixelFormat_BayerGR10 = 0x0110000C,
    ZqPixelFormat_BayerGR10p = 0x010A0056,
    ZqPixelFormat_BayerGR12 = 0x01100010,
    ZqPixelFormat_BayerGR12p = 0x010C0057,
    ZqPixelFormat_BayerGR14 = 0x01100109,
    ZqPixelFormat_BayerGR14p = 0x010E0105,
    ZqPixelFormat_BayerGR16 = 0x0110002E,
    ZqPixelFormat_BayerRG8 = 0x01080009,
    ZqPixelFormat_BayerRG10 = 0x0110000D,
    ZqPixelFormat_BayerRG10p = 0x010A0058,
    ZqPixelFormat_BayerRG12 = 0x01100011,
    ZqPixelFormat_BayerRG12p = 0x010C0059,
    ZqPixelFormat_BayerRG14 = 0x0110010A,
    ZqPixelFormat_BayerRG14p = 0x010E0106,
    ZqPixelFormat_BayerRG16 = 0x0110002F,
    ZqPixelFormat_BayerGB8 = 0x0108000A,
    ZqPixelFormat_BayerGB10 = 0x0110000E,
    ZqPixelFormat_BayerGB10p = 0x010A0054,
    ZqPixelFormat_BayerGB12 = 0x01100012,
    ZqPixelFormat_BayerGB12p = 0x010C0055,
    ZqPixelFormat_BayerGB14 = 0x0110010B,
    ZqPixelFormat_BayerGB14p = 0x010E0107,
    ZqPixelFormat_BayerGB16 = 0x01100030,
    ZqPixelFormat_BayerBG8 = 0x0108000B,
    ZqPixelFormat_BayerBG10 = 0x0110000F,
    ZqPixelFormat_BayerBG10p = 0x010A0052,
    ZqPixelFormat_BayerBG12 = 0x01100013,
    ZqPixelFormat_BayerBG12p = 0x010C0053,
    ZqPixelFormat_BayerBG14 = 0x0110010C,
    ZqPixelFormat_BayerBG14p = 0x010E0108,
    ZqPixelFormat_BayerBG16 = 0x01100031,
    // Packed layouts of the GigE Vision standard: two pixels in three bytes.
    ZqPixelFormat_GVSP_Mono10Packed = 0x010C0004,
    ZqPixelFormat_GVSP_Mono12Packed = 0x010C0006,
    ZqPixelFormat_GVSP_BayerGR10Packed = 0x010C0026,
    ZqPixelFormat_GVSP_BayerGR12Packed = 0x010C002A,
    ZqPixelFormat_GVSP_BayerRG10Packed = 0x010C0027,
    ZqPixelFormat_GVSP_BayerRG12Packed = 0x010C002B,
    ZqPixelFormat_GVSP_BayerGB10Packed = 0x010C0028,
    ZqPixelFormat_GVSP_BayerGB12Packed = 0x010C002C,
    ZqPixelFormat_GVSP_BayerBG10Packed = 0x010C0029,
    ZqPixelFormat_GVSP_BayerBG12Packed = 0x010C002D,
    // Colour, components interleaved; "a" has an alpha component, "p32" packs a pixel into 32 bits.
    ZqPixelFormat_RGB8 = 0x02180014,
    ZqPixelFormat_BGR8 = 0x02180015,
    ZqPixelFormat_BGR10 = 0x02300019,
    ZqPixelFormat_BGR12 = 0x0230001B,
    ZqPixelFormat_BGR14 = 0x0230004A,
    ZqPixelFormat_BGR16 = 0x0230004B,
    ZqPixelFormat_RGBa8 = 0x02200016,
    ZqPixelFormat_BGRa8 = 0x02200017,
    ZqPixelFormat_BGRa10 = 0x0240004C,
    ZqPixelFormat_BGRa12 = 0x0240004E,
    ZqPixelFormat_BGRa14 = 0x02400050,
    ZqPixelFormat_BGRa16 = 0x02400051,
    ZqPixelFormat_RGB10p32 = 0x0220001D,
    ZqPixelFormat_CBGR10p32 = 0x82200001,
    // Luma and chroma; the digits are the subsampling, BT.601 or BT.709 where named.
    ZqPixelFormat_YCbCr8 = 0x0218005B,
    ZqPixelFormat_YCbCr411_8 = 0x020C005A,
    ZqPixelFormat_YCbCr422_8 = 0x0210003B,
    ZqPixelFormat_YCbCr709_422_8 = 0x02100041,
    // One plane per component.
    ZqPixelFormat_RGB8_Planar = 0x02180021,
    ZqPixelFormat_RGB10_Planar = 0x02300022,
    ZqPixelFormat_RGB12_Planar = 0x02300023,
    ZqPixelFormat_RGB16_Planar = 0x02300024,
    // More interleaved colour.
    ZqPixelFormat_RGB16 = 0x02300033,
    ZqPixelFormat_BGR10p = 0x021E0048,
    ZqPixelFormat_BGR12p = 0x02240049,
    ZqPixelFormat_RGB10p = 0x021E005C,
    ZqPixelFormat_RGB12p = 0x0224005D,
    // More luma and chroma; the suffix spells the order of the components in memory.
    ZqPixelFormat_YCbCr601_422_8 = 0x0210003E,
    ZqPixelFormat_YCbCr411_8_CbYYCrYY = 0x020C003C,
    ZqPixelFormat_YCbCr601_411_8_CbYYCrYY = 0x020C003F,
    ZqPixelFormat_YCbCr709_411_8_CbYYCrYY = 0x020C0042,
    ZqPixelFormat_YCbCr422_8_CbYCrY = 0x02100043,
    ZqPixelFormat_YCbCr601_422_8_CbYCrY = 0x02100044,
    ZqPixelFormat_YCbCr709_422_8_CbYCrY = 0x02100045,
    ZqPixelFormat_YCbCr8_CbYCr = 0x0218003A,
    ZqPixelFormat_YCbCr601_8_CbYCr = 0x0218003D,
    ZqPixelFormat_YCbCr709_8_CbYCr = 0x02180040,
    ZqPixelFormat_YUV411_8_UYYVYY = 0x020C001E,
    ZqPixelFormat_YUV422_8_UYVY = 0x0210001F,
    ZqPixelFormat_YUV8_UYV = 0x02180020,
    ZqPixelFormat_YUV422_8 = 0x02100032,
    /// No format: an unknown code, or a cut through a packed Bayer mosaic that no format describes.
    ZqPixelFormat_Unknown = 0xFFFFFFFF
};

/// The colour filter over a pixel; for Bayer mosaics the colours of it and of its right neighbour.
enum EZqPixelColorFilter_t : int32_t {
    ZqPixelColorFilter_None = 0, ///< colour formats without a mosaic
    ZqPixelColorFilter_Mono = 1,
    ZqPixelColorFilter_BayerRG = 2,
    ZqPixelColorFilter_BayerGR = 3,
    ZqPixelColorFilter_BayerGB = 4,
    ZqPixelColorFilter_BayerBG = 5
};

/// The memory layout and meaning of one pixel format: a constant record of the catalogue.
///
/// Obtained from GetIZqPixelFormatInfo; owned by the library until the last ZqApiTerminate. Any thread.
/// Widths and increments are in pixels, pitches and alignments in bytes.
class IZqPixelFormatInfo {
public:
    virtual EZqPixelFormatNamingConvention_t GetValue() const = 0;
    /// "Mono8", "BayerRG12p", "YCbCr422_8", ...
    virtual gcstring GetName() const = 0;
    /// For people. The packed Bayer formats 10p, 12p and 14p name another phase there; go by the name.
    virtual gcstring GetDescription() const = 0;
    /// Bits that a pixel takes in memory, padding included.
    virtual size_t GetEachPixelTotalBitCount() const = 0;
    virtual size_t GetEachComponentTotalBitCount() const = 0;
    /// Significant bits of a component.
    virtual size_t GetEachComponentValidBitCount() const = 0;
    /// Total bits of a pixel by total bits of a component, rounded down: 1 for 4:1:1 formats.
    virtual size_t GetEachPixelTotalComponentCount() const = 0;
    /// 3 for planar formats, otherwise 1.
    virtual size_t GetPlaneCount() const = 0;
    /// Horizontal step at which a pixel starts on a byte: offsets and widths of regions are multiples of it.
    virtual size_t GetPixelIncrementX() const = 0;
    virtual size_t GetPixelIncrementY() const = 0;
    /// True for Bayer formats as well.
    virtual bool IsColor() const = 0;
    virtual bool IsMono() const = 0;
    virtual bool IsBayer() const = 0;
    virtual bool IsCompressed() const = 0;
    /// The filter over the pixel at column `x`, line `y`.
    virtual EZqPixelColorFilter_t GetPixelColorFilter(size_t x, size_t y) const = 0;
    /// The alignment that the format asks of a line pitch.
    virtual size_t GetLinePitchAlignment() const = 0;
    /// Bytes of a line of `width` pixels (of one plane), rounded up to `alignment` where that is above 1.
    virtual size_t GetRequiredLinePitch(size_t width, size_t alignment) const = 0;
    virtual size_t GetEachPixelValidBitCount() const = 0;
    virtual size_t GetEachPixelValidComponentCount() const = 0;
    /// The format of the same data read from (x, y) on: another Bayer phase at odd offsets, and
    /// ZqPixelFormat_Unknown for packed mosaics at odd columns, which can't be cut there.
    virtual EZqPixelFormatNamingConvention_t GetOffsettedPixelFormat(size_t x, size_t y) const = 0;
    /// Components stored blue first; set for monochrome and Bayer formats too.
    virtual bool IsBGROrder() const = 0;
    /// A packed layout of the GigE Vision standard.
    virtual bool IsGevSp() const = 0;

protected:
    ~IZqPixelFormatInfo() = default;
};

} // namespace ZqApi
