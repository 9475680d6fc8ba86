#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ZqApi_TL/ZqEvent.h"
#include "ZqGenTLCommon/ZqGenTLLib.h"
#include "ZqSDKCommon/EventObject.h"
#include "tests/unit/ZqApi_TL/ModuleTree.h"

namespace ZqTest {

/// The scripted producer's function table and an open transport layer, without modules on top: what an event
/// thread needs.
class LoadedProducer : public testing::Test {
protected:
    explicit LoadedProducer(const std::string& variant = "full")
        : producer(variant), genTL(std::make_shared<CZqGenTLLib>("libzqgentl.cti")) {
        EXPECT_EQ(CallProducer(genTL->TLOpen, &hTL), GC_ERR_SUCCESS);
    }

    void TearDown() override {
        CallProducer(genTL->TLClose, hTL);
        genTL->UnloadLib();
        if (expectNothingOpen) {
            EXPECT_TRUE(producer.NothingOpen());
        }
    }

    Library library;
    ScriptedProducer producer;
    std::shared_ptr<CZqGenTLLib> genTL;
    TL_HANDLE hTL = nullptr;
    bool expectNothingOpen = true;
};

/// A manual-reset event to wait for in a test, without the lost wake-up of a single wait.
class Signal {
public:
    void Set() { m_Event.SetEvent(); }
    void Reset() { m_Event.ResetEvent(); }
    bool IsSet() { return WaitForSingleObject(&m_Event, 0) == WAIT_OBJECT_0; }
    [[nodiscard]] bool Wait(uint32_t timeoutMs = 10000) { return WaitFor(m_Event, timeoutMs); }

    static bool WaitFor(CEventObject& event, uint32_t timeoutMs = 10000) {
        CEventObject* const events[] = {&event};
        return WaitMultiple(1, events, false, timeoutMs).kind == WaitResult::Signalled;
    }

private:
    CEventObject m_Event{nullptr, true, false, nullptr};
};

} // namespace ZqTest
