#pragma once

#include <GenApi/Container.h>
#include <GenApi/INode.h>
#include <GenApi/IPort.h>
#include <GenApi/Synch.h>

namespace GENAPI_NAMESPACE {

class CNodeWriteConcatenator;

/// A device's features over its register space. Any thread; every operation takes the map's recursive lock.
/// Usually held by a CNodeMapRef.
struct GENAPI_API INodeMap {
    virtual void GetNodes(NodeList_t& Nodes) const = 0;
    /// Null when there is no such node. "Std::" and "Cust::" in front of the name are understood.
    virtual INode* GetNode(const GENICAM_NAMESPACE::gcstring& Name) const = 0;
    /// Drops every cached value and mode; callbacks do run.
    virtual void InvalidateNodes() const = 0;
    /// Connects the port node of that name, or else the only port node that belongs to no chunk or event.
    /// False when there is neither; never throws for that. The port is not owned and must outlive the map or
    /// be replaced. What the port says of its access mode is asked again only after an invalidation.
    virtual bool Connect(IPort* pPort, const GENICAM_NAMESPACE::gcstring& PortName) const = 0;
    /// As above with the name "Device".
    virtual bool Connect(IPort* pPort) const = 0;
    virtual GENICAM_NAMESPACE::gcstring GetDeviceName() = 0;
    /// Tells the map how many milliseconds have passed; nodes whose polling time has run out become stale and
    /// their callbacks run.
    virtual void Poll(int64_t ElapsedTime) = 0;
    virtual CLock& GetLock() const = 0;
    virtual uint64_t GetNumNodes() const = 0;
    /// True when every formula could be compiled; else `pErrors` receives a line for each that could not.
    virtual bool ParseSwissKnifes(GENICAM_NAMESPACE::gcstring_vector* pErrors = nullptr) const = 0;
    /// An empty list of values; the caller ends it by its Destroy.
    virtual CNodeWriteConcatenator* NewNodeWriteConcatenator() const = 0;
    /// Writes all values of the list in order, with all checks, under one lock; callbacks run once behind the
    /// last. With `FeatureStreaming` between the device's commands for it, as far as it has them:
    /// DeviceRegistersStreamingStart, and DeviceRegistersStreamingEnd also after a failure. True when all
    /// went well. Else `pErrors` receives a line "name: reason" for each failure; without it the first
    /// failure ends the writing and leaves as the exception that it was. InvalidArgumentException for null.
    virtual bool ConcatenatedWrite(CNodeWriteConcatenator* pConcatenator, bool FeatureStreaming = true,
                                   GENICAM_NAMESPACE::gcstring_vector* pErrors = nullptr) = 0;
    /// While true, changes run no callbacks; those of the meantime are not made up for.
    virtual void SetSuppressCallbackMode(bool Suppress) = 0;
    virtual ~INodeMap() = 0;
};

} // namespace GENAPI_NAMESPACE
