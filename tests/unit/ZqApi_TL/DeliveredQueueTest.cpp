#include "ZqApi_TL/DeliveredQueue.h"

#include <vector>

#include <gtest/gtest.h>

namespace ZqApi {
namespace {

/// A queue of buffers that are told by their numbers; it never looks into them.
class NumberedBuffers : public testing::Test {
protected:
    static CZqStreamBuffer* Buffer(uintptr_t number) {
        return reinterpret_cast<CZqStreamBuffer*>(16 * number);
    }

    void Append(uintptr_t first, uintptr_t last) {
        for (uintptr_t number = first; number <= last; ++number)
            queue.Append(Buffer(number));
    }
    /// Takes that many; they must come in the order of their numbers.
    void ExpectTaken(uintptr_t first, uintptr_t last) {
        for (uintptr_t number = first; number <= last; ++number)
            EXPECT_EQ(queue.TakeFront(), Buffer(number));
    }
    bool IsFilled() { return WaitForSingleObject(&queue.GetFilledEvent(), 0) == WAIT_OBJECT_0; }

    DeliveredQueue queue;
};

using DeliveredBuffers = NumberedBuffers;

TEST_F(DeliveredBuffers, ComeInTheirOrderAndSetTheEventWhileThereAreAny) {
    queue.Reserve(2);
    EXPECT_EQ(queue.TakeFront(), nullptr);
    EXPECT_FALSE(IsFilled());
    Append(1, 2);
    EXPECT_EQ(queue.Size(), 2u);
    ExpectTaken(1, 1);
    EXPECT_TRUE(IsFilled());
    ExpectTaken(2, 2);
    EXPECT_FALSE(IsFilled());
}

TEST_F(DeliveredBuffers, KeepTheirOrderWhenTheRingGrows) {
    queue.Reserve(3);
    Append(1, 3);
    ExpectTaken(1, 2);
    Append(4, 5); // around the end
    queue.Reserve(5);
    Append(6, 7);
    EXPECT_EQ(queue.Size(), 5u);
    ExpectTaken(3, 7);
}

TEST_F(DeliveredBuffers, FitEvenWhereNoRoomIsReserved) {
    Append(1, 1);
    ExpectTaken(1, 1);
    Append(2, 21);
    EXPECT_EQ(queue.Size(), 20u);
    ExpectTaken(2, 21);
    EXPECT_EQ(queue.TakeFront(), nullptr);
}

TEST_F(DeliveredBuffers, AreFoundWhereverTheyStand) {
    EXPECT_FALSE(queue.Contains(Buffer(1)));
    queue.Reserve(3);
    Append(1, 3);
    ExpectTaken(1, 1);
    Append(4, 4);
    EXPECT_FALSE(queue.Contains(Buffer(1)));
    for (const uintptr_t number : {2, 3, 4})
        EXPECT_TRUE(queue.Contains(Buffer(number)));
    queue.Clear();
    EXPECT_FALSE(queue.Contains(Buffer(2)));
    EXPECT_FALSE(IsFilled());
    EXPECT_EQ(queue.Size(), 0u);
}

} // namespace
} // namespace ZqApi
