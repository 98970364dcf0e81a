#include "Src/Ortha3/TimerQueue.h"

#include <algorithm>

namespace General::Ortha {

namespace {

bool before(const TimerInternal& a, const TimerInternal& b)
{
    return a.m_nextTime != b.m_nextTime ? a.m_nextTime < b.m_nextTime : a.m_sequence > b.m_sequence;
}

// Joins two trees, neither of which has siblings: the later root becomes the first child of the other.
TimerInternal* meld(TimerInternal* a, TimerInternal* b)
{
    if (!a || !b)
    {
        return a ? a : b;
    }
    if (before(*b, *a))
    {
        std::swap(a, b);
    }
    b->m_sibling = a->m_child;
    if (b->m_sibling)
    {
        b->m_sibling->m_back = b;
    }
    b->m_back = a;
    a->m_child = b;
    return a;
}

// Joins a list of siblings into one tree: neighbours in pairs from the left, then the pairs from the right.
TimerInternal* meldSiblings(TimerInternal* first)
{
    TimerInternal* pairs = nullptr;  // linked through m_sibling, last pair first
    while (first)
    {
        TimerInternal* a = first;
        TimerInternal* b = a->m_sibling;
        first = b ? b->m_sibling : nullptr;
        a->m_sibling = nullptr;
        if (b)
        {
            b->m_sibling = nullptr;
        }
        TimerInternal* pair = meld(a, b);
        pair->m_sibling = pairs;
        pairs = pair;
    }
    TimerInternal* root = nullptr;
    while (pairs)
    {
        TimerInternal* pair = pairs;
        pairs = pair->m_sibling;
        pair->m_sibling = nullptr;
        root = meld(root, pair);
    }
    return root;
}

}  // namespace

void TimerQueue::insert(TimerInternal& timer)
{
    timer.m_sequence = ++m_sequence;
    m_root = meld(m_root, &timer);
}

void TimerQueue::remove(TimerInternal& timer)
{
    TimerInternal* children = meldSiblings(timer.m_child);
    if (&timer == m_root)
    {
        m_root = children;
    }
    else
    {
        (timer.m_back->m_child == &timer ? timer.m_back->m_child : timer.m_back->m_sibling) = timer.m_sibling;
        if (timer.m_sibling)
        {
            timer.m_sibling->m_back = timer.m_back;
        }
        m_root = meld(m_root, children);
    }
    timer.m_child = nullptr;
    timer.m_sibling = nullptr;
    timer.m_back = nullptr;
}

std::vector<TimerInternal*> TimerQueue::sorted() const
{
    std::vector<TimerInternal*> timers;
    if (m_root)
    {
        timers.push_back(m_root);
    }
    for (std::size_t i = 0; i < timers.size(); ++i)
    {
        for (TimerInternal* child = timers[i]->m_child; child; child = child->m_sibling)
        {
            timers.push_back(child);
        }
    }
    std::sort(timers.begin(), timers.end(), [](const TimerInternal* a, const TimerInternal* b) { return before(*a, *b); });
    return timers;
}

}  // namespace General::Ortha
