#include "Src/Platform/ChildProcess.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <string>
#include <vector>

namespace General::Ortha::Platform {

namespace {

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// Nothing if a quote is not closed, or a backslash is the last character.
std::optional<std::vector<std::string>> splitCommandLine(const char* line)
{
    std::vector<std::string> words;
    bool inWord = false;
    char quote = 0;
    for (; *line != 0; ++line)
    {
        if (quote == 0 && isBlank(*line))
        {
            inWord = false;
            continue;
        }
        if (!inWord)
        {
            words.emplace_back();
            inWord = true;
        }
        if (quote == 0 && (*line == '\'' || *line == '"'))
        {
            quote = *line;
            continue;
        }
        if (*line == quote)
        {
            quote = 0;
            continue;
        }
        // Within double quotes a backslash escapes only what is special there.
        if (*line == '\\' && (quote == 0 || (quote == '"' && (line[1] == '"' || line[1] == '\\' || line[1] == '$' || line[1] == '`'))))
        {
            ++line;
            if (*line == 0)
            {
                return std::nullopt;
            }
        }
        words.back() += *line;
    }
    if (quote != 0)
    {
        return std::nullopt;
    }
    return words;
}

bool spawn(pid_t& child, std::vector<std::string>& words)
{
    std::vector<char*> arguments;
    for (std::string& word : words)
    {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    if (posix_spawn_file_actions_init(&actions) != 0)
    {
        return false;
    }
    const bool started = posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1) == 0 &&
                         posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    return started;
}

}  // namespace

bool runChildProcess(const char* commandLine)
{
    auto words = splitCommandLine(commandLine);
    pid_t child = 0;
    if (!words || words->empty() || !spawn(child, *words))
    {
        return false;
    }
    // An error other than an interruption means that the child is gone, its end taken by the program's own SIGCHLD handling.
    while (waitpid(child, nullptr, 0) < 0 && errno == EINTR)
    {
    }
    return true;
}

std::uint64_t currentProcessId()
{
    return static_cast<std::uint64_t>(getpid());
}

}  // namespace General::Ortha::Platform
