#pragma once

#include <GenApi/IBase.h>

namespace GENAPI_NAMESPACE {

/// Values for features, to be written by INodeMap::ConcatenatedWrite in the order in which they were added.
/// Made by INodeMap::NewNodeWriteConcatenator; belongs to the caller, who ends it by Destroy. One thread at a
/// time.
class GENAPI_API CNodeWriteConcatenator {
public:
    CNodeWriteConcatenator() = default;
    CNodeWriteConcatenator(const CNodeWriteConcatenator&) = delete;
    CNodeWriteConcatenator& operator=(const CNodeWriteConcatenator&) = delete;

    /// Names are looked up when the values are written. Numbers suit integers, floats, booleans and
    /// enumerations; a text suits whatever can be set from one.
    virtual void Add(const GENICAM_NAMESPACE::gcstring& NodeName, int64_t Value) = 0;
    virtual void Add(const GENICAM_NAMESPACE::gcstring& NodeName, double Value) = 0;
    virtual void Add(const GENICAM_NAMESPACE::gcstring& NodeName,
                     const GENICAM_NAMESPACE::gcstring& Value) = 0;
    void Add(const GENICAM_NAMESPACE::gcstring& NodeName, int Value) { Add(NodeName, int64_t{Value}); }
    virtual void Clear() = 0;
    virtual void Destroy() = 0;

protected:
    virtual ~CNodeWriteConcatenator();
};

} // namespace GENAPI_NAMESPACE
