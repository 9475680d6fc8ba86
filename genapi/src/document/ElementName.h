#pragma once

#include <Base/GCTypes.h>

#include <cstdint>
#include <string_view>

// The names of elements that mean something here.
// clang-format off
#define ZQ_ELEMENT_NAMES(X)                                                                                 \
    X(RegisterDescription) X(Node) X(Category) X(Group) X(Integer) X(IntReg) X(MaskedIntReg) X(StructReg)   \
    X(StructEntry) X(Float) X(FloatReg) X(Boolean) X(Command) X(Enumeration) X(EnumEntry) X(String)         \
    X(StringReg) X(Register) X(SwissKnife) X(IntSwissKnife) X(Converter) X(IntConverter) X(Port)            \
    X(ConfRom) X(TextDesc) X(IntKey) X(AdvFeatureLock) X(DcamLock) X(SmartFeature) X(Extension) X(ToolTip)  \
    X(Description) X(DisplayName) X(Visibility) X(ImposedVisibility) X(DocuURL) X(IsDeprecated) X(EventID)  \
    X(pIsImplemented) X(pIsAvailable) X(pIsLocked) X(pBlockPolling) X(ImposedAccessMode) X(pError)          \
    X(pAlias) X(pCastAlias) X(pInvalidator) X(Streamable) X(Value) X(pValue) X(pValueCopy) X(pIndex)        \
    X(ValueIndexed) X(pValueIndexed) X(ValueDefault) X(pValueDefault) X(Min) X(pMin) X(Max) X(pMax) X(Inc)  \
    X(pInc) X(Unit) X(Representation) X(ValidValueSet) X(ValidValuesSet) X(pSelected) X(DisplayNotation)    \
    X(DisplayPrecision) X(Address) X(pAddress) X(Length) X(pLength) X(pPort) X(AccessMode) X(Cachable)      \
    X(PollingTime) X(Endianess) X(Sign) X(Bit) X(LSB) X(MSB) X(OnValue) X(OffValue) X(CommandValue)         \
    X(pCommandValue) X(pEnumEntry) X(NumericValue) X(Symbolic) X(IsSelfClearing) X(pVariable) X(Constant)   \
    X(Expression) X(Formula) X(FormulaTo) X(FormulaFrom) X(Slope) X(IsLinear) X(ChunkID) X(pChunkID)        \
    X(SwapEndianess) X(CacheChunkData) X(pFeature) X(p1212Parser) X(Key) X(FeatureID) X(Timeout)
// clang-format on

namespace GENAPI_NAMESPACE::inside {

/// An element's name as a number. Names beyond the known ones are numbered by each document.
enum class ElementName : uint16_t {
#define ZQ_ENUMERATOR(name) name,
    ZQ_ELEMENT_NAMES(ZQ_ENUMERATOR)
#undef ZQ_ENUMERATOR
        FirstUnknown
};

/// Attributes of elements inside nodes.
enum class AttributeName : uint8_t { None, Name, Index, Offset, pOffset };

/// FirstUnknown when it is none of the known ones.
ElementName FindElementName(std::string_view name);
/// Of a known one.
std::string_view KnownElementName(ElementName name);

/// True for names that refer to nodes: a "p" before a capital.
inline bool IsPointerName(std::string_view name) {
    return name.size() > 1 && name[0] == 'p' && name[1] >= 'A' && name[1] <= 'Z';
}

} // namespace GENAPI_NAMESPACE::inside
