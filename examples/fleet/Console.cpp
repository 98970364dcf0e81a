#include "Console.h"

#include "Input.h"
#include "Log.h"

namespace Fleet {

namespace {

constexpr int pause = 50;  // milliseconds: how long a stop may have to wait
constexpr int watchdogTime = 5000;

}  // namespace

Console::Console() : CThread("Console", 64, 0, 0)
{
    prepareInput();
}

Console::~Console()
{
    if (!isThreadOver())
    {
        destroyThread();
    }
}

void Console::threadProc()
{
    std::string text;
    while (looping())
    {
        setTimeout(watchdogTime);
        char block[512];
        const int count = readInput(block, sizeof(block), pause);
        if (count < 0)
        {
            break;
        }
        text.append(block, static_cast<std::size_t>(count));
        for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n'))
        {
            runLine(text.substr(0, end));
            text.erase(0, end + 1);
        }
    }
    runLine(text);
}

void Console::runLine(const std::string& line)
{
    if (line.find_first_not_of(" \t\r") != std::string::npos && !runLogCommand(line))
    {
        logLibName(levelWarn, moduleFleet, "fleet: '%s' is no log command; those begin with -log.\n", line.c_str());
        General::Ortha::setLogFilter(0, nullptr);
    }
}

}  // namespace Fleet
