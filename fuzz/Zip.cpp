// A packed description as a device may send it.
#include <GenApi/GenApi.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace GenApi;
    try {
        const CNodeMapRef map(
            CNodeMapFactory(ContentType_ZippedXml, data, size, CacheUsage_Ignore).CreateNodeMap());
    } catch (const GenICam::GenericException&) {
        // What is no description is refused.
    }
    return 0;
}
