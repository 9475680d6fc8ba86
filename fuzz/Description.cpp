// A description as a device may send it: parsed, and every node asked for all that it has.
#include "fuzz/WalkNodes.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace GenApi;
    try {
        CNodeMapFactory factory(ContentType_Xml, data, size, CacheUsage_Ignore);
        const CNodeMapRef map(factory.CreateNodeMap());
        NodeWalk().Walk(*map._Ptr);
        const CNodeMapRef part(factory.ExtractSubtree("Root").CreateNodeMap());
    } catch (const GenICam::GenericException&) {
        // What is no description is refused.
    }
    return 0;
}
