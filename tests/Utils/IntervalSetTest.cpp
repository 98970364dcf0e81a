#include "utils/IntervalSet.h"

#include <bitset>
#include <climits>
#include <utility>

#include "utils/IpAddress.h"
#include "utils/String.h"

#include "Support.h"

namespace General::Utils::Test {
namespace {

TEST(IntervalSet, IsWhatABitmapIsAfterAnyOperations)
{
    CIntervalSet sets[2];
    std::bitset<64> maps[2];
    for (int step = 0; step < 100000; ++step)
    {
        const std::size_t one = below(2), operation = below(50);
        const int from = static_cast<int>(below(60)), to = static_cast<int>(below(61));
        const std::bitset<64> range(from < to ? ~0ull >> (64 - (to - from)) << from : 0);
        if (operation < 44)
        {
            operation % 2 ? sets[one].insert({from, to}) : sets[one].erase({from, to});
            maps[one] = operation % 2 ? maps[one] | range : maps[one] & ~range;
        }
        else if (operation < 47)
        {
            maps[one] |= maps[operation % 2];
            EXPECT_EQ(&sets[one].merge(sets[operation % 2]), &sets[one]);
        }
        else
        {
            std::swap(maps[0], operation == 47 ? maps[1] : maps[0] = maps[operation % 2]);
            operation == 47 ? sets[0].swap(sets[1]) : void(sets[0] = CIntervalSet(sets[operation % 2]));
        }
        std::bitset<64> seen;
        int end = -1, found = -1;
        for (int i = 0; i < static_cast<int>(sets[one].size()); ++i)
        {
            const auto [start, next] = sets[one].get(i);
            ASSERT_TRUE(start > end && next > start) << "step " << step;
            seen |= std::bitset<64>(~0ull >> (64 - (next - start)) << start);
            end = next;
            found = found < 0 && end >= from ? i : found;
        }
        ASSERT_TRUE(seen == maps[one] && sets[one].empty() == seen.none() && sets[one].find(from) == found) << "step " << step;
    }
    CIntervalSet all;
    all.insert({INT_MIN, INT_MAX});
    all.erase({-1, 1});
    EXPECT_TRUE(all.get(0) == std::pair(INT_MIN, -1) && all.get(1) == std::pair(1, INT_MAX) && all.find(INT_MAX) == 1 && all.size() == 2);
    EXPECT_DEATH(std::ignore = all.get(2), "assertion \\(size_t\\(index \\* 2 \\+ 1\\) < m_internal->keys.size\\(\\)\\)");
    all.clear();
    EXPECT_TRUE(all.empty() && all.find(INT_MIN) == -1);
}

TEST(Text, BoundedCopiesFillJustTheirRoom)
{
    for (std::size_t i = 0; i < 10000; ++i)
    {
        const std::size_t size = 1 + i % 10, count = i / 10 % 10, length = i / 100 % 10, old = std::min(i / 1000, size - 1),
                          bound = std::min(size - old - 1, count);
        const std::string text = std::string("abcdefghi").substr(0, length), xs(size, 'x');
        const auto over = [&](std::string s) { return (s + '\0' + xs.substr(std::min(size, s.size() + 1))).substr(0, size); };
        const std::string before = over(xs.substr(0, old)), copied = text.substr(0, std::min(size - 1, count));
        EXPECT_EQ(room(xs, [&](At to) { EXPECT_EQ(strncpy(to, size, text.c_str(), count), copied.size()); }), over(copied));
        EXPECT_EQ(room(before, [&](At to) { EXPECT_EQ(strncat(to, size, text.c_str(), count), bound); }),
                  over(xs.substr(0, old) + text.substr(0, bound)).replace(size - 1, 1, 1, 0));
        EXPECT_EQ(
            room(xs, [&](At to) { EXPECT_EQ(snprintf_x(to, static_cast<int>(size), "%s", text.c_str()), std::min(length, size - 1)); }),
            over(text.substr(0, size - 1)));
        EXPECT_EQ(
            room(xs,
                 [&](At to) { EXPECT_EQ(Utils::snprintf(to, size, "%s", text.c_str()), length > size ? -1 : static_cast<int>(length)); }),
            over(text.substr(0, size)));
    }
    EXPECT_TRUE(stricmp("aZ[\xE9", "Az[\xE9") == 0 && stricmp("a", "B") < 0 && stricmp("b_", "B") > 0 && stricmp("_", "A") < 0 &&
                stricmp("", "a") < 0);
}

TEST(Text, AddressesGoThereAndBack)
{
    EXPECT_EQ(room("192.168.0.1x", [](At to) { EXPECT_EQ(ipToString({0xC0A80001}, to, 12), to.to); }), std::string("192.168.0.1") + '\0');
    EXPECT_EQ(room("xxxxxx", [](At to) { ipToString({0xFFFFFFFF}, to, 6); }), std::string("255.2") + '\0');
    EXPECT_EQ(logged([] { EXPECT_EQ(stringToIp("300.-1.2.3 and more").value, 0x2CFF0203u); }), "");
    const std::pair<const char*, std::uint32_t> poor[] = {{"10.1", 0x0A010000}, {"", 0}, {nullptr, 0}};
    const auto parse = [&] {
        std::for_each(std::begin(poor), std::end(poor), [](auto& pair) { EXPECT_EQ(stringToIp(pair.first).value, pair.second); });
    };
    EXPECT_EQ(logged(parse), "w param str 10.1 is invalid\nw param str  is invalid\nw param str (null) is invalid\n");
}

}  // namespace
}  // namespace General::Utils::Test
