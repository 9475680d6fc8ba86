#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <ZqApi/ZqApi.h>

#include "tests/support/ScriptedProducer.h"

/// A small language for tests of the module tree: open the library, a system, a device, a stream of the
/// scripted producer, and say what is thrown.
namespace ZqTest {

using namespace ZqApi;

/// The library initialised while the object lives.
class Library {
public:
    Library() { ZqApiInitialize(ZqApiBuildVersion); }
    ~Library() { ZqApiTerminate(); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
};

struct Releaser {
    template <class T>
    void operator()(T* object) const {
        object->Release();
    }
};

using System = std::unique_ptr<IZqSystemReleasable, Releaser>;
using Device = std::unique_ptr<IZqDeviceReleasable, Releaser>;
using Stream = std::unique_ptr<IZqDataStreamReleasable, Releaser>;
using Buffer = std::unique_ptr<IZqStreamBufferReleasable, Releaser>;

/// What an exception said, pointers replaced by PTR; every field empty or 0 when nothing of that kind was
/// thrown.
struct Thrown {
    std::string text;
    std::string source;
    std::string function;
    int error = 0;
};

/// Runs `action`, which must throw exactly an `E` or a kind derived from it.
template <class E, class Action>
Thrown Catch(Action action) {
    Thrown thrown;
    try {
        action();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const E& exception) {
        thrown.text = WithoutPointers(exception.GetDescription());
        thrown.source = exception.GetSourceFileName();
    } catch (const GenICam::GenericException& exception) {
        ADD_FAILURE() << "another kind was thrown: " << exception.what();
    }
    return thrown;
}

/// As above for a failed producer call, with its function and code.
template <class Action>
Thrown CatchProducerError(Action action) {
    Thrown thrown;
    try {
        action();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const CZqGenTLErrorException& exception) {
        thrown.text = WithoutPointers(exception.GetDescription());
        thrown.source = exception.GetSourceFileName();
        thrown.function = exception.GetFunctionName().c_str();
        thrown.error = exception.GetError();
    } catch (const GenICam::GenericException& exception) {
        ADD_FAILURE() << "another kind was thrown: " << exception.what();
    }
    return thrown;
}

/// A test with an initialised library on the scripted producer.
class ModuleTree : public testing::Test {
protected:
    explicit ModuleTree(const std::string& variant = "full") : producer(variant) {}

    System OpenSystem(EZqInterfaceType_t types = ZqInterfaceType_All,
                      EZqSystemVendor_t vendor = ZqSystemVendor_Default) {
        return System(CreateIZqSystem(vendor, types));
    }

    Device OpenDevice(System& system, DEVICE_ACCESS_FLAGS flags = DEVICE_ACCESS_CONTROL) {
        return Device(system->GetIZqInterface(0)->CreateIZqDevice(size_t{0}, flags));
    }

    /// True once the condition holds, false when it does not within ten seconds.
    template <class Condition>
    static bool Eventually(Condition condition) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > deadline)
                return false;
            std::this_thread::yield();
        }
        return true;
    }

    void TearDown() override {
        if (expectNothingOpen) {
            EXPECT_TRUE(producer.NothingOpen());
        }
    }

    Library library;
    ScriptedProducer producer;
    /// For tests whose producer refuses to close something.
    bool expectNothingOpen = true;
};

/// A system and its first device, opened for control.
class OpenedDevice : public ModuleTree {
protected:
    explicit OpenedDevice(const std::string& variant = "full") : ModuleTree(variant) {}

    void SetUp() override { Open(); }

    void Open(DEVICE_ACCESS_FLAGS flags = DEVICE_ACCESS_CONTROL) {
        system = OpenSystem();
        device = OpenDevice(system, flags);
    }

    Stream OpenStream(IZqAllocator* allocator = nullptr) {
        return Stream(device->CreateIZqDataStream(0, allocator));
    }

    void TearDown() override {
        device.reset();
        system.reset();
        ModuleTree::TearDown();
    }

    System system;
    Device device;
};

/// The log's lines of one run, comparable as a whole.
using Calls = std::vector<std::string>;

} // namespace ZqTest
