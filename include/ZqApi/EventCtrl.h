#pragma once

namespace ZqApi {

/// Starts and stops the threads that wait for a module's events; without them its error callbacks don't run.
/// New-buffer callbacks need acquisition only.
///
/// Devices are opened with their threads running; systems, interfaces, data streams and stream buffers wait
/// for the start. Both calls may be repeated. One controlling thread at a time.
class IZqEventCtrl {
public:
    /// Starts every event thread that does not run yet. Events that the producer lacks are left out. Throws
    /// GenICam::BadAllocException.
    virtual void StartEventAcquisitionThread() = 0;
    /// Stops the module's event threads and then throws the first failure, CZqGenTLErrorException when the
    /// producer could not interrupt a wait. An interface is the exception: it stops its error events, but
    /// starts its module events. A data stream refuses by GenICam::LogicalErrorException inside
    /// one of its callbacks; on its own thread an event is only asked to stop. Not from a node callback: it
    /// holds its node map's lock, which another event thread of the module may be waiting for.
    virtual void StopEventAcquisitionThread() = 0;

protected:
    ~IZqEventCtrl() = default;
};

} // namespace ZqApi
