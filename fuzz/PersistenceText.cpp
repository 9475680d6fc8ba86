// A feature bag's text: what has been read is written so that it is read again as the same.
#include <ZqApi/ZqApi.h>

#include <cstdint>
#include <cstdlib>

namespace {

// Behind a longer comment or name the rest of the line counts as data, which is kept behaviour and is no
// round trip.
constexpr size_t LINE_CAPACITY = 1024;

GenICam::gcstring WrittenAgain(ZqApi::IZqFeatureBag& bag, const GenICam::gcstring& text) {
    bag.StoreStringToBag(text);
    GenICam::gcstring written;
    bag.SaveToString(written);
    return written;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool initialised = (ZqApi::ZqApiInitialize(ZqApi::ZqApiBuildVersion), true);
    ZqApi::IZqFeatureBagReleasable* const bag = initialised ? ZqApi::CreateIZqFeatureBag() : nullptr;
    try {
        const GenICam::gcstring text(reinterpret_cast<const char*>(data), size);
        const GenICam::gcstring first = WrittenAgain(*bag, text);
        const GenICam::gcstring second = WrittenAgain(*bag, first);
        if (size < LINE_CAPACITY && first != second)
            std::abort();
    } catch (const GenICam::RuntimeException&) {
        // What is no persistence text is refused, and the bag can be written all the same.
        GenICam::gcstring left;
        bag->SaveToString(left);
    }
    bag->Release();
    return 0;
}
