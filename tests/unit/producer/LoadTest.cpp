// The library as a consumer loads it, in a process of its own for each test.

#include "Functions.h"

#include <chrono>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <link.h>
#include <malloc.h>
#include <thread>

using namespace GenTL;

namespace {

/// Loaded for as long as it lives.
class Loaded {
public:
    explicit Loaded(int flags, const char* file = ZQGENTL_FILE) : m_library(dlopen(file, flags)) {}
    Loaded(const Loaded&) = delete;
    Loaded& operator=(const Loaded&) = delete;
    ~Loaded() {
        if (m_library != nullptr)
            dlclose(m_library);
    }
    explicit operator bool() const noexcept { return m_library != nullptr; }

    template <class Function>
    [[nodiscard]] Function Find(const char* name) const {
        return reinterpret_cast<Function>(dlsym(m_library, name));
    }

private:
    void* m_library;
};

/// Addresses of the camera's registers, little endian in the one that is used.
constexpr uint64_t acquisitionStart = 0x508;
constexpr uint64_t frameRateEnable = 0x520;

void WriteCamera(const Loaded& library, PORT_HANDLE remote, uint64_t address, uint32_t value) {
    size_t size = sizeof value;
    ASSERT_EQ(library.Find<PGCWritePort>("GCWritePort")(remote, address, &value, &size), GC_ERR_SUCCESS);
}

/// Frames through a buffer that is queued, again and again, and an acquisition that is left running.
void Acquire(const Loaded& library, DEV_HANDLE device, DS_HANDLE stream, EVENT_HANDLE event,
             BUFFER_HANDLE buffer) {
    PORT_HANDLE remote = nullptr;
    ASSERT_EQ(library.Find<PDevGetPort>("DevGetPort")(device, &remote), GC_ERR_SUCCESS);
    ASSERT_EQ(library.Find<PDSQueueBuffer>("DSQueueBuffer")(stream, buffer), GC_ERR_SUCCESS);
    ASSERT_EQ(library.Find<PDSStartAcquisition>("DSStartAcquisition")(stream, ACQ_START_FLAGS_DEFAULT,
                                                                      GENTL_INFINITE),
              GC_ERR_SUCCESS);
    WriteCamera(library, remote, frameRateEnable, 0);
    WriteCamera(library, remote, acquisitionStart, 1);
    for (int frame = 0; frame < 3; ++frame) {
        EVENT_NEW_BUFFER_DATA data{};
        size_t size = sizeof data;
        ASSERT_EQ(library.Find<PEventGetData>("EventGetData")(event, &data, &size, 5000), GC_ERR_SUCCESS);
        ASSERT_EQ(data.BufferHandle, buffer);
        ASSERT_EQ(library.Find<PDSQueueBuffer>("DSQueueBuffer")(stream, buffer), GC_ERR_SUCCESS);
    }
}

enum class Use { Open, Acquire };

/// Opens everything down to a stream with a buffer, and closes it from above.
void UseOnce(int flags, Use use = Use::Open, const char* file = ZQGENTL_FILE) {
    const Loaded library(flags, file);
    ASSERT_TRUE(library) << dlerror();
    ASSERT_EQ(library.Find<PGCInitLib>("GCInitLib")(), GC_ERR_SUCCESS);
    TL_HANDLE system = nullptr;
    IF_HANDLE interface = nullptr;
    DEV_HANDLE device = nullptr;
    DS_HANDLE stream = nullptr;
    BUFFER_HANDLE buffer = nullptr;
    EVENT_HANDLE event = nullptr;
    ASSERT_EQ(library.Find<PTLOpen>("TLOpen")(&system), GC_ERR_SUCCESS);
    ASSERT_EQ(library.Find<PTLOpenInterface>("TLOpenInterface")(system, "ZQ-U3V-0", &interface), 0);
    ASSERT_EQ(library.Find<PIFOpenDevice>("IFOpenDevice")(interface, "ZQ-U3V-0:SIM-U3V-0001",
                                                          DEVICE_ACCESS_CONTROL, &device),
              GC_ERR_SUCCESS);
    ASSERT_EQ(library.Find<PDevOpenDataStream>("DevOpenDataStream")(device, "Stream0", &stream), 0);
    ASSERT_EQ(library.Find<PDSAllocAndAnnounceBuffer>("DSAllocAndAnnounceBuffer")(stream, 640 * 480, nullptr,
                                                                                  &buffer),
              GC_ERR_SUCCESS);
    ASSERT_EQ(library.Find<PGCRegisterEvent>("GCRegisterEvent")(stream, EVENT_NEW_BUFFER, &event), 0);
    if (use == Use::Acquire) {
        ASSERT_NO_FATAL_FAILURE(Acquire(library, device, stream, event, buffer));
    }
    EXPECT_EQ(library.Find<PTLClose>("TLClose")(system), GC_ERR_SUCCESS);
    EXPECT_EQ(library.Find<PGCCloseLib>("GCCloseLib")(), GC_ERR_SUCCESS);
}

struct Search {
    const char* file;
    size_t found;
};

size_t CopiesMapped(const char* file) {
    Search search{file, 0};
    const auto look = [](dl_phdr_info* info, size_t, void* data) {
        auto& wanted = *static_cast<Search*>(data);
        wanted.found += std::strcmp(info->dlpi_name, wanted.file) == 0 ? 1 : 0;
        return 0;
    };
    dl_iterate_phdr(look, &search);
    return search.found;
}

/// Frames flow in every tenth round.
void UseAgain(int rounds, const char* file, size_t copiesAfter) {
    for (int round = 0; round < rounds && !testing::Test::HasFatalFailure(); ++round) {
        UseOnce(RTLD_NOW | RTLD_LOCAL, round % 10 == 0 ? Use::Acquire : Use::Open, file);
        ASSERT_EQ(CopiesMapped(file), copiesAfter) << "after round " << round;
    }
}

size_t CountEntries(const char* folder) {
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<size_t>(std::distance(begin(entries), end(entries)));
}

/// What is left over; under a sanitizer, whose heap this isn't, its own count at the end is what tells.
struct Remains {
    size_t heap = mallinfo2().uordblks + mallinfo2().hblkhd;
    size_t threads = CountEntries("/proc/self/task");
    size_t files = CountEntries("/proc/self/fd");
};

/// A thread that has been joined may be among the process's for a moment longer.
bool MoreAreLeftThan(size_t threads) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (CountEntries("/proc/self/task") > threads && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return CountEntries("/proc/self/task") > threads;
}

} // namespace

