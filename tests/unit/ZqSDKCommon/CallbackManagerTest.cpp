#include "ZqSDKCommon/ZqCallbackManager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "tests/support/AllocationFailure.h"

using namespace ZqApi;

namespace {

/// Notes what is done to it in the test's diary.
class Callback final : public IZqCallback {
public:
    Callback(std::string name, std::vector<std::string>& diary) : m_Name(std::move(name)), m_Diary(diary) {}

    void Invoke(IZqCallbackParamBase*) override {
        m_Diary.push_back(m_Name + " in");
        if (action)
            action();
        m_Diary.push_back(m_Name + " out");
    }
    void Destroy() override { m_Diary.push_back(m_Name + " destroyed"); }

    std::function<void()> action;

private:
    const std::string m_Name;
    std::vector<std::string>& m_Diary;
};

class CallbackManager : public testing::Test {
protected:
    /// Lives as long as the test, as a registered callback must.
    Callback& Make(const std::string& name) {
        m_Callbacks.push_back(std::make_unique<Callback>(name, diary));
        return *m_Callbacks.back();
    }
    std::vector<std::string> Run() {
        diary.clear();
        manager->RunCallback(&param);
        return diary;
    }
    std::vector<std::string> Destroy() {
        diary.clear();
        manager.reset();
        return diary;
    }
    std::string DeregistrationError(void* handle) {
        try {
            manager->DeregisterCallback(handle);
        } catch (const GenICam::InvalidArgumentException& error) {
            EXPECT_STREQ(error.GetSourceFileName(), "ZqSDKCommon/ZqCallbackManager");
            return error.GetDescription();
        }
        return "none";
    }

    using Diary = std::vector<std::string>;
    Diary diary;

private:
    std::vector<std::unique_ptr<Callback>> m_Callbacks;

protected:
    std::unique_ptr<CZqCallbackManager> manager = std::make_unique<CZqCallbackManager>();
    CZqCallbackParamNewBuffer param{nullptr};
};

using CallbackManagerDeathTest = CallbackManager;

} // namespace

TEST_F(CallbackManager, RunsNothingWithoutRegistrations) {
    EXPECT_EQ(Run(), Diary{});
}

TEST_F(CallbackManager, TwiceRegisteredRunsTwiceUnderTwoHandles) {
    Callback& a = Make("a");
    void* const first = manager->RegisterCallback(&a);
    void* const second = manager->RegisterCallback(&a);
    EXPECT_NE(first, second);
    EXPECT_EQ(Run(), (Diary{"a in", "a out", "a in", "a out"}));
    manager->DeregisterCallback(first);
    EXPECT_EQ(Run(), (Diary{"a in", "a out"}));
    EXPECT_EQ(Destroy(), Diary{"a destroyed"});
}

TEST_F(CallbackManager, DeregistrationDestroysOnceAndIsThenInvalid) {
    Callback& a = Make("a");
    void* const handle = manager->RegisterCallback(&a);
    manager->DeregisterCallback(handle);
    EXPECT_EQ(diary, Diary{"a destroyed"});
    EXPECT_EQ(DeregistrationError(handle), "hCallback is invalid.");
    EXPECT_EQ(DeregistrationError(nullptr), "hCallback is invalid.");
    EXPECT_EQ(Destroy(), Diary{});
}

TEST_F(CallbackManager, DestructionDestroysEveryRegistration) {
    Callback& a = Make("a");
    Callback& b = Make("b");
    manager->RegisterCallback(&a);
    manager->RegisterCallback(&b);
    Diary destroyed = Destroy();
    std::sort(destroyed.begin(), destroyed.end());
    EXPECT_EQ(destroyed, (Diary{"a destroyed", "b destroyed"}));
}

TEST_F(CallbackManager, NullCallbackHasAHandleAndIsNeverCalled) {
    void* const handle = manager->RegisterCallback(nullptr);
    EXPECT_NE(handle, nullptr);
    EXPECT_EQ(Run(), Diary{});
    manager->DeregisterCallback(handle);
    manager->RegisterCallback(nullptr);
    EXPECT_EQ(Destroy(), Diary{});
}

TEST_F(CallbackManager, CallbackMayTakeItselfAndItsNeighbourOut) {
    Callback& a = Make("x");
    Callback& b = Make("x");
    std::vector<void*> handles = {manager->RegisterCallback(&a), manager->RegisterCallback(&b)};
    const auto both = [&] {
        for (void* const handle : handles)
            manager->DeregisterCallback(handle);
        diary.push_back("deregistered");
    };
    a.action = both;
    b.action = both;
    // The neighbour goes at once and isn't invoked, the running one when its Invoke has returned.
    EXPECT_EQ(Run(), (Diary{"x in", "x destroyed", "deregistered", "x out", "x destroyed"}));
    EXPECT_EQ(DeregistrationError(handles[0]), "hCallback is invalid.");
    EXPECT_EQ(DeregistrationError(handles[1]), "hCallback is invalid.");
    EXPECT_EQ(Run(), Diary{});
}

TEST_F(CallbackManager, RunningOneIsInvalidOnceDeregistered) {
    Callback& a = Make("a");
    void* handle = nullptr;
    a.action = [&] {
        manager->DeregisterCallback(handle);
        diary.push_back(DeregistrationError(handle));
    };
    handle = manager->RegisterCallback(&a);
    EXPECT_EQ(Run(), (Diary{"a in", "hCallback is invalid.", "a out", "a destroyed"}));
}

