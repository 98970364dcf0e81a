// IUnknown, the counts of objects, and making.
#include <cstring>
#include <memory>
#include <typeinfo>
#include <utility>

#include "component/ComponentHelper.h"
#include "component/Registry.h"
#include "ortha/ortha3/Assert.h"
#include "ortha/ortha3/Error.h"
#include "ortha/ortha3/Mutex.h"

#include "Src/Component/ClientFactory.h"
#include "Src/Component/UnknownInternal.h"

namespace General::Component {

constinit ClassCount unmadeCount{""};

using Ortha::CGuard;
using Ortha::CMutex;

namespace {

// The classes by the name of their type, in chains by its address. An entry is added and never taken out, so that making an object takes no
// lock. One class has several entries if several modules have its type, all with one count.
struct ClassEntry
{
    const char* typeName;  // whose address is the key; the text proves it, for a module can go and another take its place
    std::unique_ptr<char[]> text;
    ClassCount* count;
    ClassEntry* next;
};

constexpr int chainBits = 10;
using ClassChain = std::atomic<ClassEntry*>;
ClassChain s_componentCounts[1 << chainBits];

CMutex& componentCountMutex()
{
    static CMutex& mutex = *new CMutex;  // never destroyed: objects may be made while the process exits
    return mutex;
}

ClassChain& chainOf(const char* typeName)
{
    constexpr std::uint64_t golden = 0x9E3779B97F4A7C15;  // spreads addresses that are aligned
    return s_componentCounts[reinterpret_cast<std::uintptr_t>(typeName) * golden >> (64 - chainBits)];
}

ClassEntry* findClass(const ClassChain& chain, const char* typeName)
{
    ClassEntry* at = chain.load(std::memory_order_acquire);
    while (at && (at->typeName != typeName || std::strcmp(at->text.get(), typeName) != 0))
    {
        at = at->next;
    }
    return at;
}

template <class Visit>
void forEachClass(Visit visit)
{
    for (const ClassChain& chain : s_componentCounts)
    {
        for (const ClassEntry* at = chain.load(std::memory_order_acquire); at; at = at->next)
        {
            visit(*at);
        }
    }
}

ClassCount& addClass(ClassChain& chain, const char* typeName)
{
    CGuard guard(componentCountMutex());
    if (const ClassEntry* const meanwhile = findClass(chain, typeName))
    {
        return *meanwhile->count;
    }
    ClassCount* count = nullptr;
    forEachClass([&](const ClassEntry& entry) {
        if (std::strcmp(entry.count->name, typeName) == 0)
        {
            count = entry.count;
        }
    });
    const std::size_t size = std::strlen(typeName) + 1;
    auto entry = std::make_unique<ClassEntry>();
    entry->typeName = typeName;
    entry->text = std::make_unique<char[]>(size);
    std::memcpy(entry->text.get(), typeName, size);
    entry->count = count ? count : new ClassCount{entry->text.get()};
    entry->next = chain.load(std::memory_order_relaxed);
    chain.store(entry.get(), std::memory_order_release);
    return *entry.release()->count;
}

void count(ClassCount& of, int change)
{
    of.objects.fetch_add(change, std::memory_order_relaxed);
}

// Names the class of an object, once.
void setClassName(IUnknown* object)
{
    std::atomic<ClassCount*>& className = UnknownInternal::of(object).className;
    if (className.load(std::memory_order_relaxed) != &unmadeCount)
    {
        return;
    }
    const char* const typeName = typeid(*object).name();
    ClassChain& chain = chainOf(typeName);
    const ClassEntry* const known = findClass(chain, typeName);
    ClassCount& of = known ? *known->count : addClass(chain, typeName);
    ClassCount* unmade = &unmadeCount;
    if (className.compare_exchange_strong(unmade, &of, std::memory_order_relaxed))
    {
        count(of, 1);
        count(unmadeCount, -1);
    }
}

int addReference(UnknownInternal& internal)
{
    return static_cast<int>(internal.refCount.fetch_add(1, std::memory_order_relaxed) + 1);
}

void dropHolder(UnknownInternal* internal)
{
    if (internal && internal->holders.fetch_sub(1, std::memory_order_acq_rel) == 1)
    {
        count(*internal->className.load(std::memory_order_relaxed), -1);
        delete internal;
    }
}

}  // namespace

IUnknown::IUnknown() : m_internal(new UnknownInternal)
{
    count(unmadeCount, 1);
}

IUnknown::~IUnknown()
{
    dropHolder(std::exchange(m_internal, nullptr));
}

IUnknown::IUnknown(const IUnknown& other) : m_internal(other.m_internal)
{
    m_internal->holders.fetch_add(1, std::memory_order_relaxed);
}

IUnknown& IUnknown::operator=(const IUnknown& other)
{
    other.m_internal->holders.fetch_add(1, std::memory_order_relaxed);
    dropHolder(std::exchange(m_internal, other.m_internal));
    return *this;
}

int IUnknown::addRef()
{
    markMade(this);
    return addReference(*m_internal);
}

int IUnknown::release()
{
    UnknownInternal& internal = *m_internal;
    Detail::CObjectTable* const table = internal.objectTable.load(std::memory_order_relaxed);
    const bool isInstance = internal.isInstance.load(std::memory_order_relaxed);
    if (table || isInstance)
    {
        if (const int left = decreaseUnlessLast(this))
        {
            return left;
        }
    }
    // What finds the object for others, the table or the registry, must see it alive or not at all.
    if (table)
    {
        table->lock();
    }
    if (isInstance)
    {
        lockInstances();
    }
    const auto left = static_cast<int>(decreaseRefCount(this));
    if (left == 0 && table)
    {
        table->erase(this);
    }
    if (table)
    {
        table->unlock();
    }
    if (left != 0)
    {
        if (isInstance)
        {
            unlockInstances();
        }
        return left;
    }
    if (const char* const clsid = internal.clsid.load(std::memory_order_relaxed))
    {
        destroyComponent(this, clsid, isInstance);
    }
    else
    {
        destroy();
    }
    return 0;
}

int decreaseRefCount(IUnknown* object)
{
    ORTHA_ASSERT(object);
    return static_cast<int>(UnknownInternal::of(object).refCount.fetch_sub(1, std::memory_order_acq_rel) - 1);
}

int decreaseUnlessLast(IUnknown* object)
{
    std::atomic<std::int64_t>& refCount = UnknownInternal::of(object).refCount;
    std::int64_t count = refCount.load(std::memory_order_relaxed);
    while (count > 1)
    {
        if (refCount.compare_exchange_weak(count, count - 1, std::memory_order_acq_rel, std::memory_order_relaxed))
        {
            return static_cast<int>(count - 1);
        }
    }
    return 0;
}

int getRefCount(IUnknown* object)
{
    return static_cast<int>(UnknownInternal::of(object).refCount.load(std::memory_order_acquire));
}

void setObjectTable(IUnknown* object, Detail::CObjectTable* table)
{
    ORTHA_ASSERT(object);
    UnknownInternal::of(object).objectTable.store(table, std::memory_order_relaxed);
}

bool markMade(IUnknown* object)
{
    std::atomic<std::int32_t>& made = UnknownInternal::of(object).made;
    return made.load(std::memory_order_relaxed) != 0 || made.exchange(1, std::memory_order_relaxed) != 0;
}

void makeInstanceForTable(IUnknown* object)
{
    ORTHA_ASSERT(object);
    if (markMade(object))
    {
        addReference(UnknownInternal::of(object));
    }
}

bool getComponentCountInfo(std::map<Ortha::string, int>& info)
{
    info.clear();
    info[unmadeCount.name] = unmadeCount.objects.load(std::memory_order_relaxed);
    forEachClass([&](const ClassEntry& entry) { info[entry.count->name] = entry.count->objects.load(std::memory_order_relaxed); });
    return true;
}

namespace Detail {

IUnknown* CComponentHelper::makeComponentInstance(IUnknown* object)
{
    if (!object)
    {
        Ortha::setLastError(0x1003000e);
        return nullptr;
    }
    setClassName(object);
    UnknownInternal& internal = UnknownInternal::of(object);
    if (!internal.objectTable.load(std::memory_order_relaxed) && markMade(object))
    {
        addReference(internal);
    }
    return object;
}

IUnknown* CComponentHelper::makeComponentObject(IUnknown* object)
{
    if (!object)
    {
        Ortha::setLastError(0x1003000d);
        return nullptr;
    }
    setClassName(object);
    if (!UnknownInternal::of(object).objectTable.load(std::memory_order_relaxed))
    {
        markMade(object);
    }
    return object;
}

int CComponentHelper::addRef(IUnknown* object)
{
    return object ? object->addRef() : 0;
}

int CComponentHelper::release(IUnknown* object)
{
    if (!object)
    {
        return 0;
    }
    return UnknownInternal::of(object).isClient ? ClientFactory::releaseClientObject(static_cast<IClient*>(object)) : object->release();
}

}  // namespace Detail

}  // namespace General::Component
