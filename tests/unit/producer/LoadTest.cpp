// The library as a consumer loads it, in a process of its own for each test.

#include "Functions.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <malloc.h>

using namespace GenTL;

namespace {

/// Loaded for as long as it lives.
class Loaded {
public:
    explicit Loaded(int flags) : m_library(dlopen(ZQGENTL_FILE, flags)) {}
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

/// Opens everything down to a stream with a buffer, and closes it from above.
void UseOnce(int flags) {
    const Loaded library(flags);
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
    ASSERT_EQ(
        library.Find<PDSAllocAndAnnounceBuffer>("DSAllocAndAnnounceBuffer")(stream, 4096, nullptr, &buffer),
        GC_ERR_SUCCESS);
    ASSERT_EQ(library.Find<PGCRegisterEvent>("GCRegisterEvent")(stream, EVENT_NEW_BUFFER, &event), 0);
    EXPECT_EQ(library.Find<PTLClose>("TLClose")(system), GC_ERR_SUCCESS);
    EXPECT_EQ(library.Find<PGCCloseLib>("GCCloseLib")(), GC_ERR_SUCCESS);
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
    const auto rounds = [](int count) {
        for (int round = 0; round < count && !testing::Test::HasFatalFailure(); ++round)
            UseOnce(RTLD_NOW | RTLD_LOCAL);
        return mallinfo2().uordblks + mallinfo2().hblkhd;
    };
    const size_t before = rounds(20);
    const size_t after = rounds(1000);
    // Less than a handle's worth a round. Under a sanitizer, whose heap this isn't, its own count is what
    // tells.
    EXPECT_LT(after, before + 32 * 1000);
}
