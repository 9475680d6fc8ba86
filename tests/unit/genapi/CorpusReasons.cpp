#include "CorpusReasons.h"

#include <pugixml.hpp>

#include <cmath>
#include <initializer_list>
#include <limits>
#include <optional>
#include <sstream>

namespace corpus {

using namespace GenICam;
using namespace GenApi;
using Json = nlohmann::json;

namespace {

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

void SetToZero(pugi::xml_node parent, const std::set<std::string>& names) {
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

std::unique_ptr<Opened> Zeroed(const std::string& xml, const Opened& opened) {
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

/// Formulas that lose a variable with that are 0 as well.
std::unique_ptr<Opened> Unpadded(const std::string& xml) {
    static const std::regex padded("<p[A-Z]\\w*( [^>]*)?>\\s[^<]*</[^>]*>");
    const std::string rest = std::regex_replace(xml, padded, "");
    if (rest == xml)
        return nullptr;
    auto opened = std::make_unique<Opened>(rest);
    auto zeroed = Zeroed(rest, *opened);
    return zeroed ? std::move(zeroed) : std::move(opened);
}

std::unique_ptr<Opened> Replaced(const std::string& xml, const char* pattern, const char* by) {
    const std::string rest = std::regex_replace(xml, std::regex(pattern), by);
    return rest == xml ? nullptr : std::make_unique<Opened>(rest);
}

} // namespace

Alternatives::Alternatives(const std::string& xml, const Opened& opened)
    : unpadded(Unpadded(xml)), unswapped(Replaced(xml, "<SwapEndianess>[^<]*</[^>]*>", "")),
      inFloats(Replaced(xml, "<(/?)IntConverter\\b", "<$1Converter")), zeroed(Zeroed(xml, opened)) {}

namespace {

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
        return std::to_string(kind == "max" ? highest : -highest - 1);
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
} // namespace

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

} // namespace corpus
