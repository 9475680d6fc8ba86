#include "producer/gentl/StreamModule.h"

#include "producer/gentl/DeviceModule.h"
#include "producer/gentl/NewBufferEvent.h"

namespace zqgentl {

namespace {

using Value = RegisterValue;
constexpr RegisterKind Integer = RegisterKind::Integer;
constexpr RegisterKind Text = RegisterKind::Text;

struct View {
    const StreamModule& stream;
    StreamEngine::Counts counts;
};

constexpr GenTL::INFO_DATATYPE Size = GenTL::INFO_DATATYPE_SIZET;
constexpr GenTL::INFO_DATATYPE Uint64 = GenTL::INFO_DATATYPE_UINT64;
constexpr GenTL::INFO_DATATYPE Flag = GenTL::INFO_DATATYPE_BOOL8;
constexpr GenTL::INFO_DATATYPE String = GenTL::INFO_DATATYPE_STRING;

constexpr InfoRow<View> infoRows[] = {
    {GenTL::STREAM_INFO_ID, String, [](const View&) { return InfoValue(StreamModule::id); }},
    {GenTL::STREAM_INFO_NUM_DELIVERED, Uint64,
     [](const View& v) { return InfoValue(v.counts.counters.delivered); }},
    {GenTL::STREAM_INFO_NUM_UNDERRUN, Uint64,
     [](const View& v) { return InfoValue(v.counts.counters.underrun); }},
    {GenTL::STREAM_INFO_NUM_ANNOUNCED, Size, [](const View& v) { return InfoValue(v.counts.announced); }},
    {GenTL::STREAM_INFO_NUM_QUEUED, Size, [](const View& v) { return InfoValue(v.counts.queued); }},
    {GenTL::STREAM_INFO_NUM_AWAIT_DELIVERY, Size, [](const View& v) { return InfoValue(v.counts.awaiting); }},
    {GenTL::STREAM_INFO_NUM_STARTED, Uint64,
     [](const View& v) { return InfoValue(v.counts.counters.started); }},
    {GenTL::STREAM_INFO_PAYLOAD_SIZE, Size,
     [](const View& v) { return InfoValue(static_cast<uint64_t>(v.stream.Source().PayloadSize())); }},
    {GenTL::STREAM_INFO_IS_GRABBING, Flag, [](const View& v) { return InfoValue(v.counts.grabbing); }},
    {GenTL::STREAM_INFO_DEFINES_PAYLOADSIZE, Flag, [](const View&) { return InfoValue(true); }},
    {GenTL::STREAM_INFO_TLTYPE, String,
     [](const View& v) { return InfoValue(v.stream.Source().Model().tlType); }},
    {GenTL::STREAM_INFO_NUM_CHUNKS_MAX, Size, [](const View&) { return InfoValue(uint64_t{chunkCount}); }},
    {GenTL::STREAM_INFO_BUF_ANNOUNCE_MIN, Size, [](const View&) { return InfoValue(uint64_t{buffersMin}); }},
    {GenTL::STREAM_INFO_BUF_ALIGNMENT, Size, [](const View&) { return InfoValue(uint64_t{1}); }},
};

Value OfCount(uint64_t count) {
    return Value(static_cast<int64_t>(count));
}

StreamEngine::Counts CountsOf(const StreamModule& stream) {
    return stream.Engine().Count();
}

void SetHandling(StreamModule& stream, const Value& value) {
    const int64_t handling = std::get<int64_t>(value);
    if (handling < 0 || handling > static_cast<int64_t>(BufferHandling::NewestOnly))
        throw Failure(GenTL::GC_ERR_INVALID_VALUE,
                      "StreamBufferHandlingMode has no value " + std::to_string(handling));
    stream.Engine().SetHandling(static_cast<BufferHandling>(handling));
}

constexpr RegisterRow<StreamModule> registerRows[] = {
    {0x0100, 64, Text, [](const StreamModule&) { return Value(std::string(StreamModule::id)); }, nullptr},
    {0x0300, 4, Integer,
     [](const StreamModule& s) { return Value(static_cast<int64_t>(s.Source().Model().technology)); },
     nullptr},
    {0x0304, 4, Integer,
     [](const StreamModule& s) { return Value(static_cast<int64_t>(s.Engine().Handling())); }, SetHandling},
    {0x0308, 8, Integer, [](const StreamModule& s) { return OfCount(CountsOf(s).announced); }, nullptr},
    {0x0310, 8, Integer, [](const StreamModule&) { return OfCount(buffersMin); }, nullptr},
    {0x0318, 8, Integer, [](const StreamModule& s) { return OfCount(CountsOf(s).counters.delivered); },
     nullptr},
    {0x0320, 8, Integer, [](const StreamModule& s) { return OfCount(CountsOf(s).counters.underrun); },
     nullptr},
    {0x0328, 8, Integer, [](const StreamModule& s) { return OfCount(CountsOf(s).queued); }, nullptr},
    {0x0330, 8, Integer, [](const StreamModule& s) { return OfCount(CountsOf(s).awaiting); }, nullptr},
    {0x0338, 8, Integer, [](const StreamModule& s) { return OfCount(CountsOf(s).counters.started); },
     nullptr},
    {0x0340, 8, Integer, [](const StreamModule& s) { return Value(s.Source().PayloadSize()); }, nullptr},
    {0x0348, 4, Integer, [](const StreamModule& s) { return Value(int64_t{CountsOf(s).grabbing}); }, nullptr},
    {0x0350, 8, Integer, [](const StreamModule&) { return OfCount(chunkCount); }, nullptr},
    {0x0358, 8, Integer, [](const StreamModule&) { return OfCount(1); }, nullptr},
};

/// Numbered as the enumeration EventSelector numbers them.
enum class StreamEvent { TransferEnd, BufferTooSmall, BuffersDiscarded, NewBufferData };
constexpr uint32_t streamEventCount = 4;
constexpr uint16_t firstStreamEvent = 0x9030;

} // namespace

StreamModule::StreamModule(std::shared_ptr<DeviceModule> parent, Camera& camera)
    : Module(kind), m_parent(std::move(parent)), m_camera(camera),
      m_moduleEvents(*this, firstStreamEvent, streamEventCount, ModuleEvents::Frames::Yes),
      m_engine(std::make_shared<StreamEngine>(camera, *this)),
      m_port({id, camera.Model().modelName, camera.Model().tlType, "TLDataStream", ZQGENTL_VERSION,
              "StreamPort", false, true},
             m_registers, descriptions::stream) {
    m_registers.Bind(*this, registerRows);
    m_moduleEvents.BindTo(m_registers);
    m_registers.AddMemory(descriptionAddress, descriptions::stream.data, descriptions::stream.size);
}

StreamEngine& StreamModule::LiveEngine() const {
    if (m_camera.Lost())
        throw Failure(GenTL::GC_ERR_IO, "the camera is lost");
    return *m_engine;
}

void* StreamModule::Announce(void* base, size_t size, void* userPointer) {
    StreamEngine& engine = LiveEngine();
    if (size == 0)
        throw Failure(GenTL::GC_ERR_INVALID_PARAMETER, "a buffer of 0 bytes");
    auto buffer =
        Publish(std::make_shared<BufferModule>(m_parent, m_camera.Model(), base, size, userPointer));
    try {
        engine.Announce(buffer);
    } catch (...) {
        HandleRegistry::Instance().Remove(Kind::Buffer, buffer->Handle());
        throw;
    }
    return buffer->Handle();
}

void StreamModule::Revoke(BufferModule& buffer, void** base, void** userPointer) {
    const std::shared_ptr<BufferModule> revoked = m_engine->Revoke(buffer);
    HandleRegistry::Instance().Remove(Kind::Buffer, revoked->Handle());
    revoked->UnregisterEvents();
    if (base != nullptr)
        *base = revoked->OwnsMemory() ? nullptr : revoked->Base();
    if (userPointer != nullptr)
        *userPointer = revoked->UserPointer();
}

void StreamModule::OnTransferEnd(BufferModule& buffer, const TransferNews& news) {
    m_moduleEvents.Send(StreamEvent::TransferEnd, news.frameId);
    if (news.discarded)
        m_moduleEvents.Send(StreamEvent::BuffersDiscarded, news.frameId);
    if (!news.tooSmall)
        return;
    m_moduleEvents.Send(StreamEvent::BufferTooSmall, news.frameId);
    const EventData error =
        EventData::Error(GenTL::GC_ERR_BUFFER_TOO_SMALL,
                         "frame " + std::to_string(news.frameId) + " is larger than its buffer");
    Fire(error);
    buffer.Fire(error);
}

bool StreamModule::WantsNewBuffers() const {
    return m_moduleEvents.Wants(StreamEvent::NewBufferData);
}

void StreamModule::OnNewBuffer(uint64_t frameId) {
    m_moduleEvents.Send(StreamEvent::NewBufferData, frameId);
}

void StreamModule::AnswerInfo(GenTL::STREAM_INFO_CMD command, const InfoTarget& target) const {
    zqgentl::AnswerInfo(infoRows, View{*this, m_engine->Count()}, command, target);
}

std::shared_ptr<Event> StreamModule::MakeEvent(GenTL::EVENT_TYPE type) {
    if (type == GenTL::EVENT_NEW_BUFFER)
        return std::make_shared<NewBufferEvent>(m_engine);
    return Module::MakeEvent(type);
}

void StreamModule::Close() {
    m_engine->Shutdown();
    UnregisterEvents();
    for (const std::shared_ptr<BufferModule>& buffer : m_engine->Buffers()) {
        try {
            Revoke(*buffer, nullptr, nullptr);
        } catch (const Failure&) {
            // Another thread has just revoked it.
        }
    }
    m_parent->Forget(*this);
}

} // namespace zqgentl
