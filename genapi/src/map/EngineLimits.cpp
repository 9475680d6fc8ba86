// Limits and increments, from every place that may give them.
#include "genapi/src/map/EngineStep.h"
#include "genapi/src/map/RegisterCode.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace GENAPI_NAMESPACE::inside {

namespace {

constexpr int64_t kLowestInteger = std::numeric_limits<int64_t>::min();
constexpr int64_t kHighestInteger = std::numeric_limits<int64_t>::max();
constexpr double kLowestFloat = std::numeric_limits<double>::lowest();
constexpr double kHighestFloat = std::numeric_limits<double>::max();

/// True at the ends of a type's range: nobody has set such a limit.
bool IsOpen(Number limit) {
    if (limit.isInteger)
        return limit.integer == kLowestInteger || limit.integer == kHighestInteger;
    return limit.real <= -std::numeric_limits<float>::max() ||
           limit.real >= std::numeric_limits<float>::max();
}

bool Less(Number left, Number right) {
    return left.isInteger && right.isInteger ? left.integer < right.integer
                                             : left.AsDouble() < right.AsDouble();
}

} // namespace

Number Engine::Min(NodeIndex node) {
    Number limit = Limit(node, Side::Min);
    if (m_imposed.empty())
        return limit;
    const auto imposed = m_imposed.find(node);
    if (imposed != m_imposed.end() && imposed->second.min && Less(limit, *imposed->second.min))
        limit = *imposed->second.min;
    return limit;
}

Number Engine::Max(NodeIndex node) {
    Number limit = Limit(node, Side::Max);
    if (m_imposed.empty())
        return limit;
    const auto imposed = m_imposed.find(node);
    if (imposed != m_imposed.end() && imposed->second.max && Less(*imposed->second.max, limit))
        limit = *imposed->second.max;
    return limit;
}

void Engine::ImposeMin(NodeIndex node, Number value) {
    m_imposed[node].min = value;
    Changed(node);
}

void Engine::ImposeMax(NodeIndex node, Number value) {
    m_imposed[node].max = value;
    Changed(node);
}

// Most whole numbers have limits that stand in the file, or none.
const Number* Engine::FixedLimit(NodeIndex node, Side side) const {
    static constexpr Number kOpen[] = {Number::Of(kLowestInteger), Number::Of(kHighestInteger)};
    const NodeDescription& description = Node(node);
    if (description.type != NodeType::Integer || !description.error.empty())
        return nullptr;
    const NumberSource& given = side == Side::Min ? description.limits->min : description.limits->max;
    if (given.given)
        return given.node == kNoNode && given.constant.isInteger ? &given.constant : nullptr;
    return description.source->form == SourcePart::Form::Own ? &kOpen[side == Side::Min ? 0 : 1] : nullptr;
}

// In the terms of the node's own kind: limits of a float become whole numbers inside them.
Number Engine::Limit(NodeIndex node, Side side) {
    if (const Number* const fixed = FixedLimit(node, side))
        return *fixed;
    const Level level(*this, node);
    const CacheUse useCache(*this, false);
    const Number limit = OwnLimit(node, side);
    if (Node(node).kind == ValueKind::Float)
        return Number::Of(limit.AsDouble());
    if (limit.isInteger)
        return limit;
    return Number::Of(Truncate(side == Side::Min ? std::ceil(limit.real) : std::floor(limit.real)));
}

Number Engine::OwnLimit(NodeIndex node, Side side) {
    const NodeDescription& description = Node(node);
    const bool isMin = side == Side::Min;
    switch (description.error.empty() ? description.type : NodeType::Other) {
    case NodeType::Integer:
    case NodeType::Float:
        return SourceLimit(node, side);
    case NodeType::IntReg:
    case NodeType::MaskedIntReg: {
        const auto [min, max] =
            FieldRange(FieldOf(*description.reg, LengthOf(node)), description.reg->isSigned);
        return Number::Of(isMin ? min : max);
    }
    case NodeType::FloatReg: {
        const bool narrow = LengthOf(node) == 4;
        const double highest = narrow ? double{std::numeric_limits<float>::max()} : kHighestFloat;
        return Number::Of(isMin ? -highest : highest);
    }
    case NodeType::Boolean:
        return Number::Of(int64_t{isMin ? 0 : 1});
    case NodeType::Enumeration: {
        int64_t limit = isMin ? kHighestInteger : kLowestInteger;
        for (const NodeIndex entry : description.entries)
            limit =
                isMin ? std::min(limit, Node(entry).entry->value) : std::max(limit, Node(entry).entry->value);
        return Number::Of(limit);
    }
    case NodeType::Converter:
    case NodeType::IntConverter:
        return ConverterLimit(node, side);
    default:
        if (description.kind == ValueKind::Float)
            return Number::Of(isMin ? kLowestFloat : kHighestFloat);
        return Number::Of(isMin ? kLowestInteger : kHighestInteger);
    }
}

