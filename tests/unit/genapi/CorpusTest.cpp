// Real descriptions, compared with what an independent implementation says of them. Where the two differ, a
// rule must say why: it is about what stands in the description, never about a file or a feature.
#include "Camera.h"
#include "PatternPort.h"

#include <nlohmann/json.hpp>
#include <pugixml.hpp>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <optional>
#include <regex>
#include <set>
#include <sstream>

using namespace GenICam;
using namespace GenApi;

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

std::string Content(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

/// The other side looks neither at predicates nor at access modes when it reads.
std::string WithoutPredicates(const std::string& xml) {
    static const std::regex predicate("<(pIs(Implemented|Available|Locked)|ImposedAccessMode)>[^<]*</[^>]*>");
    return std::regex_replace(xml, predicate, "");
}
std::string AllReadable(const std::string& xml) {
    static const std::regex writeOnly("<AccessMode>\\s*WO\\s*</AccessMode>");
    return std::regex_replace(xml, writeOnly, "<AccessMode>RW</AccessMode>");
}

struct Opened {
    explicit Opened(const std::string& xml)
        : map(CNodeMapFactory(ContentType_Xml, xml.data(), xml.size(), CacheUsage_Ignore).CreateNodeMap()) {
        map._Connect(&port);
    }
    std::vector<std::string> Texts(INode* node, const char* property) const {
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

    bool HasUnbuiltEntry(INode* enumeration) const {
        for (const std::string& entry : Texts(enumeration, "EnumEntry"))
            if (INode* node = map._GetNode(entry.c_str()))
                if (!Texts(node, "BuildError").empty())
                    return true;
        return false;
    }

    PatternPort port;
    CNodeMapRef map;
};

/// A node and all that its value is made of; with limits, also all that these are made of.
class Closure {
public:
    Closure(const Opened& opened, INode* start, bool limits) : m_opened(opened), m_limits(limits) {
        Add(start);
    }
    /// The node alone.
    Closure(const Opened& opened, INode* only) : nodes{only}, m_opened(opened), m_limits(false) {}

    template <class Predicate>
    bool Any(Predicate&& predicate) const {
        return std::any_of(nodes.begin(), nodes.end(), predicate);
    }
    bool HasText(const std::vector<const char*>& properties, const std::regex& pattern) const {
        return Any([&](INode* node) {
            for (const char* property : properties)
                for (const std::string& text : m_opened.Texts(node, property))
                    if (std::regex_search(text, pattern))
                        return true;
            return false;
        });
    }
    bool HasFormula(const std::regex& pattern) const {
        return HasText({"Formula", "FormulaTo", "FormulaFrom", "Expression"}, pattern);
    }
    bool HasProperty(const char* property) const {
        return Any([&](INode* node) { return !m_opened.Texts(node, property).empty(); });
    }

    std::set<INode*> nodes;

private:
    void Add(INode* node) {
        if (!node || !nodes.insert(node).second)
            return;
        for (const char* property : {"pValue", "pVariable", "pAddress", "pIndex", "pLength", "pValueIndexed",
                                     "pValueDefault", "pPort", "pChunkID"})
            Follow(node, property);
        if (m_limits)
            for (const char* property : {"pMin", "pMax", "pInc"})
                Follow(node, property);
    }
    void Follow(INode* node, const char* property) {
        for (const std::string& name : m_opened.Texts(node, property))
            Add(m_opened.map._GetNode(name.c_str()));
    }

    const Opened& m_opened;
    const bool m_limits;
};

/// One answer, of either side.
struct Answer {
    std::string text; ///< or message
    bool failed = false;
};

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

Answer OurAnswer(INode* node, const std::string& kind) {
    try {
        return {Ask(node, kind), false};
    } catch (const GenericException& failure) {
        return {failure.GetDescription(), true};
    }
}

bool HasFunctionAsVariable(const Closure& closure) {
    static const std::set<std::string> functions{"SGN",   "NEG",  "ATAN",  "COS",  "SIN",  "TAN",
                                                 "ABS",   "EXP",  "LN",    "LG",   "SQRT", "TRUNC",
                                                 "FLOOR", "CEIL", "ROUND", "ASIN", "ACOS"};
    return closure.Any([](INode* node) {
        gcstring value;
        gcstring names;
        node->GetProperty("pVariable", value, names);
        std::istringstream list(names.c_str());
        for (std::string name; std::getline(list, name, '\t');)
            if (functions.count(name) != 0)
                return true;
        return false;
    });
}

bool HasBooleanVariable(const Opened& opened, INode* node) {
    const std::vector<std::string> variables = opened.Texts(node, "pVariable");
    return std::any_of(variables.begin(), variables.end(), [&](const std::string& name) {
        return CBooleanPtr(opened.map._GetNode(name.c_str())).IsValid();
    });
}

/// A formula whose own value can't be computed, not only that of what it reads.
bool HasFailingFormula(INode* node) {
    const std::string name = std::string("'") + node->GetName().c_str() + "'";
    const Answer answer = CIntegerPtr(node) || CFloatPtr(node) ? OurAnswer(node, "value") : Answer();
    return answer.failed && (answer.text.find("formula of " + name) != std::string::npos ||
                             answer.text.find(name + " is not readable: its formula") != std::string::npos);
}

/// The same description without something that the other side does not know. What it answers differently
/// there is due to that; null where there is nothing of it.
struct Alternatives {
    Alternatives(const std::string& xml, const Opened& opened)
        : unpadded(Unpadded(xml)), unswapped(Replaced(xml, "<SwapEndianess>[^<]*</[^>]*>", "")),
          inFloats(Replaced(xml, "<(/?)IntConverter\\b", "<$1Converter")), zeroed(Zeroed(xml, opened)) {}

    const std::unique_ptr<Opened> unpadded;  ///< references with white space around them lead nowhere
    const std::unique_ptr<Opened> unswapped; ///< ports take bytes as they come
    const std::unique_ptr<Opened> inFloats;  ///< no converter computes in integers
    const std::unique_ptr<Opened> zeroed;    ///< formulas that the other side can't compute are 0

private:
    static std::unique_ptr<Opened> Replaced(const std::string& xml, const char* pattern, const char* by) {
        const std::string rest = std::regex_replace(xml, std::regex(pattern), by);
        return rest == xml ? nullptr : std::make_unique<Opened>(rest);
    }

    /// Formulas that lose a variable with that are 0 as well.
    static std::unique_ptr<Opened> Unpadded(const std::string& xml) {
        static const std::regex padded("<p[A-Z]\\w*( [^>]*)?>\\s[^<]*</[^>]*>");
        const std::string rest = std::regex_replace(xml, padded, "");
        if (rest == xml)
            return nullptr;
        auto opened = std::make_unique<Opened>(rest);
        auto zeroed = Zeroed(rest, *opened);
        return zeroed ? std::move(zeroed) : std::move(opened);
    }

    static std::unique_ptr<Opened> Zeroed(const std::string& xml, const Opened& opened) {
        static const std::regex integerAbs("\\bABS\\b");
        std::set<std::string> names;
        NodeList_t nodes;
        opened.map._GetNodes(nodes);
        for (INode* node : nodes) {
            const Closure own(opened, node);
            const bool unknown = own.HasFormula(integerAbs) && CIntegerPtr(node).IsValid();
            if (unknown || HasFunctionAsVariable(own) || HasBooleanVariable(opened, node) ||
                HasFailingFormula(node))
                names.insert(node->GetName().c_str());
        }
        if (names.empty())
            return nullptr;
        const size_t root = xml.find("<RegisterDescription");
        pugi::xml_document document;
        document.load_buffer(xml.data() + root, xml.size() - root);
        SetToZero(document, names);
        std::ostringstream text;
        document.save(text, "", pugi::format_raw);
        return std::make_unique<Opened>(text.str());
    }
    static void SetToZero(pugi::xml_node parent, const std::set<std::string>& names) {
        for (pugi::xml_node node : parent.children()) {
            if (names.count(node.attribute("Name").value()) != 0) {
                const char* const formula = node.child("FormulaFrom") ? "FormulaFrom" : "Formula";
                if (!node.child(formula))
                    node.append_child(formula);
                node.child(formula).text().set("0");
            }
            SetToZero(node, names);
        }
    }
};

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

/// The node that is compared, and where it stands.
struct Subject {
    const Opened& opened;
    const Alternatives& otherwise;
    INode* node;
    const Json& row;
};

struct Difference {
    const Subject& subject;
    std::string kind;
    Answer ours;
    Answer theirs;

    bool IsLimit() const { return kind == "min" || kind == "max" || kind == "inc"; }
    bool TheyFailWith(const char* part) const {
        return theirs.failed && theirs.text.find(part) != std::string::npos;
    }
    bool WeFailWith(const char* part) const {
        return ours.failed && ours.text.find(part) != std::string::npos;
    }
};

bool IsOneOf(const std::string& text, std::initializer_list<const char*> list) {
    return std::any_of(list.begin(), list.end(), [&](const char* each) { return text == each; });
}

bool IsOpenEnd(const std::string& text) {
    return IsOneOf(text, {"-9223372036854775808", "9223372036854775807", "-1.7976931348623157e+308",
                          "1.7976931348623157e+308"});
}

/// Theirs is what we answer for a description that lacks something.
bool AgreesWith(const Difference& d, const std::unique_ptr<Opened>& other) {
    INode* const node = other ? other->map._GetNode(d.subject.node->GetName()) : nullptr;
    return node && Same(OurAnswer(node, d.kind), d.theirs);
}

/// Where the other side takes a formula for 0: it has no value, or uses what that does not know.
const char* ReasonForZero(const Difference& d, const Closure& closure) {
    static const std::regex integerAbs("\\bABS\\b");
    if (!AgreesWith(d, d.subject.otherwise.zeroed))
        return "";
    if (HasFunctionAsVariable(closure))
        return "a variable may be named like a function";
    if (closure.Any(HasFailingFormula))
        return "a formula without a value is an error, not 0";
    if (closure.HasFormula(integerAbs))
        return "integer formulas may use every function";
    const auto hasBoolean = [&](INode* node) { return HasBooleanVariable(d.subject.opened, node); };
    return closure.Any(hasBoolean) ? "a Boolean may stand in a formula" : "";
}

/// A converter whose formula neither rises nor falls all the way, or one over a value that can't be read or
/// is open at one end at least; floats of four bytes are open at the ends of theirs.
bool HasOpenRange(const Opened& opened, INode* converter) {
    if (opened.Texts(converter, "FormulaFrom").empty())
        return false;
    const std::vector<std::string> slope = opened.Texts(converter, "Slope");
    if (!slope.empty() && slope.front() == "Varying")
        return true;
    for (const std::string& name : opened.Texts(converter, "pValue")) {
        INode* const behind = opened.map._GetNode(name.c_str());
        if (OurAnswer(behind, "value").failed)
            return true;
        for (const char* kind : {"min", "max"}) {
            const std::string limit = OurAnswer(behind, kind).text;
            if (IsOpenEnd(limit) || std::fabs(std::atof(limit.c_str())) == std::numeric_limits<float>::max())
                return true;
        }
    }
    return false;
}

/// Limits of the value behind a converter go through the formula. They sort the two, we follow the slope
/// where one is declared, even when a device's values turn it round; they give numbers for ends that are
/// open, and fail where the formula has no value.
bool IsConverterLimit(const Difference& d, const Closure& closure) {
    if (d.kind == "inc" || !closure.HasProperty("FormulaFrom"))
        return false;
    if (IsOpenEnd(d.ours.text))
        return d.TheyFailWith("division by zero") ||
               closure.Any([&](INode* node) { return HasOpenRange(d.subject.opened, node); });
    const Json& row = d.subject.row;
    if (d.theirs.failed || !row.contains("min") || !row.contains("max"))
        return false;
    const std::string opposite = d.kind == "min" ? "max" : "min";
    static const std::regex declared("Increasing|Decreasing");
    return Same(d.ours, {TheirText(opposite, row.at(opposite)), false}) &&
           closure.HasText({"Slope"}, declared) &&
           std::atof(TheirText("min", row.at("min")).c_str()) <=
               std::atof(TheirText("max", row.at("max")).c_str());
}

/// What a register of that many bits holds, from the text of the description alone.
std::string RangeOfBits(const Opened& opened, INode* reg, const std::string& kind) {
    const auto number = [&](const char* property, long otherwise) {
        const std::vector<std::string> texts = opened.Texts(reg, property);
        return texts.empty() ? otherwise : std::strtol(texts.front().c_str(), nullptr, 0);
    };
    long bits = 8 * static_cast<long>(CRegisterPtr(reg)->GetLength());
    if (!opened.Texts(reg, "Bit").empty())
        bits = 1;
    else if (!opened.Texts(reg, "LSB").empty())
        bits = std::labs(number("MSB", 0) - number("LSB", 0)) + 1;
    const std::vector<std::string> sign = opened.Texts(reg, "Sign");
    const bool isSigned = !sign.empty() && sign.front() == "Signed";
    constexpr long kWidest = 64;
    if (isSigned || bits == kWidest) {
        const int64_t highest = INT64_MAX >> (kWidest - bits);
        return std::to_string(kind == "max"                ? highest
                              : isSigned || bits < kWidest ? -highest - 1
                                                           : INT64_MIN);
    }
    return kind == "max" ? std::to_string((uint64_t{1} << bits) - 1) : "0";
}

/// The tightest limit of the nodes that a value goes to.
std::string LimitBehind(const Difference& d) {
    const Opened& opened = d.subject.opened;
    std::optional<double> tightest;
    std::string text;
    for (const char* property : {"pValue", "pValueCopy"})
        for (const std::string& name : opened.Texts(d.subject.node, property)) {
            const Answer limit = OurAnswer(opened.map._GetNode(name.c_str()), d.kind);
            const double value = std::atof(limit.text.c_str());
            if (tightest && (d.kind == "min" ? value <= *tightest : value >= *tightest))
                continue;
            tightest = value;
            text = limit.text;
        }
    return text;
}

/// Where the description gives no limit the other side has none. Ours is that of the type, of the bits of the
/// register or of the value behind.
bool IsLimitByDefault(const Difference& d) {
    const Opened& opened = d.subject.opened;
    INode* const node = d.subject.node;
    const std::string element = d.kind == "min" ? "Min" : d.kind == "max" ? "Max" : "Inc";
    if (!d.IsLimit() || !opened.Texts(node, element.c_str()).empty() ||
        !opened.Texts(node, ("p" + element).c_str()).empty())
        return false;
    if (d.kind == "inc")
        return IsOneOf(d.ours.text, {"1", "none"}) || d.ours.text == LimitBehind(d);
    if (IsOpenEnd(d.ours.text))
        return true;
    if (CRegisterPtr(node).IsValid() && CIntegerPtr(node).IsValid())
        return d.ours.text == RangeOfBits(opened, node, d.kind);
    const std::string behind = LimitBehind(d);
    return !behind.empty() && Same(d.ours, {behind, false});
}

/// As the other side has value and entries.
bool HasNoEntryOfItsValue(const Json& row) {
    const Json& entries = row.at("entries");
    return std::none_of(entries.begin(), entries.end(),
                        [&](const Json& entry) { return entry.at("v") == row.at("ivalue"); });
}

/// What both sides can be asked for, without a doubt of theirs.
std::string ReasonOutside(const Difference& d) {
    if (d.TheyFailWith("node not found") && IsLimitByDefault(d))
        return "a limit that the file does not give";
    if (d.kind == "inc" && d.ours.text == "none" && IsLimitByDefault(d))
        return "a limit that the file does not give"; // a float has no increment but its own
    if (d.TheyFailWith("Buffer not found") || d.TheyFailWith("Events not implemented") ||
        d.WeFailWith("is not connected"))
        return "chunk and event ports";
    if (AgreesWith(d, d.subject.otherwise.unpadded))
        return "padded references";
    if (d.WeFailWith("could not be built"))
        return "references to nodes that are missing";
    if (d.WeFailWith("has an impossible length"))
        return "lengths beyond all reason are refused";
    if (d.kind == "svalue" && d.WeFailWith("has no entry") && d.theirs.text.empty() &&
        HasNoEntryOfItsValue(d.subject.row))
        return "a value without an entry is an error";
    if (d.kind == "inc" && IsOneOf(d.ours.text, {"1", "none"}) && std::atof(d.theirs.text.c_str()) <= 0)
        return "an increment of 0 or below counts as none";
    if (d.kind == "unit" && d.theirs.text.empty() && d.subject.opened.Texts(d.subject.node, "Unit").empty())
        return "a unit comes from the value behind where there is none";
    const std::string tag = d.subject.row.at("tag");
    if (d.kind == "vis" && tag == "StructEntry" && d.theirs.text == "0")
        return "an entry takes from its structure what it does not say";
    return "";
}

/// Why the two differ; empty when no rule knows.
std::string Reason(const Difference& d) {
    const std::string outside = ReasonOutside(d);
    if (!outside.empty())
        return outside;
    const Closure closure(d.subject.opened, d.subject.node, d.IsLimit());
    if (closure.HasProperty("BuildError") && (d.ours.failed || IsOpenEnd(d.ours.text)))
        return "references to nodes that are missing";
    if (d.subject.opened.HasUnbuiltEntry(d.subject.node))
        return "entries without a Value element are left out";
    static const std::regex lazy("\\?|&&|\\|\\|");
    if (d.TheyFailWith("division by zero") && closure.HasFormula(lazy))
        return "branches that are not chosen are not evaluated";
    if (const std::string zero = ReasonForZero(d, closure); !zero.empty())
        return zero;
    if (closure.HasProperty("SwapEndianess") && AgreesWith(d, d.subject.otherwise.unswapped))
        return "SwapEndianess";
    if (d.IsLimit() && d.kind != "inc" && IsConverterLimit(d, closure))
        return "limits of a converter follow its slope, and open ends stay open";
    const bool bareBoolean = CBooleanPtr(d.subject.node).IsValid() &&
                             d.subject.opened.Texts(d.subject.node, "OnValue").empty() &&
                             d.subject.opened.Texts(d.subject.node, "OffValue").empty();
    if (bareBoolean && d.ours.text == "1" && d.theirs.text == "0")
        return "without OnValue and OffValue all but 0 is true";
    if (d.IsLimit() && closure.Any([](INode* node) { return CEnumerationPtr(node).IsValid(); }))
        return "the limits of an enumeration are those of its entries";
    const bool integerConverter = closure.Any([&](INode* node) {
        return CIntegerPtr(node).IsValid() && !d.subject.opened.Texts(node, "FormulaFrom").empty();
    });
    if (integerConverter && AgreesWith(d, d.subject.otherwise.inFloats))
        return "IntConverter is evaluated in integers";
    return "";
}

const char* const kKinds[] = {"addr", "len",  "bytes",  "value",   "ivalue",   "svalue",  "min", "max",
                              "inc",  "unit", "maxlen", "entries", "features", "selects", "vis"};

struct Tally {
    int same = 0;
    int explained = 0;
    int unexplained = 0;
};

class Comparison {
public:
    void Compare(const fs::path& file, const fs::path& expected) {
        const std::string xml = AllReadable(WithoutPredicates(Content(file)));
        const Opened opened(xml);
        const Alternatives otherwise(xml, opened);
        std::ifstream lines(expected);
        for (std::string line; std::getline(lines, line);) {
            const Json row = Json::parse(line);
            INode* const node = opened.map._GetNode(row.at("name").get<std::string>().c_str());
            if (!node) {
                ADD_FAILURE() << file << " lacks " << row.at("name");
                continue;
            }
            for (const char* kind : kKinds)
                CompareOne({opened, otherwise, node, row}, kind);
        }
    }

    std::map<std::string, Tally> tallies;
    std::map<std::string, int> reasons;

private:
    void CompareOne(const Subject& subject, const std::string& kind) {
        const Json& row = subject.row;
        Answer theirs;
        if (row.contains(kind))
            theirs.text = TheirText(kind, row.at(kind));
        else if (row.contains(kind + "_err"))
            theirs = {row.at(kind + "_err").get<std::string>(), true};
        else
            return;
        const Answer ours = OurAnswer(subject.node, kind);
        Tally& tally = tallies[kind];
        if (Same(ours, theirs)) {
            ++tally.same;
            return;
        }
        const std::string reason = Reason({subject, kind, ours, theirs});
        ++(reason.empty() ? tally.unexplained : tally.explained);
        if (!reason.empty()) {
            ++reasons[kind + ": " + reason];
            return;
        }
        if (tally.unexplained <= 25)
            std::cout << kind << " of " << row.at("tag").get<std::string>() << " "
                      << subject.node->GetName().c_str() << ": ours " << ours.text << ", theirs "
                      << theirs.text << "\n";
    }
};

} // namespace

TEST(Corpus, AgreesWithAnIndependentImplementation) {
    const char* const folder = std::getenv("ZQAPI_TEST_DATA");
    if (!folder)
        GTEST_SKIP() << "ZQAPI_TEST_DATA is not set";
    Comparison comparison;
    const fs::path corpus = fs::path(folder) / "corpus";
    for (const auto& file : fs::directory_iterator(corpus))
        if (file.path().extension() == ".xml")
            comparison.Compare(file.path(), corpus / "expected" / (file.path().stem().string() + ".jsonl"));
    for (const auto& [reason, count] : comparison.reasons)
        std::cout << "differs, explained: " << reason << " " << count << "\n";
    for (const auto& [kind, tally] : comparison.tallies) {
        const int all = tally.same + tally.explained + tally.unexplained;
        std::cout << kind << ": " << tally.same << " of " << all << " agree, " << tally.explained
                  << " differ with a reason\n";
        EXPECT_EQ(tally.unexplained, 0) << kind;
    }
    EXPECT_GT(comparison.tallies["value"].same, 20000);
}
