// Log calls of the library beside others. Rows are named log/operation/arguments/who.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>

#include "ortha/ortha3/PrintLog.h"

#ifdef ORTHA_BENCH_HAS_SPDLOG
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#endif

#include "support.h"

namespace {

// Enough for a steady time, few enough for the disk cache to hold.
constexpr std::int64_t linesARow = 500000;

const Bench::Scratch& scratch()
{
    static const Bench::Scratch scratch;
    return scratch;
}

std::int64_t linesOf(const char* name)
{
    std::ifstream stream(scratch().file(name), std::ios::binary);
    std::vector<char> block(1 << 16);
    std::int64_t count = 0;
    while (stream.read(block.data(), static_cast<std::streamsize>(block.size())), stream.gcount() > 0)
    {
        count += std::count(block.begin(), block.begin() + stream.gcount(), '\n');
    }
    return count;
}

// Standard output goes to a file while one of these lives: the library's lines, and not the report.
class RedirectedOutput
{
public:
    explicit RedirectedOutput(const char* name)
    {
        flush();
        m_before = dup(STDOUT_FILENO);
        const int file = open(scratch().file(name).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        m_redirected = m_before >= 0 && file >= 0 && dup2(file, STDOUT_FILENO) >= 0;
        close(file);
    }
    ~RedirectedOutput()
    {
        flush();
        dup2(m_before, STDOUT_FILENO);
        close(m_before);
    }
    RedirectedOutput(const RedirectedOutput&) = delete;
    RedirectedOutput& operator=(const RedirectedOutput&) = delete;

    [[nodiscard]] bool redirected() const { return m_redirected; }

private:
    static void flush()
    {
        std::cout.flush();
        std::fflush(stdout);
    }

    int m_before = -1;
    bool m_redirected = false;
};

void checkLines(benchmark::State& state, const char* file, std::int64_t expected)
{
    if (linesOf(file) != expected)
    {
        state.SkipWithError("lines are missing");
    }
}

void oursBelowLevel(benchmark::State& state)
{
    General::Ortha::setPrintLogLevel(4);
    int a = 1, b = 2;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(a);
        benchmark::DoNotOptimize(b);
        General::Ortha::logTrace("value %d of %d\n", a, b);
    }
}

void oursLine(benchmark::State& state, bool flushed)
{
    General::Ortha::PrintOptions options;
    options.noColor = flushed ? 0 : 1;
    General::Ortha::setPrintOptions(options);
    General::Ortha::setPrintLogLevel(4);
    std::int64_t written = 0;
    {
        const RedirectedOutput output("ortha.log");
        if (!output.redirected())
        {
            state.SkipWithError("cannot redirect standard output");
            return;
        }
        int value = 42;
        const char* text = "something";
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(value);
            benchmark::DoNotOptimize(text);
            General::Ortha::logInfo("value %d of %s\n", value, text);
            ++written;
        }
    }
    checkLines(state, "ortha.log", written);
}

#ifdef ORTHA_BENCH_HAS_SPDLOG
std::unique_ptr<spdlog::logger> makeLogger()
{
    return std::make_unique<spdlog::logger>("bench",
                                            std::make_shared<spdlog::sinks::basic_file_sink_mt>(scratch().file("spdlog.log"), true));
}

void spdlogBelowLevel(benchmark::State& state)
{
    const auto logger = makeLogger();
    int a = 1, b = 2;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(a);
        benchmark::DoNotOptimize(b);
        logger->trace("value {} of {}", a, b);
    }
}

void spdlogLine(benchmark::State& state, bool flushed)
{
    std::int64_t written = 0;
    {
        const auto logger = makeLogger();
        if (flushed)
        {
            logger->flush_on(spdlog::level::info);
        }
        int value = 42;
        const char* text = "something";
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(value);
            benchmark::DoNotOptimize(text);
            logger->info("value {} of {}", value, text);
            ++written;
        }
    }
    checkLines(state, "spdlog.log", written);
}
#endif

}  // namespace

int main(int argc, char** argv)
{
    // Standard output buffers a block, as it and the peers' streams do for a file, also when the report goes to a terminal.
    static char s_buffer[4096];
    std::setvbuf(stdout, s_buffer, _IOFBF, sizeof(s_buffer));

    Bench::row("log/below-level/two-numbers/ortha", oursBelowLevel);
    Bench::row("log/line/buffered/ortha", [](benchmark::State& state) { oursLine(state, false); })->Iterations(linesARow);
    Bench::row("log/line/flushed/ortha", [](benchmark::State& state) { oursLine(state, true); })->Iterations(linesARow);
#ifdef ORTHA_BENCH_HAS_SPDLOG
    Bench::row("log/below-level/two-numbers/spdlog", spdlogBelowLevel);
    Bench::row("log/line/buffered/spdlog", [](benchmark::State& state) { spdlogLine(state, false); })->Iterations(linesARow);
    Bench::row("log/line/flushed/spdlog", [](benchmark::State& state) { spdlogLine(state, true); })->Iterations(linesARow);
#endif
    return Bench::run(argc, argv);
}
