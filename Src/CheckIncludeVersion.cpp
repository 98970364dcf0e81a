#include "ortha/CheckIncludeVersion.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "ortha/ortha3/Assert.h"
#include "utils/String.h"

#include "Src/Ortha3/Log.h"
#include "Src/VersionList.h"

using namespace General::Ortha;

bool includeVerbose = true;

namespace {

using LastVersions = std::map<std::string, int>;

const IncludeNode s_nodes[] = {ORTHA_INCLUDE_NODES};
const CCheckIncludeVersion s_check("Ortha", s_nodes, std::size(s_nodes));

bool isNumber(const char* version)
{
    return version && *version != 0 && version[std::strspn(version, "0123456789")] == 0;
}

const char* textOf(const char* text)
{
    return text ? text : "";
}

template <class Function>
void forEachNode(const IncludeEntry& report, Function function)
{
    std::for_each(report.nodes, report.nodes + report.count, function);
}

int lastVersionOf(const LastVersions& lastVersion, const IncludeNode& include)
{
    const auto node = lastVersion.find(textOf(include.url));
    ORTHA_ASSERT(node != lastVersion.end());
    return node->second;
}

// The lines that tell which revisions a library should have been built against, as far as there is room for them.
std::string suggestion(const IncludeEntry& report, const LastVersions& lastVersion)
{
    std::string text;
    forEachNode(report, [&](const IncludeNode& node) {
        const char* const url = textOf(node.url);
        const char* const slash = std::strrchr(url, '/');
        const char* const place = std::strstr(url, "http:");
        char line[1024];
        General::Utils::snprintf_x(line, sizeof(line), "%s -r%d %s\n", slash ? slash + 1 : "null", lastVersionOf(lastVersion, node),
                                   place ? place : "null");
        text += line;
    });
    return text.substr(0, 12799);
}

}  // namespace

void touchIncludeVersionCheck() {}

CCheckIncludeVersionInter::CCheckIncludeVersionInter() : m_matchFlag(true), m_selfFlag(true) {}

CCheckIncludeVersionInter::~CCheckIncludeVersionInter() = default;

CCheckIncludeVersionInter* CCheckIncludeVersionInter::instance()
{
    static CCheckIncludeVersionInter* const s_instance = new CCheckIncludeVersionInter;
    return s_instance;
}

bool CCheckIncludeVersionInter::check(const char* libName, const IncludeNode* nodes, int count)
{
    CGuard guard(m_mutex);
    const void* const self = this;
    const IncludeEntry report{libName, nodes, count};
    ORTHA_LOG(levelInfo, "check include version:%s\n", libName);
    std::vector<const IncludeNode*> versionError;
    forEachNode(report, [&versionError](const IncludeNode& node) {
        if (includeVerbose)
        {
            ORTHA_LOG(levelInfo, "%s %s\n", textOf(node.url), textOf(node.version));
        }
        if (!isNumber(node.version))
        {
            versionError.push_back(&node);
        }
    });

    bool ok = versionError.empty();
    if (ok)
    {
        ok = std::all_of(m_libraries.begin(), m_libraries.end(), [&](const IncludeEntry& earlier) { return matches(report, earlier); });
    }
    else
    {
        m_selfFlag = false;
        if (includeVerbose)
        {
            ORTHA_LOG(levelError, "this:%p %s version error\n", self, libName);
            for (const IncludeNode* node : versionError)
            {
                ORTHA_LOG(levelError, "this:%p %s %s\n", self, textOf(node->url), textOf(node->version));
            }
        }
    }
    m_libraries.push_back(report);
    m_matchFlag = m_matchFlag && ok;
    return ok;
}

bool CCheckIncludeVersionInter::matches(const IncludeEntry& a, const IncludeEntry& b) const
{
    const void* const self = this;
    std::vector<std::pair<const IncludeNode*, const IncludeNode*>> errorList;
    forEachNode(a, [&](const IncludeNode& i) {
        forEachNode(b, [&](const IncludeNode& j) {
            if (std::strcmp(textOf(i.url), textOf(j.url)) == 0 && std::strcmp(textOf(i.version), textOf(j.version)) != 0)
            {
                errorList.emplace_back(&i, &j);
            }
        });
    });
    if (!errorList.empty() && includeVerbose)
    {
        ORTHA_LOG(levelError, "this:%p check include version failed\n", self);
        for (const auto& [i, j] : errorList)
        {
            ORTHA_LOG(levelError, "this:%p %s %s %s\n", self, a.libName, textOf(i->url), textOf(i->version));
            ORTHA_LOG(levelError, "this:%p %s %s %s\n", self, b.libName, textOf(j->url), textOf(j->version));
        }
    }
    return errorList.empty();
}

void CCheckIncludeVersionInter::checkResult() const
{
    const void* const self = this;
    if (m_matchFlag)
    {
        ORTHA_LOG(levelInfo, "CCheckIncludeVersionInter::checkResult successful\n");
        return;
    }
    ORTHA_LOG(levelError, "this:%p CCheckIncludeVersionInter::checkResult error:%s\n", self, m_selfFlag ? "match error" : "self error");
    if (m_selfFlag)
    {
        reportLastVersions();
    }
    else
    {
        reportInvalidVersions();
    }
    ORTHA_LOG(levelError, "this:%p ----------------check include report end---------------\n", self);
    ORTHA_ASSERT(m_matchFlag);
}

void CCheckIncludeVersionInter::reportInvalidVersions() const
{
    ORTHA_LOG(levelError, "this:%p ----------------check include report start---------------\n", static_cast<const void*>(this));
    for (const IncludeEntry& report : m_libraries)
    {
        forEachNode(report, [&report](const IncludeNode& node) {
            if (!isNumber(node.version))
            {
                ORTHA_LOG(levelError, "libname:%s, url:%s version:%s\n", report.libName, textOf(node.url), textOf(node.version));
            }
        });
    }
}

void CCheckIncludeVersionInter::reportLastVersions() const
{
    const void* const self = this;
    LastVersions lastVersion;
    for (const IncludeEntry& report : m_libraries)
    {
        forEachNode(report, [&lastVersion](const IncludeNode& node) {
            int& last = lastVersion.try_emplace(textOf(node.url), 0).first->second;
            last = std::max(last, std::atoi(node.version));
        });
    }
    if (includeVerbose)
    {
        ORTHA_LOG(levelInfo, "--------include version all start---------\n");
        for (const auto& [url, version] : lastVersion)
        {
            ORTHA_LOG(levelInfo, "%s %d\n", url.c_str(), version);
        }
        ORTHA_LOG(levelInfo, "--------include version all end---------\n");
    }
    ORTHA_LOG(levelError, "this:%p ----------------check include report start---------------\n", self);
    for (const IncludeEntry& report : m_libraries)
    {
        const bool isLast = std::all_of(report.nodes, report.nodes + report.count, [&lastVersion](const IncludeNode& node) {
            return std::atoi(node.version) == lastVersionOf(lastVersion, node);
        });
        if (isLast)
        {
            ORTHA_LOG(levelError, "this:%p [%s], include is ok\n", self, report.libName);
        }
        else
        {
            ORTHA_LOG(levelError, "this:%p [%s], include version suggest:\n", self, report.libName);
            ORTHA_LOG(levelError, "this:%p \n%s", self, suggestion(report, lastVersion).c_str());
        }
        ORTHA_LOG(levelError, "this:%p ------------------------------------\n", self);
    }
}
