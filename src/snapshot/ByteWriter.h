#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Appends LEB128 varints and byte strings: small numbers take one byte, which keeps a
// snapshot of a large tree small before it is compressed.
class ByteWriter
{
public:
    void reserve(std::size_t bytes) { m_out.reserve(bytes); }
    void number(std::uint64_t n)
    {
        while (n >= 0x80) {
            m_out += char(n | 0x80);
            n >>= 7;
        }
        m_out += char(n);
    }
    // Zigzag, so small negative numbers stay short too.
    void signedNumber(std::int64_t n) { number((std::uint64_t(n) << 1) ^ std::uint64_t(n >> 63)); }
    void bytes(std::string_view b)
    {
        number(b.size());
        m_out += b;
    }
    void raw(std::string_view b) { m_out += b; }

    [[nodiscard]] const std::string &text() const { return m_out; }
    [[nodiscard]] std::string take() { return std::move(m_out); }

private:
    std::string m_out;
};
