#include "Bytes.h"
#include "Camera.h"

using namespace GenICam;
using namespace GenApi;

namespace {

/// A map with ports for some event IDs; notes every delivery as "ID:bytes".
class Listener {
public:
    Listener() : camera(Ports()) {
        for (const char* const id : kIds)
            Register(camera.Node("P" + std::string(id)),
                     [this, id](INode* port) { heard.push_back(id + (":" + ToHex(BytesBehind(port)))); });
    }

    template <class Adapter>
    std::vector<std::string> Hear(const ByteRow& message) {
        heard.clear();
        Adapter adapter(camera.map._Ptr);
        adapter.DeliverMessage(message.data(), static_cast<uint32_t>(message.size()));
        return heard;
    }
    std::vector<std::string> Gev(const std::string& hex) { return Hear<CEventAdapterGEV>(FromHex(hex)); }
    std::vector<std::string> U3v(const std::string& hex) { return Hear<CEventAdapterU3V>(FromHex(hex)); }

    /// The message of the refusal; nothing may have been delivered before it.
    template <class Adapter>
    std::string Refusal(const std::string& hex) {
        const std::string text = Failure<InvalidArgumentException>([&] { Hear<Adapter>(FromHex(hex)); });
        EXPECT_TRUE(heard.empty()) << hex;
        return text;
    }

    Camera camera;
    std::vector<std::string> heard;

private:
    static constexpr const char* kIds[] = {"0004", "4FFF", "9000", "9001", "9002", "9C40"};

    static std::string Ports() {
        std::string nodes;
        for (const char* const id : kIds)
            nodes += Node("Port", "P" + std::string(id), "<EventID>" + std::string(id) + "</EventID>");
        return nodes;
    }
    static ByteRow BytesBehind(INode* node) {
        const CPortPtr port(node);
        ByteRow bytes(1);
        try {
            for (int64_t i = 0;; ++i, bytes.push_back(0))
                port->Read(&bytes.back(), i, 1);
        } catch (const AccessException&) {
            bytes.pop_back();
        }
        return bytes;
    }
};

using Lines = std::vector<std::string>;

const char* const kEventTwice =
    "420100c00020000900009000ffff0000010203040506070800000004000000071122334455667788";
const char* const kEventExtended = "421100c00018000a000090010000000000000001000000010000000000000055";
const char* const kEventData = "420100c20014000b00009c40ffff00000000000000000099deadbeef";
const char* const kEventDataTwice =
    "421100c2003c000c001c900100000000000000000000000300000000000000554141414100209002000000000000000000000004"
    "00000000000000664242424242424242";
const char* const kU3vEvent = "553356450000000c100003000000409c8877665544332211deadbeef";
const char* const kU3vEventTwice =
    "553356450040000c1c0004001000409c1100000000000000414141410c00ff4f1200000000000000";

} // namespace

TEST(EventPacketsGev, EveryItemOfAnEventPacketIsDeliveredInOrder) {
    EXPECT_EQ(Listener().Gev(kEventTwice),
              (Lines{"9000:00009000ffff00000102030405060708", "0004:00000004000000071122334455667788"}));
}

TEST(EventPacketsGev, ItemsWithExtendedIdsKeepTheirLayout) {
    EXPECT_EQ(Listener().Gev(kEventExtended),
              (Lines{"9001:000090010000000000000001000000010000000000000055"}));
}

TEST(EventPacketsGev, EventDataReachesToTheEndOfThePacket) {
    EXPECT_EQ(Listener().Gev(kEventData), (Lines{"9C40:00009c40ffff00000000000000000099deadbeef"}));
}

TEST(EventPacketsGev, ExtendedEventDataIsSplitByTheSizesOfItsItems) {
    EXPECT_EQ(Listener().Gev(kEventDataTwice),
              (Lines{"9001:001c9001000000000000000000000003000000000000005541414141",
                     "9002:0020900200000000000000000000000400000000000000664242424242424242"}));
}

TEST(EventPacketsGev, ExtendedEventDataWithoutSizeIsOneItem) {
    EXPECT_EQ(Listener().Gev("421100c2001c000c00009001000000000000000000000003000000000000005541414141"),
              (Lines{"9001:00009001000000000000000000000003000000000000005541414141"}));
}

TEST(EventPacketsGev, BytesBehindThePacketAreIgnored) {
    EXPECT_EQ(Listener().Gev(kEventData + std::string("00000000")),
              (Lines{"9C40:00009c40ffff00000000000000000099deadbeef"}));
}