TEST(Loading, WithEverySymbolBoundAtOnce) {
    UseOnce(RTLD_NOW | RTLD_LOCAL);
}

TEST(Loading, BeforeTheSymbolsOfTheProcess) {
#ifdef ZQAPI_SANITIZED
    GTEST_SKIP() << "a sanitizer's own functions have to come first";
#else
    UseOnce(RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
#endif
}

TEST(Loading, AThousandTimesLeavesNothingBehind) {
    constexpr size_t staysMapped = 1; // the library asks for that
    ASSERT_NO_FATAL_FAILURE(UseAgain(500, ZQGENTL_FILE, staysMapped));
    // What a round leaves behind, it leaves in every stretch of rounds; what the loader or a thread's end
    // takes for good once is in one of them.
    bool grewAlways = true;
    Remains before;
    for (int stretch = 0; stretch < 5; ++stretch) {
        ASSERT_NO_FATAL_FAILURE(UseAgain(100, ZQGENTL_FILE, staysMapped));
        const Remains after;
        grewAlways = grewAlways && after.heap > before.heap;
        EXPECT_FALSE(MoreAreLeftThan(before.threads));
        EXPECT_EQ(after.files, before.files);
        before = after;
    }
    EXPECT_FALSE(grewAlways) << "still " << before.heap << " bytes in use";
}

// The same code, linked so that it doesn't stay: whatever of it still ran would run into nothing.
TEST(Loading, AThousandTimesWithACopyThatIsUnmappedEachTime) {
#ifdef ZQAPI_SANITIZED
    GTEST_SKIP() << "a sanitizer takes what hung on a library that is gone for leaked";
#else
    constexpr const char* file = ZQGENTL_UNMAPPED_FILE;
    const Remains before;
    {
        const Loaded library(RTLD_NOW | RTLD_LOCAL, file);
        ASSERT_EQ(CopiesMapped(file), 1U);
    }
    ASSERT_NO_FATAL_FAILURE(UseAgain(1000, file, 0));
    const Remains after;
    EXPECT_FALSE(MoreAreLeftThan(before.threads));
    EXPECT_EQ(after.files, before.files);
#endif
}
