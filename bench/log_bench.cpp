// Log calls of the library beside others. Rows are named log/operation/arguments/who.
#include <algorithm>
#include <cstdio>
#include <filesystem>
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

std::int64_t linesOf(const std::string& name)
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
    explicit RedirectedOutput(const std::string& file)
    {
        flush();
        m_before = Bench::redirectOutput(file);
    }
    ~RedirectedOutput()
    {
        flush();
        if (redirected())
        {
            Bench::restoreOutput(m_before);
        }
    }
    RedirectedOutput(const RedirectedOutput&) = delete;
    RedirectedOutput& operator=(const RedirectedOutput&) = delete;

    [[nodiscard]] bool redirected() const { return m_before >= 0; }

private:
    static void flush()
    {
        std::cout.flush();
        std::fflush(stdout);
    }

    int m_before = -1;
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
        const RedirectedOutput output(scratch().file("ortha.log"));
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

void command(std::initializer_list<std::string> words)
{
    std::vector<std::string> copies(words);
    std::vector<char*> values;
    for (std::string& word : copies)
    {
        values.push_back(word.data());
    }
    General::Ortha::setLogFilter(static_cast<int>(values.size()), values.data());
}

// Lines that are saved to a series of files while the console goes nowhere, by any number of threads, of which the first one sets the
// stage.
template <bool flushed>
void oursSavedLine(benchmark::State& state)
{
    static std::unique_ptr<RedirectedOutput> s_output;
    const bool first = state.thread_index() == 0;
    if (first)
    {
        General::Ortha::PrintOptions options;
        options.noColor = flushed ? 0 : 1;
        General::Ortha::setPrintOptions(options);
        General::Ortha::setPrintLogLevel(4);
        s_output = std::make_unique<RedirectedOutput>(Bench::nullFile);
        std::filesystem::create_directory(scratch().file("saved"));
        command({"-logpath", scratch().file("saved/line")});
        command({"-logsavesetting", "bysize", "16384", "0"});
    }
    int value = 42;
    const char* text = "something";
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(value);
        benchmark::DoNotOptimize(text);
        General::Ortha::logInfo("value %d of %s\n", value, text);
    }
    if (first)
    {
        command({"-logpath", ""});
        General::Ortha::logCleanup();
        s_output.reset();
        std::int64_t lines = 0;
        for (const auto& file : std::filesystem::directory_iterator(scratch().file("saved")))
        {
            lines += linesOf(file.path().string());
        }
        if (lines != state.iterations() * state.threads())
        {
            state.SkipWithError("lines are missing");
        }
        std::filesystem::remove_all(scratch().file("saved"));
    }
}

// A call that is dropped: by its level, or by the switch of its module, which is one of several.
void oursDropped(benchmark::State& state, int level)
{
    General::Ortha::setPrintLogLevel(4);
    for (const char* const module : {"door", "lift", "VideoInput"})
    {
        command({"-logmodule", module, "off"});
    }
    int a = 1, b = 2;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(a);
        benchmark::DoNotOptimize(b);
        General::Ortha::logLibName(level, "lift", "value %d of %d\n", a, b);
    }
    command({"-logmodule", "on"});
}

#ifdef ORTHA_BENCH_HAS_SPDLOG
void spdlogSavedLine(benchmark::State& state)
{
    static std::shared_ptr<spdlog::logger> s_logger;
    const bool first = state.thread_index() == 0;
    if (first)
    {
        s_logger = std::make_shared<spdlog::logger>(
            "bench", std::make_shared<spdlog::sinks::basic_file_sink_mt>(scratch().file("spdlog.log"), true));
        s_logger->flush_on(spdlog::level::info);
    }
    int value = 42;
    const char* text = "something";
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(value);
        benchmark::DoNotOptimize(text);
        s_logger->info("value {} of {}", value, text);
    }
    if (first)
    {
        s_logger.reset();
        checkLines(state, "spdlog.log", state.iterations() * state.threads());
    }
}

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
    Bench::row("log/dropped/by-level/ortha", [](benchmark::State& state) { oursDropped(state, 5); });
    Bench::row("log/dropped/by-module/ortha", [](benchmark::State& state) { oursDropped(state, 4); });
    for (const int threads : {1, 2})
    {
        const auto saved = [threads](const char* who, void (*body)(benchmark::State&)) {
            const std::string name = Bench::nameOf({"log/saved", threads == 1 ? "one-thread" : "two-threads", who});
            Bench::row(name, body)->Iterations(linesARow / threads)->Threads(threads)->UseRealTime();
        };
        saved("ortha", oursSavedLine<true>);
        saved("ortha-console-buffered", oursSavedLine<false>);
#ifdef ORTHA_BENCH_HAS_SPDLOG
        saved("spdlog", spdlogSavedLine);
#endif
    }
#ifdef ORTHA_BENCH_HAS_SPDLOG
    Bench::row("log/below-level/two-numbers/spdlog", spdlogBelowLevel);
    Bench::row("log/line/buffered/spdlog", [](benchmark::State& state) { spdlogLine(state, false); })->Iterations(linesARow);
    Bench::row("log/line/flushed/spdlog", [](benchmark::State& state) { spdlogLine(state, true); })->Iterations(linesARow);
#endif
    return Bench::run(argc, argv);
}
