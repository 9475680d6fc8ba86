#include "producer/sim/PixelFormat.h"

#include <iterator>

namespace zqgentl {

namespace {

constexpr PixelFormat formats[] = {
#define ZQ_PIXEL_FORMAT(name, code, packing, bits, order, matrix, cxp)                                       \
    {#name, code, Packing::packing, bits, #order, LumaMatrix::matrix, cxp},
#include "producer/sim/PixelFormats.def"
#undef ZQ_PIXEL_FORMAT
};

} // namespace

const PixelFormat* FindPixelFormat(Technology technology, int64_t code) {
    for (const PixelFormat& format : formats) {
        if (format.code != code)
            continue;
        const bool carried = format.packing != Packing::Gvsp || technology == Technology::GigEVision;
        return carried ? &format : nullptr;
    }
    return nullptr;
}

const PixelFormat* PixelFormats(size_t& count) {
    count = std::size(formats);
    return formats;
}

} // namespace zqgentl
