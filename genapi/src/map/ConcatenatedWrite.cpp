// Many values written in one go.
#include "genapi/src/map/ConcatenatedWrite.h"

#include "genapi/src/nodes/NodeBase.h"
#include "genapi/src/persistence/StreamingScope.h"

#include <GenApi/Pointer.h>

#include <optional>

namespace GENAPI_NAMESPACE {

using GENICAM_NAMESPACE::gcstring;
using GENICAM_NAMESPACE::gcstring_vector;

CNodeWriteConcatenator::~CNodeWriteConcatenator() = default;

namespace inside {

namespace {

/// Runs each step whatever became of those before, and keeps what went wrong.
class Failures {
public:
    template <class Step>
    void Try(const gcstring& subject, Step&& step) {
        try {
            step();
        } catch (const GENICAM_NAMESPACE::GenericException& failure) {
            if (!m_first)
                m_first = std::current_exception();
            m_lines.push_back(subject + ": " + failure.GetDescription());
        }
    }
    bool None() const { return !m_first; }
    /// True when there was none. Throws the first when nobody takes the list.
    bool Finish(gcstring_vector* list) const {
        if (!list && m_first)
            std::rethrow_exception(m_first);
        for (size_t i = 0; i < m_lines.size(); ++i)
            list->push_back(m_lines[i]);
        return None();
    }

private:
    std::exception_ptr m_first;
    std::vector<gcstring> m_lines;
};

} // namespace

void NodeWriteConcatenator::Add(const gcstring& NodeName, int64_t Value) {
    entries.push_back({NodeName, Number::Of(Value)});
}
void NodeWriteConcatenator::Add(const gcstring& NodeName, double Value) {
    entries.push_back({NodeName, Number::Of(Value)});
}
void NodeWriteConcatenator::Add(const gcstring& NodeName, const gcstring& Value) {
    entries.push_back({NodeName, Value});
}
void NodeWriteConcatenator::Clear() {
    entries.clear();
}
void NodeWriteConcatenator::Destroy() {
    delete this;
}

CNodeWriteConcatenator* NodeMapImpl::NewNodeWriteConcatenator() const {
    return new NodeWriteConcatenator;
}

void NodeMapImpl::WriteByName(const gcstring& name, const std::variant<Number, gcstring>& value) const {
    auto* const node = dynamic_cast<NodeBase*>(GetNode(name));
    if (!node)
        throw INVALID_ARGUMENT_EXCEPTION("There is no node '%s'.", name.c_str());
    if (const Number* number = std::get_if<Number>(&value))
        return node->WriteNumber(*number);
    const CValuePtr feature(node);
    if (!feature)
        throw INVALID_ARGUMENT_EXCEPTION("Node '%s' has no value.", name.c_str());
    feature->FromString(std::get<gcstring>(value));
}

bool NodeMapImpl::ConcatenatedWrite(CNodeWriteConcatenator* pConcatenator, bool FeatureStreaming,
                                    gcstring_vector* pErrors) {
    const auto* const values = dynamic_cast<NodeWriteConcatenator*>(pConcatenator);
    if (!values)
        throw INVALID_ARGUMENT_EXCEPTION("There are no values to write.");
    Failures failures;
    Do([&](Engine&) {
        std::optional<StreamingScope> streaming;
        if (FeatureStreaming)
            failures.Try(kStreamingStart, [&] { streaming.emplace(*this, kStreamingStart, kStreamingEnd); });
        for (const NodeWriteConcatenator::Entry& entry : values->entries)
            if (pErrors || failures.None())
                failures.Try(entry.name, [&] { WriteByName(entry.name, entry.value); });
        if (streaming)
            failures.Try(kStreamingEnd, [&] { streaming->Close(); });
        if (FeatureStreaming)
            failures.Try("DeviceRegistersValid", [&] { RequireValidRegisters(*this); });
    });
    return failures.Finish(pErrors);
}

} // namespace inside

} // namespace GENAPI_NAMESPACE
