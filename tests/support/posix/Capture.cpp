#include "support/Capture.h"

#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

namespace General::Ortha::Test {

std::string captureTerminal(const std::function<void()>& body)
{
    termios raw{};
    cfmakeraw(&raw);
    int screen = -1;
    const pid_t child = forkpty(&screen, nullptr, &raw, nullptr);
    if (child == 0)
    {
        body();
        std::exit(0);
    }
    std::string text;
    for (char c = 0; read(screen, &c, 1) == 1;)
    {
        text += c;
    }
    close(screen);
    waitpid(child, nullptr, 0);
    return text;
}

ChildResult runInChild(const std::function<void()>& body, std::chrono::seconds limit)
{
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    const pid_t child = fork();
    if (child == 0)
    {
        alarm(static_cast<unsigned int>(limit.count()));
        body();
        std::exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT,
            ::testing::internal::GetCapturedStdout(), ::testing::internal::GetCapturedStderr()};
}

}  // namespace General::Ortha::Test
