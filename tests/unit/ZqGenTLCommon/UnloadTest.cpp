#include <atomic>
#include <memory>

#include <dlfcn.h>

#include <gtest/gtest.h>

#include <ZqApi/Error.h>

#include "ZqGenTLCommon/ZqGenTLLib.h"
#include "tests/support/ScriptedProducer.h"

namespace {

std::atomic<int> g_Closed{0};

} // namespace

/// Counts what is unloaded in this process, and unloads it.
extern "C" __attribute__((visibility("default"))) int dlclose(void* handle) {
    using Function = int (*)(void*);
    static const auto real = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "dlclose"));
    ++g_Closed;
    return real(handle);
}

namespace {

using namespace ZqApi;
using ZqTest::ScriptedProducer;

int ClosedBy(void (*action)()) {
    const int before = g_Closed;
    action();
    return g_Closed - before;
}

TEST(Unload, HappensOnceWhenTheLoaderGoes) {
    const ScriptedProducer producer;
    EXPECT_EQ(ClosedBy([] { std::make_shared<CZqGenTLLib>("libzqgentl.cti"); }), 1);
}

TEST(Unload, HappensOnceWhenItIsAskedForTwice) {
    const ScriptedProducer producer;
    EXPECT_EQ(ClosedBy([] {
                  const auto lib = std::make_shared<CZqGenTLLib>("libzqgentl.cti");
                  lib->UnloadLib();
                  lib->UnloadLib();
              }),
              1);
}

TEST(Unload, HappensWhenInitialisationFails) {
    const ScriptedProducer producer;
    producer.Answer("GCInitLib").With(GenTL::GC_ERR_ERROR);
    EXPECT_EQ(ClosedBy([] { EXPECT_THROW(CZqGenTLLib("libzqgentl.cti"), CZqGenTLErrorException); }), 1);
}

TEST(Unload, HappensWhenInitialisationIsMissing) {
    const ScriptedProducer producer("without_GCInitLib");
    EXPECT_EQ(ClosedBy([] { EXPECT_THROW(CZqGenTLLib("libzqgentl.cti"), CZqGenTLErrorException); }), 1);
}

} // namespace
