#include "producer/sim/Inflate.h"

#include "producer/sim/Failure.h"

#include <array>

namespace zqgentl {

namespace {

constexpr uint32_t codeBitsMax = 15;
constexpr size_t literalCount = 288;
constexpr size_t distanceCount = 30;

[[noreturn]] void Refuse(const char* what) {
    throw Failure(GenTL::GC_ERR_INVALID_VALUE, std::string("a packed picture ") + what);
}

/// Bits of a byte string, the lowest first.
class BitReader {
public:
    BitReader(const uint8_t* data, size_t size) : m_data(data), m_size(size) {}

    uint32_t Bits(uint32_t count) {
        while (m_held < count) {
            m_bits |= uint32_t{Byte()} << m_held;
            m_held += 8;
        }
        const uint32_t value = m_bits & ((1U << count) - 1);
        m_bits >>= count;
        m_held -= count;
        return value;
    }
    /// Drops what is left of a byte.
    void Align() {
        m_bits = 0;
        m_held = 0;
    }
    uint8_t Byte() {
        if (m_next == m_size)
            Refuse("ends too early");
        return m_data[m_next++];
    }

private:
    const uint8_t* m_data;
    size_t m_size;
    size_t m_next = 0;
    uint32_t m_bits = 0;
    uint32_t m_held = 0;
};

/// A canonical Huffman code: how many codes each length has, and the symbols in the order of their codes.
class Huffman {
public:
    Huffman(const uint8_t* lengths, size_t count) {
        for (size_t i = 0; i < count; ++i)
            ++m_counts[lengths[i]];
        m_counts[0] = 0;
        std::array<uint16_t, codeBitsMax + 2> next{};
        for (uint32_t bits = 1; bits <= codeBitsMax; ++bits)
            next[bits + 1] = static_cast<uint16_t>(next[bits] + m_counts[bits]);
        for (size_t i = 0; i < count; ++i) {
            if (lengths[i] != 0)
                m_symbols[next[lengths[i]]++] = static_cast<uint16_t>(i);
        }
    }

    uint32_t Decode(BitReader& reader) const {
        int32_t code = 0;
        int32_t first = 0;
        int32_t index = 0;
        for (uint32_t bits = 1; bits <= codeBitsMax; ++bits) {
            code |= static_cast<int32_t>(reader.Bits(1));
            const int32_t count = m_counts[bits];
            if (code - count < first)
                return m_symbols[static_cast<size_t>(index + code - first)];
            index += count;
            first = (first + count) << 1;
            code <<= 1;
        }
        Refuse("has a code that is none");
    }

private:
    std::array<uint16_t, codeBitsMax + 1> m_counts{};
    std::array<uint16_t, literalCount> m_symbols{};
};

class Inflater {
public:
    Inflater(const uint8_t* data, size_t length, size_t size) : m_reader(data, length), m_size(size) {
        m_out.reserve(size);
    }

    std::vector<uint8_t> Run() {
        const uint32_t method = m_reader.Bits(8);
        const uint32_t flags = m_reader.Bits(8);
        if ((method & 0x0F) != 8 || (method * 256 + flags) % 31 != 0 || (flags & 0x20) != 0)
            Refuse("has an unknown header");
        bool last = false;
        while (!last) {
            last = m_reader.Bits(1) != 0;
            Block(m_reader.Bits(2));
        }
        if (m_out.size() != m_size)
            Refuse("has another size than it should");
        return std::move(m_out);
    }

private:
    void Block(uint32_t kind) {
        if (kind == 0)
            Stored();
        else if (kind == 1)
            Fixed();
        else if (kind == 2)
            Dynamic();
        else
            Refuse("has an unknown block");
    }

    void Stored() {
        m_reader.Align();
        uint32_t length = m_reader.Byte();
        length |= uint32_t{m_reader.Byte()} << 8;
        uint32_t inverse = m_reader.Byte();
        inverse |= uint32_t{m_reader.Byte()} << 8;
        if (length != (~inverse & 0xFFFF))
            Refuse("has a block of an unclear length");
        for (uint32_t i = 0; i < length; ++i)
            Put(m_reader.Byte());
    }

