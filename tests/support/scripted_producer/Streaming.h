#pragma once

#include "tests/support/scripted_producer/Producer.h"

namespace Scripted {

/// The pools of a data stream: what is announced, queued, awaits delivery or is the consumer's.
GenTL::GC_ERROR Announce(Producer& producer, StreamModule& stream, void* memory, size_t size,
                         void* userPointer, const Out& out);
GenTL::GC_ERROR Revoke(Producer& producer, StreamModule& stream, BufferModule& buffer, void** memory,
                       void** userPointer);
GenTL::GC_ERROR Queue(Producer& producer, StreamModule& stream, BufferModule& buffer);
GenTL::GC_ERROR Flush(Producer& producer, StreamModule& stream, GenTL::ACQ_QUEUE_TYPE operation);
GenTL::GC_ERROR Start(Producer& producer, StreamModule& stream, uint64_t frames);
GenTL::GC_ERROR Stop(StreamModule& stream);

/// Fills the next queued buffer and delivers it; false (an underrun) when none is queued.
bool Deliver(Producer& producer, StreamModule& stream, const ZqspFrame& frame);

/// The registered event of that type on the module, or null.
std::shared_ptr<EventModule> FindEvent(const Producer& producer, const Module& source, int32_t type);

GenTL::GC_ERROR StreamInfo(Producer& producer, StreamModule& stream, GenTL::STREAM_INFO_CMD command,
                           const Out& out);
GenTL::GC_ERROR BufferInfo(Producer& producer, StreamModule& stream, BufferModule& buffer,
                           GenTL::BUFFER_INFO_CMD command, const Out& out);

} // namespace Scripted
