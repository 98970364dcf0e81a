#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <sstream>

#include "ortha/ortha3/CPrintLog.h"

#include "support/Capture.h"
#include "support/LogCommand.h"
#include "support/LogLines.h"

namespace {

using namespace General::Ortha;
using namespace General::Ortha::Test;

TEST(LogFilter, HelpIsPrintedOnDemandAndSwitchesAreSetInBothLayers)
{
    const std::string usage =
        R"(logfilter command usage:
logfilter -loglevel [levelnum](0-no printlevel, 1-fatal, 2-error, 3-warn, 4-info, 5-trace, 6-debug): set log level
logfilter -logmodule [modulename] [on/off] #turn module's log on/off
logfilter -logmodule [on/off] #turn ALL module's log on/off
logfilter -logpath [logpath/] #logger module's log to logpath or cancel logger(by set path to )
logfilter -logmodulestatistics  [on/off] #turn ALL module's logstatistics func on/off
logfiter -logsize [logsize] #log file max size limited to logsize Kbytes
logfiter -logsavesetting bysize [logsize] [maxnumber]#(logsize-log will save as a new file if log's size reaches to logsize),)"
        R"((maxnumber-total log file)
logfiter -logsavesetting byday [on/off] [maxnumber] #(on-log will save as a new file if date changes),(maxnumber-total log file)
logfiter -logsavesetting filenametime [day/sec] #[day]:the time info of log file name includes -y-m-d, [sec]: -y-m-d-h-m-s, )"
        R"(default: -y-m-d;
logfiter -logsavesetting none #log file save in the old way
)";
    EXPECT_EQ(captureOutput([] { command({}), commandLine("-h"); }), usage + usage);
    for (const char* const line : {"-x", "", "-H", "-h -h", "-h -loglevel 6", "-loglevel", "-LOGLEVEL 6", "-logmodule", "-logpath"})
    {
        EXPECT_EQ(captureOutput([&] { commandLine(line); }), "");
    }
    EXPECT_EQ(getPrintLogLevel(), 4);
    for (const std::string value : {"on", "Off", "ON", "x", "on more", ""})  // any word but "on" means off
    {
        PrintOptions options;
        commandLine("-loglevel 5" + value), commandLine("-logtime " + value), commandLine("-logthread " + value);
        commandLine("-logversion " + value), commandLine("-logfunction " + value), getPrintOptions(&options);
        const unsigned char off = value.size() < 2 || value[1] == 'f' ? 1 : 0;
        EXPECT_THAT((std::vector{options.noTime, options.noThreadId, options.noVersion, options.showFunction}), testing::Each(off))
            << value;
        EXPECT_TRUE(getPrintLogLevel() == 5 && std::memcmp(&options, Ortha_getPrintOption(), 13) == 0 && options.noModule == 0) << value;
    }
}

TEST(LogFilter, AModuleIsOnUntilACommandNamesItAndStatisticsAreTheSumsOfItsCounts)
{
    LogLines lines;
    PrintOptions options;
    options.noModule = 1;
    setPrintOptions(options);
    const std::string longName(5000, 'n'), text(8150, 'x');  // some lines are cut
    const char* const modules[] = {"ab", "ba", "AB", "abc", "", longName.c_str(), nullptr};
    std::istringstream rows(
        "=aBAc_n0.; ab off=BAc_n0.; ba OFF=Ac_n0.; ba On=BAc_n0.; abc maybe=BA_n0.; oFF=; maybe=aBAc_n0.; @ off more=BA_0.; on=aBAc_n0.;"
        " off=; abc on=BAc_0.; @n on=BAc_0.; @ on=BAc_n0.;  off=BAcn0.;statistics maybe=BAcn0.;statistics on 1=BAcn0.;");
    std::map<std::string, std::uint64_t> sums;
    commandLine("-logmodulestatistics ON");
    for (std::string line, expected; std::getline(rows, line, '=') && std::getline(rows, expected, ';');)
    {
        const std::size_t at = line.find('@');
        commandLine("-logmodule" + (at == line.npos ? line : std::string(line).replace(at, 1, longName)));
        std::string passed;
        for (int i = 0; i < 7; ++i)
        {
            const int count = logFilter(i % 5, modules[i], "Door", "open", 7, nullptr, "%s\n", text.substr(passed.size()).c_str());
            passed += std::string(count > 0 ? 1 : 0, "aBAc_n0"[i]);
            EXPECT_EQ(lines.take().size(), count > 0 ? 1u : 0u);
            sums[modules[i] ? modules[i] : ""] += line.substr(0, 1) != "s" ? static_cast<std::uint64_t>(count) : 0;
        }
        passed += captureOutput([] { Ortha_logFilter(4, "ab", "Door", "open", 7, nullptr, "x\n"); }).empty() ? "" : ".";  // the base layer
        EXPECT_EQ(passed, expected) << line;
    }
    sums.erase("");
    for (const auto& [module, info] : getLogStatistics())
    {
        EXPECT_EQ(info.logSize, sums[module]) << module;
    }
    EXPECT_EQ(getLogStatistics().size(), sums.size());
}

}  // namespace
