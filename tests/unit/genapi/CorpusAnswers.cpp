#include "CorpusAnswers.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace corpus {

using namespace GenICam;
using namespace GenApi;
using Json = nlohmann::json;

Opened::Opened(const std::string& xml)
    : map(CNodeMapFactory(ContentType_Xml, xml.data(), xml.size(), CacheUsage_Ignore).CreateNodeMap()) {
    map._Connect(&port);
}

std::vector<std::string> Opened::Texts(INode* node, const char* property) const {
    std::vector<std::string> texts;
    gcstring value;
    gcstring attribute;
    if (!node->GetProperty(property, value, attribute))
        return texts;
    std::istringstream list(value.c_str());
    for (std::string text; std::getline(list, text, '\t');)
        texts.push_back(text);
    return texts;
}

bool Opened::HasUnbuiltEntry(INode* enumeration) const {
    for (const std::string& entry : Texts(enumeration, "EnumEntry"))
        if (INode* node = map._GetNode(entry.c_str()))
            if (!Texts(node, "BuildError").empty())
                return true;
    return false;
}

namespace {

std::string NumberText(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

std::string Latin1(const Json& utf8) {
    std::string bytes;
    for (const char c : utf8.get<std::string>()) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80)
            bytes += c;
        else if (byte >= 0xC0)
            bytes += static_cast<char>((byte & 3) << 6);
        else
            bytes.back() = static_cast<char>(static_cast<unsigned char>(bytes.back()) | (byte & 0x3F));
    }
    return bytes;
}

std::string Join(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts)
        all += text + ";";
    return all;
}
template <class List>
std::string NamesOf(const List& list) {
    std::vector<std::string> names;
    for (auto* each : list)
        names.push_back(each->GetNode()->GetName().c_str());
    return Join(names);
}

} // namespace

/// Their answer in the form of ours. They list entries from the last to the first, ours stand in the order of
/// the file.
std::string TheirText(const std::string& kind, const Json& value) {
    if (kind == "entries") {
        std::vector<std::string> entries;
        for (const Json& entry : value)
            entries.push_back(Latin1(entry.at("n")) + "=" + std::to_string(entry.at("v").get<int64_t>()));
        std::reverse(entries.begin(), entries.end());
        return Join(entries);
    }
    if (value.is_array())
        return Join(value.get<std::vector<std::string>>());
    if (value.is_null())
        return "";
    if (kind == "vis")
        return std::to_string(3 - value.get<int>());
    if (value.is_string())
        return Latin1(value);
    return value.is_number_integer() ? std::to_string(value.get<int64_t>()) : NumberText(value.get<double>());
}
namespace {

std::string BytesOf(IRegister& reg) {
    std::vector<uint8_t> bytes(static_cast<size_t>(reg.GetLength()));
    reg.Get(bytes.data(), static_cast<int64_t>(bytes.size()));
    std::string text;
    char digits[3];
    for (const uint8_t byte : bytes) {
        std::snprintf(digits, sizeof digits, "%02x", byte);
        text += digits;
    }
    return text;
}

std::string ValueOf(INode* node) {
    if (const CIntegerPtr integer = node)
        return std::to_string(integer->GetValue());
    if (const CFloatPtr number = node)
        return NumberText(number->GetValue());
    if (const CBooleanPtr boolean = node)
        return boolean->GetValue() ? "1" : "0";
    if (const CStringPtr text = node) {
        const gcstring value = text->GetValue();
        return std::string(value.c_str(), value.size());
    }
    return std::to_string(CEnumerationPtr(node)->GetIntValue());
}

std::string LimitOf(INode* node, const std::string& kind) {
    if (const CIntegerPtr integer = node)
        return std::to_string(kind == "min"   ? integer->GetMin()
                              : kind == "max" ? integer->GetMax()
                                              : integer->GetInc());
    const CFloatPtr number = node;
    if (kind == "inc")
        return number->HasInc() ? NumberText(number->GetInc()) : "none";
    return NumberText(kind == "min" ? number->GetMin() : number->GetMax());
}

std::string EntriesOf(IEnumeration& enumeration) {
    std::vector<std::string> texts;
    NodeList_t entries;
    enumeration.GetEntries(entries);
    for (INode* entry : entries)
        texts.push_back(std::string(CEnumEntryPtr(entry)->GetSymbolic().c_str()) + "=" +
                        std::to_string(CEnumEntryPtr(entry)->GetValue()));
    return Join(texts);
}

std::string ListOf(INode* node, const std::string& kind) {
    FeatureList_t list;
    if (kind == "features")
        CCategoryPtr(node)->GetFeatures(list);
    else
        CSelectorPtr(node)->GetSelectedFeatures(list);
    return NamesOf(list);
}

std::string Ask(INode* node, const std::string& kind) {
    if (kind == "addr")
        return std::to_string(CRegisterPtr(node)->GetAddress());
    if (kind == "len")
        return std::to_string(CRegisterPtr(node)->GetLength());
    if (kind == "bytes")
        return BytesOf(*CRegisterPtr(node));
    if (kind == "value" || kind == "ivalue")
        return ValueOf(node);
    if (kind == "svalue")
        return CEnumerationPtr(node)->ToString().c_str();
    if (kind == "min" || kind == "max" || kind == "inc")
        return LimitOf(node, kind);
    if (kind == "unit")
        return (CIntegerPtr(node) ? CIntegerPtr(node)->GetUnit() : CFloatPtr(node)->GetUnit()).c_str();
    if (kind == "maxlen")
        return std::to_string(CStringPtr(node)->GetMaxLength());
    if (kind == "entries")
        return EntriesOf(*CEnumerationPtr(node));
    if (kind == "vis")
        return std::to_string(int{node->GetVisibility()});
    return ListOf(node, kind);
}
} // namespace

Answer OurAnswer(INode* node, const std::string& kind) {
    try {
        return {Ask(node, kind), false};
    } catch (const GenericException& failure) {
        return {failure.GetDescription(), true};
    }
}
bool Same(const Answer& ours, const Answer& theirs) {
    if (ours.failed || theirs.failed)
        return ours.failed == theirs.failed;
    if (ours.text == theirs.text)
        return true;
    if (ours.text.empty() || theirs.text.empty())
        return false;
    char* end = nullptr;
    const double left = std::strtod(ours.text.c_str(), &end);
    if (end == ours.text.c_str() || *end)
        return false;
    const double right = std::strtod(theirs.text.c_str(), &end);
    if (end == theirs.text.c_str() || *end)
        return false;
    if (std::isnan(left) && std::isnan(right))
        return true;
    if (left == 0 && right == 0)
        return true;
    const bool whole = ours.text.find_first_not_of("-0123456789") == std::string::npos &&
                       theirs.text.find_first_not_of("-0123456789") == std::string::npos;
    return !whole && std::fabs(left - right) <= 1e-9 * std::fabs(right);
}

} // namespace corpus
