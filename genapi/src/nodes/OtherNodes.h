#pragma once

#include "genapi/src/nodes/ValueNode.h"

#include <GenApi/IBoolean.h>
#include <GenApi/ICategory.h>
#include <GenApi/IChunkPort.h>
#include <GenApi/ICommand.h>
#include <GenApi/IEnumEntry.h>
#include <GenApi/IEnumeration.h>
#include <GenApi/IPortConstruct.h>
#include <GenApi/IString.h>

namespace GENAPI_NAMESPACE::inside {

class BooleanNode final : public ValueNode, virtual public IBoolean {
public:
    using ValueNode::ValueNode;

    void SetValue(bool Value, bool Verify) override;
    IBoolean& operator=(bool Value) override;
    bool GetValue(bool Verify, bool IgnoreCache) const override;
    bool operator()() const override;
    GENICAM_NAMESPACE::gcstring ToString(bool Verify, bool IgnoreCache) override;
    void FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, bool Verify) override;
};

/// As a text, a command is "1" while it runs and "0" otherwise; "1" or "true" executes it.
class CommandNode final : public ValueNode, virtual public ICommand {
public:
    using ValueNode::ValueNode;

    void Execute(bool Verify) override;
    void operator()() override;
    bool IsDone(bool Verify) override;
    GENICAM_NAMESPACE::gcstring ToString(bool Verify, bool IgnoreCache) override;
    void FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, bool Verify) override;
};

class StringNode : public ValueNode, virtual public IString {
public:
    using ValueNode::ValueNode;

    void SetValue(const GENICAM_NAMESPACE::gcstring& Value, bool Verify) override;
    IString& operator=(const GENICAM_NAMESPACE::gcstring& Value) override;
    GENICAM_NAMESPACE::gcstring GetValue(bool Verify, bool IgnoreCache) override;
    GENICAM_NAMESPACE::gcstring operator()() override;
    GENICAM_NAMESPACE::gcstring operator*() override;
    int64_t GetMaxLength() override;
    GENICAM_NAMESPACE::gcstring ToString(bool Verify, bool IgnoreCache) override;
    void FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, bool Verify) override;
};

class RegisterNode final : public WithRegister<ValueNode> {
public:
    using WithRegister<ValueNode>::WithRegister;

    GENICAM_NAMESPACE::gcstring ToString(bool Verify, bool IgnoreCache) override;
    void FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, bool Verify) override;
};

class EnumerationNode final : public ValueNode, virtual public IEnumeration {
public:
    using ValueNode::ValueNode;

    void GetSymbolics(StringList_t& Symbolics) override;
    void GetEntries(NodeList_t& Entries) override;
    IEnumeration& operator=(const GENICAM_NAMESPACE::gcstring& ValueStr) override;
    void SetIntValue(int64_t Value, bool Verify) override;
    GENICAM_NAMESPACE::gcstring operator*() override;
    int64_t GetIntValue(bool Verify, bool IgnoreCache) override;
    IEnumEntry* GetEntryByName(const GENICAM_NAMESPACE::gcstring& Symbolic) override;
    IEnumEntry* GetEntry(int64_t IntValue) override;
    IEnumEntry* GetCurrentEntry(bool Verify, bool IgnoreCache) override;
    GENICAM_NAMESPACE::gcstring ToString(bool Verify, bool IgnoreCache) override;
    void FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, bool Verify) override;

private:
    IEnumEntry* EntryAt(NodeIndex entry) const;
};

class EnumEntryNode final : public ValueNode, virtual public IEnumEntry {
public:
    using ValueNode::ValueNode;

    int64_t GetValue() override;
    GENICAM_NAMESPACE::gcstring GetSymbolic() const override;
    double GetNumericValue() override;
    bool IsSelfClearing() override;
    GENICAM_NAMESPACE::gcstring ToString(bool Verify, bool IgnoreCache) override;
    void FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, bool Verify) override;
};

class CategoryNode final : public ValueNode, virtual public ICategory {
public:
    using ValueNode::ValueNode;

    void GetFeatures(FeatureList_t& Features) const override;
    GENICAM_NAMESPACE::gcstring ToString(bool Verify, bool IgnoreCache) override;
    void FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, bool Verify) override;
};

class PortNode final : public NodeBase, virtual public IPortConstruct, virtual public IChunkPort {
public:
    using NodeBase::NodeBase;

    void Read(void* pBuffer, int64_t Address, int64_t Length) override;
    void Write(const void* pBuffer, int64_t Address, int64_t Length) override;
    void SetPortImpl(IPort* pPort) override;
    EYesNo GetSwapEndianess() override;
    GENICAM_NAMESPACE::gcstring GetChunkID() override;
    EYesNo CacheChunkData() override;
};

} // namespace GENAPI_NAMESPACE::inside
