// The module Stats: the class of that name, and the function that the library looks for to make one.

#include <component/ComponentHelper.h>

#include <algorithm>

#include "IStatistics.h"

namespace Fleet {

class Stats : public IStatistics
{
public:
    void destroy() override { delete this; }
    void reservedOperation() override {}

    void add(double value) override
    {
        const bool first = m_figures.count++ == 0;
        m_sum += value;
        m_figures.last = value;
        m_figures.min = first ? value : std::min(m_figures.min, value);
        m_figures.max = first ? value : std::max(m_figures.max, value);
        m_figures.mean = m_sum / static_cast<double>(m_figures.count);
    }
    [[nodiscard]] Figures figures() const override { return m_figures; }

private:
    Figures m_figures;
    double m_sum = 0;
};

}  // namespace Fleet

// Exported whatever the visibility that this is compiled with.
extern "C" ORTHA_EXPORT General::Component::IUnknown* createStatsObject(const General::Component::ServerInfo*)
{
    return General::Component::Detail::CComponentHelper::makeComponentObject(new Fleet::Stats);
}
