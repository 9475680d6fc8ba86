#pragma once

#include "producer/gentl/DeviceModule.h"
#include "producer/gentl/Guard.h"
#include "producer/gentl/InterfaceModule.h"
#include "producer/gentl/StreamModule.h"
#include "producer/gentl/SystemModule.h"

namespace zqgentl {

/// The object behind a handle, pinned for the length of a call.
template <class T>
[[nodiscard]] HandleRegistry::Pin<T> Get(void* handle) {
    return HandleRegistry::Instance().Get<T>(handle);
}

/// Calls the visitor with the module behind any handle that a module can have.
template <class Visit>
void VisitModule(void* handle, Visit visit) {
    if (HandleRegistry::HasKind(handle, Kind::System))
        visit(*Get<SystemModule>(handle));
    else if (HandleRegistry::HasKind(handle, Kind::Interface))
        visit(*Get<InterfaceModule>(handle));
    else if (HandleRegistry::HasKind(handle, Kind::Device))
        visit(*Get<DeviceModule>(handle));
    else if (HandleRegistry::HasKind(handle, Kind::Stream))
        visit(*Get<StreamModule>(handle));
    else
        visit(*Get<BufferModule>(handle));
}

/// Calls the visitor with the port behind a handle: that of a module or of a camera.
template <class Visit>
void VisitPort(void* handle, Visit visit) {
    if (HandleRegistry::HasKind(handle, Kind::RemotePort))
        visit(static_cast<const Port&>(*Get<RemotePort>(handle)));
    else
        VisitModule(handle, [&](const Module& module) { visit(module.ModulePort()); });
}

[[noreturn]] inline void NotImplemented(const char* what) {
    throw Failure(GenTL::GC_ERR_NOT_IMPLEMENTED, std::string(what) + " is not implemented");
}

} // namespace zqgentl
