// CIntervalSet: a set of integers, kept as the ranges that they form.
//
//     CIntervalSet set;
//     set.insert({10, 20});              // 10 to 19
//     set.insert({20, 25});              // one range with the first: [10, 25)
//     set.erase({12, 14});               // [10, 12), [14, 25)
//     int index = set.find(13);          // 1: the first range that does not end before 13
//
// A range is half-open: its first integer, and the one behind its last. Ranges are in ascending order and never touch: two that meet are
// one. With r ranges, finding costs O(log r), a change O(r) moves of integers.
//
// Threads: one thread at a time.
#pragma once

#include <cstddef>
#include <utility>

#include "ortha/ortha3/Export.h"

namespace General::Utils {

/// What allocates throws std::bad_alloc, and then nothing has changed.
class ORTHA_API CIntervalSet
{
public:
    using Range = std::pair<int, int>;

    CIntervalSet();
    CIntervalSet(const CIntervalSet& other);
    CIntervalSet& operator=(const CIntervalSet& other);
    ~CIntervalSet();

    /// Adds the integers of a range; one whose start is not below its end has none.
    void insert(const Range& range);
    /// Removes them.
    void erase(const Range& range);
    void clear();
    [[nodiscard]] bool empty() const;
    /// The number of ranges.
    [[nodiscard]] std::size_t size() const;
    /// A range by its index, from 0. Asserts that there is one.
    [[nodiscard]] Range get(int index) const;
    /// The index of the first range that does not end before `value`: one that holds it, begins behind it, or ends at it. -1 if there is
    /// none.
    [[nodiscard]] int find(int value) const;
    void swap(CIntervalSet& other);
    /// Adds all of another set.
    CIntervalSet& merge(const CIntervalSet& other);

private:
    struct Internal;
    Internal* m_internal;
};

}  // namespace General::Utils
