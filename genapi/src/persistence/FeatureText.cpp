#include "genapi/src/persistence/FeatureText.h"

#include "genapi/src/document/Lexical.h"

#include <GenApi/Pointer.h>

#include <algorithm>
#include <cmath>

namespace GENAPI_NAMESPACE::inside {

using GENICAM_NAMESPACE::gcstring;

gcstring StoredText(INode& feature, bool ignoreCache) {
    if (const CIntegerPtr integer = &feature)
        return std::to_string(integer->GetValue(false, ignoreCache)).c_str();
    if (const CFloatPtr number = &feature)
        return ShortestText(number->GetValue(false, ignoreCache)).c_str();
    return CValuePtr(&feature)->ToString(false, ignoreCache);
}

namespace {

bool IsNear(double left, double right) {
    constexpr double kSingle = 1e-6;
    return left == right || std::fabs(left - right) <= kSingle * std::max(std::fabs(left), std::fabs(right));
}

bool SameBytes(std::string_view left, std::string_view right) {
    const auto digits = [](std::string_view text) {
        text = Trim(text);
        return EqualIgnoringCase(text.substr(0, 2), "0x") ? text.substr(2) : text;
    };
    return EqualIgnoringCase(digits(left), digits(right));
}

} // namespace

bool HoldsStoredText(INode& feature, const gcstring& text) {
    const gcstring held = StoredText(feature, true);
    const std::string_view left(held.c_str(), held.size());
    const std::string_view right(text.c_str(), text.size());
    if (left == right)
        return true;
    switch (feature.GetPrincipalInterfaceType()) {
    case intfIInteger: {
        const auto wanted = ParseInteger(Trim(right));
        return wanted && ParseInteger(left) == wanted;
    }
    case intfIFloat: {
        const auto wanted = ParseFloat(Trim(right));
        return wanted && IsNear(*wanted, ParseFloat(left).value_or(NAN));
    }
    case intfIBoolean:
        return EqualIgnoringCase(Trim(right), left == "1" ? "true" : "false");
    case intfIRegister:
        return SameBytes(left, right);
    default:
        return left == Trim(right);
    }
}

void SetFromText(INode& feature, const gcstring& text, bool verify) {
    CValuePtr(&feature)->FromString(text, verify);
}

void PutBack(INode& feature, const gcstring& text) {
    try {
        SetFromText(feature, text, true);
    } catch (const GENICAM_NAMESPACE::OutOfRangeException&) {
        SetFromText(feature, text, false);
    }
}

} // namespace GENAPI_NAMESPACE::inside
