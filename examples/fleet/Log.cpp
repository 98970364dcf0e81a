#include "Log.h"

#include <ortha/ortha3/File.h>

#include <iomanip>
#include <sstream>
#include <stdexcept>
#include <vector>

using General::Ortha::CFile;

namespace Fleet {

namespace {

void command(std::vector<std::string> words)
{
    std::vector<char*> values;
    for (std::string& word : words)
    {
        values.push_back(word.data());
    }
    General::Ortha::setLogFilter(static_cast<int>(values.size()), values.data());
}

}  // namespace

bool runLogCommand(const std::string& text)
{
    std::istringstream stream(text);
    std::vector<std::string> words;
    for (std::string word; stream >> std::quoted(word);)
    {
        words.push_back(word);
    }
    if (words.empty() || words[0].rfind("-log", 0) != 0)
    {
        return false;
    }
    command(std::move(words));
    return true;
}

void saveLog(const std::string& stem, unsigned int kilobytes, unsigned int count)
{
    const std::size_t separator = stem.rfind('/');
    const std::string directory = separator == std::string::npos ? "." : stem.substr(0, separator + 1);
    if (!CFile::access(directory.c_str(), 0) && !CFile::makeDirectoryRecursively(directory.c_str()))
    {
        throw std::runtime_error("the log's directory '" + directory + "' cannot be made");
    }
    const std::string files = std::to_string(count);
    command({"-logpath", stem});
    command({"-logsavesetting", "bysize", std::to_string(kilobytes), files});
    command({"-logsavesetting", "byday", "on", files});
}

}  // namespace Fleet
