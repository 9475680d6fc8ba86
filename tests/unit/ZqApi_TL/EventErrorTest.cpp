#include <atomic>
#include <mutex>

#include "ZqApi_TL/ZqEventError.h"
#include "tests/support/AllocationFailure.h"
#include "tests/unit/ZqApi_TL/LoadedProducer.h"
#include "tests/unit/ZqApi_TL/OpenedStream.h"

namespace ZqTest {
namespace {

std::string BytesOf(GC_ERROR code) {
    return std::string(reinterpret_cast<const char*>(&code), sizeof code);
}

/// What the callbacks of one module were told.
class ToldErrors {
public:
    IZqCallback* Callback() {
        return MakeCallback([this](IZqCallbackParamBase* pParam) {
            auto* const error = static_cast<IZqCallbackParamGenTLEventErrorTL*>(pParam);
            const std::lock_guard<std::mutex> lock(m_Mutex);
            type = pParam->GetCallbackType();
            module = error->GetIZqSystem();
            told.push_back(std::to_string(error->GetGCError()) + " " + error->GetDescription().c_str());
            if (told.back() == "-1 last")
                last.Set();
        });
    }

    std::vector<std::string> told;
    int type = -1;
    const void* module = nullptr;
    Signal last;

private:
    std::mutex m_Mutex;
};

class EventError : public LoadedProducer {
protected:
    explicit EventError(const std::string& variant = "full") : LoadedProducer(variant) {}

    void SetUp() override {
        manager.RegisterCallback(errors.Callback());
        event = std::make_unique<CZqEventErrorTL>(genTL.get(), hTL, module, &manager,
                                                  ZqCallbackType_GenTLEventErrorTL, "ZqApi_TL_EventError_TL");
    }
    void TearDown() override {
        event.reset();
        LoadedProducer::TearDown();
    }

    PushedEvent Items(const std::optional<std::string>& id, const std::optional<std::string>& value) {
        PushedEvent pushed;
        pushed.id = id;
        pushed.value = value;
        return pushed;
    }
    void Push(const PushedEvent& pushed) { EXPECT_TRUE(producer.Push("TL1", EVENT_ERROR, pushed)); }

    /// Runs the thread until everything pushed so far is through.
    Calls Told() {
        EXPECT_TRUE(producer.PushError("TL1", -1, "last"));
        event->Start();
        EXPECT_TRUE(errors.last.Wait());
        event->Stop();
        errors.told.pop_back();
        return errors.told;
    }