TEST(EventPacketsGev, BareItemsAreRecognised) {
    EXPECT_EQ(Listener().Gev("00009000ffff00000102030405060708"),
              (Lines{"9000:00009000ffff00000102030405060708"}));
    EXPECT_EQ(Listener().Gev("00009c40ffff00000000000000000099deadbeef"),
              (Lines{"9C40:00009c40ffff00000000000000000099deadbeef"}));
}

TEST(EventPacketsGev, ABareItemEndsWhereItsOwnSizeSays) {
    EXPECT_EQ(Listener().Gev("001c900100000000000000000000000300000000000000554141414100000000"),
              (Lines{"9001:001c9001000000000000000000000003000000000000005541414141"}));
}

TEST(EventPacketsGev, WhatIsNoEventIsRefused) {
    Listener listener;
    using Gev = CEventAdapterGEV;
    EXPECT_EQ(listener.Refusal<Gev>("000000c100000009"),
              "8 bytes are neither an event packet nor an event item.");
    EXPECT_EQ(listener.Refusal<Gev>("00009000ffff000001020304050607"),
              "15 bytes are neither an event packet nor an event item.");
    EXPECT_EQ(listener.Refusal<Gev>("00f09000ffff00000102030405060708"),
              "16 bytes are neither an event packet nor an event item.");
    EXPECT_EQ(listener.Refusal<Gev>("000f9000ffff00000102030405060708"),
              "16 bytes are neither an event packet nor an event item.");
    EXPECT_EQ(listener.Refusal<Gev>("42010100000c000d000000420000000100000001"),
              "A packet with the command 0x0100 is no event packet.");
    EXPECT_EQ(listener.Refusal<Gev>("420100c0002000"),
              "A packet with the command 0x0000 is no event packet.");
}

TEST(EventPacketsGev, MalformedPacketsAreRefusedWhole) {
    Listener listener;
    using Gev = CEventAdapterGEV;
    EXPECT_EQ(listener.Refusal<Gev>("420100c0002000090000"
                                    "9000ffff00000102030405060708"),
              "An event packet announces 32 bytes, but 16 are there.");
    EXPECT_EQ(listener.Refusal<Gev>("420100c000000009"), "An event packet holds no event.");
    EXPECT_EQ(listener.Refusal<Gev>("420100c0001800090000"
                                    "9000ffff000001020304050607080000000400000007"),
              "An event packet ends inside an event item, after 8 of 16 bytes.");
    EXPECT_EQ(listener.Refusal<Gev>("420100c20008000b00009c40ffff0000"),
              "An event packet ends inside an event item, after 8 of 16 bytes.");
    EXPECT_EQ(listener.Refusal<Gev>("421100c00010000a00009001000000000000000100000001"),
              "An event packet ends inside an event item, after 16 of 24 bytes.");
    // The first item is good, the second is longer than the packet, or shorter than its own header.
    std::string broken = kEventDataTwice;
    broken.replace(72, 4, "0021");
    EXPECT_EQ(listener.Refusal<Gev>(broken),
              "An event item announces 33 bytes; 24 to 32 are possible there.");
    broken.replace(72, 4, "0017");
    EXPECT_EQ(listener.Refusal<Gev>(broken),
              "An event item announces 23 bytes; 24 to 32 are possible there.");
    broken.replace(72, 4, "001c");
    EXPECT_EQ(listener.Refusal<Gev>(broken),
              "An event packet ends inside an event item, after 4 of 24 bytes.");
}

TEST(EventPacketsU3v, ASingleEventReachesToTheEndOfThePacket) {
    EXPECT_EQ(Listener().U3v(kU3vEvent), (Lines{"9C40:0000409c8877665544332211deadbeef"}));
}

TEST(EventPacketsU3v, SeveralEventsAreSplitByTheirSizes) {
    EXPECT_EQ(Listener().U3v(kU3vEventTwice),
              (Lines{"9C40:1000409c110000000000000041414141", "4FFF:0c00ff4f1200000000000000"}));
}

TEST(EventPacketsU3v, BareItemsAreRecognised) {
    EXPECT_EQ(Listener().U3v("0000409c8877665544332211deadbeef"),
              (Lines{"9C40:0000409c8877665544332211deadbeef"}));
    EXPECT_EQ(Listener().U3v("1000409c11000000000000004141414100000000"),
              (Lines{"9C40:1000409c110000000000000041414141"}));
}

