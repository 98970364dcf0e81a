// IStatistics: keeps the figures of one device's values. Program and module share no more than this header: the class "Stats" is in a
// module of its own, Stats.so beside the program, which the library loads when the class is first asked for.
#pragma once

#include <component/Unknown.h>

namespace Fleet {

/// Those of the values are 0 until there is one.
struct Figures
{
    unsigned long long count = 0;
    double last = 0;
    double min = 0;
    double max = 0;
    double mean = 0;
};

/// Threads: one thread at a time.
class IStatistics : public General::Component::IUnknown
{
public:
    virtual void add(double value) = 0;
    [[nodiscard]] virtual Figures figures() const = 0;
};

}  // namespace Fleet
