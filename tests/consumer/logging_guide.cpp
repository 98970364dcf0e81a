#include <sstream>
#include <string>
#include <vector>

#include "ortha/ortha3/PrintLog.h"

using namespace General::Ortha;

// A line of an operator's console: a log command, as it is typed.
void onConsoleLine(const std::string& line)
{
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
    {
        words.push_back(word);
    }
    std::vector<char*> values;
    for (std::string& word : words)
    {
        values.push_back(word.data());
    }
    setLogFilter(static_cast<int>(values.size()), values.data());
}

int main()
{
    onConsoleLine("-logpath doors");                  // doors_<date>_0, doors_<date>_1 and so on, in the current directory
    onConsoleLine("-logsavesetting bysize 1024 10");  // a new one at 1 MiB; ten are kept
    onConsoleLine("-logsavesetting byday on 10");     // and at midnight
    onConsoleLine("-logmodulestatistics on");
    logLibName(4, "door", "door %d is open\n", 3);
    logLibName(4, "lift", "lift %d goes up\n", 1);
    onConsoleLine("-logmodule lift off");
    logLibName(4, "lift", "nobody sees this\n");
    for (const auto& [module, info] : getLogStatistics())
    {
        logLibName(4, "report", "%s: %llu bytes\n", module.c_str(), static_cast<unsigned long long>(info.logSize));
    }
}