// A limit that can't be read now is no reason to refuse a value.
std::optional<Number> Engine::GivenNumber(const NumberSource& source) {
    if (!source.given)
        return std::nullopt;
    if (source.node == kNoNode)
        return source.constant;
    if (!IsReadableNode(source.node))
        return std::nullopt;
    try {
        return ReadNumber(source.node);
    } catch (const NoValueNow&) {
        return std::nullopt;
    }
}

Number Engine::SourceLimit(NodeIndex node, Side side) {
    const NodeDescription& description = Node(node);
    const bool isMin = side == Side::Min;
    if (const auto given = GivenNumber(isMin ? description.limits->min : description.limits->max))
        return *given;
    const Number open = description.kind == ValueKind::Float
                            ? Number::Of(isMin ? kLowestFloat : kHighestFloat)
                            : Number::Of(isMin ? kLowestInteger : kHighestInteger);
    const SourcePart& source = *description.source;
    if (source.form == SourcePart::Form::Own)
        return open;
    NodeIndex target = source.node;
    if (source.form == SourcePart::Form::Table) {
        const TableEntry* entry = IsReadableNode(source.index) ? CurrentEntry(source) : nullptr;
        target = entry ? entry->node : kNoNode;
    }
    if (target == kNoNode)
        return open;
    Number limit = isMin ? Min(target) : Max(target);
    for (const NodeIndex copy : source.copies) {
        const Number other = isMin ? Min(copy) : Max(copy);
        if (isMin ? Less(limit, other) : Less(other, limit))
            limit = other;
    }
    return limit;
}

std::optional<double> Engine::ConvertedLimit(NodeIndex node, Number limit) {
    if (IsOpen(limit))
        return std::nullopt;
    try {
        const double value = Evaluate(node, false, &limit).AsDouble();
        return std::isfinite(value) ? std::optional<double>(value) : std::nullopt;
    } catch (const NoValueNow&) {
        return std::nullopt;
    }
}

// Where the formula has no value at an end of the target's range, that side is open.
Number Engine::ConverterLimit(NodeIndex node, Side side) {
    const FormulaPart& part = *Node(node).formula;
    const bool isMin = side == Side::Min;
    const Number open = Node(node).kind == ValueKind::Float
                            ? Number::Of(isMin ? kLowestFloat : kHighestFloat)
                            : Number::Of(isMin ? kLowestInteger : kHighestInteger);
    if (part.slope == Varying || !IsReadable(FormulaModes(node).real))
        return open;
    const auto atMin = ConvertedLimit(node, Min(part.node));
    const auto atMax = ConvertedLimit(node, Max(part.node));
    std::optional<double> limit;
    if (part.slope == Increasing || part.slope == Decreasing)
        limit = (part.slope == Increasing) == isMin ? atMin : atMax;
    else if (atMin && atMax)
        limit = isMin ? std::min(*atMin, *atMax) : std::max(*atMin, *atMax);
    return limit ? Number::Of(*limit) : open;
}

int64_t Engine::Increment(NodeIndex node) {
    return StatedIncrement(node).value_or(1);
}

// Of the node itself, else of the first of its targets that has one.
std::optional<int64_t> Engine::StatedIncrement(NodeIndex node) {
    const NodeDescription& description = Node(node);
    if (description.type != NodeType::Integer || !description.error.empty())
        return std::nullopt;
    const SourcePart& source = *description.source;
    if (!description.limits->inc.given && source.form == SourcePart::Form::Own)
        return std::nullopt;
    return SearchIncrement(node);
}

