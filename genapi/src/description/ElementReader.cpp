#include "genapi/src/description/ElementReader.h"

namespace GENAPI_NAMESPACE::inside {

NodeIndex ElementReader::Require(const Element& element) {
    const NodeIndex target = Find(element);
    if (target == kNoNode)
        Fail(NameOf(element) + " " + Quoted(element.text) + " does not exist");
    return target;
}

Number ElementReader::AnyNumber(const Element& element) {
    const auto number = ParseNumber(element.text);
    if (!number)
        Fail("the " + NameOf(element) + " " + Quoted(element.text) + " is no number");
    return number.value_or(Number());
}

EAccessMode ReadMode(std::string_view text, EAccessMode fallback) {
    if (EqualIgnoringCase(text, "R") || EqualIgnoringCase(text, "RO"))
        return RO;
    if (EqualIgnoringCase(text, "W") || EqualIgnoringCase(text, "WO"))
        return WO;
    return EqualIgnoringCase(text, "RW") ? RW : fallback;
}

std::string Quoted(std::string_view text) {
    return "'" + std::string(text.substr(0, 100)) + "'";
}

} // namespace GENAPI_NAMESPACE::inside
