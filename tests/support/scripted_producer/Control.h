#pragma once

/*
 * How a test drives the scripted producer. The functions are exported by the same .cti file as the GenTL
 * functions and are resolved with dlsym; the C++ side of it is tests/support/ScriptedProducer.h.
 *
 * Modules are named by symbols: TL1 (systems, in the order of opening), IF1, DEV1, REMOTE1, DS1 (numbered in
 * the order in which the model got them), BUF1 (in the order of announcement), and for an event SOURCE/TYPE,
 * such as DS1/1. A symbol without its number names every module of that kind.
 *
 * All functions may be called from any thread, before GCInitLib as well. GCInitLib resets script, model and
 * log unless Zqsp_KeepScript(1) was called after the last Zqsp_Reset.
 */

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define ZQSP_API __attribute__((visibility("default")))

/* Which of the two calls of a text query a rule is for. */
enum { ZQSP_ANY_QUERY = 0, ZQSP_SIZE_QUERY = 1, ZQSP_DATA_QUERY = 2 };

/* Which threads a rule is for: the one that called GCInitLib last, or the others. */
enum { ZQSP_ANY_THREAD = 0, ZQSP_OPENING_THREAD = 1, ZQSP_OTHER_THREADS = 2 };

/* Outputs that a rule leaves alone. */
enum { ZQSP_NO_DATA = 1, ZQSP_NO_SIZE = 2, ZQSP_NO_TYPE = 4 };

/*
 * What one function answers. Zero means "any" in the first group and "as usual" in the second. The newest
 * rule that matches a call decides; every matching rule counts the call.
 */
typedef struct ZqspRule {
    const char* function; /* null or empty: any */
    int thread;
    const char* handle; /* symbol of any handle among the arguments, or null */
    const char* id;     /* identifier among the arguments, or null */
    int hasCommand;     /* information command, flags or flush operation */
    int64_t command;
    int hasEvent; /* event type, of the event handle too */
    int64_t event;
    int hasIndex;
    uint64_t index;
    int hasAddress;
    uint64_t address;
    int query;
    uint64_t firstCall; /* counted from 1 over the calls that match; 0 is 1 */
    uint64_t calls;     /* how many calls from there on; 0: all */

    int hasResult;
    int32_t result;
    int alsoRuns;              /* do what the function does although result says failure */
    const char* lastErrorText; /* what GCGetLastError then says on that thread, or null */
    int hasLastErrorCode;      /* the code it says, when that is not result */
    int32_t lastErrorCode;
    int hasValue; /* what goes into the output, instead of what the function would write */
    const void* value;
    size_t valueSize;
    int hasSize; /* what goes into the size output */
    size_t size;
    int unterminated; /* the last byte of what was written becomes an 'x' */
    int garbled;      /* every bit of what was written is set */
    int hasType;      /* what goes into the type output; for GCGetLastError into the code */
    int32_t type;
    int unwritten;
    int hold; /* the call stays inside until Zqsp_Release */
} ZqspRule;

/* An event to deliver. Null id or value: the producer has none (GC_ERR_NOT_AVAILABLE). */
typedef struct ZqspEvent {
    const void* block; /* what EventGetData gives; null: a block of the producer's own */
    size_t blockSize;
    const void* id;
    size_t idSize;
    int32_t idType;
    const void* value;
    size_t valueSize;
    int32_t valueType;
    int hasNumId;
    uint64_t numId;
} ZqspEvent;

/* One answer of DSGetBufferInfo for one frame: a value, or a failure. */
typedef struct ZqspBufferInfo {
    int32_t command;
    int32_t result;
    int32_t type;
    const void* value;
    size_t valueSize;
} ZqspBufferInfo;

typedef struct ZqspFrame {
    const void* data;
    size_t dataSize; /* larger than the buffer: cut, incomplete, "larger than buffer" */
    const ZqspBufferInfo* infos;
    size_t infoCount;
} ZqspFrame;

/* Script, model, log and counters as after loading; lets every held call go. Open handles stay. */
ZQSP_API void Zqsp_Reset(void);
ZQSP_API void Zqsp_KeepScript(int keep);

/* The model. The usual one: interface IF1 of type U3V with device DEV1 (read-write, one stream). */
ZQSP_API void Zqsp_ClearInterfaces(void);
ZQSP_API void Zqsp_AddInterface(const char* id, const char* tlType);
ZQSP_API int Zqsp_RemoveInterface(const char* id);
ZQSP_API int Zqsp_AddDevice(const char* interfaceId, const char* id, int32_t accessStatus, uint32_t streams);
ZQSP_API int Zqsp_RemoveDevice(const char* interfaceId, const char* id);
ZQSP_API void Zqsp_AllowSeveralSystems(int allow);

/* Register memory and description files; unwritten bytes read 0. */
ZQSP_API void Zqsp_WriteRegister(const char* module, uint64_t address, const void* bytes, size_t size);
ZQSP_API void Zqsp_ReadRegister(const char* module, uint64_t address, void* bytes, size_t size);
ZQSP_API void Zqsp_SetUrl(const char* module, uint32_t index, const char* url);
ZQSP_API void Zqsp_ClearUrls(const char* module);
ZQSP_API void Zqsp_SetDescription(const char* module, const char* fileName, const void* bytes, size_t size);

/* The script. */
ZQSP_API uint32_t Zqsp_AddRule(const ZqspRule* rule);
ZQSP_API void Zqsp_ClearRules(void);
ZQSP_API int Zqsp_WaitHeld(uint32_t rule, uint32_t calls, uint32_t timeoutMs);
ZQSP_API void Zqsp_Release(uint32_t rule);
/* The latest call that the rule answered, as in the log; the size as with Zqsp_Log, 1 when there was none. */
ZQSP_API size_t Zqsp_Answered(uint32_t rule, char* text, size_t capacity);

/*
 * The log: one line a call, in the order of entry, separated by line feeds; function null or empty: all.
 * Returns the size of the text with its terminator, and writes it when capacity is large enough.
 */
ZQSP_API size_t Zqsp_Log(const char* function, char* text, size_t capacity);
/* The same of all functions, called on those threads only. */
ZQSP_API size_t Zqsp_LogOfThreads(int threads, char* text, size_t capacity);
ZQSP_API void Zqsp_ClearLog(void);
ZQSP_API void Zqsp_DontLog(const char* function);
ZQSP_API uint64_t Zqsp_Count(const char* function);
ZQSP_API int Zqsp_WaitCount(const char* function, uint64_t count, uint32_t timeoutMs);

/* Successful calls that open and close; kinds LIB, TL, IF, DEV, DS, BUF, EVENT. */
ZQSP_API uint64_t Zqsp_Opened(const char* kind);
ZQSP_API uint64_t Zqsp_Closed(const char* kind);

/* Events and frames; 0 when nobody has registered the event, or no buffer is queued. */
ZQSP_API int Zqsp_PushEvent(const char* module, int32_t eventType, const ZqspEvent* event);
ZQSP_API int Zqsp_PushFrame(const char* stream, const ZqspFrame* frame);

/* Threads that are inside EventGetData with nothing to give them. */
ZQSP_API uint32_t Zqsp_WaitingForEvents(void);

/* Every DSStartAcquisition delivers that many frames, as buffers are queued. */
ZQSP_API void Zqsp_AutoStream(uint64_t frames);

#ifdef __cplusplus
}
#endif
