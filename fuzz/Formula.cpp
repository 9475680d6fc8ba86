// A formula, as integers and as floats, for reading and for both ways of a converter.
#include "fuzz/WalkNodes.h"

#include <string>

namespace {

std::string Literal(const uint8_t* data, size_t size) {
    std::string text = "<![CDATA[" + std::string(reinterpret_cast<const char*>(data), size);
    for (size_t end = text.find("]]>"); end != text.npos; end = text.find("]]>"))
        text.erase(end, 3);
    return text + "]]>";
}

std::string Node(const std::string& type, const std::string& name, const std::string& inside) {
    return "<" + type + " Name='" + name +
           "'><pVariable Name='A'>V</pVariable><pVariable Name='B.Max'>V</pVariable>"
           "<Constant Name='C'>3</Constant><Expression Name='X'>A+C</Expression>" +
           inside + "</" + type + ">";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text = Literal(data, size);
    const std::string knife = "<Formula>" + text + "</Formula>";
    const std::string converter =
        "<FormulaTo>" + text + "</FormulaTo><FormulaFrom>" + text + "</FormulaFrom><pValue>V</pValue>";
    const std::string xml =
        "<RegisterDescription SchemaMajorVersion='1'><Integer Name='V'><Value>5</Value></Integer>" +
        Node("IntSwissKnife", "I", knife) + Node("SwissKnife", "F", knife) +
        Node("IntConverter", "IC", converter) + Node("Converter", "FC", converter) + "</RegisterDescription>";
    try {
        const GenApi::CNodeMapRef map(GenApi::CNodeMapFactory(GenApi::ContentType_Xml, xml.data(), xml.size(),
                                                              GenApi::CacheUsage_Ignore)
                                          .CreateNodeMap());
        NodeWalk().Walk(*map._Ptr);
    } catch (const GenICam::GenericException&) {
        // Bytes that XML can't hold.
    }
    return 0;
}
