// Packets, their pool and block pools beside others. Rows are named memory/operation/number/who. A process has one source of packet memory,
// so this file makes two programs: memory_bench with the pool, and memory_system_bench, with ORTHA_BENCH_SYSTEM_POLICY defined, without it.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <stdexcept>

#include "ortha/ortha3/MemPool.h"
#include "ortha/ortha3/Mutex.h"
#include "ortha/ortha3/Packet.h"
#include "ortha/ortha3/PacketManager.h"

#ifdef ORTHA_BENCH_HAS_BOOST
#include <boost/pool/singleton_pool.hpp>
#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>
#endif
#ifdef ORTHA_BENCH_HAS_POCO
#include <Poco/MemoryPool.h>
#endif

#include "native.h"
#include "support.h"

namespace {

using namespace General::Memory;
using benchmark::State;

constexpr std::size_t chunkSize = 1024, blockSize = 64;
constexpr std::size_t orders = 18;  // the pool has 2^18 chunks, of which a row leaves free what it needs

// Where blocks come from: open() and close() are called by one thread while no other uses the source. After open() it has room for `count`
// blocks, and no more if there is an end to it.
struct OrthaPool
{
    static void open(std::size_t count)
    {
        s_manager = CPacketManager::instance();
        for (std::size_t order = orders; order-- > 0;)
        {
            s_held[order] = (((std::size_t{1} << orders) - count) >> order & 1) != 0 ? s_manager->malloc(chunkSize << order) : nullptr;
        }
    }
    static void close() { std::for_each(s_held.begin(), s_held.end(), give); }
    static void* take() { return s_manager->malloc(chunkSize); }
    static void give(void* block) { s_manager->free(block); }

    static inline CPacketManager* s_manager = nullptr;
    static inline std::array<void*, orders> s_held{};
};

// An object with members that take and give.
template <class Pool, auto takeFrom, auto giveTo, auto... arguments>
struct Object
{
    static void open(std::size_t) { s_pool = std::make_unique<Pool>(arguments...); }
    static void close() { s_pool.reset(); }
    static void* take() { return (*s_pool.*takeFrom)(); }
    static void give(void* block) { (*s_pool.*giveTo)(block); }

