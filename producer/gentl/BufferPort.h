#pragma once

#include "producer/gentl/Port.h"

namespace zqgentl {

class BufferModule;

/// The register space of a buffer: what is known of its frame, and its bytes.
class BufferPort {
public:
    explicit BufferPort(const BufferModule& buffer);
    BufferPort(const BufferPort&) = delete;
    BufferPort& operator=(const BufferPort&) = delete;

    [[nodiscard]] const Port& View() const noexcept { return m_port; }

private:
    RegisterMap m_registers{ByteOrder::Little};
    Port m_port;
};

} // namespace zqgentl
