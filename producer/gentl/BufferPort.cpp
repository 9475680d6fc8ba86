#include "producer/gentl/BufferPort.h"

#include "producer/gentl/BufferModule.h"

namespace zqgentl {

namespace {

using Value = RegisterValue;
constexpr RegisterKind Integer = RegisterKind::Integer;

/// A number of the frame; 0 while there is none.
template <auto Member>
Value Get(const BufferModule& buffer) {
    return Value(static_cast<int64_t>(buffer.Frame().*Member));
}

constexpr RegisterRow<const BufferModule> rows[] = {
    {0x0100, 64, RegisterKind::Text, [](const BufferModule& b) { return Value(b.Id()); }, nullptr},
    {0x0300, 4, Integer, [](const BufferModule& b) { return Value(int64_t{b.PayloadType()}); }, nullptr},
    {0x0304, 4, Integer, Get<&FrameInfo::incomplete>, nullptr},
    {0x0308, 8, Integer, [](const BufferModule& b) { return Value(static_cast<int64_t>(b.Size())); },
     nullptr},
    {0x0310, 8, Integer, Get<&FrameInfo::sizeFilled>, nullptr},
    {0x0318, 8, Integer, Get<&FrameInfo::frameId>, nullptr},
    {0x0320, 8, Integer, Get<&FrameInfo::timestampNs>, nullptr},
    {0x0328, 8, Integer, Get<&FrameInfo::width>, nullptr},
    {0x0330, 8, Integer, Get<&FrameInfo::height>, nullptr},
    {0x0338, 8, Integer, Get<&FrameInfo::offsetX>, nullptr},
    {0x0340, 8, Integer, Get<&FrameInfo::offsetY>, nullptr},
    {0x0348, 8, Integer, Get<&FrameInfo::pixelFormat>, nullptr},
};

// Above every other address, as a buffer may have any size.
constexpr uint64_t dataAddress = 0x100000000;

} // namespace

BufferPort::BufferPort(const BufferModule& buffer)
    : m_port({buffer.Id(), buffer.Model().modelName, buffer.Model().tlType, "TLBuffer", ZQGENTL_VERSION,
              "BufferPort", false, false},
             m_registers, descriptions::buffer) {
    m_registers.Bind(buffer, rows);
    m_registers.AddMemory(descriptionAddress, descriptions::buffer.data, descriptions::buffer.size);
    m_registers.AddMemory(dataAddress, buffer.Base(), buffer.Size());
}

} // namespace zqgentl