    static inline std::unique_ptr<Pool> s_pool;
};

using OrthaMemPool = Object<Detail::CMemPool, &Detail::CMemPool::malloc, &Detail::CMemPool::free, blockSize, 256>;

using Functions = std::pair<void* (*)(std::size_t), void (*)(void*)>;
constexpr Functions s_standard{&std::malloc, &std::free};

// An allocator that would take the place of the standard one if the program were linked to it: loaded apart, and called by the names that
// are only its own.
[[maybe_unused]] Functions load(const char* path, const char* mallocName, const char* freeName)
{
    const auto take = reinterpret_cast<Functions::first_type>(Bench::loadFunction(path, mallocName));
    const auto give = reinterpret_cast<Functions::second_type>(Bench::loadFunction(path, freeName));
    if (!take || !give || take == s_standard.first || give == s_standard.second)
    {
        throw std::runtime_error(std::string("cannot be loaded beside malloc: ") + path);
    }
    return {take, give};
}

template <const Functions& functions, std::size_t size>
struct Allocator
{
    static void open(std::size_t) {}
    static void close() {}
    static void* take() { return functions.first(size); }
    static void give(void* block) { functions.second(block); }
};

#ifdef ORTHA_BENCH_HAS_BOOST
template <std::size_t size>
struct BoostPool
{
    using Pool = boost::singleton_pool<BoostPool, size>;
    static_assert(!std::is_same_v<typename Pool::mutex, boost::details::pool::null_mutex>, "it would be measured without its lock");
    static void open(std::size_t) {}
    static void close() {}  // purge_memory() would double what the next allocation asks for
    static void* take() { return Pool::malloc(); }
    static void give(void* block) { Pool::free(block); }
};

struct alignas(64) Counted : boost::intrusive_ref_counter<Counted, boost::thread_safe_counter>
{
};
[[maybe_unused]] constexpr auto makeCounted = [](std::size_t) { return boost::intrusive_ptr<Counted>(new Counted); };
#endif

template <class Source>
std::vector<void*> s_inUse;

// Opens the source with `room` blocks and takes `inUse` of them; as many are freed between them, in no order. The first thread of a row
// does it for all: the others may use the blocks within the timed loop, at whose ends the threads wait for each other.
template <class Source>
void open(const State& state, std::size_t room, std::size_t inUse)
{
    std::vector<void*>& blocks = s_inUse<Source>;
    if (state.thread_index() == 0)
    {
        Source::open(room);
        blocks.resize(2 * inUse);
        std::generate(blocks.begin(), blocks.end(), Source::take);
        std::shuffle(blocks.begin(), blocks.end(), std::mt19937_64(20240229));
        std::for_each_n(blocks.rbegin(), inUse, Source::give);
        blocks.resize(inUse);
    }
}

template <class Source>
void close(const State& state)
{
    if (state.thread_index() == 0)
    {
        std::for_each(s_inUse<Source>.begin(), s_inUse<Source>.end(), Source::give);
        Source::close();
    }
}

// Again and again frees a quarter of the blocks in use, in no order, and allocates as many. Few of the operations split or join: holes of
// one block fill first.
template <class Source>
void exchange(State& state, std::size_t inUse)
{
    open<Source>(state, 2 * inUse, inUse);
    const std::size_t share = inUse / static_cast<std::size_t>(state.threads());
    const std::size_t begin = share * static_cast<std::size_t>(state.thread_index());
    const std::size_t batch = std::max<std::size_t>(share / 4, 1);
    std::size_t at = 0;
    while (state.KeepRunningBatch(static_cast<std::int64_t>(batch)))
    {
        void** const blocks = s_inUse<Source>.data() + begin + at;
        std::for_each_n(blocks, batch, Source::give);
        std::generate_n(blocks, batch, Source::take);
        at = at + 2 * batch <= share ? at + batch : 0;
    }
    close<Source>(state);
}

template <class Source>
void takeAndGive(State& state, std::size_t room)
{
    open<Source>(state, room, 0);
    for (auto _ : state)
    {
        void* block = Source::take();
        benchmark::DoNotOptimize(block);
        Source::give(block);
    }
    close<Source>(state);
}

[[maybe_unused]] void lockTwice(State& state, std::size_t)
{
    static General::Ortha::CMutex s_mutex;
    for (auto _ : state)
    {
        static_cast<void>(General::Ortha::CGuard(s_mutex));
        static_cast<void>(General::Ortha::CGuard(s_mutex));
    }
}

constexpr auto makePacket = [](std::size_t size) { return CPacket(size, 0); };
constexpr auto makeShared = [](std::size_t size) { return std::make_shared<std::vector<unsigned char>>(size); };
[[maybe_unused]] constexpr auto copyOf = [](const auto& handle) { return handle; };
[[maybe_unused]] constexpr auto rangeOf = [](const CPacket& packet) { return CPacket(packet, 20, packet.size() - 20, 0); };
[[maybe_unused]] constexpr auto sizeOf = [](const CPacket& packet) { return CPacket(packet.size(), 0); };

template <auto make>
void createCopyTwice(State& state, std::size_t size)
{
    for (auto _ : state)
    {
        auto first = make(size);
        auto second = first;
        auto third = second;
        benchmark::DoNotOptimize(third);
    }
}

[[maybe_unused]] void createInHalf(State& state, std::size_t size)
{
    open<OrthaPool>(state, 2000, 1000);
    createCopyTwice<makePacket>(state, size);
    close<OrthaPool>(state);
}

template <auto make, auto derive>
void deriveAndRelease(State& state, std::size_t size)
{
    auto handle = make(size);
    benchmark::DoNotOptimize(handle);
    for (auto _ : state)
    {
        auto derived = derive(handle);
        benchmark::DoNotOptimize(derived);
    }
}

// Rows for one thread and for two at once, each with blocks of its own from the same source.
void rows(const char* operation, std::initializer_list<std::size_t> numbers, const char* who, void (*function)(State&, std::size_t))
{
    for (const std::size_t number : numbers)
    {
        const auto run = [=](State& state) {
            const Bench::PlacedThread placed(Bench::Placement::apart, state.thread_index());
            if (placed.failed())
            {
                state.SkipWithError("cannot tie the threads to their processors");
            }
            function(state, number);
        };
        const std::string name = Bench::nameOf({operation, std::to_string(number), who});
        Bench::row(name, run);
        Bench::row(name, run)->Threads(2)->UseRealTime();
    }
}

#ifdef ORTHA_BENCH_SYSTEM_POLICY
void compare()
{
    CPacketManager::config(CPacketManager::policySystem, nullptr, nullptr);
    rows("memory/packet/system", {1024}, "ortha", createCopyTwice<makePacket>);
    rows("memory/packet/system", {1024}, "std", createCopyTwice<makeShared>);
    rows("memory/packet/copy", {1024}, "ortha", deriveAndRelease<makePacket, copyOf>);
    rows("memory/packet/copy", {1024}, "std", deriveAndRelease<makeShared, copyOf>);
#ifdef ORTHA_BENCH_HAS_BOOST
    rows("memory/packet/copy", {1024}, "boost-intrusive", deriveAndRelease<makeCounted, copyOf>);
#endif
    rows("memory/packet/range", {1024}, "ortha", deriveAndRelease<makePacket, rangeOf>);
    rows("memory/packet/range", {1024}, "whole-packet", deriveAndRelease<makePacket, sizeOf>);
}
#else
template <class Chunks, class Blocks>
void compareSource(const char* who, std::initializer_list<std::size_t> inUse)
{
    rows("memory/pool/half-in-use", inUse, who, exchange<Chunks>);
    rows("memory/pool/split-and-join", {2048, std::size_t{1} << orders}, who, takeAndGive<Chunks>);
    rows("memory/blocks/half-in-use", {1'000}, who, exchange<Blocks>);
    rows("memory/blocks/pair", {1}, who, takeAndGive<Blocks>);
}

void compare()
{
    CPacketManager::PoolParameter pool{chunkSize << orders, chunkSize, 8};
    CPacketManager::config(CPacketManager::policyPool, nullptr, &pool);
    const std::initializer_list<std::size_t> inUse = {10, 100, 1'000, 10'000, 100'000};
    compareSource<OrthaPool, OrthaMemPool>("ortha", inUse);
    compareSource<Allocator<s_standard, chunkSize>, Allocator<s_standard, blockSize>>(Bench::Native::allocator, {1'000});
    rows("memory/pool/lock-share", {2}, "ortha", lockTwice);
    rows("memory/packet/pool", {1024}, "ortha", createInHalf);
    rows("memory/packet/pool", {1024}, "ortha-empty-pool", createCopyTwice<makePacket>);
    rows("memory/packet/pool", {1024}, "std", createCopyTwice<makeShared>);
#ifdef ORTHA_BENCH_HAS_POCO
    using Poco::MemoryPool;
    compareSource<Object<MemoryPool, &MemoryPool::get, &MemoryPool::release, chunkSize>,
                  Object<MemoryPool, &MemoryPool::get, &MemoryPool::release, blockSize>>("poco", inUse);
#endif
#ifdef ORTHA_BENCH_HAS_BOOST
    compareSource<BoostPool<chunkSize>, BoostPool<blockSize>>("boost", {1'000});
#endif
#ifdef ORTHA_BENCH_HAS_MIMALLOC
    static const Functions s_mimalloc = load(ORTHA_BENCH_MIMALLOC, "mi_malloc", "mi_free");
    compareSource<Allocator<s_mimalloc, chunkSize>, Allocator<s_mimalloc, blockSize>>("mimalloc", {1'000});
#endif
#ifdef ORTHA_BENCH_HAS_TCMALLOC
    static const Functions s_tcmalloc = load(ORTHA_BENCH_TCMALLOC, "tc_malloc", "tc_free");
    compareSource<Allocator<s_tcmalloc, chunkSize>, Allocator<s_tcmalloc, blockSize>>("tcmalloc", {1'000});
#endif
}
#endif

}  // namespace

int main(int argc, char** argv)
{
    compare();
    return Bench::run(argc, argv);
}
