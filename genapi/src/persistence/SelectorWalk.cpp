#include "genapi/src/persistence/SelectorWalk.h"

#include "genapi/src/persistence/FeatureText.h"

#include <GenApi/GenApi.h>

#include <algorithm>
#include <exception>
#include <optional>
#include <unordered_set>

namespace GENAPI_NAMESPACE::inside {

using GENICAM_NAMESPACE::gcstring;

namespace {

// Longer lists belong to selectors that were never meant to be walked.
constexpr uint64_t kMaxValues = 65536;

class SelectorSearch {
public:
    explicit SelectorSearch(INode& feature) { m_seen.insert(&feature); }

    void Collect(INode& feature, int depth = 0) {
        constexpr int kMaxDepth = 64;
        const auto* selected = dynamic_cast<ISelector*>(&feature);
        if (!selected || depth > kMaxDepth)
            return;
        FeatureList_t selecting;
        selected->GetSelectingFeatures(selecting);
        for (IValue* selector : selecting)
            if (m_seen.insert(selector->GetNode()).second) {
                Collect(*selector->GetNode(), depth + 1);
                found.push_back(selector->GetNode());
            }
    }

    std::vector<INode*> found;

private:
    std::unordered_set<INode*> m_seen;
};

std::vector<gcstring> IntegerValues(IInteger& selector) {
    std::vector<gcstring> values;
    if (selector.GetIncMode() == listIncrement) {
        for (const int64_t value : selector.GetListOfValidValues(true))
            values.push_back(std::to_string(value).c_str());
        return values;
    }
    const int64_t min = selector.GetMin();
    const int64_t max = selector.GetMax();
    const auto inc = static_cast<uint64_t>(selector.GetInc());
    const uint64_t steps = (static_cast<uint64_t>(max) - static_cast<uint64_t>(min)) / inc;
    if (min > max || steps >= kMaxValues)
        return values;
    for (uint64_t i = 0; i <= steps; ++i)
        values.push_back(std::to_string(static_cast<int64_t>(static_cast<uint64_t>(min) + i * inc)).c_str());
    return values;
}

/// Nothing when it can't be read, as an enumeration without an entry for its value.
std::optional<gcstring> TextNow(INode& selector) {
    if (!IsReadable(&selector))
        return std::nullopt;
    try {
        return StoredText(selector);
    } catch (const GENICAM_NAMESPACE::GenericException&) {
        return std::nullopt;
    }
}

/// What the selector can be set to now.
std::vector<gcstring> ValuesOf(INode& selector) {
    std::vector<gcstring> values;
    if (IsWritable(&selector)) {
        if (const CEnumerationPtr enumeration = &selector) {
            StringList_t symbolics;
            enumeration->GetSymbolics(symbolics);
            values.assign(symbolics.begin(), symbolics.end());
        } else if (const CBooleanPtr boolean = &selector) {
            values = {"0", "1"};
        } else if (const CIntegerPtr integer = &selector) {
            values = IntegerValues(*integer);
        }
    }
    if (values.empty())
        if (auto value = TextNow(selector))
            values.push_back(std::move(*value));
    return values;
}

/// False when the selector does not take the value; other failures pass.
bool TrySet(INode& selector, const gcstring& value) {
    try {
        if (TextNow(selector) != value)
            SetFromText(selector, value, true);
        return true;
    } catch (const GENICAM_NAMESPACE::AccessException&) {
        return false;
    } catch (const GENICAM_NAMESPACE::OutOfRangeException&) {
        return false;
    }
}

} // namespace

std::vector<INode*> SelectorsOf(INode& feature) {
    SelectorSearch search(feature);
    search.Collect(feature);
    return std::move(search.found);
}

SelectorWalk::SelectorWalk(const std::vector<INode*>& selectors) {
    for (INode* selector : selectors)
        if (auto value = TextNow(*selector)) {
            Digit digit;
            digit.node = selector;
            digit.original = std::move(*value);
            m_digits.push_back(std::move(digit));
        }
}

SelectorWalk::~SelectorWalk() {
    try {
        Restore();
    } catch (...) { // the device is gone, or refuses: nobody is left to be told
    }
}

uint64_t SelectorWalk::EstimateCount() const {
    uint64_t count = 1;
    for (const Digit& digit : m_digits) {
        const uint64_t values = std::max<uint64_t>(1, ValuesOf(*digit.node).size());
        count = count > UINT64_MAX / values ? UINT64_MAX : count * values;
    }
    return count;
}

bool SelectorWalk::ChooseFrom(size_t digit, size_t position) {
    Digit& each = m_digits[digit];
    for (each.position = position; each.position < each.values.size(); ++each.position) {
        m_moved = true;
        if (TrySet(*each.node, each.values[each.position]) && EnterFrom(digit + 1))
            return true;
    }
    return false;
}

bool SelectorWalk::EnterFrom(size_t digit) {
    if (digit == m_digits.size())
        return true;
    m_digits[digit].values = ValuesOf(*m_digits[digit].node);
    return ChooseFrom(digit, 0);
}

bool SelectorWalk::SetFirst() {
    m_chosen = EnterFrom(0);
    return m_chosen;
}

bool SelectorWalk::SetNext() {
    if (!m_chosen)
        return false;
    for (size_t digit = m_digits.size(); digit-- > 0;)
        if (ChooseFrom(digit, m_digits[digit].position + 1))
            return true;
    m_chosen = false;
    return false;
}

bool SelectorWalk::SetAgain() {
    if (!m_chosen)
        return false;
    for (const Digit& digit : m_digits)
        if (!TrySet(*digit.node, digit.values[digit.position]))
            return false;
    return true;
}

void SelectorWalk::Restore() {
    m_chosen = false;
    if (!m_moved)
        return;
    m_moved = false;
    std::exception_ptr failure;
    for (const Digit& digit : m_digits)
        try {
            if (TextNow(*digit.node) != digit.original)
                PutBack(*digit.node, digit.original);
        } catch (const GENICAM_NAMESPACE::GenericException&) {
            if (!failure)
                failure = std::current_exception();
        }
    if (failure)
        std::rethrow_exception(failure);
}

std::string SelectorWalk::Text() const {
    std::string text;
    for (const Digit& digit : m_digits) {
        text += text.empty() ? "" : ", ";
        text += digit.node->GetName(false).c_str();
        text += '=';
        text += StoredText(*digit.node).c_str();
    }
    return text;
}

} // namespace GENAPI_NAMESPACE::inside
