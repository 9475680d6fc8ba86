#include <atomic>
#include <chrono>
#include <future>
#include <thread>

#include "tests/integration/Cameras.h"

namespace ZqTest {
namespace {

using Clock = std::chrono::steady_clock;

/// A camera that is taken away in the middle of something; afterwards everything closes in time, and the
/// camera can be opened again.
class Loss : public Cameras, public testing::WithParamInterface<size_t> {
protected:
    Loss() : device(Open(GetParam())), stream(OpenStream(device)) {
        SetSize(device, 64, 64);
        RunFreely(device);
    }

    ~Loss() override {
        const auto closing = Clock::now();
        stream.reset();
        device.reset();
        EXPECT_LT(Clock::now() - closing, std::chrono::seconds(2));
        const Device again = Open(GetParam());
        EXPECT_FALSE(again->IsDeviceLost());
    }

    void Lose() { Execute(device, "SimulationDeviceLost"); }

    std::future<void> LoseIn(std::chrono::microseconds time) {
        return std::async(std::launch::async, [this, time] {
            std::this_thread::sleep_for(time);
            Lose();
        });
    }

    bool IsLostSoon() const {
        const auto deadline = Clock::now() + std::chrono::seconds(2);
        while (!device->IsDeviceLost() && Clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return device->IsDeviceLost();
    }

    /// Repeats `action` until it throws; what it threw. "The device is lost." where the library knows it
    /// already, else the failing call of the producer, which has GC_ERR_IO for everything.
    template <class Action>
    static std::string UntilItThrows(Action action) {
        const auto deadline = Clock::now() + std::chrono::seconds(10);
        while (Clock::now() < deadline) {
            try {
                action();
            } catch (const GenICam::AccessException& exception) {
                return exception.GetDescription();
            } catch (const CZqGenTLErrorException& exception) {
                return exception.GetError() == GenTL::GC_ERR_IO ? "an I/O error" : exception.GetDescription();
            } catch (const GenICam::GenericException& exception) {
                return std::string("another kind: ") + exception.what();
            }
        }
        return "nothing was thrown";
    }

    static bool IsLossOrIoError(const std::string& thrown) {
        return thrown == "The device is lost." || thrown == "an I/O error";
    }

    Device device;
    Stream stream;
};

TEST_P(Loss, WhileStreaming) {
    Start(device, stream);
    const auto loss = LoseIn(std::chrono::milliseconds(20));
    const std::string thrown = UntilItThrows([this] {
        IZqStreamBufferReleasable* const buffer =
            stream->RetrieveBuffer(INFINITE, ZqTimeoutHandling_ReturnNull);
        try {
            buffer->Release();
        } catch (const CZqGenTLErrorException& exception) {
            // The last buffers can't be queued any more; frames that had come are handed out all the same.
            EXPECT_EQ(exception.GetError(), GenTL::GC_ERR_IO);
        }
    });
    EXPECT_EQ(thrown, "The device is lost.");
}

TEST_P(Loss, WhileIdle) {
    Lose();
    EXPECT_TRUE(IsLostSoon());
    EXPECT_EQ(UntilItThrows([this] { Integer(device, "Width")->SetValue(32); }), "an I/O error");
    EXPECT_EQ(UntilItThrows([this] { stream->StartAcquisition(GENTL_INFINITE, ACQ_START_FLAGS_DEFAULT); }),
              "The device is lost.");
}

TEST_P(Loss, InTheMiddleOfAFeatureAccess) {
    const auto loss = LoseIn(std::chrono::milliseconds(5));
    EXPECT_EQ(UntilItThrows([this] { Integer(device, "Width")->GetValue(false, true); }), "an I/O error");
    EXPECT_TRUE(IsLostSoon());
}

TEST_P(Loss, DuringStartAndStop) {
    const auto loss = LoseIn(std::chrono::milliseconds(5));
    const std::string thrown = UntilItThrows([this] {
        Start(device, stream);
        Stop(device, stream);
    });
    EXPECT_TRUE(IsLossOrIoError(thrown)) << thrown;
    EXPECT_TRUE(IsLostSoon());
}

TEST_P(Loss, BeforeTheStop) {
    Start(device, stream);
    Lose();
    EXPECT_TRUE(IsLostSoon());
    EXPECT_EQ(UntilItThrows([this] { device->AcquisitionStop(); }), "an I/O error");
    EXPECT_EQ(UntilItThrows([this] { stream->StopAcquisition(ACQ_STOP_FLAGS_DEFAULT); }), "an I/O error");
    EXPECT_NO_THROW(stream->StopAcquisition(ACQ_STOP_FLAGS_DEFAULT));
}

TEST_P(Loss, DuringTheTeardownOfTheStream) {
    for (int round = 0; round < 20; ++round) {
        RunFreely(device);
        Start(device, stream);
        const auto loss = LoseIn(std::chrono::microseconds(20 * round));
        stream.reset();
        loss.wait();
        EXPECT_TRUE(IsLostSoon());
        device.reset();
        device = Open(GetParam());
        stream = OpenStream(device);
    }
}

INSTANTIATE_TEST_SUITE_P(Cameras, Loss, testing::Values(0, 1, 2));

} // namespace
} // namespace ZqTest
