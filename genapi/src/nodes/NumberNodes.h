#pragma once

#include "genapi/src/nodes/ValueNode.h"

#include <GenApi/IFloat.h>
#include <GenApi/IInteger.h>

namespace GENAPI_NAMESPACE::inside {

/// How a number is shown: as the node says, or as the node behind it does.
struct Display {
    std::string unit;
    ERepresentation representation = PureNumber;
    EDisplayNotation notation = fnAutomatic;
    int64_t precision = 6;
};
Display DisplayOf(Engine& engine, NodeIndex node);

class IntegerNode : public ValueNode, virtual public IInteger {
public:
    using ValueNode::ValueNode;

    void SetValue(int64_t Value, bool Verify) override;
    IInteger& operator=(int64_t Value) override;
    int64_t GetValue(bool Verify, bool IgnoreCache) override;
    int64_t operator()() override;
    int64_t operator*() override;
    int64_t GetMin() override;
    int64_t GetMax() override;
    EIncMode GetIncMode() override;
    int64_t GetInc() override;
    int64_autovector_t GetListOfValidValues(bool bounded) override;
    ERepresentation GetRepresentation() override;
    GENICAM_NAMESPACE::gcstring GetUnit() override;
    void ImposeMin(int64_t Value) override;
    void ImposeMax(int64_t Value) override;
    GENICAM_NAMESPACE::gcstring ToString(bool Verify, bool IgnoreCache) override;
    void FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, bool Verify) override;
};

class FloatNode : public ValueNode, virtual public IFloat {
public:
    using ValueNode::ValueNode;

    void SetValue(double Value, bool Verify) override;
    IFloat& operator=(double Value) override;
    double GetValue(bool Verify, bool IgnoreCache) override;
    double operator()() override;
    double operator*() override;
    double GetMin() override;
    double GetMax() override;
    bool HasInc() override;
    EIncMode GetIncMode() override;
    double GetInc() override;
    double_autovector_t GetListOfValidValues(bool bounded) override;
    ERepresentation GetRepresentation() override;
    GENICAM_NAMESPACE::gcstring GetUnit() override;
    EDisplayNotation GetDisplayNotation() override;
    int64_t GetDisplayPrecision() override;
    void ImposeMin(double Value) override;
    void ImposeMax(double Value) override;
    GENICAM_NAMESPACE::gcstring ToString(bool Verify, bool IgnoreCache) override;
    void FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, bool Verify) override;
};

} // namespace GENAPI_NAMESPACE::inside
