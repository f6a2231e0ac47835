#include "sound/Render.h"

#include "sound/Voices.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace {

using Sound::Voice;
using Wave = Voice::Wave;

constexpr double twoPi = 2.0 * std::numbers::pi;
constexpr double attackSeconds = 0.004;
constexpr double tailSeconds = 0.02;
constexpr std::uint32_t noiseSeed = 0x12345678u;

// Linear congruential noise; its state runs on across the voices of one rendering.
class Noise
{
public:
    [[nodiscard]] double next()
    {
        m_state = m_state * 1664525u + 1013904223u;
        return 2.0 * (double(m_state) / 4294967295.0) - 1.0;
    }

private:
    std::uint32_t m_state = noiseSeed;
};

void addVoice(std::vector<float> &out, const Voice &v, double rate, Noise &noise)
{
    const auto start = std::int64_t(rate * v.at);
    const auto n = std::int64_t(rate * v.dur);
    const auto frames = std::int64_t(out.size());
    const double ratio = v.f1 / v.f0;
    double phase = 0;
    double lp = 0;
    for (std::int64_t i = 0; i < n; ++i) {
        const std::int64_t frame = start + i;
        if (frame >= frames)
            break;
        const double t = double(i) / rate;
        const double p = t / v.dur;
        double f = v.f0 * std::pow(ratio, p);
        if (v.vibrato > 0)
            f = f * (1 + v.vibrato * std::sin(twoPi * v.vibRate * t));
        phase = phase + f / rate;
        phase = phase - std::floor(phase);
        double s = 0;
        switch (v.wave) {
        case Wave::sine:
            s = std::sin(twoPi * phase);
            break;
        case Wave::square:
            s = phase < 0.5 ? 1 : -1;
            break;
        case Wave::saw:
            s = 2 * phase - 1;
            break;
        case Wave::triangle:
            s = 4 * std::abs(phase - 0.5) - 1;
            break;
        case Wave::noise: {
            const double w = noise.next();
            const double alpha = 1 - std::exp(-twoPi * f / rate);
            lp = lp + (w - lp) * alpha;
            s = 1.8 * lp;
            break;
        }
        }
        const double a = std::min(t / attackSeconds, 1.0);
        const double d = std::pow(1 - p, v.decay);
        out[std::size_t(frame)] += float(v.gain * (s * (a * d)));
    }
}

} // namespace

std::vector<float> Sound::render(const Sfx &sfx, double rate)
{
    return render(voices(sfx), rate);
}

std::vector<float> Sound::render(std::span<const Voice> voices, double rate)
{
    double end = 0;
    for (const Voice &v : voices)
        end = std::max(end, v.at + v.dur);
    std::vector<float> out(std::uint32_t(rate * (end + tailSeconds)), 0.0f);
    Noise noise;
    for (const Voice &v : voices)
        addVoice(out, v, rate, noise);
    for (float &x : out)
        x = std::tanh(x);
    return out;
}
