// A persistence text, loaded into a map, stored again and written.
#include "fuzz/WalkNodes.h"

#include <cstdlib>
#include <sstream>

namespace {

const char* const kDescription =
    "<RegisterDescription SchemaMajorVersion='1'><Category "
    "Name='Root'><pFeature>X</pFeature><pFeature>E</pFeature>"
    "<pFeature>T</pFeature></Category><Enumeration Name='S'><EnumEntry Name='A'><Value>0</Value></EnumEntry>"
    "<EnumEntry Name='B'><Value>1</Value></EnumEntry><Value>0</Value><pSelected>X</pSelected></Enumeration>"
    "<Integer Name='I'><Value>0</Value><Min>0</Min><pMax>X</pMax><pSelected>X</pSelected></Integer>"
    "<Integer Name='X'><Streamable>Yes</Streamable><Value>3</Value><Min>0</Min><Max>20</Max></Integer>"
    "<Float Name='F'><Streamable>Yes</Streamable><Value>3</Value></Float>"
    "<String Name='T'><Streamable>Yes</Streamable><Value>t</Value></String>"
    "<Boolean Name='E'><Streamable>Yes</Streamable><Value>true</Value></Boolean></RegisterDescription>";

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace GenApi;
    static CNodeMapFactory factory{GenICam::gcstring(kDescription)};
    const CNodeMapRef map(factory.CreateNodeMap());
    std::istringstream text(std::string(reinterpret_cast<const char*>(data), size));
    CFeatureBag bag;
    try {
        text >> bag;
    } catch (const GenICam::RuntimeException&) {
        // What is no persistence text is refused.
    }
    GenICam::gcstring_vector errors;
    if (bag.LoadFromBag(map._Ptr, true, &errors) != errors.empty())
        std::abort();
    const int64_t count = bag.StoreToBag(map._Ptr);
    std::ostringstream written;
    written << bag;
    std::istringstream again(written.str());
    CFeatureBag same;
    again >> same;
    if (count < 0 || same != bag)
        std::abort();
    return 0;
}
