#include "producer/gentl/Event.h"

namespace zqgentl {

namespace {

constexpr InfoRow<Event> rows[] = {
    {GenTL::EVENT_EVENT_TYPE, GenTL::INFO_DATATYPE_INT32, [](const Event& e) { return InfoValue(e.Type()); }},
    {GenTL::EVENT_NUM_IN_QUEUE, GenTL::INFO_DATATYPE_SIZET,
     [](const Event& e) { return InfoValue(e.CountInQueue()); }},
    {GenTL::EVENT_NUM_FIRED, GenTL::INFO_DATATYPE_UINT64,
     [](const Event& e) { return InfoValue(e.CountFired()); }},
    {GenTL::EVENT_SIZE_MAX, GenTL::INFO_DATATYPE_SIZET,
     [](const Event& e) { return InfoValue(e.SizeMax()); }},
    {GenTL::EVENT_INFO_DATA_SIZE_MAX, GenTL::INFO_DATATYPE_SIZET,
     [](const Event& e) { return InfoValue(e.DataSizeMax()); }},
};

} // namespace

void Event::AnswerInfo(GenTL::EVENT_INFO_CMD command, const InfoTarget& target) const {
    zqgentl::AnswerInfo(rows, *this, command, target);
}

void QueuedEvent::Fire(std::string bytes) {
    std::lock_guard<std::mutex> guard(m_lock);
    if (m_gate.Closed())
        return;
    if (m_queue.size() == queueMax)
        m_queue.pop_front();
    m_queue.push_back(std::move(bytes));
    ++m_fired;
    m_gate.NotifyData();
}

void QueuedEvent::GetData(void* buffer, size_t* size, uint64_t timeoutMs) {
    EventGate::Lock lock(m_lock);
    m_gate.Await(lock, timeoutMs, [this] { return !m_queue.empty(); });
    if (buffer != nullptr)
        ReplyBytes(m_queue.front().data(), m_queue.front().size(), buffer, size);
    m_queue.pop_front();
}

void QueuedEvent::AnswerDataInfo(const void* bytes, size_t size, GenTL::EVENT_DATA_INFO_CMD command,
                                 const InfoTarget& target) const {
    EventData::FromBytes(Type(), bytes, size).Answer(command, target);
}

void QueuedEvent::Flush() {
    std::lock_guard<std::mutex> guard(m_lock);
    m_queue.clear();
}

void QueuedEvent::Kill() {
    std::lock_guard<std::mutex> guard(m_lock);
    m_gate.Kill();
}

void QueuedEvent::Close() {
    std::lock_guard<std::mutex> guard(m_lock);
    m_gate.Close();
    m_queue.clear();
}

size_t QueuedEvent::CountInQueue() const {
    std::lock_guard<std::mutex> guard(m_lock);
    return m_queue.size();
}

uint64_t QueuedEvent::CountFired() const {
    std::lock_guard<std::mutex> guard(m_lock);
    return m_fired;
}

} // namespace zqgentl
