// Firing the library's signals beside others. Rows are named signal/fire/attached procedures/who.
#include <vector>

#include "ortha/ortha3/SignalTemplate.h"

#ifdef ORTHA_BENCH_HAS_BOOST
#include <boost/signals2/signal.hpp>
#endif
#ifdef ORTHA_BENCH_HAS_POCO
#include <Poco/BasicEvent.h>
#include <Poco/Delegate.h>
#endif

#include "support.h"

namespace {

class Receiver
{
public:
    [[gnu::noinline]] void receive(int value) { m_sum += value; }
    [[gnu::noinline]] void receiveReference(int& value) { m_sum += value; }
    [[nodiscard]] int sum() const { return m_sum; }

private:
    int m_sum = 0;
};

class Ours
{
public:
    explicit Ours(std::vector<Receiver>& receivers) : m_signal(static_cast<int>(receivers.size()))
    {
        for (Receiver& receiver : receivers)
        {
            m_signal.attach(General::Ortha::TFunction1<void, int>(&Receiver::receive, &receiver));
        }
    }
    void fire(int value) { m_signal(value); }

private:
    General::Ortha::TSignal1<int> m_signal;
};

#ifdef ORTHA_BENCH_HAS_BOOST
class BoostSignal
{
public:
    explicit BoostSignal(std::vector<Receiver>& receivers)
    {
        for (Receiver& receiver : receivers)
        {
            m_signal.connect([&receiver](int value) { receiver.receive(value); });
        }
    }
    void fire(int value) { m_signal(value); }

private:
    boost::signals2::signal<void(int)> m_signal;
};
#endif

#ifdef ORTHA_BENCH_HAS_POCO
class PocoEvent
{
public:
    explicit PocoEvent(std::vector<Receiver>& receivers)
    {
        for (Receiver& receiver : receivers)
        {
            m_event += Poco::delegate(&receiver, &Receiver::receiveReference);
        }
    }
    void fire(int value) { m_event(this, value); }

private:
    Poco::BasicEvent<int> m_event;
};
#endif

template <class Signal>
void fire(benchmark::State& state, std::size_t slots)
{
    std::vector<Receiver> receivers(slots);
    Signal signal(receivers);
    int value = 1;
    std::int64_t fired = 0;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(value);
        signal.fire(value);
        ++fired;
    }
    for (const Receiver& receiver : receivers)
    {
        if (receiver.sum() != static_cast<int>(fired))
        {
            state.SkipWithError("a procedure missed a firing");
        }
    }
}

template <class Signal>
void compare(const char* who)
{
    for (const std::size_t slots : {1u, 8u})
    {
        Bench::row(Bench::nameOf({"signal/fire", std::to_string(slots) + "-attached", who}),
                   [slots](benchmark::State& state) { fire<Signal>(state, slots); });
    }
}

}  // namespace

int main(int argc, char** argv)
{
    compare<Ours>("ortha");
#ifdef ORTHA_BENCH_HAS_BOOST
    compare<BoostSignal>("boost");
#endif
#ifdef ORTHA_BENCH_HAS_POCO
    compare<PocoEvent>("poco");
#endif
    return Bench::run(argc, argv);
}
