#include "sound/Voices.h"

#include <array>
#include <initializer_list>

namespace {

using Sound::Voice;
using Wave = Voice::Wave;

constexpr std::array<double, 5> hoverPitch = {1400, 1050, 760, 520, 360};
constexpr std::array<double, 5> coinDelay = {0.08, 0.16, 0.38, 0.6, 0.9};

double perTier(const std::array<double, 5> &table, Tier t)
{
    return table[std::size_t(Tiers::index(t))];
}

// Note i starts at base + i × step, the index taken as a double.
void addArpeggio(std::vector<Voice> &list, Wave wave, std::initializer_list<double> notes,
                 double base, double step, double dur, double gain, double decay)
{
    int i = 0;
    for (const double f : notes)
        list.push_back({wave, f, f, base + double(i++) * step, dur, gain, decay});
}

std::vector<Voice> slay(Tier t)
{
    std::vector<Voice> list;
    switch (t) {
    case Tier::microbe:
        list = {{Wave::sine, 700, 2000, 0, 0.07, 0.35, 2},
                {Wave::noise, 6000, 3000, 0, 0.03, 0.2, 2}};
        break;
    case Tier::gremlin:
        list = {{Wave::square, 800, 1600, 0, 0.08, 0.12, 2, 0.04, 30},
                {Wave::square, 1600, 500, 0.08, 0.14, 0.12, 2, 0.04, 30}};
        break;
    case Tier::ogre:
        list = {{Wave::saw, 150, 70, 0, 0.38, 0.3, 1.2, 0.03, 11},
                {Wave::noise, 700, 200, 0, 0.3, 0.35, 1.4}};
        break;
    case Tier::dragon:
        list = {{Wave::noise, 1400, 250, 0, 0.75, 0.7, 0.9},
                {Wave::saw, 120, 55, 0, 0.75, 0.25, 0.9, 0.06, 9},
                {Wave::square, 240, 90, 0.05, 0.5, 0.07, 1.2}};
        break;
    case Tier::titan:
        list = {{Wave::sine, 75, 28, 0, 1.3, 0.95, 1.1},
                {Wave::noise, 350, 60, 0, 1.1, 0.8, 1.0},
                {Wave::saw, 55, 32, 0, 1.0, 0.2, 1.3}};
        for (const double at : {0.25, 0.4, 0.58, 0.75})
            list.push_back({Wave::noise, 2500, 900, at, 0.07, 0.18, 2});
        break;
    }
    const double delay = perTier(coinDelay, t);
    list.push_back({Wave::square, 987.77, 987.77, delay, 0.07, 0.08, 0.5});
    list.push_back({Wave::square, 1318.5, 1318.5, delay + 0.07, 0.3, 0.08, 1.5});
    return list;
}

} // namespace

std::vector<Voice> Sound::voices(const Sfx &sfx)
{
    using Kind = Sfx::Kind;
    std::vector<Voice> list;
    switch (sfx.kind()) {
    case Kind::hover: {
        const double f = perTier(hoverPitch, sfx.tier().value_or(Tier::microbe));
        return {{Wave::sine, f, f * 1.08, 0, 0.05, 0.1, 2}};
    }
    case Kind::dive:
        return {{Wave::noise, 500, 4000, 0, 0.2, 0.3, 1.5},
                {Wave::sine, 300, 700, 0, 0.15, 0.1, 2}};
    case Kind::up:
        return {{Wave::noise, 3500, 400, 0, 0.2, 0.3, 1.5},
                {Wave::sine, 650, 300, 0, 0.15, 0.1, 2}};
    case Kind::click:
        return {{Wave::triangle, 900, 700, 0, 0.04, 0.12, 2}};
    case Kind::slay:
        return slay(sfx.tier().value_or(Tier::microbe));
    case Kind::levelUp:
        addArpeggio(list, Wave::square, {523.25, 659.25, 783.99, 1046.5}, 0, 0.09, 0.14, 0.09, 2);
        list.push_back({Wave::triangle, 1046.5, 1046.5, 0.36, 0.6, 0.25, 1.2, 0.006, 7});
        list.push_back({Wave::triangle, 1318.5, 1318.5, 0.36, 0.6, 0.18, 1.2, 0.006, 7});
        return list;
    case Kind::achievement:
        addArpeggio(list, Wave::sine, {1046.5, 1318.5, 1568, 2093}, 0, 0.06, 0.7, 0.16, 1.6);
        return list;
    case Kind::quest:
        addArpeggio(list, Wave::triangle, {784, 988, 1175, 1568}, 0, 0.12, 0.3, 0.2, 2);
        return list;
    case Kind::scanDone:
        return {{Wave::sine, 660, 660, 0, 0.15, 0.2, 2},
                {Wave::sine, 990, 990, 0.1, 0.35, 0.2, 1.5}};
    case Kind::denied:
        return {{Wave::square, 160, 120, 0, 0.12, 0.12, 2},
                {Wave::square, 140, 100, 0.14, 0.16, 0.12, 2}};
    case Kind::step:
        return {{Wave::noise, 900, 500, 0, 0.035, 0.07, 2}};
    case Kind::discover:
        return {{Wave::sine, 880, 880, 0, 0.12, 0.12, 2},
                {Wave::sine, 1318.5, 1318.5, 0.08, 0.25, 0.12, 1.5}};
    case Kind::reveal:
        list.push_back({Wave::sine, 400, 1600, 0, 0.6, 0.18, 0.8, 0.02, 12});
        addArpeggio(list, Wave::sine, {1568, 2093, 2637, 3136}, 0.25, 0.07, 0.5, 0.08, 1.6);
        return list;
    case Kind::sense:
        return {{Wave::triangle, 660, 660, 0, 1.0, 0.2, 1.4, 0.01, 5},
                {Wave::sine, 990, 990, 0.12, 0.9, 0.12, 1.6},
                {Wave::sine, 1485, 1485, 0.24, 0.8, 0.08, 1.8}};
    case Kind::teleport:
        return {{Wave::sine, 300, 2400, 0, 0.25, 0.2, 0.6},
                {Wave::sine, 2400, 400, 0.28, 0.25, 0.2, 0.8},
                {Wave::noise, 3000, 6000, 0, 0.5, 0.06, 1}};
    case Kind::fireball:
        return {{Wave::noise, 600, 3500, 0, 0.35, 0.35, 0.5},
                {Wave::noise, 1800, 120, 0.3, 0.9, 0.8, 1.1},
                {Wave::sine, 90, 35, 0.3, 0.8, 0.7, 1.2}};
    case Kind::recall:
        addArpeggio(list, Wave::triangle, {1568, 1318.5, 1046.5, 784}, 0, 0.09, 0.35, 0.16, 1.4);
        return list;
    case Kind::noMana:
        return {{Wave::sine, 300, 180, 0, 0.25, 0.15, 1.2}};
    }
    return list;
}
