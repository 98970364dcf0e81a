// Log commands from standard input, one a line, while the program runs.
#pragma once

#include <ortha/ortha3/Thread.h>

#include <string>

namespace Fleet {

/// Start it with createThread and stop it with destroyThread. It ends by itself with its input.
class Console : public General::Ortha::CThread
{
public:
    Console();
    ~Console() override;

private:
    void threadProc() override;
    static void runLine(const std::string& line);
};

}  // namespace Fleet
