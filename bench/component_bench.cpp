// Component objects beside others: counts of references, objects that are made by name, shared instances, clients, and pointers to
// components. Rows are named component/operation/number/who.
#include <algorithm>
#include <atomic>
#include <functional>
#include <memory>
#include <unordered_map>

#include "component/Component.h"

#ifdef ORTHA_BENCH_HAS_BOOST
#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>
#endif
#ifdef ORTHA_BENCH_HAS_POCO
#include <Poco/AutoPtr.h>
#include <Poco/DynamicFactory.h>
#include <Poco/RefCountedObject.h>
#endif

#include "support.h"

// What one would write instead. Not in the namespace below, where the compiler would see that no class overrides these.
struct ByHand
{
    virtual ~ByHand() = default;
    [[gnu::noinline]] virtual int addRef() { return ++references; }
    [[gnu::noinline]] virtual int release()
    {
        const int left = --references;
        return left == 0 ? delete this, 0 : left;
    }
    std::atomic<int> references{1};
};

namespace {

using namespace General::Component;
using benchmark::State;
using Helper = Detail::CComponentHelper;

constexpr std::size_t classCount = 1000;
constexpr std::make_index_sequence<classCount> classes;
std::vector<std::string> names;

struct Ours : IUnknown
{
    void destroy() override { delete this; }
    void reservedOperation() override {}
};

// There are a thousand classes over each base. They know their number, by which a row sees that it has got the right one.
template <class Base>
struct Part : Base
{
    virtual std::size_t number() const = 0;
};

template <class Base, std::size_t own>
struct Numbered : Part<Base>
{
    std::size_t number() const override { return own; }
    static Part<Base>* make() { return new Numbered; }
    static IUnknown* makeComponent(const ServerInfo*) { return Helper::makeComponentObject(make()); }
};

// Calls add(name, identity of the class) for each class over a base.
template <class Base, class Add, std::size_t... numbers>
void forEachClass(std::index_sequence<numbers...>, Add add)
{
    static_cast<void>(std::initializer_list<int>{(add(names[numbers], std::type_identity<Numbered<Base, numbers>>()), 0)...});
}

// Times `step` with numbers below `count`, drawn at random; it tells whether it found what it should.
template <class Step>
void drawn(State& state, std::size_t count, Step step)
{
    Bench::Draw<std::size_t> draw(0, count - 1);
    bool right = true;
    for (auto _ : state)
    {
        right = step(draw()) && right;
    }
    return right ? void() : state.SkipWithError("wrong result");
}

template <class Object, class Add, class Release>
void reference(State& state, Object* object, Add add, Release release)
{
    benchmark::DoNotOptimize(object);
    drawn(state, 1, [&](std::size_t) { return add(object) == 2 && release(object) == 1; });
    release(object);
}

template <class Handle, class CountOf>
[[maybe_unused]] void copyHandle(State& state, const Handle& handle, CountOf countOf)
{
    drawn(state, 1, [&](std::size_t) { return benchmark::DoNotOptimize(Handle(handle).get()), true; });
    return countOf(*Handle(handle)) == 2 ? void() : state.SkipWithError("wrong count");
}

template <class Create, class End>
void create(State& state, Create create, End end)
{
    drawn(state, classCount, [&](std::size_t number) {
        auto* const object = create(names[number]);
        const bool right = object->number() == number;
        end(object);
        return right;
    });
}

Part<Ours>* createOurs(const std::string& name)
{
    return static_cast<Part<Ours>*>(createComponentObject(name.c_str(), nullptr));
}

void createStd(State& state)
{
    std::mutex mutex;
    std::unordered_map<std::string, std::function<Part<ByHand>*()>> map;
    forEachClass<ByHand>(classes, [&](const std::string& name, auto type) { map[name] = decltype(type)::type::make; });
    const auto make = [&](const std::string& name) {
        const std::lock_guard<std::mutex> guard(mutex);
        return map.find(name)->second();
    };
    create(state, make, std::mem_fn(&ByHand::release));
}

// All instances have a holder already.
void instanceOurs(State& state)
{
    std::vector<IUnknown*> held;
    const auto get = [](const std::string& name) { return getComponentInstance(name.c_str(), nullptr); };
    std::transform(names.begin(), names.end(), std::back_inserter(held), get);
    drawn(state, classCount, [&](std::size_t number) {
        IUnknown* const found = get(names[number]);
        return found == held[number] && Helper::release(found) == 1;
    });
    std::for_each(held.begin(), held.end(), Helper::release);
}

// `use` takes a reference, or does not.
template <class Use>
void instanceStd(State& state, Use use)
{
    std::mutex mutex;
    std::unordered_map<std::string, std::shared_ptr<std::size_t>> map;
    const auto add = [&](const std::string& name) { map.try_emplace(name, std::make_shared<std::size_t>(map.size())); };
    std::for_each(names.begin(), names.end(), add);
    const auto get = [&](const std::string& name) {
        const std::lock_guard<std::mutex> guard(mutex);
        return use(map.find(name)->second);
    };
    drawn(state, classCount, [&](std::size_t number) { return *get(names[number]) == number; });
}

struct Client : IClient
{
    void destroy() override { delete this; }
    void reservedOperation() override {}
    bool updateBroken() override { return false; }
    bool login() override { return true; }
    bool logout() override { return true; }
    bool getUserID(int& userId) override { return userId = 5, true; }
};

// Of the clients, and of a component that is reached through them.
struct Factory : IClient::IFactory
{
    const char* clsid() override { return "Tcp"; }
    IClient* create(const ServerInfo&) override { return new Client; }
} factory;

// Each client has a holder already.
void findClient(State& state, std::size_t count)
{
    std::vector<ServerInfo> servers(count);
    std::vector<IClient*> clients(count);
    for (std::size_t number = 0; number < count; ++number)
    {
        servers[number].address = "192.168.100.7";
        servers[number].port = static_cast<int>(number);
        servers[number].userName = "operator";
        servers[number].password = "correct horse";
        Helper::getComponentFactory("Sensor", "Tcp", servers[number], clients[number]);
    }
    drawn(state, count, [&](std::size_t number) {
        IClient* client = nullptr;
        return Helper::getComponentFactory("Sensor", "Tcp", servers[number], client) == &factory && client == clients[number] &&
               Helper::release(client) == 1;
    });
    std::for_each(clients.begin(), clients.end(), Helper::release);
}

template <class Pointer>
void dereference(State& state, const Pointer& pointer)
{
    benchmark::DoNotOptimize(&pointer);
    std::size_t sum = 0;
    for (auto _ : state)
    {
        sum += pointer->number();
    }
    return sum == 7 * std::size_t(state.iterations()) ? void() : state.SkipWithError("wrong result");
}

#ifdef ORTHA_BENCH_HAS_POCO
using PocoBase = Poco::RefCountedObject;

// The factory has a lock of its own; another goes around it.
template <class Mutex>
void createPoco(State& state)
{
    Mutex mutex;
    Poco::DynamicFactory<Part<PocoBase>> all;
    forEachClass<PocoBase>(classes, [&](const std::string& name, auto type) { all.registerClass<typename decltype(type)::type>(name); });
    const auto make = [&](const std::string& name) { return std::lock_guard<Mutex>(mutex), all.createInstance(name); };
    create(state, make, std::default_delete<Part<PocoBase>>());
}
#endif

#ifdef ORTHA_BENCH_HAS_BOOST
struct Boosted : boost::intrusive_ref_counter<Boosted, boost::thread_safe_counter>
{
};
#endif

}  // namespace

