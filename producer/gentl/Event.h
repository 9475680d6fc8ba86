#pragma once

#include "producer/gentl/EventData.h"
#include "producer/gentl/EventGate.h"
#include "producer/gentl/HandleRegistry.h"

#include <deque>
#include <mutex>
#include <string>

namespace zqgentl {

/// A registered event: what an EVENT_HANDLE stands for. Any thread may call any member.
class Event : public Object {
public:
    static constexpr Kind kind = Kind::Event;

    explicit Event(GenTL::EVENT_TYPE type) : m_type(type) {}

    /// Waits and hands out one entry. Without a buffer the entry is dropped.
    virtual void GetData(void* buffer, size_t* size, uint64_t timeoutMs) = 0;
    virtual void AnswerDataInfo(const void* bytes, size_t size, GenTL::EVENT_DATA_INFO_CMD command,
                                const InfoTarget& target) const = 0;
    virtual void Flush() = 0;
    virtual void Kill() = 0;
    /// Ends the registration: waits are aborted, entries dropped.
    virtual void Close() = 0;

    [[nodiscard]] virtual size_t CountInQueue() const = 0;
    [[nodiscard]] virtual uint64_t CountFired() const = 0;
    [[nodiscard]] virtual size_t SizeMax() const = 0;
    [[nodiscard]] virtual size_t DataSizeMax() const = 0;

    [[nodiscard]] GenTL::EVENT_TYPE Type() const noexcept { return m_type; }
    void AnswerInfo(GenTL::EVENT_INFO_CMD command, const InfoTarget& target) const;

private:
    GenTL::EVENT_TYPE m_type;
};

/// An event with a queue of its own: everything but new buffers. When nobody fetches, the oldest entries go.
class QueuedEvent final : public Event {
public:
    using Event::Event;

    /// The bytes as GetData hands them out: those of an EventData, or a packet that one can be made from.
    void Fire(std::string bytes);

    void GetData(void* buffer, size_t* size, uint64_t timeoutMs) override;
    void AnswerDataInfo(const void* bytes, size_t size, GenTL::EVENT_DATA_INFO_CMD command,
                        const InfoTarget& target) const override;
    void Flush() override;
    void Kill() override;
    void Close() override;
    [[nodiscard]] size_t CountInQueue() const override;
    [[nodiscard]] uint64_t CountFired() const override;
    [[nodiscard]] size_t SizeMax() const override { return eventBytesMax; }
    [[nodiscard]] size_t DataSizeMax() const override { return eventValueMax; }

private:
    static constexpr size_t queueMax = 1024;

    mutable std::mutex m_lock;
    EventGate m_gate;
    std::deque<std::string> m_queue;
    uint64_t m_fired = 0;
};

} // namespace zqgentl