    void Fixed() {
        uint8_t lengths[literalCount];
        for (size_t i = 0; i < literalCount; ++i)
            lengths[i] = i < 144 ? 8 : (i < 256 ? 9 : (i < 280 ? 7 : 8));
        uint8_t distances[distanceCount];
        for (uint8_t& length : distances)
            length = 5;
        Codes(Huffman(lengths, literalCount), Huffman(distances, distanceCount));
    }

    void Dynamic() {
        static constexpr uint8_t order[19] = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                              11, 4,  12, 3, 13, 2, 14, 1, 15};
        const size_t literals = m_reader.Bits(5) + 257;
        const size_t distances = m_reader.Bits(5) + 1;
        const size_t codes = m_reader.Bits(4) + 4;
        if (literals > literalCount - 2 || distances > distanceCount)
            Refuse("has too many codes");
        uint8_t small[19] = {};
        for (size_t i = 0; i < codes; ++i)
            small[order[i]] = static_cast<uint8_t>(m_reader.Bits(3));
        const Huffman lengthCode(small, 19);
        uint8_t lengths[literalCount + distanceCount] = {};
        for (size_t i = 0; i < literals + distances;)
            i += Lengths(lengthCode, lengths, i, literals + distances);
        Codes(Huffman(lengths, literals), Huffman(lengths + literals, distances));
    }

    /// One or more code lengths at a place; returns how many.
    size_t Lengths(const Huffman& lengthCode, uint8_t* lengths, size_t at, size_t end) {
        const uint32_t symbol = lengthCode.Decode(m_reader);
        size_t repeat = 1;
        uint8_t value = static_cast<uint8_t>(symbol);
        if (symbol == 16) {
            if (at == 0)
                Refuse("repeats nothing");
            value = lengths[at - 1];
            repeat = m_reader.Bits(2) + 3;
        } else if (symbol > 16) {
            value = 0;
            repeat = symbol == 17 ? m_reader.Bits(3) + 3 : m_reader.Bits(7) + 11;
        }
        if (repeat > end - at)
            Refuse("has too many codes");
        for (size_t i = 0; i < repeat; ++i)
            lengths[at + i] = value;
        return repeat;
    }

    void Codes(const Huffman& literals, const Huffman& distances) {
        static constexpr uint16_t lengthBase[] = {3,  4,  5,  6,   7,   8,   9,   10,  11, 13,
                                                  15, 17, 19, 23,  27,  31,  35,  43,  51, 59,
                                                  67, 83, 99, 115, 131, 163, 195, 227, 258};
        static constexpr uint8_t lengthExtra[] = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2,
                                                  2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 5, 5, 0};
        static constexpr uint16_t distanceBase[] = {
            1,   2,   3,   4,   5,   7,    9,    13,   17,   25,   33,   49,   65,    97,    129,
            193, 257, 385, 513, 769, 1025, 1537, 2049, 3073, 4097, 6145, 8193, 12289, 16385, 24577};
        while (true) {
            const uint32_t symbol = literals.Decode(m_reader);
            if (symbol == 256)
                return;
            if (symbol < 256) {
                Put(static_cast<uint8_t>(symbol));
                continue;
            }
            if (symbol > 285)
                Refuse("has a length that is none");
            const size_t length = lengthBase[symbol - 257] + m_reader.Bits(lengthExtra[symbol - 257]);
            const uint32_t code = distances.Decode(m_reader);
            const uint32_t extra = code < 2 ? 0 : code / 2 - 1;
            const size_t distance = distanceBase[code] + m_reader.Bits(extra);
            if (distance > m_out.size())
                Refuse("refers to what is not there");
            for (size_t i = 0; i < length; ++i)
                Put(m_out[m_out.size() - distance]);
        }
    }

    void Put(uint8_t byte) {
        if (m_out.size() == m_size)
            Refuse("has another size than it should");
        m_out.push_back(byte);
    }

    BitReader m_reader;
    size_t m_size;
    std::vector<uint8_t> m_out;
};

} // namespace

std::vector<uint8_t> Inflate(const uint8_t* data, size_t length, size_t size) {
    return Inflater(data, length, size).Run();
}

} // namespace zqgentl
