#pragma once

#include "genapi/src/document/ElementName.h"
#include "genapi/src/image/Flat.h"

namespace GENAPI_NAMESPACE::inside {

/// One child element of a node: what it is, its text and the one attribute that matters.
struct Element {
    ElementName name = ElementName::FirstUnknown;
    AttributeName attributeName = AttributeName::None;
    Text text;
    Text attribute;
};

/// One node as the file has it, after structures have been taken apart.
struct SourceNode {
    ElementName tag = ElementName::FirstUnknown;
    bool standard = false;    ///< NameSpace="Standard"
    int8_t mergePriority = 0; ///< against a node of the same name, where descriptions are merged
    Text name;
    List<Element> elements;
};

struct SourceHeader {
    Text modelName;
    Text vendorName;
    Text toolTip;
    Text standardNameSpace;
    Text productGuid;
    Text versionGuid;
    uint16_t schema[3] = {1, 1, 0};
    uint16_t device[3] = {0, 0, 0};
};

/// A description in a flat form, before names are resolved: a list of nodes that have names and elements.
/// Groups and extensions are gone; entries of enumerations and of structures, and formulas inside addresses,
/// are nodes. Part of an image.
struct Document {
    SourceHeader header;
    List<SourceNode> nodes;
    List<Text> unknownNames;
    List<Text> repeated;   ///< names of nodes left out, because there was one of the name already
    List<uint32_t> places; ///< a hash table of one more than the place of each node; 0 is free

    static constexpr uint32_t kNowhere = 0xFFFFFFFF;
    /// The place of a node among the nodes, or kNowhere.
    uint32_t Find(std::string_view name) const;
    std::string_view NameOf(ElementName name) const {
        return name < ElementName::FirstUnknown
                   ? KnownElementName(name)
                   : unknownNames[static_cast<size_t>(name) - static_cast<size_t>(ElementName::FirstUnknown)];
    }
};

} // namespace GENAPI_NAMESPACE::inside
