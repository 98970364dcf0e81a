// The library's function objects beside the standard ones. Rows are named function/operation/target/who.
#include <functional>

#include "ortha/ortha3/Function.h"

#include "support.h"

namespace {

using General::Ortha::TFunction1;

// The targets do next to nothing: a row times the way to them.
class Target
{
public:
    [[gnu::noinline]] void take(int value) { benchmark::DoNotOptimize(value += m_addend); }

private:
    int m_addend = 1;
};

[[gnu::noinline]] void take(int value)
{
    benchmark::DoNotOptimize(value);
}

// The compiler must not see what the object holds: no caller of a callback does.
template <class Function>
void call(benchmark::State& state, Function function)
{
    int value = 3;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(function);
        benchmark::DoNotOptimize(value);
        function(value);
    }
    benchmark::ClobberMemory();
}

template <class Make>
void make(benchmark::State& state, Make makeFor)
{
    Target target;
    Target* object = &target;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(object);
        auto function = makeFor(object);
        benchmark::DoNotOptimize(function);
    }
}

template <class Function>
void copy(benchmark::State& state, const Function& source)
{
    Function function = source;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(function);
        Function another(function);
        benchmark::DoNotOptimize(another);
    }
}

TFunction1<void, int> oursFor(Target* object)
{
    return TFunction1<void, int>(&Target::take, object);
}

std::function<void(int)> boundFor(Target* object)
{
    return std::bind(&Target::take, object, std::placeholders::_1);
}

std::function<void(int)> lambdaFor(Target* object)
{
    return [object](int value) { object->take(value); };
}

}  // namespace

int main(int argc, char** argv)
{
    static Target s_target;
    Bench::row("function/call/member/ortha", [](benchmark::State& state) { call(state, oursFor(&s_target)); });
    Bench::row("function/call/member/std", [](benchmark::State& state) { call(state, lambdaFor(&s_target)); });
    Bench::row("function/call/member/std-bind", [](benchmark::State& state) { call(state, boundFor(&s_target)); });
    Bench::row("function/call/free/ortha", [](benchmark::State& state) { call(state, TFunction1<void, int>(take)); });
    Bench::row("function/call/free/std", [](benchmark::State& state) { call(state, std::function<void(int)>(take)); });

    // The same operation of ours beside the two ways to write it with the standard one: a bind needs the heap, a lambda does not.
    Bench::row("function/make/bind/ortha", [](benchmark::State& state) { make(state, [](Target* object) { return oursFor(object); }); });
    Bench::row("function/make/bind/std", [](benchmark::State& state) { make(state, [](Target* object) { return boundFor(object); }); });
    Bench::row("function/make/lambda/ortha", [](benchmark::State& state) { make(state, [](Target* object) { return oursFor(object); }); });
    Bench::row("function/make/lambda/std", [](benchmark::State& state) { make(state, [](Target* object) { return lambdaFor(object); }); });
    Bench::row("function/copy/bind/ortha", [](benchmark::State& state) { copy(state, oursFor(&s_target)); });
    Bench::row("function/copy/bind/std", [](benchmark::State& state) { copy(state, boundFor(&s_target)); });
    return Bench::run(argc, argv);
}
