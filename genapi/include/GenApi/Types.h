#pragma once

/// The enumerations of the node-map interface, in value order, and the small types that its signatures use.

#include <Base/GCBase.h>

#include <cstdint>
#include <vector>

namespace GENAPI_NAMESPACE {

/// Whether a node can be read and written at the moment.
typedef enum _EAccessMode {
    NI,                   ///< not implemented
    NA,                   ///< not available now
    WO,                   ///< write only
    RO,                   ///< read only
    RW,                   ///< read and write
    _UndefinedAccesMode,  ///< no mode has been stated
    _CycleDetectAccesMode ///< the mode is being computed
} EAccessMode;

/// The audience of a feature.
typedef enum _EVisibility {
    Beginner = 0,
    Expert = 1,
    Guru = 2,
    Invisible = 3,
    _UndefinedVisibility = 99
} EVisibility;

/// What happens to a value on its way to and from the device.
typedef enum _ECachingMode {
    NoCache,      ///< every read goes to the device
    WriteThrough, ///< a write goes to the device and fills the cache
    WriteAround,  ///< a write goes to the device, the next read fills the cache
    _UndefinedCachingMode
} ECachingMode;

/// How a number is best shown.
typedef enum _ERepresentation {
    Linear,
    Logarithmic,
    Boolean,
    PureNumber,
    HexNumber,
    IPV4Address,
    MACAddress,
    _UndefinedRepresentation
} ERepresentation;

typedef enum _EEndianess { BigEndian, LittleEndian, _UndefinedEndian } EEndianess;
typedef enum _ESign { Signed, Unsigned, _UndefinedSign } ESign;
typedef enum _ENameSpace { Custom, Standard, _UndefinedNameSpace } ENameSpace;
typedef enum _EStandardNameSpace { None, GEV, IIDC, CL, USB, _UndefinedStandardNameSpace } EStandardNameSpace;
typedef enum _EYesNo { Yes = 1, No = 0, _UndefinedYesNo = 2 } EYesNo;
typedef enum _ESlope { Increasing, Decreasing, Varying, Automatic, _UndefinedESlope } ESlope;
typedef enum _EDisplayNotation {
    fnAutomatic,
    fnFixed,
    fnScientific,
    _UndefinedEDisplayNotation
} EDisplayNotation;

/// The interface that a node is mainly used through.
typedef enum _EInterfaceType {
    intfIValue,
    intfIBase,
    intfIInteger,
    intfIBoolean,
    intfICommand,
    intfIFloat,
    intfIString,
    intfIRegister,
    intfICategory,
    intfIEnumeration,
    intfIEnumEntry,
    intfIPort
} EInterfaceType;

/// Which neighbours INode::GetChildren lists.
typedef enum _ELinkType {
    ctParentNodes,          ///< the nodes that read from this one
    ctReadingChildren,      ///< the nodes that this one reads from
    ctWritingChildren,      ///< the nodes that this one writes to
    ctInvalidatingChildren, ///< the nodes whose change makes this one stale
    ctDependingNodes,       ///< the nodes that become stale when this one changes, directly or not
    ctTerminalNodes         ///< the registers at the end of the reading chain
} ELinkType;

typedef enum _EIncMode { noIncrement, fixedIncrement, listIncrement } EIncMode;

/// When a node callback runs: still under the node map's lock, or after it has been released.
typedef enum _ECallbackType { cbPostInsideLock = 1, cbPostOutsideLock = 2 } ECallbackType;

/// How a factory uses the folder of preprocessed descriptions.
typedef enum _ECacheUsage_t {
    CacheUsage_Automatic,
    CacheUsage_ForceWrite,
    CacheUsage_ForceRead,
    CacheUsage_Ignore
} ECacheUsage_t;

typedef enum _EContentType_t { ContentType_Xml, ContentType_ZippedXml } EContentType_t;

/// Names a registered node callback.
typedef intptr_t CallbackHandleType;

typedef GENICAM_NAMESPACE::gcstring_vector StringList_t;

/// A list of numbers that a node gives out; a value type.
template <class T>
class autovector {
public:
    typedef typename std::vector<T>::const_iterator const_iterator;

    autovector() = default;
    explicit autovector(std::vector<T> values) : m_values(std::move(values)) {}

    size_t size() const { return m_values.size(); }
    bool empty() const { return m_values.empty(); }
    const T& operator[](size_t index) const { return m_values[index]; }
    T& operator[](size_t index) { return m_values[index]; }
    const_iterator begin() const { return m_values.begin(); }
    const_iterator end() const { return m_values.end(); }
    operator const std::vector<T>&() const { return m_values; } // NOLINT(google-explicit-constructor)

private:
    std::vector<T> m_values;
};

typedef autovector<int64_t> int64_autovector_t;
typedef autovector<double> double_autovector_t;

} // namespace GENAPI_NAMESPACE
