#include "component/Registry.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>

#include "ortha/ortha3/Assert.h"
#include "ortha/ortha3/Mutex.h"

#include "Src/Component/UnknownInternal.h"
#include "Src/Ortha3/Log.h"
#include "Src/Platform/Module.h"

namespace General::Component {

using Ortha::CGuard;
using Ortha::CMutex;

namespace {

const char* textOf(const char* text)
{
    return text ? text : "";
}

// A shared instance, and what it was made for. The list holds no reference.
struct ComponentInstance
{
    ComponentInstance(IUnknown* object, const ServerInfo* info) : instance(object), hasServerInfo(info != nullptr)
    {
        if (info)
        {
            address = textOf(info->address);
            port = info->port;
            userName = textOf(info->userName);
            password = textOf(info->password);
            kind = info->kind;
        }
    }

    bool isFor(const ServerInfo* info) const
    {
        if (!info || !hasServerInfo)
        {
            return !info && !hasServerInfo;
        }
        return address == textOf(info->address) && port == info->port && userName == textOf(info->userName) &&
               password == textOf(info->password) && kind == info->kind;
    }

    IUnknown* instance;
    bool hasServerInfo;
    std::string address;
    int port = 0;
    std::string userName;
    std::string password;
    int kind = 0;
};

struct ComponentInfo
{
    ComponentCreator creator = nullptr;
    std::list<ComponentInstance> instances;
    void* module = nullptr;  // loaded for this class
};

struct TextHash
{
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};

// Entries are never taken out, so an entry and its name stay where they are.
using ComponentMap = std::unordered_map<std::string, ComponentInfo, TextHash, std::equal_to<>>;

struct Registry
{
    CMutex s_componentMutex;  // left around every call of a creator; held while a module is loaded
    ComponentMap s_componentMap ORTHA_GUARDED_BY(s_componentMutex);
};

Registry& registry()
{
    static Registry& registry = *new Registry;  // never destroyed: objects may be released while the process exits
    return registry;
}

ComponentMap::value_type& findOrInsert(Registry& own, const char* clsid) ORTHA_REQUIRES(own.s_componentMutex)
{
    const auto found = own.s_componentMap.find(std::string_view(clsid));
    return found != own.s_componentMap.end() ? *found : *own.s_componentMap.try_emplace(clsid).first;
}

// The creator from the module that is named after the class, loaded if need be.
ComponentCreator getDynamicCreator(const char* clsid, ComponentInfo& info)
{
    constexpr std::size_t nameSize = 32;  // longer names are cut
    if (!info.module)
    {
        char file[nameSize];
        std::snprintf(file, sizeof(file), "%s%s", clsid, Ortha::Platform::moduleSuffix);
        info.module = Ortha::Platform::loadModule(file);
    }
    if (!info.module)
    {
        return nullptr;
    }
    char name[nameSize];
    std::snprintf(name, sizeof(name), "create%sObject", clsid);
    void* const entry = Ortha::Platform::findSymbol(info.module, name);
    if (!entry)
    {
        ORTHA_LOG(Ortha::levelError, "getDynamicCreator get proc:%s failed!\n", name);
    }
    return reinterpret_cast<ComponentCreator>(entry);
}

}  // namespace

bool registerComponent(const char* clsid, ComponentCreator creator)
{
    Registry& own = registry();
    CGuard guard(own.s_componentMutex);
    const auto [entry, isNew] = own.s_componentMap.try_emplace(clsid);
    if (!isNew)
    {
        ORTHA_LOG(Ortha::levelWarn, "registerComponentCreator creator for cid:%s already exist!\n", clsid);
    }
    entry->second.creator = creator;
    return true;
}

namespace {

// A registered creator, or one that is loaded.
ComponentCreator creatorOf(const char* clsid, ComponentInfo& info)
{
    return info.creator ? info.creator : getDynamicCreator(clsid, info);
}

}  // namespace

IUnknown* getComponentInstance(const char* clsid, const ServerInfo* info)
{
    Registry& own = registry();
    ComponentMap::value_type* entry = nullptr;
    ComponentCreator creator = nullptr;
    {
        CGuard guard(own.s_componentMutex);
        entry = &findOrInsert(own, clsid);
        for (const ComponentInstance& shared : entry->second.instances)
        {
            if (shared.isFor(info))
            {
                shared.instance->addRef();
                return shared.instance;
            }
        }
        creator = creatorOf(clsid, entry->second);
    }
    IUnknown* const object = creator ? creator(info) : nullptr;
    if (object)
    {
        CGuard guard(own.s_componentMutex);
        entry->second.instances.emplace_back(object, info);
        UnknownInternal& internal = UnknownInternal::of(object);
        ++internal.records;
        internal.isInstance.store(true, std::memory_order_relaxed);
        internal.clsid.store(entry->first.c_str(), std::memory_order_relaxed);
    }
    return object;
}

IUnknown* createComponentObject(const char* clsid, const ServerInfo* info)
{
    Registry& own = registry();
    const char* name = nullptr;
    ComponentCreator creator = nullptr;
    {
        CGuard guard(own.s_componentMutex);
        ComponentMap::value_type& entry = findOrInsert(own, clsid);
        name = entry.first.c_str();
        creator = creatorOf(clsid, entry.second);
    }
    IUnknown* const object = creator ? creator(info) : nullptr;
    if (object)
    {
        UnknownInternal::of(object).clsid.store(name, std::memory_order_relaxed);
    }
    return object;
}

void lockInstances() ORTHA_NO_THREAD_SAFETY_ANALYSIS
{
    registry().s_componentMutex.enter();
}

void unlockInstances() ORTHA_NO_THREAD_SAFETY_ANALYSIS
{
    registry().s_componentMutex.leave();
}

bool destroyComponent(IUnknown* object, const char* clsid, bool isInstance) ORTHA_NO_THREAD_SAFETY_ANALYSIS
{
    if (isInstance)
    {
        ComponentMap& s_componentMap = registry().s_componentMap;
        const auto pi = s_componentMap.find(std::string_view(clsid));
        ORTHA_ASSERT(pi != s_componentMap.end());
        const auto isObject = [object](const ComponentInstance& shared) { return shared.instance == object; };
        std::list<ComponentInstance>& instances = (*pi).second.instances;
        const auto pj = std::find_if(instances.begin(), instances.end(), isObject);
        ORTHA_ASSERT(pj != (*pi).second.instances.end());
        instances.erase(pj);
        if (UnknownInternal::of(object).records > 1)  // a creator has given one object for several servers, or classes
        {
            for (auto& entry : s_componentMap)
            {
                entry.second.instances.remove_if(isObject);
            }
        }
        unlockInstances();
    }
    object->destroy();
    return true;
}

}  // namespace General::Component
