// The library's strings beside std::string. Rows are named string/operation/length/who.
#include <benchmark/benchmark.h>

#include <string>

#include "ortha/ortha3/FlexString.h"

#include "support.h"

namespace {

template <typename String>
void construct(benchmark::State& state, std::size_t length)
{
    const std::string source(length, 'x');
    const char* text = source.data();
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(text);
        benchmark::DoNotOptimize(length);
        String s(text, length);
        benchmark::DoNotOptimize(s);
    }
}

template <typename String>
void copy(benchmark::State& state, std::size_t length)
{
    String source(length, 'x');
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(source);
        String s(source);
        benchmark::DoNotOptimize(s);
    }
}

template <typename String>
void move(benchmark::State& state, std::size_t length)
{
    String here(length, 'x');
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(here);
        String there(std::move(here));
        benchmark::DoNotOptimize(there);
        here = std::move(there);
    }
}

template <typename String>
void assign(benchmark::State& state, std::size_t length)
{
    const std::string source(length, 'x');
    const char* text = source.data();
    String s;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(text);
        benchmark::DoNotOptimize(length);
        s.assign(text, length);
        benchmark::DoNotOptimize(s);
    }
}

// A key put together from two parts, as names and paths are.
template <typename String>
void concat(benchmark::State& state, std::size_t length)
{
    const String head(length - length / 2, 'x');
    const std::string tail(length / 2, 'y');
    const char* text = tail.c_str();
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(text);
        String s = head + text;
        benchmark::DoNotOptimize(s);
    }
}

template <typename String>
void equal(benchmark::State& state, std::size_t length)
{
    String a(length, 'x'), b(length, 'x');
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(a);
        benchmark::DoNotOptimize(b);
        bool same = a == b;
        benchmark::DoNotOptimize(same);
    }
}

template <typename String>
void compareAllOperations(const char* who)
{
    const std::pair<const char*, void (*)(benchmark::State&, std::size_t)> operations[] = {
        {"construct", construct<String>}, {"copy", copy<String>},     {"move", move<String>},
        {"assign", assign<String>},       {"concat", concat<String>}, {"equal", equal<String>}};
    for (const auto& [name, run] : operations)
    {
        for (std::size_t length : {10u, 15u, 16u, 24u, 31u, 64u})
        {
            const std::string row = std::string("string/") + name + "/" + std::to_string(length) + "/" + who;
            benchmark::RegisterBenchmark(row.c_str(), run, length);
        }
    }
}

}  // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    const Bench::SleepingThread sleeping;
    compareAllOperations<General::Ortha::string>("ortha");
    compareAllOperations<std::string>("std");
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
