#pragma once

#include "genapi/src/nodes/NodeBase.h"

#include <GenApi/IRegister.h>
#include <GenApi/IValue.h>

namespace GENAPI_NAMESPACE::inside {

/// A node with a value.
class ValueNode : public NodeBase, virtual public IValue {
public:
    using NodeBase::NodeBase;

    INode* GetNode() override { return this; }
    bool IsValueCacheValid() const override {
        const AutoLock lock(m_map.GetLock());
        return m_map.GetEngine().IsKept(m_index);
    }
};

/// The bytes behind any register, in upper-case hexadecimal after 0x.
GENICAM_NAMESPACE::gcstring HexText(const std::string& bytes);
/// InvalidArgumentException unless the text is pairs of hexadecimal digits, with or without 0x.
std::string HexBytes(const GENICAM_NAMESPACE::gcstring& text);

/// Adds the register's side to a value node.
template <class Node>
class WithRegister : public Node, virtual public IRegister {
public:
    using Node::Node;

    void Set(const uint8_t* pBuffer, int64_t Length, bool Verify) override {
        if (!pBuffer || Length < 0)
            throw INVALID_ARGUMENT_EXCEPTION("No bytes to write to '%s'.", this->GetName(false).c_str());
        const std::string bytes(reinterpret_cast<const char*>(pBuffer), static_cast<size_t>(Length));
        this->WriteChecked(Verify, [&](Engine& engine) { engine.WriteBytes(this->m_index, bytes); });
    }
    void Get(uint8_t* pBuffer, int64_t Length, bool, bool IgnoreCache) override {
        const std::string bytes = Bytes(IgnoreCache);
        if (!pBuffer || Length != static_cast<int64_t>(bytes.size()))
            throw INVALID_ARGUMENT_EXCEPTION("A buffer of %lld bytes does not suit '%s', which has %zu.",
                                             static_cast<long long>(Length), this->GetName(false).c_str(),
                                             bytes.size());
        bytes.copy(reinterpret_cast<char*>(pBuffer), bytes.size());
    }
    int64_t GetLength(bool) override {
        return this->Do([this](Engine& engine) { return engine.Locate(this->m_index).length; });
    }
    int64_t GetAddress(bool) override {
        return this->Do([this](Engine& engine) { return engine.Locate(this->m_index).address; });
    }

protected:
    std::string Bytes(bool ignoreCache) const {
        return this->ReadChecked(
            false, ignoreCache, [this](Engine& engine) { return engine.ReadBytes(this->m_index); },
            [](Engine&, const std::string&) {});
    }
};

} // namespace GENAPI_NAMESPACE::inside