TEST(EventPacketsU3v, MalformedPacketsAreRefusedWhole) {
    Listener listener;
    using U3v = CEventAdapterU3V;
    EXPECT_EQ(listener.Refusal<U3v>("0000409c88776655443322"),
              "11 bytes are neither an event packet nor an event item.");
    EXPECT_EQ(listener.Refusal<U3v>("553356450000010c100003000000409c8877665544332211deadbeef"),
              "A packet with the command 0x0c01 is no event packet.");
    EXPECT_EQ(listener.Refusal<U3v>("5533564500"), "A packet with the command 0x0000 is no event packet.");
    EXPECT_EQ(listener.Refusal<U3v>("553356450000000c110003000000409c8877665544332211deadbeef"),
              "An event packet announces 17 bytes, but 16 are there.");
    EXPECT_EQ(listener.Refusal<U3v>("553356450000000c00000300"), "An event packet holds no event.");
    EXPECT_EQ(listener.Refusal<U3v>("553356450000000c0b0003000000409c88776655443322"),
              "An event packet ends inside an event item, after 11 of 12 bytes.");
    std::string broken = kU3vEventTwice;
    broken.replace(24, 4, "0b00");
    EXPECT_EQ(listener.Refusal<U3v>(broken),
              "An event item announces 11 bytes; 12 to 28 are possible there.");
    broken.replace(24, 4, "1d00");
    EXPECT_EQ(listener.Refusal<U3v>(broken),
              "An event item announces 29 bytes; 12 to 28 are possible there.");
    broken.replace(24, 4, "1100");
    EXPECT_EQ(listener.Refusal<U3v>(broken),
              "An event packet ends inside an event item, after 11 of 12 bytes.");
}

TEST(EventPackets, ANodeWithTheIdButWithoutAPortBecomesStale) {
    Camera camera(Node("Integer", "Trigger", "<EventID>9000</EventID><pValue>R</pValue>") + IntReg("R", 0));
    EXPECT_EQ(camera.Int("Trigger")->GetValue(), 0);
    camera.port.Put(0, {7, 0, 0, 0});
    int* const changes = camera.Watch("Trigger");
    CEventAdapterGEV adapter(camera.map._Ptr);
    const ByteRow message = FromHex(kEventTwice);
    adapter.DeliverMessage(message.data(), static_cast<uint32_t>(message.size()));
    EXPECT_EQ(camera.Int("Trigger")->GetValue(), 7);
    EXPECT_EQ(*changes, 1);
}

TEST(EventPackets, ACallbackThatThrowsKeepsNobodyFromTheNextItem) {
    Listener listener;
    Register(listener.camera.Node("P9000"), [](INode*) { throw RUNTIME_EXCEPTION("first"); });
    const std::string text = Failure<RuntimeException>([&] { listener.Gev(kEventTwice); });
    EXPECT_EQ(text, "first");
    Register(listener.camera.Node("P9000"), [](INode*) { throw RUNTIME_EXCEPTION("second"); });
    EXPECT_EQ(Failure<RuntimeException>([&] { listener.Gev(kEventTwice); }), "first");
    EXPECT_EQ(listener.heard.size(), 2u);
}

TEST(EventPackets, TheFirstItemsExceptionPassesWhenAnotherThrowsToo) {
    Listener listener;
    Register(listener.camera.Node("P9000"), [](INode*) { throw RUNTIME_EXCEPTION("of 9000"); });
    Register(listener.camera.Node("P0004"), [](INode*) { throw RUNTIME_EXCEPTION("of 0004"); });
    EXPECT_EQ(Failure<RuntimeException>([&] { listener.Gev(kEventTwice); }), "of 9000");
    EXPECT_EQ(listener.heard.size(), 2u);
}

TEST(EventPackets, NullIsRefused) {
    EXPECT_THROW(CEventAdapterGEV().DeliverMessage(nullptr, 16), InvalidArgumentException);
    EXPECT_THROW(CEventAdapterU3V().DeliverMessage(nullptr, 16), InvalidArgumentException);
}

TEST(EventPackets, MutatedPacketsAreDeliveredOrRefused) {
    Listener listener;
    std::mt19937 random(20240607);
    size_t refused = 0;
    size_t delivered = 0;
    for (const char* const vector :
         {kEventTwice, kEventExtended, kEventData, kEventDataTwice, kU3vEvent, kU3vEventTwice})
        for (int i = 0; i < 10000; ++i) {
            const ByteRow message = Mutated(FromHex(vector), random);
            size_t heard = 0;
            try {
                const bool isGev = vector[0] == '4';
                for (const std::string& line : isGev ? listener.Hear<CEventAdapterGEV>(message)
                                                     : listener.Hear<CEventAdapterU3V>(message))
                    heard += (line.size() - line.find(':') - 1) / 2;
                ++delivered;
            } catch (const InvalidArgumentException&) {
                ++refused;
            }
            ASSERT_LE(heard, message.size()) << ToHex(message);
        }
    EXPECT_GT(refused, 1000u);
    EXPECT_GT(delivered, 1000u);
}
