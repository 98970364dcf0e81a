#include "support/Capture.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <vector>

#include "support/Host.h"
#include "support/ScratchDirectory.h"
#include "support/win32/ConsoleCapture.h"

namespace General::Ortha::Test {

namespace {

// Set in a child: the number of the call that is to run its body there, and the files for what that writes.
constexpr const char* childVariable = "ORTHA_TEST_CHILD";

std::string textOf(const std::string& path)
{
    std::stringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

[[noreturn]] void runHere(const std::function<void()>& body, std::istream& files)
{
    std::string output, errors;
    files >> std::ws;
    std::getline(files, output, '|');
    std::getline(files, errors);
    if (!std::freopen(output.c_str(), "w", stdout) || !std::freopen(errors.c_str(), "w", stderr))
    {
        std::abort();
    }
    std::setvbuf(stderr, nullptr, _IONBF, 0);
    body();
    std::exit(0);
}

// What a process is started with: nothing to read, and nobody to write to, or a console of its own.
class Surroundings
{
public:
    explicit Surroundings(bool console)
    {
        m_startup.StartupInfo.cb = sizeof(m_startup);
        SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
        m_nothing =
            CreateFileA("NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, OPEN_EXISTING, 0, nullptr);
        m_startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
        m_startup.StartupInfo.hStdInput = m_startup.StartupInfo.hStdOutput = m_startup.StartupInfo.hStdError = m_nothing;
        console ? addConsole() : void();
    }
    ~Surroundings()
    {
        m_console ? ClosePseudoConsole(m_console) : void();
        CloseHandle(m_nothing);
    }
    STARTUPINFOA* get() { return &m_startup.StartupInfo; }
    [[nodiscard]] DWORD flags() const { return m_console ? EXTENDED_STARTUPINFO_PRESENT : 0; }

private:
    void addConsole()
    {
        HANDLE ends[4];
        EXPECT_TRUE(CreatePipe(&ends[0], &ends[1], nullptr, 0) && CreatePipe(&ends[2], &ends[3], nullptr, 1 << 20));
        EXPECT_EQ(CreatePseudoConsole({80, 25}, ends[0], ends[3], 0, &m_console), S_OK);
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        m_attributes.resize(size);
        m_startup.StartupInfo.cb = sizeof(m_startup);
        m_startup.lpAttributeList = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(m_attributes.data());
        EXPECT_TRUE(InitializeProcThreadAttributeList(m_startup.lpAttributeList, 1, 0, &size));
        EXPECT_TRUE(UpdateProcThreadAttribute(m_startup.lpAttributeList, 0, PROC_THREAD_ATTRIBUTE_PSEUDOCONSOLE, m_console,
                                              sizeof(m_console), nullptr, nullptr));
    }

    STARTUPINFOEXA m_startup{};
    HANDLE m_nothing = nullptr;
    HPCON m_console = nullptr;
    std::vector<char> m_attributes;
};

// Runs the test that calls this in another process, and waits for its end. Its exit code; -1 if it had to be ended.
int runAgain(std::chrono::seconds limit, bool console)
{
    const ::testing::TestInfo& test = *::testing::UnitTest::GetInstance()->current_test_info();
    std::string line = '"' + programFile().string() + "\" --gtest_filter=" + test.test_suite_name() + '.' + test.name();
    Surroundings surroundings(console);
    PROCESS_INFORMATION child;
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, surroundings.flags(), nullptr, nullptr, surroundings.get(), &child))
    {
        return -1;
    }
    DWORD code = 0;
    const auto milliseconds = static_cast<DWORD>(std::chrono::milliseconds(limit).count());
    const bool ended = WaitForSingleObject(child.hProcess, milliseconds) == WAIT_OBJECT_0;
    ended ? void(GetExitCodeProcess(child.hProcess, &code)) : void(TerminateProcess(child.hProcess, 1));
    CloseHandle(child.hThread);
    CloseHandle(child.hProcess);
    return ended ? static_cast<int>(code) : -1;
}

ChildResult run(const std::function<void()>& body, std::chrono::seconds limit, bool console)
{
    static int s_calls = 0;
    ++s_calls;
    if (const char* const wanted = std::getenv(childVariable))
    {
        std::istringstream words(wanted);
        int call = 0;
        words >> call;
        if (call == s_calls)
        {
            runHere(body, words);
        }
        return {0, false, "", ""};  // whoever started this process has the true one
    }
    const ScratchDirectory scratch;
    const std::string output = scratch / "output", errors = scratch / "errors";
    _putenv((std::string(childVariable) + '=' + std::to_string(s_calls) + ' ' + output + '|' + errors).c_str());
    const int code = runAgain(limit, console);
    _putenv((std::string(childVariable) + '=').c_str());
    EXPECT_TRUE(std::filesystem::exists(errors)) << "the child did not come to its body";
    ChildResult result{code, code == 3, textOf(output), textOf(errors)};
    // The runtime's own words at an abort().
    result.errors.erase(std::min(result.errors.find("\nabnormal program termination"), result.errors.size()));
    result.errors.erase(std::min(result.errors.find("\nThis application has requested the Runtime"), result.errors.size()));
    return result;
}

}  // namespace

ChildResult runInChild(const std::function<void()>& body, std::chrono::seconds limit)
{
    return run(body, limit, false);
}

ChildResult runInConsole(const std::function<void()>& body)
{
    return run(body, std::chrono::seconds(60), true);
}

}  // namespace General::Ortha::Test
