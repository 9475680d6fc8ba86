#pragma once

#include "producer/gentl/Event.h"
#include "producer/gentl/StreamEngine.h"

#include <memory>

namespace zqgentl {

/// The registration for a stream's filled buffers. Its queue is the stream's output queue, so buffers
/// delivered before the registration are handed out too.
class NewBufferEvent final : public Event {
public:
    explicit NewBufferEvent(std::shared_ptr<StreamEngine> engine);
    ~NewBufferEvent() override { m_engine->Detach(m_gate); }

    void GetData(void* buffer, size_t* size, uint64_t timeoutMs) override;
    void AnswerDataInfo(const void* bytes, size_t size, GenTL::EVENT_DATA_INFO_CMD command,
                        const InfoTarget& target) const override;
    void Flush() override { m_engine->DiscardOutput(); }
    void Kill() override { m_engine->KillWait(m_gate); }
    void Close() override { m_engine->Detach(m_gate); }
    [[nodiscard]] size_t CountInQueue() const override { return m_engine->Count().awaiting; }
    [[nodiscard]] uint64_t CountFired() const override;
    [[nodiscard]] size_t SizeMax() const override { return sizeof(GenTL::EVENT_NEW_BUFFER_DATA); }
    [[nodiscard]] size_t DataSizeMax() const override { return sizeof(void*); }

private:
    std::shared_ptr<StreamEngine> m_engine;
    EventGate m_gate;
    uint64_t m_firedBefore;
};

} // namespace zqgentl