std::optional<int64_t> Engine::SearchIncrement(NodeIndex node) {
    const NodeDescription& description = Node(node);
    const SourcePart& source = *description.source;
    if (const auto given = GivenNumber(description.limits->inc))
        return std::max<int64_t>(1, given->AsInteger());
    const Level level(*this, node);
    NodeIndex target = source.node;
    if (source.form == SourcePart::Form::Table) {
        const TableEntry* entry = IsReadableNode(source.index) ? CurrentEntry(source) : nullptr;
        target = entry ? entry->node : kNoNode;
    }
    std::optional<int64_t> increment = target == kNoNode ? std::nullopt : StatedIncrement(target);
    for (size_t i = 0; i < source.copies.size() && !increment; ++i)
        increment = StatedIncrement(source.copies[i]);
    return increment;
}

// A value that goes to several targets must suit the increments of all. Targets without one, such as
// registers, take any; and a node that has one of its own is taken at its word.
bool Engine::IncrementsDiffer(NodeIndex node) {
    const NodeDescription& description = Node(node);
    if (description.source->copies.empty() || (description.limits && description.limits->inc.given))
        return false;
    try {
        std::optional<int64_t> first = StatedIncrement(description.source->node);
        for (const NodeIndex copy : description.source->copies) {
            const std::optional<int64_t> increment = StatedIncrement(copy);
            if (first && increment && *first != *increment)
                return true;
            if (!first)
                first = increment;
        }
    } catch (const GENICAM_NAMESPACE::GenericException&) {
        // Writing will meet what can't be read now, and say so.
    }
    return false;
}

std::optional<double> Engine::FloatIncrement(NodeIndex node) {
    const NodeDescription& description = Node(node);
    if (!description.limits)
        return std::nullopt;
    if (const auto given = GivenNumber(description.limits->inc))
        return given->AsDouble() > 0 ? std::optional<double>(given->AsDouble()) : std::nullopt;
    return std::nullopt;
}

const List<int64_t>& Engine::ValidValues(NodeIndex node) const {
    static const List<int64_t> none;
    return Node(node).limits ? Node(node).limits->validValues : none;
}

void Engine::CheckRange(NodeIndex node, int64_t value) {
    CheckRange(node, value, Min(node).AsInteger(), Max(node).AsInteger());
}

void Engine::CheckRange(NodeIndex node, int64_t value, int64_t min, int64_t max) {
    if (value < min || value > max)
        throw OUT_OF_RANGE_EXCEPTION(
            "Value %lld of '%s' must be %s %lld (min %lld, max %lld, inc %lld).",
            static_cast<long long>(value), Name(node).c_str(), value < min ? "at least" : "at most",
            static_cast<long long>(value < min ? min : max), static_cast<long long>(min),
            static_cast<long long>(max), static_cast<long long>(Increment(node)));
}

void Engine::CheckInteger(NodeIndex node, int64_t value) {
    const int64_t min = Min(node).AsInteger();
    const int64_t max = Max(node).AsInteger();
    CheckRange(node, value, min, max);
    const int64_t inc = Increment(node);
    // Without a limit below, multiples count from 0.
    const uint64_t first = min == kLowestInteger ? 0 : static_cast<uint64_t>(min);
    const bool below = min == kLowestInteger && value < 0;
    const uint64_t distance =
        below ? first - static_cast<uint64_t>(value) : static_cast<uint64_t>(value) - first;
    if (inc != 1 && distance % static_cast<uint64_t>(inc) != 0)
        throw OUT_OF_RANGE_EXCEPTION(
            "Value %lld of '%s' is no multiple of the increment %lld (min %lld, max %lld).",
            static_cast<long long>(value), Name(node).c_str(), static_cast<long long>(inc),
            static_cast<long long>(min), static_cast<long long>(max));
    const List<int64_t>& valid = ValidValues(node);
    if (!valid.empty() && std::find(valid.begin(), valid.end(), value) == valid.end())
        throw OUT_OF_RANGE_EXCEPTION("Value %lld of '%s' is not in its list of valid values.",
                                     static_cast<long long>(value), Name(node).c_str());
}

void Engine::CheckFloat(NodeIndex node, double value) {
    const double min = Min(node).AsDouble();
    const double max = Max(node).AsDouble();
    if (!(value >= min && value <= max))
        throw OUT_OF_RANGE_EXCEPTION("Value %s of '%s' must be %s %s (min %s, max %s).",
                                     ShortestText(value).c_str(), Name(node).c_str(),
                                     value < min ? "at least" : "at most",
                                     ShortestText(value < min ? min : max).c_str(), ShortestText(min).c_str(),
                                     ShortestText(max).c_str());
}

} // namespace GENAPI_NAMESPACE::inside