    // Never dereferenced: the module is only handed through.
    IZqSystem* const module = reinterpret_cast<IZqSystem*>(this);
    ToldErrors errors;
    CZqCallbackManager manager;
    std::unique_ptr<CZqEventErrorTL> event;
};

TEST_F(EventError, CallbacksGetCodeTextAndModule) {
    EXPECT_TRUE(producer.PushError("TL1", GC_ERR_IO, "the bus is gone"));
    EXPECT_EQ(Told(), (Calls{"-1010 the bus is gone"}));
    EXPECT_EQ(errors.type, 0);
    EXPECT_EQ(errors.module, module);
}

TEST_F(EventError, ItemsAreAskedForSizeThenData) {
    Push(Items(BytesOf(GC_ERR_IO), std::string("text", 5)));
    Told();
    const Calls all = producer.Log("EventGetDataInfo");
    ASSERT_GE(all.size(), 4u);
    EXPECT_EQ(Calls(all.begin(), all.begin() + 4),
              (Calls{"EventGetDataInfo(TL1/0, 8, 0, null)", "EventGetDataInfo(TL1/0, 8, 0, 4)",
                     "EventGetDataInfo(TL1/0, 8, 1, null)", "EventGetDataInfo(TL1/0, 8, 1, 5)"}));
}

TEST_F(EventError, EmptyTextStillReachesTheCallbacks) {
    Push(Items(BytesOf(GC_ERR_IO), std::string()));
    Push(Items(BytesOf(GC_ERR_ERROR), std::string(1, '\0')));
    EXPECT_EQ(Told(), (Calls{"-1010 ", "-1001 "}));
}

TEST_F(EventError, TextEndsWithItsBytesOrItsTerminator) {
    Push(Items(BytesOf(GC_ERR_IO), "no terminator"));
    Push(Items(BytesOf(GC_ERR_IO), std::string("cut\0here", 8)));
    EXPECT_EQ(Told(), (Calls{"-1010 no terminator", "-1010 cut"}));
}

TEST_F(EventError, CodeIsTheStartOfALongerId) {
    Push(Items(BytesOf(GC_ERR_IO) + "more", "text"));
    EXPECT_EQ(Told(), (Calls{"-1010 text"}));
}

TEST_F(EventError, TooShortOrMissingItemsReachNobody) {
    Push(Items(std::string(2, '\0'), "two bytes of code"));
    Push(Items(std::string(), "no byte of code"));
    Push(Items(std::nullopt, "no code"));
    Push(Items(BytesOf(GC_ERR_IO), std::nullopt));
    EXPECT_EQ(Told(), Calls());
    EXPECT_FALSE(Signal::WaitFor(event->GetErrorEvent(), 1));
}

TEST_F(EventError, FailedItemQueryLosesItsEventOnly) {
    producer.Answer("EventGetDataInfo").OnCall(1).With(GC_ERR_IO);
    producer.Answer("EventGetDataInfo").Command(EVENT_DATA_VALUE).DataQuery().OnCall(1).With(GC_ERR_IO);
    EXPECT_TRUE(producer.PushError("TL1", 1, "lost with its code"));
    EXPECT_TRUE(producer.PushError("TL1", 2, "lost with its text"));
    EXPECT_TRUE(producer.PushError("TL1", 3, "told"));
    EXPECT_EQ(Told(), (Calls{"3 told"}));
}

TEST_F(EventError, TextWithoutMemoryLosesItsEventOnly) {
    Push(Items(BytesOf(GC_ERR_IO), std::string(1 << 20, 'x')));
    const AllocationLimit limit(1 << 16);
    EXPECT_EQ(Told(), Calls());
}

TEST_F(EventError, AbsurdSizeLosesItsEventOnly) {
    producer.Answer("EventGetDataInfo").OnCall(1).Size(SIZE_MAX);
    EXPECT_TRUE(producer.PushError("TL1", GC_ERR_IO, "of absurd size"));
    EXPECT_EQ(Told(), Calls());
}

TEST_F(EventError, WithoutCallbacksEventsAreConsumedSilently) {
    CZqCallbackManager nobody;
    event.reset();
    event = std::make_unique<CZqEventErrorTL>(genTL.get(), hTL, module, &nobody,
                                              ZqCallbackType_GenTLEventErrorTL, "ZqApi_TL_EventError_TL");
    EXPECT_TRUE(producer.PushError("TL1", GC_ERR_IO, "unheard"));
    event->Start();
    EXPECT_TRUE(producer.WaitForCalls("EventGetDataInfo", 4));
    EXPECT_TRUE(producer.WaitForCalls("EventGetData", 2));
    event.reset();
}

TEST_F(EventError, NullModuleOrManagerStopsTheProcess) {
    event.reset();
    const auto make = [this](IZqSystem* pModule, IZqCallbackManager* pManager) {
        CZqEventErrorTL(genTL.get(), hTL, pModule, pManager, ZqCallbackType_GenTLEventErrorTL, "name");
    };
    EXPECT_DEATH(make(nullptr, &manager), "m_pModule != NULL");
    EXPECT_DEATH(make(module, nullptr), "m_pCallbackManager != NULL");
}

class EventErrorWithoutDataInfo : public EventError {
protected:
    EventErrorWithoutDataInfo() : EventError("without_EventGetDataInfo") {}
};

TEST_F(EventErrorWithoutDataInfo, EventsAreDropped) {
    EXPECT_TRUE(producer.PushError("TL1", GC_ERR_IO, "unread"));
    event->Start();
    EXPECT_TRUE(producer.WaitForCalls("EventGetData", 2));
    event->Stop();
    EXPECT_TRUE(errors.told.empty());
    EXPECT_FALSE(Signal::WaitFor(event->GetErrorEvent(), 1));
}

/// One error of one module of the tree, as its callback sees it.
struct Seen {
    int type = -1;
    const void* module = nullptr;
    GC_ERROR code = 0;
    std::string text;
};

class ModuleErrors : public OpenedStream {
protected:
    /// `Param` is the parameter of that kind of module, `getter` its operation that names the module.
    template <class Param, class Module, class Getter>
    Seen ErrorOf(Module* module, const std::string& symbol, Getter getter) {
        Seen seen;
        Signal told;
        void* const handle = module->RegisterCallback(MakeCallback([&](IZqCallbackParamBase* pParam) {
            // A data stream's callbacks are told of new buffers as well.
            if (pParam->GetCallbackType() == ZqCallbackType_GenTLEventNewBuffer)
                return;
            auto* const error = static_cast<Param*>(pParam);
            seen = {error->GetCallbackType(), (error->*getter)(), error->GetGCError(),
                    error->GetDescription().c_str()};
            told.Set();
        }));
        module->StartEventAcquisitionThread();
        EXPECT_TRUE(producer.PushError(symbol, GC_ERR_IO, "broken"));
        EXPECT_TRUE(told.Wait());
        module->StopEventAcquisitionThread();
        module->DeregisterCallback(handle);
        return seen;
    }

