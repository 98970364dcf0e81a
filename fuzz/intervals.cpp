// Interval sets against bitmaps: bit i stands for the integers from edge(i) up to edge(i + 1), which begin at the smallest int.
#include <bitset>

#include "utils/IntervalSet.h"

#include "Fuzz.h"

static int edge(unsigned int i)
{
    return (static_cast<int>(i) - 128) * (1 << 24);
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    General::Utils::CIntervalSet sets[2];
    std::bitset<256> maps[2];
    for (Fuzz::Input input(data, size); !input.atEnd();)
    {
        const unsigned int what = input.byte() % 8;
        const unsigned int start = input.byte();
        const unsigned int end = input.byte();
        what == 7       ? sets[0].swap(sets[1])
        : what == 6     ? void(sets[0].merge(sets[1]))
        : what % 2 == 0 ? sets[what / 4].insert({edge(start), edge(end)})
                        : sets[what / 4].erase({edge(start), edge(end)});
        what == 7 ? std::swap(maps[0], maps[1]) : what == 6 ? void(maps[0] |= maps[1]) : void();
        for (unsigned int i = start; what < 6 && i < end; ++i)
        {
            maps[what / 4][i] = what % 2 == 0;
        }
        for (int n : {0, 1})
        {
            int found = -1;
            int index = -1;  // of the range that bit i is in or that was last before it
            for (unsigned int i = 0; i < 255; ++i)
            {
                index += maps[n][i] && (i == 0 || !maps[n][i - 1]);
                found = found == -1 && maps[n][i] && i + 1 >= start ? index : found;
                Fuzz::require(!maps[n][i] || (sets[n].get(index).first <= edge(i) && sets[n].get(index).second >= edge(i + 1)));
            }
            Fuzz::require(sets[n].size() == static_cast<std::size_t>(index + 1) && sets[n].find(edge(start)) == found);
        }
    }
    return 0;
}
