// Collects the texts that the log hands to its printer.
#pragma once

#include <mutex>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "ortha/ortha3/PrintLog.h"

namespace General::Ortha::Test {

/// Is the log printer during its life, which keeps the console silent. Any thread may log meanwhile.
class LogLines
{
public:
    LogLines() { setLogPrinter({&LogLines::onPrint, this}); }
    ~LogLines() { setLogPrinter({}); }

    /// The texts since the last call, one for each log call.
    std::vector<std::string> take()
    {
        std::lock_guard guard(m_mutex);
        return std::exchange(m_texts, {});
    }

    /// The same without headers and without the addresses of objects ("this:0x... "), joined.
    std::string bare()
    {
        std::string all;
        for (const std::string& line : take())
        {
            const std::string text = line.substr(line.find(']') + 1);
            all += text.rfind("this:", 0) == 0 ? text.substr(text.find(' ') + 1) : text;
        }
        return all;
    }

    /// The texts, joined.
    std::string text()
    {
        const std::vector<std::string> texts = take();
        return std::accumulate(texts.begin(), texts.end(), std::string());
    }

private:
    void onPrint(const char* text)
    {
        std::lock_guard guard(m_mutex);
        m_texts.emplace_back(text);
    }

    std::mutex m_mutex;
    std::vector<std::string> m_texts;
};

}  // namespace General::Ortha::Test