    static void Expect(const Seen& seen, int type, const void* module) {
        EXPECT_EQ(seen.type, type);
        EXPECT_EQ(seen.module, module);
        EXPECT_EQ(seen.code, GC_ERR_IO);
        EXPECT_EQ(seen.text, "broken");
    }
};

TEST_F(ModuleErrors, EveryModuleTellsItsOwnCallbacks) {
    IZqSystem* const system = this->system.get();
    Expect(ErrorOf<IZqCallbackParamGenTLEventErrorTL>(system, "TL1",
                                                      &IZqCallbackParamGenTLEventErrorTL::GetIZqSystem),
           0, system);
    IZqInterface* const interface = system->GetIZqInterface(0);
    Expect(ErrorOf<IZqCallbackParamGenTLEventErrorIF>(interface, "IF1",
                                                      &IZqCallbackParamGenTLEventErrorIF::GetIZqInterface),
           1, interface);
    IZqDevice* const device = this->device.get();
    Expect(ErrorOf<IZqCallbackParamGenTLEventErrorDEV>(device, "DEV1",
                                                       &IZqCallbackParamGenTLEventErrorDEV::GetIZqDevice),
           2, device);
    IZqDataStream* const stream = this->stream.get();
    Expect(ErrorOf<IZqCallbackParamGenTLEventErrorDS>(stream, "DS1",
                                                      &IZqCallbackParamGenTLEventErrorDS::GetIZqDataStream),
           3, stream);
    Start();
    const Buffer buffer = RetrieveNewFrame();
    ASSERT_TRUE(buffer);
    IZqStreamBuffer* const streamBuffer = buffer.get();
    Expect(ErrorOf<IZqCallbackParamGenTLEventErrorSB>(streamBuffer, "BUF1",
                                                      &IZqCallbackParamGenTLEventErrorSB::GetIZqStreamBuffer),
           4, streamBuffer);
}

TEST_F(ModuleErrors, AbsentErrorEventOfStreamAndBuffersIsNoHindrance) {
    stream.reset();
    producer.Answer("GCRegisterEvent").On("DS").Event(EVENT_ERROR).With(GC_ERR_NOT_IMPLEMENTED);
    producer.Answer("GCRegisterEvent").On("BUF").Event(EVENT_ERROR).With(GC_ERR_NOT_IMPLEMENTED);
    stream = OpenStream();
    stream->StartEventAcquisitionThread();
    Start();
    const Buffer buffer = RetrieveNewFrame();
    ASSERT_TRUE(buffer);
    EXPECT_NO_THROW(buffer->StartEventAcquisitionThread());
    EXPECT_NO_THROW(buffer->StopEventAcquisitionThread());
    EXPECT_NO_THROW(stream->StopEventAcquisitionThread());
}

} // namespace
} // namespace ZqTest
