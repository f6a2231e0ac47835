#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

// Reads what ByteWriter wrote from bytes that may be damaged or hostile: every read is bounds
// checked, and the first bad read leaves the reader failed for good.
class ByteReader
{
public:
    explicit ByteReader(std::string_view in) : m_in(in) {}

    [[nodiscard]] bool ok() const { return m_ok; }
    [[nodiscard]] bool atEnd() const { return m_at == m_in.size(); }
    [[nodiscard]] std::size_t left() const { return m_in.size() - m_at; }
    void fail() { m_ok = false; }

    std::uint64_t number()
    {
        std::uint64_t n = 0;
        for (int shift = 0; shift < 64 && m_ok && m_at < m_in.size(); shift += 7) {
            const auto byte = std::uint8_t(m_in[m_at++]);
            // The tenth byte may carry only the top bit of a 64-bit number.
            if (shift == 63 && byte > 1)
                break;
            n |= std::uint64_t(byte & 0x7f) << shift;
            if (!(byte & 0x80))
                return n;
        }
        m_ok = false;
        return 0;
    }
    std::int64_t signedNumber()
    {
        const std::uint64_t z = number();
        return std::int64_t(z >> 1) ^ -std::int64_t(z & 1);
    }
    // A number that must fit `limit`; larger fails the reader.
    std::uint64_t number(std::uint64_t limit)
    {
        const std::uint64_t n = number();
        if (n > limit)
            m_ok = false;
        return m_ok ? n : 0;
    }
    std::string_view bytes(std::size_t limit)
    {
        const std::uint64_t size = number(limit);
        return raw(size);
    }
    std::string_view raw(std::uint64_t size)
    {
        if (!m_ok || size > left()) {
            m_ok = false;
            return {};
        }
        const std::string_view b = m_in.substr(m_at, size);
        m_at += size;
        return b;
    }

private:
    std::string_view m_in;
    std::size_t m_at = 0;
    bool m_ok = true;
};
