#include "utils/IntervalSet.h"

#include <algorithm>
#include <vector>

#include "ortha/ortha3/Assert.h"

namespace General::Utils {

// Boundaries in strictly ascending order: starts at even places, ends at odd ones.
struct CIntervalSet::Internal
{
    std::vector<int> keys;
};

namespace {

using Keys = std::vector<int>;

Keys::difference_type parity(Keys::difference_type position)
{
    return position % 2;
}

// As std::lower_bound. Each step moves the beginning by a product and not by a jump, which the processor would guess wrong every other
// time.
template <class Place>
Place lowerBound(Place first, Place end, int value)
{
    auto count = end - first;
    while (count > 1)
    {
        const auto half = count / 2;
        const Place behind = first + half;
        first = behind[-1] < value ? behind : first;
        count -= half;
    }
    return first + (count == 1 && *first < value ? 1 : 0);
}

// Both operations in one. Places of the parity `wanted` are those where there is something to do: outside all ranges when inserting, inside
// one when erasing.
void insert_erase_range(Keys& keys, const CIntervalSet::Range& range, bool inserting)
{
    const auto [start, end] = range;
    if (start >= end)
    {
        return;
    }
    const Keys::difference_type wanted = inserting ? 0 : 1;
    auto first = lowerBound(keys.begin(), keys.end(), start);
    // Most ranges end in the gap, or in the range, that they begin in.
    auto last = first == keys.end() || *first >= end ? first : lowerBound(first + 1, keys.end(), end);
    const bool firstWanted = parity(first - keys.begin()) == wanted;
    if (first == last)
    {
        if (!firstWanted)
        {
            return;
        }
        if (first != keys.end() && *first == end)
        {
            *first = start;  // what begins there moves
        }
        else
        {
            keys.insert(first, {start, end});
        }
    }
    else
    {
        const bool lastWanted = parity(last - keys.begin()) == wanted;
        if (firstWanted)
        {
            *first++ = start;
        }
        if (lastWanted)
        {
            if (last != keys.end() && *last == end)
            {
                ++last;
            }
            else
            {
                *--last = end;
            }
        }
        keys.erase(first, last);
    }
    ORTHA_ASSERT(keys.size() % 2 == 0);
}

}  // namespace

CIntervalSet::CIntervalSet() : m_internal(new Internal) {}

CIntervalSet::CIntervalSet(const CIntervalSet& other) : m_internal(new Internal(*other.m_internal)) {}

CIntervalSet& CIntervalSet::operator=(const CIntervalSet& other)
{
    m_internal->keys = other.m_internal->keys;
    return *this;
}

CIntervalSet::~CIntervalSet()
{
    delete m_internal;
}

void CIntervalSet::insert(const Range& range)
{
    insert_erase_range(m_internal->keys, range, true);
}

void CIntervalSet::erase(const Range& range)
{
    insert_erase_range(m_internal->keys, range, false);
}

void CIntervalSet::clear()
{
    m_internal->keys.clear();
}

bool CIntervalSet::empty() const
{
    return m_internal->keys.empty();
}

std::size_t CIntervalSet::size() const
{
    return m_internal->keys.size() / 2;
}

CIntervalSet::Range CIntervalSet::get(int index) const
{
    ORTHA_ASSERT(size_t(index * 2 + 1) < m_internal->keys.size());
    const auto at = static_cast<std::size_t>(index) * 2;
    return {m_internal->keys[at], m_internal->keys[at + 1]};
}

int CIntervalSet::find(int value) const
{
    const Keys& keys = m_internal->keys;
    const auto found = lowerBound(keys.begin(), keys.end(), value);
    return found == keys.end() ? -1 : static_cast<int>((found - keys.begin()) / 2);
}

void CIntervalSet::swap(CIntervalSet& other)
{
    m_internal->keys.swap(other.m_internal->keys);
}

CIntervalSet& CIntervalSet::merge(const CIntervalSet& other)
{
    Keys& keys = m_internal->keys;
    const Keys& added = other.m_internal->keys;
    if (added.empty())
    {
        return *this;
    }
    if (keys.empty())
    {
        keys = added;
        return *this;
    }
    Keys result;
    result.reserve(keys.size() + added.size());
    std::size_t own = 0;
    std::size_t others = 0;
    while (own < keys.size() || others < added.size())
    {
        const bool takeOwn = own < keys.size() && (others == added.size() || keys[own] < added[others]);
        const Keys& from = takeOwn ? keys : added;
        std::size_t& at = takeOwn ? own : others;
        const int start = from[at];
        const int end = from[at + 1];
        at += 2;
        if (!result.empty() && start <= result.back())
        {
            result.back() = std::max(result.back(), end);
        }
        else
        {
            result.push_back(start);
            result.push_back(end);
        }
    }
    keys.swap(result);
    return *this;
}

}  // namespace General::Utils
