#include "producer/gentl/NewBufferEvent.h"

#include <cstring>

namespace zqgentl {

namespace {

using Data = GenTL::EVENT_NEW_BUFFER_DATA;

constexpr InfoRow<Data> rows[] = {
    {GenTL::EVENT_DATA_ID, GenTL::INFO_DATATYPE_PTR,
     [](const Data& d) { return InfoValue(static_cast<const void*>(d.BufferHandle)); }},
    {GenTL::EVENT_DATA_VALUE, GenTL::INFO_DATATYPE_PTR,
     [](const Data& d) { return InfoValue(static_cast<const void*>(d.pUserPointer)); }},
    {GenTL::EVENT_DATA_NUMID, GenTL::INFO_DATATYPE_UINT64,
     [](const Data& d) { return InfoValue(static_cast<const void*>(d.BufferHandle)); }},
};

} // namespace

NewBufferEvent::NewBufferEvent(std::shared_ptr<StreamEngine> engine)
    : Event(GenTL::EVENT_NEW_BUFFER), m_engine(std::move(engine)) {
    m_engine->Attach(m_gate);
    const StreamEngine::Counts counts = m_engine->Count();
    m_firedBefore = counts.counters.queuedForDelivery - counts.awaiting;
}

void NewBufferEvent::GetData(void* buffer, size_t* size, uint64_t timeoutMs) {
    m_engine->TakeFilled(m_gate, buffer, size, timeoutMs);
}

void NewBufferEvent::AnswerDataInfo(const void* bytes, size_t size, GenTL::EVENT_DATA_INFO_CMD command,
                                    const InfoTarget& target) const {
    Data data{};
    if (size != sizeof data)
        throw Failure(GenTL::GC_ERR_INVALID_PARAMETER, "these are not the bytes of a new-buffer event");
    std::memcpy(&data, &Required(static_cast<const uint8_t*>(bytes), "the event data"), sizeof data);
    zqgentl::AnswerInfo(rows, data, command, target);
}

uint64_t NewBufferEvent::CountFired() const {
    return m_engine->Count().counters.queuedForDelivery - m_firedBefore;
}

} // namespace zqgentl
