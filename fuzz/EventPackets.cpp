// Event packets and bare event items, as a device or a producer may send them. The first byte chooses the
// adapter.
#include <GenApi/GenApi.h>

namespace {

const char* const kDescription =
    "<RegisterDescription ModelName='M' VendorName='V' SchemaMajorVersion='1' SchemaMinorVersion='1'>"
    "<Port Name='EventPort'><EventID>9C40</EventID></Port>"
    "<Port Name='OtherPort'><EventID>9001</EventID></Port>"
    "<IntReg Name='Stamp'><Address>8</Address><Length>8</Length><pPort>EventPort</pPort></IntReg>"
    "<IntReg Name='Size'><Address>0</Address><Length>2</Length><pPort>OtherPort</pPort></IntReg>"
    "<StringReg Name='Text'><Address>16</Address><pLength>Size</pLength><pPort>OtherPort</pPort></StringReg>"
    "<Integer Name='Plain'><EventID>9000</EventID><pValue>Stamp</pValue></Integer>"
    "<Port Name='Device'/></RegisterDescription>";

void ReadAll(GenApi::INodeMap& map) {
    for (const char* const name : {"Stamp", "Size", "Text", "Plain"}) {
        const GenApi::CValuePtr value = map.GetNode(name);
        if (GenApi::IsReadable(value))
            value->ToString();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static GenApi::CNodeMapFactory factory{GenICam::gcstring(kDescription)};
    static GenApi::CNodeMapRef map(factory.CreateNodeMap());
    static GenApi::CEventAdapterGEV gev(map._Ptr);
    static GenApi::CEventAdapterU3V u3v(map._Ptr);
    static GenApi::CEventAdapterGeneric generic(map._Ptr);
    if (size == 0)
        return 0;
    const auto length = static_cast<uint32_t>(size - 1);
    try {
        if (data[0] % 3 == 0)
            gev.DeliverMessage(data + 1, length);
        else if (data[0] % 3 == 1)
            u3v.DeliverMessage(data + 1, length);
        else
            generic.DeliverMessage(data + 1, length, uint64_t{0x9001});
    } catch (const GenICam::InvalidArgumentException&) {
        // What is no event is refused.
    }
    ReadAll(*map._Ptr);
    return 0;
}
