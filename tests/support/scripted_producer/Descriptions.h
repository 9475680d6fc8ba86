#pragma once

#include "tests/support/scripted_producer/Registers.h"

#include <cstdint>
#include <string>

namespace Scripted {

/// Where a module's description file lies in its register space.
constexpr uint64_t descriptionAddress = 0x10000;

/// Registers of the remote device, 4 bytes each, little-endian. Address 0 reads 0.
enum RemoteRegister : uint64_t {
    Width = 0x100,
    Height = 0x104,
    PixelFormat = 0x108,
    PayloadSize = 0x10C,
    TLParamsLocked = 0x110,
    AcquisitionStart = 0x114,
    AcquisitionStop = 0x118,
};

/// Registers of the local device module.
enum DeviceRegister : uint64_t { EventSelector = 0x100, EventNotification = 0x104, EventDeviceLost = 0x108 };

/// The EventID of "EventDeviceLost".
constexpr const char* deviceLostEventId = "0001";

/// Gives every kind of module its usual port.
void MakeUsualPorts(Ports& ports);

/// Puts a description file into the registers of the port and points URL 0 at it.
void SetDescription(Port& port, const std::string& fileName, const void* bytes, size_t size);

} // namespace Scripted
