#include "tools/zq/FrameDrain.h"

namespace ZqTool {

using namespace ZqApi;

FrameDrain::FrameDrain(IZqDataStream& stream) : m_stream(stream), m_thread([this] { Run(); }) {}

FrameDrain::~FrameDrain() {
    m_ends = true;
    m_thread.join();
}

void FrameDrain::Run() {
    while (!m_ends) {
        try {
            auto* buffer = m_stream.RetrieveBuffer(100, ZqTimeoutHandling_ReturnNull);
            if (buffer != nullptr)
                buffer->Release();
        } catch (const GenICam::GenericException&) {
            return; // the camera is lost: there is nothing left to take
        }
    }
}

} // namespace ZqTool