int main(int argc, char** argv)
{
    std::generate_n(std::back_inserter(names), classCount, [] { return "Tcp.Sensor" + std::to_string(names.size()); });
    forEachClass<Ours>(classes, [](auto& name, auto type) { registerComponent(name.c_str(), decltype(type)::type::makeComponent); });
    factory.registerFactory(IClient::IFactory::iid());
    factory.registerFactory("Sensor");
    const auto row = [](const char* name, auto run) { Bench::row(std::string("component/") + name, run); };
    row("reference/ortha", [](State& state) { reference(state, createOurs(names[0]), Helper::addRef, Helper::release); });
    row("reference/raw", [](State& state) { reference(state, new ByHand, std::mem_fn(&ByHand::addRef), std::mem_fn(&ByHand::release)); });
    row("create/1000/ortha", [](State& state) { create(state, createOurs, Helper::release); });
    row("create/1000/std", createStd);
    row("instance/1000/ortha", instanceOurs);
    row("instance/1000/std", [](State& state) { instanceStd(state, [](const auto& value) { return value; }); });
    row("instance/1000/std-look-up", [](State& state) { instanceStd(state, [](const auto& value) { return value.get(); }); });
    row("client/10/ortha", [](State& state) { findClient(state, 10); });
    row("client/100/ortha", [](State& state) { findClient(state, 100); });
    row("client/1000/ortha", [](State& state) { findClient(state, 1000); });
    row("dereference/ortha", [](State& state) { dereference(state, TComPtr(createOurs(names[7]), nullptr)); });
    row("dereference/ortha-client", [](State& state) { dereference(state, TComPtr(createOurs(names[7]), new Client)); });
    row("dereference/raw", [](State& state) { dereference(state, TComPtr(createOurs(names[7]), nullptr).get()); });
#ifdef ORTHA_BENCH_HAS_POCO
    row("reference/poco", [](State& state) { copyHandle(state, Poco::AutoPtr(new PocoBase), std::mem_fn(&PocoBase::referenceCount)); });
    row("create/1000/poco", createPoco<Poco::NullMutex>);
    row("create/1000/poco-and-mutex", createPoco<std::mutex>);
#endif
#ifdef ORTHA_BENCH_HAS_BOOST
    row("reference/boost", [](State& state) { copyHandle(state, boost::intrusive_ptr(new Boosted), std::mem_fn(&Boosted::use_count)); });
#endif
    return Bench::run(argc, argv);
}
