#pragma once

#include "producer/gentl/BufferPort.h"
#include "producer/gentl/Module.h"
#include "producer/sim/Chunks.h"
#include "producer/sim/Parts.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace zqgentl {

/// Where an announced buffer is: nowhere (the consumer's), in the input pool, being filled, or in the output
/// queue.
enum class Place { Idle, Input, Filling, Output };

/// What is known of the frame in a buffer.
struct FrameInfo {
    bool present = false;
    bool incomplete = false;
    bool largerThanBuffer = false;
    uint64_t frameId = 0;
    uint64_t timestampNs = 0;
    uint64_t width = 0;
    uint64_t height = 0;
    uint64_t deliveredHeight = 0;
    uint64_t offsetX = 0;
    uint64_t offsetY = 0;
    uint64_t pixelFormat = 0;
    int32_t pixelFormatNamespace = 0;
    size_t sizeFilled = 0;
    bool imagePresent = false;
    bool hasChunks = false;
    bool chunksBroken = false;
    ChunkMask chunkMask = 0;
    uint32_t chunkLayoutId = 0;
    size_t imageSize = 0;
    PartList parts;
};

/// An announced buffer. Its place belongs to the stream's engine; the frame may be set and asked from any
/// thread.
class BufferModule final : public Module {
public:
    static constexpr Kind kind = Kind::Buffer;

    /// A buffer in the consumer's memory, or, without a base address, in memory of its own.
    /// The owner of the model lives as long as the buffer.
    BufferModule(std::shared_ptr<const Object> owner, const CameraModel& model, void* base, size_t size,
                 void* userPointer);

    [[nodiscard]] uint8_t* Base() const noexcept { return m_base; }
    [[nodiscard]] size_t Size() const noexcept { return m_size; }
    [[nodiscard]] void* UserPointer() const noexcept { return m_userPointer; }
    [[nodiscard]] const CameraModel& Model() const noexcept { return m_model; }
    [[nodiscard]] std::string Id() const;
    [[nodiscard]] int32_t PayloadType() const;
    [[nodiscard]] const Port& ModulePort() const override;
    [[nodiscard]] const char* TlType() const noexcept { return m_model.tlType; }
    [[nodiscard]] bool OwnsMemory() const noexcept { return m_memory != nullptr; }
    [[nodiscard]] Place CurrentPlace() const noexcept { return m_place; }

    [[nodiscard]] FrameInfo Frame() const;
    void SetFrame(const FrameInfo& frame);

    void AnswerInfo(GenTL::BUFFER_INFO_CMD command, const InfoTarget& target) const;
    /// GC_ERR_NO_DATA unless the frame has several parts.
    [[nodiscard]] size_t PartCount() const;
    void AnswerPartInfo(uint32_t index, GenTL::BUFFER_PART_INFO_CMD command, const InfoTarget& target) const;
    /// The list of the chunks in the buffer. Counts entries, not bytes; otherwise like every other answer.
    void AnswerChunks(GenTL::SINGLE_CHUNK_DATA* entries, size_t* count) const;

private:
    friend class BufferPool;
    struct FreeMemory {
        void operator()(uint8_t* memory) const noexcept { std::free(memory); }
    };

    void AddChunks(const FrameInfo& frame, std::vector<ChunkPlace>& places) const;

    std::shared_ptr<const Object> m_owner;
    const CameraModel& m_model;
    std::unique_ptr<uint8_t, FreeMemory> m_memory;
    uint8_t* m_base;
    size_t m_size;
    void* m_userPointer;

    std::atomic<Place> m_place{Place::Idle};
    std::list<BufferModule*>::iterator m_position;
    std::atomic<const class BufferPool*> m_pool{nullptr}; // where it is announced

    // Made when somebody asks for it: few do, and there may be many buffers.
    mutable std::once_flag m_portMade;
    mutable std::unique_ptr<BufferPort> m_port;

    mutable std::mutex m_frameLock;
    FrameInfo m_frame;
};

} // namespace zqgentl
