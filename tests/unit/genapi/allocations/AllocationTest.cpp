#include "../Camera.h"

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <thread>

#include <malloc.h>
#include <unistd.h>

namespace {

std::atomic<long> allocations{0};

} // namespace

// The library takes its memory from these, too. Inlined, they look like a mismatched pair to the compiler.
__attribute__((noinline)) void* operator new(size_t size) {
    ++allocations;
    if (void* const memory = std::malloc(size ? size : 1))
        return memory;
    throw std::bad_alloc();
}
__attribute__((noinline)) void operator delete(void* memory) noexcept {
    std::free(memory);
}
__attribute__((noinline)) void operator delete(void* memory, size_t) noexcept {
    std::free(memory);
}

using namespace GenApi;

TEST(Allocations, KeptNumbersAreReadWithoutAny) {
    Camera camera(::Node("Integer", "I", "<pValue>R</pValue><pIsAvailable>Yes</pIsAvailable>") +
                  IntReg("R", 0) + ::Node("Integer", "Yes", "<Value>1</Value>") +
                  ::Node("SwissKnife", "K", "<pVariable Name=\"X\">R</pVariable><Formula>X/2</Formula>") +
                  ::Node("Boolean", "B", "<pValue>R</pValue>"));
    const CIntegerPtr integer = camera.Int("I");
    const CFloatPtr knife = camera.Float("K");
    const CBooleanPtr boolean = camera.Bool("B");
    integer->GetValue();
    knife->GetValue();
    boolean->GetValue();
    const long before = allocations;
    for (int i = 0; i < 100; ++i) {
        integer->GetValue();
        knife->GetValue();
        boolean->GetValue();
        integer->GetAccessMode();
    }
    EXPECT_EQ(allocations - before, 0);
}

TEST(Allocations, ABufferOfTheSameChunkLayoutIsAttachedWithoutAny) {
    Camera camera(::Node("Port", "C", "<ChunkID>1001</ChunkID>") +
                      ::Node("IntReg", "R", "<Address>0</Address><Length>8</Length><pPort>C</pPort>") +
                      ::Node("Integer", "I", "<pValue>R</pValue>") +
                      ::Node("Port", "P", "<ChunkID>1</ChunkID>"),
                  false);
    uint8_t buffers[2][32] = {{1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 0,    1, 0, 0, 0, 8, //
                               1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x10, 1, 0, 0, 0, 8}};
    std::memcpy(buffers[1], buffers[0], sizeof buffers[0]);
    buffers[1][16] = 2;
    CChunkAdapterGEV adapter(camera.map._Ptr);
    const CIntegerPtr integer = camera.Int("I");
    AttachStatistics_t statistics;
    adapter.AttachBuffer(buffers[0], 32, &statistics);
    integer->GetValue();
    const long before = allocations;
    for (int i = 0; i < 100; ++i) {
        adapter.AttachBuffer(buffers[i % 2], 32, &statistics);
        ASSERT_EQ(integer->GetValue(), 1 + i % 2);
        adapter.UpdateBuffer(buffers[0]);
        ASSERT_EQ(integer->GetValue(), 1);
        if (i % 3 == 0)
            adapter.DetachBuffer();
    }
    EXPECT_EQ(allocations - before, 0);
    EXPECT_EQ(statistics.NumAttachedChunks, 2);
}

TEST(Allocations, FreshReadsNeedNoneEither) {
    Camera camera(
        IntReg("R", 0, 4, "<Cachable>NoCache</Cachable>") +
        ::Node("SwissKnife", "K", "<pVariable Name=\"X\">R</pVariable><Formula>(X*2+1)/2</Formula>"));
    const CFloatPtr knife = camera.Float("K");
    knife->GetValue();
    const long before = allocations;
    for (int i = 0; i < 100; ++i)
        knife->GetValue();
    EXPECT_EQ(allocations - before, 0);
}

TEST(Allocations, MapsOfOneDescriptionInTheCacheShareIt) {
#ifdef ZQAPI_SANITIZED
    GTEST_SKIP() << "mallinfo2 knows nothing of a sanitizer's memory";
#endif
    namespace fs = std::filesystem;
    constexpr int kNodes = 3000;
    const fs::path folder = fs::temp_directory_path() / ("zq-shared-" + std::to_string(getpid()));
    fs::create_directories(folder);
    setenv("GENICAM_CACHE_V3_0", folder.c_str(), 1);
    std::string nodes;
    for (int i = 0; i < kNodes; ++i)
        nodes += ::Node("Integer", "Number" + std::to_string(i), "<Value>1</Value>");
    const std::string xml = Describe(nodes);
    const auto open = [&](ECacheUsage_t usage) {
        return CNodeMapRef(CNodeMapFactory(ContentType_Xml, xml.data(), xml.size(), usage).CreateNodeMap());
    };
    const auto inUse = [] {
        const auto info = mallinfo2();
        return info.uordblks + info.hblkhd;
    };
    open(CacheUsage_ForceWrite);
    std::this_thread::sleep_for(std::chrono::milliseconds(120));
    const size_t none = inUse();
    const CNodeMapRef first = open(CacheUsage_ForceRead);
    const size_t one = inUse();
    const CNodeMapRef second = open(CacheUsage_ForceRead);
    const size_t two = inUse();
    unsetenv("GENICAM_CACHE_V3_0");
    fs::remove_all(folder);
    EXPECT_GT(one - none, 200u * kNodes); // a node's description
    EXPECT_LT(two - one, 100u * kNodes);  // what it is now
}
