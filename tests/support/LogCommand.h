// Runs log commands.
#pragma once

#include <string>
#include <vector>

#include "ortha/ortha3/PrintLog.h"

namespace General::Ortha::Test {

/// One command: its word and its values, `command({"-logpath", path})`.
inline void command(std::vector<std::string> words)
{
    std::vector<char*> argv;
    for (std::string& word : words)
    {
        argv.push_back(word.data());
    }
    setLogFilter(static_cast<int>(argv.size()), argv.data());
}

/// The same of a line with single blanks between the words.
inline void commandLine(const std::string& line)
{
    std::vector<std::string> words{""};
    for (const char c : line)
    {
        c == ' ' ? words.emplace_back() : words.back() += c;
    }
    command(words);
}

}  // namespace General::Ortha::Test
