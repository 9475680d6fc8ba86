// The encoders of chunks and event packets, against bytes written by hand from the layouts of the transports.

#include "Hex.h"
#include "producer/sim/CameraEvents.h"
#include "producer/sim/Chunks.h"

#include <gtest/gtest.h>

using namespace zqgentl;

namespace {

std::string ToHex(const std::string& bytes) {
    return ::ToHex(bytes.data(), bytes.size());
}

/// An image of 8 bytes and the frame id 0x8877665544332211, which lies in memory as 11 22 ... 88.
std::vector<uint8_t> TwoChunks(Technology technology) {
    const ChunkLayout layout(technology, MaskOf(Chunk::Image) | MaskOf(Chunk::FrameId), 8);
    std::vector<uint8_t> payload(layout.PayloadSize());
    for (uint8_t i = 0; i < 8; ++i)
        payload[i] = static_cast<uint8_t>(i + 1);
    ChunkValues values{};
    values.frameId = 0x8877665544332211;
    layout.Write(values, payload.data());
    return payload;
}

bool Walks(ByteOrder order, const std::string& hex, size_t* count = nullptr) {
    const std::vector<uint8_t> payload = FromHex(hex);
    std::vector<ChunkPlace> places;
    const bool walked = WalkChunks(order, payload.data(), payload.size(), places);
    if (count != nullptr)
        *count = places.size();
    return walked;
}

} // namespace

TEST(ChunkBytes, OfGigEVision) {
    EXPECT_EQ(TwoChunks(Technology::GigEVision),
              FromHex("0102030405060708000000010000000811223344556677880000100100000008"));
}

TEST(ChunkBytes, OfUsb3Vision) {
    EXPECT_EQ(TwoChunks(Technology::Usb3Vision),
              FromHex("0102030405060708010000000800000011223344556677880110000008000000"));
}

TEST(ChunkBytes, OfCoaXPress) {
    EXPECT_EQ(TwoChunks(Technology::CoaXPress), FromHex("01020304050607081122334455667788"));
}

TEST(ChunkBytes, ImageIsPaddedToFour) {
    const ChunkLayout layout(Technology::Usb3Vision, MaskOf(Chunk::Image), 5);
    std::vector<uint8_t> payload(layout.PayloadSize(), 0xEE);
    layout.Write(ChunkValues(), payload.data());
    EXPECT_EQ(payload, FromHex("eeeeeeeeee0000000100000008000000"));
}

TEST(ChunkWalk, TakesWhatLeadsToTheStart) {
    const auto order = ByteOrder::Big;
    size_t count = 0;
    EXPECT_TRUE(Walks(order, "0102030405060708000000010000000811223344556677880000100100000008", &count));
    EXPECT_EQ(count, 2U);
    EXPECT_TRUE(Walks(order, "0102030405060708000000010000000868656c6c6f0000100200000005"));
    EXPECT_TRUE(Walks(order,
                      "0102030405060708000000010000000888776655443322110000100100000008"
                      "11223344556677880000100100000008",
                      &count));
    EXPECT_EQ(count, 3U);
    EXPECT_TRUE(Walks(ByteOrder::Little, "0102030405060708010000000800000011223344556677880110000008000000"));
}

TEST(ChunkWalk, RefusesTheRest) {
    const auto order = ByteOrder::Big;
    const std::string good = "0102030405060708000000010000000811223344556677880000100100000008";
    EXPECT_FALSE(Walks(ByteOrder::Little, good));
    EXPECT_FALSE(Walks(order, good + "00000000"));
    EXPECT_FALSE(Walks(order, good + "0000000000000000"));
    EXPECT_FALSE(Walks(order, "eeeeeeee" + good));
    EXPECT_FALSE(Walks(order, "0102030405060708000000010000000811223344556677880000100100000040"));
    EXPECT_FALSE(Walks(order, "01020304050607080000000100000008112233445566778800001001fffffffc"));
    EXPECT_FALSE(Walks(order, "010203040506070800000001000000080000100100000000"));
    EXPECT_FALSE(Walks(order, "00000000000000"));
    EXPECT_FALSE(Walks(order, ""));
}

// The published check value of this CRC.
TEST(Crc, OfTheDigits) {
    const std::string digits = "123456789";
    EXPECT_EQ(Crc16(reinterpret_cast<const uint8_t*>(digits.data()), digits.size()), 0x29B1);
}

TEST(EventBytes, OfGigEVisionWithoutData) {
    const CameraEvent event{EventKind::ExposureEnd, 7, 0x1122334455667788, 0};
    const std::string item = EventItem(Technology::GigEVision, event);
    EXPECT_EQ(ToHex(EventPacket(Technology::GigEVision, item, false, 8)), "420100c000100008"
                                                                          "00009c40000000071122334455667788");
}

TEST(EventBytes, OfGigEVisionWithData) {
    const CameraEvent event{EventKind::Error, 0, 0x99, 0xDEADBEEF};
    const std::string item = EventItem(Technology::GigEVision, event);
    EXPECT_EQ(ToHex(EventPacket(Technology::GigEVision, item, true, 11)),
              "420100c20014000b"
              "00009c43000000000000000000000099deadbeef");
}

TEST(EventBytes, OfGigEVisionWithoutFrame) {
    const CameraEvent event{EventKind::Test, 0, 0x99, 0};
    EXPECT_EQ(ToHex(EventItem(Technology::GigEVision, event)), "00004fffffff00000000000000000099");
}

TEST(EventBytes, FrameIdOfGigEVisionIsCutTo16Bits) {
    const CameraEvent event{EventKind::FrameStart, 0x12345, 0, 0};
    EXPECT_EQ(ToHex(EventItem(Technology::GigEVision, event)).substr(12, 4), "2345");
}

TEST(EventBytes, OfUsb3Vision) {
    const CameraEvent event{EventKind::ExposureEnd, 0x42, 0x1122334455667788, 0};
    const std::string item = EventItem(Technology::Usb3Vision, event);
    EXPECT_EQ(ToHex(EventPacket(Technology::Usb3Vision, item, false, 3)),
              "553356450000000c14000300"
              "0000409c88776655443322114200000000000000");
}

TEST(EventBytes, PacketsComeApartAgain) {
    uint16_t id = 0;
    std::string item;
    const auto gev = FromHex("420100c20014000b00009c40ffff00000000000000000099deadbeef");
    ASSERT_TRUE(ParseEventPacket(gev.data(), gev.size(), id, item));
    EXPECT_EQ(id, 0x9C40);
    EXPECT_EQ(ToHex(item), "00009c40ffff00000000000000000099deadbeef");
    const auto u3v = FromHex("553356450000000c100003000000409c8877665544332211deadbeef");
    ASSERT_TRUE(ParseEventPacket(u3v.data(), u3v.size(), id, item));
    EXPECT_EQ(id, 0x9C40);
    EXPECT_EQ(ToHex(item), "0000409c8877665544332211deadbeef");
    EXPECT_FALSE(ParseEventPacket(gev.data(), gev.size() - 1, id, item));
    EXPECT_FALSE(ParseEventPacket(u3v.data(), u3v.size() - 1, id, item));
    EXPECT_FALSE(ParseEventPacket(gev.data(), 7, id, item));
}
