#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "ZqApi_TL/BPS.h"
#include "ZqApi_TL/FPS.h"

using namespace ZqApi;

namespace {

constexpr int64_t MILLISECOND = 1000000;

int64_t nowNanoseconds = 0;

/// Meters on a clock that the test sets.
class RateMeters : public testing::Test {
protected:
    RateMeters() { nowNanoseconds = 77 * MILLISECOND; }

    void After(int64_t nanoseconds, unsigned long bytes = 0) {
        nowNanoseconds += nanoseconds;
        fps.Rcv(bytes);
        bps.Rcv(bytes);
    }

    CFPS fps{[] { return nowNanoseconds; }};
    CBPS bps{[] { return nowNanoseconds; }};
};

} // namespace

TEST_F(RateMeters, AreZeroUntilTwoDeliveries) {
    EXPECT_EQ(fps.GetFPS(), 0);
    EXPECT_EQ(bps.GetBPS(), 0);
    After(0, 1000);
    EXPECT_EQ(fps.GetFPS(), 0);
    EXPECT_EQ(bps.GetBPS(), 0);
}

TEST_F(RateMeters, TwoFrames100MillisecondsApartAreTenASecond) {
    After(0);
    After(100 * MILLISECOND);
    EXPECT_DOUBLE_EQ(fps.GetFPS(), 10);
}

TEST_F(RateMeters, BytesOfTheFirstDeliveryDoNotCount) {
    After(0, 1000);
    After(1000 * MILLISECOND, 1000);
    EXPECT_DOUBLE_EQ(bps.GetBPS(), 1000);
    After(1000 * MILLISECOND, 5000);
    EXPECT_DOUBLE_EQ(bps.GetBPS(), 3000);
}

TEST_F(RateMeters, CoverTheLast500) {
    // 499 deliveries a second apart, then 500 of which each is a millisecond after the one before.
    for (int delivery = 0; delivery < 499; ++delivery)
        After(1000 * MILLISECOND, 1);
    EXPECT_DOUBLE_EQ(fps.GetFPS(), 1);
    EXPECT_DOUBLE_EQ(bps.GetBPS(), 1);
    for (int delivery = 0; delivery < 499; ++delivery)
        After(1 * MILLISECOND, 10);
    // One of the slow ones is still the oldest sample: 499 intervals of a millisecond.
    EXPECT_DOUBLE_EQ(fps.GetFPS(), 1000);
    EXPECT_DOUBLE_EQ(bps.GetBPS(), 10000);
    After(2 * MILLISECOND, 20);
    EXPECT_DOUBLE_EQ(fps.GetFPS(), 499 * 1000.0 / 500);
    EXPECT_DOUBLE_EQ(bps.GetBPS(), (498 * 10 + 20) * 1000.0 / 500);
}

TEST_F(RateMeters, CountExactly500SamplesWhenTheRingIsJustFull) {
    After(0, 1);
    After(501 * MILLISECOND, 1);
    for (int delivery = 2; delivery < 500; ++delivery)
        After(1 * MILLISECOND, 1);
    EXPECT_DOUBLE_EQ(fps.GetFPS(), 499 * 1000.0 / 999);
    After(1 * MILLISECOND, 1);
    EXPECT_DOUBLE_EQ(fps.GetFPS(), 1000);
}

TEST_F(RateMeters, EveryPositionOfTheRingMeasuresTheSame) {
    for (int delivery = 0; delivery < 1600; ++delivery) {
        After(4 * MILLISECOND, 8);
        if (delivery < 1)
            continue;
        ASSERT_DOUBLE_EQ(fps.GetFPS(), 250) << delivery;
        ASSERT_DOUBLE_EQ(bps.GetBPS(), 2000) << delivery;
    }
}

TEST_F(RateMeters, ResetForgetsAndKeepsNothingOfBefore) {
    for (int delivery = 0; delivery < 700; ++delivery)
        After(1 * MILLISECOND, 100);
    fps.Reset();
    bps.Reset();
    EXPECT_EQ(fps.GetFPS(), 0);
    EXPECT_EQ(bps.GetBPS(), 0);
    After(500 * MILLISECOND, 7);
    EXPECT_EQ(fps.GetFPS(), 0);
    EXPECT_EQ(bps.GetBPS(), 0);
    After(500 * MILLISECOND, 7);
    EXPECT_DOUBLE_EQ(fps.GetFPS(), 2);
    EXPECT_DOUBLE_EQ(bps.GetBPS(), 14);
}

TEST_F(RateMeters, LessThanAMicrosecondCountsAsNoTime) {
    After(0, 10);
    After(999, 10);
    EXPECT_EQ(fps.GetFPS(), 0);
    EXPECT_EQ(bps.GetBPS(), 0);
    After(1000, 10);
    EXPECT_DOUBLE_EQ(fps.GetFPS(), 2 * 1000 / 0.001);
}

TEST_F(RateMeters, CurrentTimeIsInMilliseconds) {
    nowNanoseconds = 1234567;
    EXPECT_DOUBLE_EQ(fps.GetCurrentMSec(), 1.234);
}

TEST(RateMeter, UsesASteadyClockUnlessToldOtherwise) {
    CFPS fps;
    fps.Rcv();
    const double afterFirst = fps.GetCurrentMSec();
    while (fps.GetCurrentMSec() - afterFirst < 10)
        std::this_thread::yield();
    fps.Rcv();
    EXPECT_GT(fps.GetFPS(), 0);
    EXPECT_LE(fps.GetFPS(), 101);
}

TEST(RateMeter, MayBeReadWhileRecording) {
    CBPS bps;
    std::atomic<bool> done{false};
    std::thread recorder([&] {
        for (int delivery = 0; delivery < 5000; ++delivery)
            bps.Rcv(100);
        done = true;
    });
    while (!done)
        EXPECT_GE(bps.GetBPS(), 0);
    recorder.join();
}
