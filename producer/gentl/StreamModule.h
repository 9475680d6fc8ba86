#pragma once

#include "producer/gentl/ModuleEvents.h"
#include "producer/gentl/StreamEngine.h"

#include <memory>
#include <string>

namespace zqgentl {

class DeviceModule;

/// An open data stream: buffers and acquisition.
class StreamModule final : public Module, public StreamListener {
public:
    static constexpr Kind kind = Kind::Stream;
    static constexpr const char* id = "Stream0";

    StreamModule(std::shared_ptr<DeviceModule> parent, Camera& camera);

    [[nodiscard]] DeviceModule& Parent() const noexcept { return *m_parent; }
    [[nodiscard]] const Camera& Source() const noexcept { return m_camera; }
    [[nodiscard]] StreamEngine& Engine() const noexcept { return *m_engine; }
    /// The engine for a call that needs the camera; GC_ERR_IO once that is lost.
    [[nodiscard]] StreamEngine& LiveEngine() const;

    /// Announces the consumer's memory, or, when base is null, memory of the stream's own.
    [[nodiscard]] void* Announce(void* base, size_t size, void* userPointer);
    void Revoke(BufferModule& buffer, void** base, void** userPointer);
    void AnswerInfo(GenTL::STREAM_INFO_CMD command, const InfoTarget& target) const;
    void Close();
    void OnTransferEnd(BufferModule& buffer, const TransferNews& news) override;
    [[nodiscard]] bool WantsNewBuffers() const override;
    void OnNewBuffer(uint64_t frameId) override;

    [[nodiscard]] const Port& ModulePort() const override { return m_port; }

protected:
    [[nodiscard]] std::shared_ptr<Event> MakeEvent(GenTL::EVENT_TYPE type) override;

private:
    std::shared_ptr<DeviceModule> m_parent;
    Camera& m_camera;
    ModuleEvents m_moduleEvents;
    std::shared_ptr<StreamEngine> m_engine;
    RegisterMap m_registers{ByteOrder::Little};
    Port m_port;
};

} // namespace zqgentl