TEST_F(CallbackManager, NestedRunGivesUpAfterTheOuterInvoke) {
    Callback& a = Make("a");
    void* handle = nullptr;
    bool nested = false;
    a.action = [&] {
        if (nested)
            return manager->DeregisterCallback(handle);
        nested = true;
        manager->RunCallback(&param);
        EXPECT_TRUE(manager->IsInsideRunCallback());
    };
    handle = manager->RegisterCallback(&a);
    EXPECT_EQ(Run(), (Diary{"a in", "a in", "a out", "a out", "a destroyed"}));
}

TEST_F(CallbackManager, RegisteredDuringARunRunsFromTheNextOn) {
    Callback& younger = Make("younger");
    Callback& elder = Make("elder");
    std::vector<void*> handles;
    elder.action = [&] {
        // Several, so that one of them has the higher address.
        while (handles.size() < 8)
            handles.push_back(manager->RegisterCallback(&younger));
    };
    manager->RegisterCallback(&elder);
    EXPECT_EQ(Run(), (Diary{"elder in", "elder out"}));
    EXPECT_EQ(Run().size(), 2u * 9);
}

TEST_F(CallbackManager, KnowsWhoRuns) {
    bool inside = false;
    bool insideElsewhere = true;
    Callback& a = Make("a");
    a.action = [&] {
        inside = manager->IsInsideRunCallback();
        std::thread([&] { insideElsewhere = manager->IsInsideRunCallback(); }).join();
    };
    manager->RegisterCallback(&a);
    EXPECT_FALSE(manager->IsInsideRunCallback());
    Run();
    EXPECT_TRUE(inside);
    EXPECT_FALSE(insideElsewhere);
    EXPECT_FALSE(manager->IsInsideRunCallback());
}

TEST_F(CallbackManager, RunAllocatesNothing) {
    int calls = 0;
    manager->RegisterCallback(MakeCallback([&calls](IZqCallbackParamBase*) { ++calls; }));
    const uint64_t before = ZqTest::AllocationCountOfThisThread();
    manager->RunCallback(&param);
    EXPECT_EQ(ZqTest::AllocationCountOfThisThread(), before);
    EXPECT_EQ(calls, 1);
}

TEST_F(CallbackManager, FailedAllocationRegistersNothing) {
    Callback& a = Make("a");
    for (const uint64_t failing : {1, 2}) {
        try {
            const ZqTest::FailingAllocation failure(failing);
            manager->RegisterCallback(&a);
            FAIL();
        } catch (const GenICam::BadAllocException& error) {
            EXPECT_STREQ(error.GetDescription(), "std::bad_alloc");
        }
    }
    EXPECT_EQ(Run(), Diary{});
    EXPECT_EQ(Destroy(), Diary{});
}

TEST_F(CallbackManagerDeathTest, EscapingExceptionEndsTheProcess) {
    manager->RegisterCallback(MakeCallback([](IZqCallbackParamBase*) {
        throw GenICam::RuntimeException("escaped", "test", 1, "RuntimeException");
    }));
    EXPECT_DEATH(manager->RunCallback(&param), "terminate");
}

// Two threads run while a third registers and deregisters; callbacks never overlap.
TEST_F(CallbackManager, RunsOfSeveralThreadsExcludeEachOther) {
    std::atomic<int> inside{0};
    std::atomic<bool> overlapped{false};
    const auto action = [&](IZqCallbackParamBase*) {
        overlapped = overlapped || ++inside != 1;
        --inside;
    };
    manager->RegisterCallback(MakeCallback(action));
    const auto run = [&] {
        CZqCallbackParamNewBuffer own(nullptr);
        for (int round = 0; round < 1000; ++round)
            manager->RunCallback(&own);
    };
    std::thread one(run);
    std::thread other(run);
    for (int round = 0; round < 1000; ++round)
        manager->DeregisterCallback(manager->RegisterCallback(MakeCallback(action)));
    one.join();
    other.join();
    EXPECT_FALSE(overlapped);
}

TEST(CallbackParam, AnswersWhatItWasBuiltFrom) {
    auto* const module = reinterpret_cast<IZqDevice*>(0x1000);
    const CZqCallbackParamGenTLError<IZqDevice, IZqCallbackParamGenTLEventErrorDEV> param(
        ZqCallbackType_GenTLEventErrorDEV, module, GC_ERR_IO, "text");
    const IZqCallbackParamBase& base = param;
    ASSERT_EQ(base.GetCallbackType(), ZqCallbackType_GenTLEventErrorDEV);
    const auto& error = static_cast<const IZqCallbackParamGenTLEventErrorDEV&>(base);
    EXPECT_EQ(error.GetIZqDevice(), module);
    EXPECT_EQ(error.GetGCError(), GC_ERR_IO);
    EXPECT_STREQ(error.GetDescription().c_str(), "text");

    auto* const stream = reinterpret_cast<IZqDataStream*>(0x2000);
    const CZqCallbackParamNewBuffer newBuffer(stream);
    EXPECT_EQ(newBuffer.GetCallbackType(), 5);
    EXPECT_EQ(newBuffer.GetIZqDataStream(), stream);
}
