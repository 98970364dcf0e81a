#include "Src/Ortha3/ThreadLoadingController.h"

namespace General::Ortha {

namespace {

// As 32-bit registers multiply.
std::int32_t product(std::int32_t a, std::int32_t b)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

}  // namespace

CThreadLoadingController::CThreadLoadingController() : CThread("ThreadLoadingControl", 1, 1, 0) {}

CThreadLoadingController::~CThreadLoadingController()
{
    if (!isThreadOver())
    {
        destroyThread();
    }
}

void CThreadLoadingController::setThreadLoad(std::uint64_t key, unsigned int shareA, unsigned int shareB)
{
    {
        CGuard guard(m_mutex);
        m_loads[key] = {static_cast<std::int32_t>(shareA), static_cast<std::int32_t>(shareB)};
    }
    if (isThreadOver())
    {
        createThread();
    }
}

void CThreadLoadingController::clearThreadLoad(std::uint64_t key)
{
    bool empty = false;
    {
        CGuard guard(m_mutex);
        m_loads.erase(key);
        empty = m_loads.empty();
    }
    if (empty && !isThreadOver())
    {
        destroyThread();
    }
}

// The counter that is behind its share goes on; at the end of a cycle both begin anew.
void CThreadLoadingController::pass()
{
    CGuard guard(m_mutex);
    for (auto& [key, load] : m_loads)
    {
        std::int32_t& behind =
            product(load.m_shareA, load.m_countB) <= product(load.m_shareB, load.m_countA) ? load.m_countB : load.m_countA;
        behind = static_cast<std::int32_t>(static_cast<std::uint32_t>(behind) + 1);
        if (load.m_countA == load.m_shareA && load.m_countB == load.m_shareB)
        {
            load.m_countA = load.m_countB = 0;
        }
    }
}

CThreadLoadingController::Load CThreadLoadingController::getThreadLoad(std::uint64_t key)
{
    CGuard guard(m_mutex);
    const auto found = m_loads.find(key);
    return found == m_loads.end() ? Load{0, 0} : found->second;
}

void CThreadLoadingController::threadProc()
{
    while (looping())
    {
        pass();
        sleep(1);
    }
}

}  // namespace General::Ortha
