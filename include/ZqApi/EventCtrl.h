#pragma once

namespace ZqApi {

/// Starts and stops the event threads of a module; without them no callback of the module runs.
///
/// Devices are opened with their threads running; systems, interfaces, data streams and stream buffers wait
/// for the start. Both calls may be repeated. One controlling thread at a time.
class IZqEventCtrl {
public:
    /// Starts every event thread that does not run yet. Events that the producer lacks are left out. Throws
    /// GenICam::BadAllocException.
    virtual void StartEventAcquisitionThread() = 0;
    /// Stops all of the module's event threads and then throws the first failure, CZqGenTLErrorException when
    /// the producer could not interrupt a wait.
    virtual void StopEventAcquisitionThread() = 0;

protected:
    ~IZqEventCtrl() = default;
};

} // namespace ZqApi
