// Writes a sound effect to a WAV file for listening and for inspection with sox.

#include "sound/Render.h"
#include "sound/Sfx.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

namespace {

void usage(std::FILE *to)
{
    std::fputs("usage: sfxwav [--pcm16] [--rate=HZ] EFFECT OUT.wav\n"
               "       sfxwav --list\n"
               "EFFECT is a name from --list, e.g. dive or slay:titan.\n"
               "Writes mono 32-bit float samples (16-bit PCM with --pcm16), 44100 Hz by default.\n",
               to);
}

class WavWriter
{
public:
    explicit WavWriter(const char *path) : m_out(path, std::ios::binary) {}

    [[nodiscard]] bool write(const std::vector<float> &samples, std::uint32_t rate, bool pcm16)
    {
        const std::uint16_t bits = pcm16 ? 16 : 32;
        const std::uint32_t dataBytes = std::uint32_t(samples.size()) * (bits / 8);
        // Float data needs the extended fmt chunk and a fact chunk.
        const std::uint32_t fmtBytes = pcm16 ? 16 : 18;
        const std::uint32_t factBytes = pcm16 ? 0 : 12;
        text("RIFF");
        u32(4 + (8 + fmtBytes) + factBytes + (8 + dataBytes));
        text("WAVE");
        text("fmt ");
        u32(fmtBytes);
        u16(pcm16 ? 1 : 3);
        u16(1);
        u32(rate);
        u32(rate * (bits / 8));
        u16(bits / 8);
        u16(bits);
        if (!pcm16) {
            u16(0);
            text("fact");
            u32(4);
            u32(std::uint32_t(samples.size()));
        }
        text("data");
        u32(dataBytes);
        for (const float x : samples) {
            if (pcm16)
                u16(std::uint16_t(std::int16_t(std::lround(x * 32767.0f))));
            else
                f32(x);
        }
        m_out.flush();
        return bool(m_out);
    }

private:
    void text(const char *four) { m_out.write(four, 4); }
    void u16(std::uint16_t v) { bytes(v, 2); }
    void u32(std::uint32_t v) { bytes(v, 4); }
    void f32(float v)
    {
        std::uint32_t bits = 0;
        std::memcpy(&bits, &v, sizeof bits);
        u32(bits);
    }
    void bytes(std::uint32_t v, int count)
    {
        for (int i = 0; i < count; ++i)
            m_out.put(char((v >> (8 * i)) & 0xFF));
    }

    std::ofstream m_out;
};

} // namespace

int main(int argc, char *argv[])
{
    bool pcm16 = false;
    std::uint32_t rate = 44'100;
    std::vector<std::string> positional;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--list") {
            for (const Sound::Sfx &sfx : Sound::Sfx::all())
                std::printf("%s\n", sfx.name().toUtf8().constData());
            return 0;
        }
        if (arg == "--help" || arg == "-h") {
            usage(stdout);
            return 0;
        }
        if (arg == "--pcm16") {
            pcm16 = true;
        } else if (arg.rfind("--rate=", 0) == 0) {
            char *end = nullptr;
            rate = std::uint32_t(std::strtoul(arg.c_str() + 7, &end, 10));
            if (*end != '\0')
                rate = 0;
        } else if (arg.rfind("--", 0) == 0) {
            usage(stderr);
            return 2;
        } else {
            positional.push_back(arg);
        }
    }
    if (positional.size() != 2 || rate == 0) {
        usage(stderr);
        return 2;
    }
    const auto sfx = Sound::Sfx::fromName(QString::fromLocal8Bit(positional[0].c_str()));
    if (!sfx) {
        std::fprintf(stderr, "sfxwav: unknown effect '%s' (see --list)\n", positional[0].c_str());
        return 2;
    }
    WavWriter wav(positional[1].c_str());
    if (!wav.write(Sound::render(*sfx, double(rate)), rate, pcm16)) {
        std::fprintf(stderr, "sfxwav: cannot write %s\n", positional[1].c_str());
        return 1;
    }
    return 0;
}
