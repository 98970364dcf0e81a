#include "DeviceList.h"

#include <ortha/ortha3/File.h>
#include <sys/stat.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <set>
#include <sstream>
#include <string_view>

#include "Asio.h"

using General::Ortha::CFile;

namespace Fleet {

namespace {

std::string_view trim(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
    {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::vector<std::string_view> split(std::string_view line)
{
    std::vector<std::string_view> fields;
    for (std::size_t comma = line.find(','); comma != std::string_view::npos; comma = line.find(','))
    {
        fields.push_back(trim(line.substr(0, comma)));
        line.remove_prefix(comma + 1);
    }
    fields.push_back(trim(line));
    return fields;
}

template <class Number>
std::optional<Number> parse(std::string_view text)
{
    Number number{};
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

std::string quoted(std::string_view text)
{
    return std::string("'").append(text).append("'");
}

// What is wrong with an id, a user or a password, which travel as words of a line; empty if nothing is. The password is not shown.
std::string checkWord(const std::string& name, std::string_view word)
{
    if (word.empty())
    {
        return "empty " + name;
    }
    const bool blank = std::any_of(word.begin(), word.end(), [](unsigned char c) { return c <= ' ' || c == 0x7F; });
    return blank || word.size() > maxWord ? "the " + name + " has blanks or more than " + std::to_string(maxWord) + " characters" : "";
}

std::string readFile(const std::string& path)
{
    General::Ortha::FileInfo info;
    CFile file;
    // Asked first, so that the log does not tell in its words what the exception tells.
    const bool readable = CFile::access(path.c_str(), 4) && CFile::stat(path.c_str(), info) && !S_ISDIR(info.attrib);
    if (!readable || !file.open(path.c_str(), CFile::modeRead))
    {
        throw DeviceListError(path + ": cannot be read");
    }
    std::string text;
    char block[4096];
    for (long count = file.read(block, sizeof(block)); count > 0; count = file.read(block, sizeof(block)))
    {
        text.append(block, static_cast<std::size_t>(count));
    }
    if (S_ISREG(info.attrib) && text.size() < info.size)
    {
        throw DeviceListError(path + ": cannot be read to its end");
    }
    return text;
}

}  // namespace

DeviceListError::DeviceListError(const std::string& file, unsigned int line, const std::string& fault)
    : std::runtime_error(file + ":" + std::to_string(line) + ": " + fault)
{
}

std::vector<Device> readDeviceList(const std::string& file)
{
    std::istringstream list(readFile(file));
    std::vector<Device> devices;
    std::set<std::string> ids;
    std::string text;
    for (unsigned int number = 1; std::getline(list, text); ++number)
    {
        const auto refuse = [&](const std::string& fault) { throw DeviceListError(file, number, fault); };
        const std::string_view line = trim(text);
        if (line.empty() || line.front() == '#')
        {
            continue;
        }
        const std::vector<std::string_view> fields = split(line);
        if (fields.size() != 6)
        {
            refuse("expected 6 fields (id, address, port, period, user, password), found " + std::to_string(fields.size()));
        }
        for (const auto& [name, place] : {std::pair("id", 0), std::pair("user", 4), std::pair("password", 5)})
        {
            if (const std::string fault = checkWord(name, fields[static_cast<std::size_t>(place)]); !fault.empty())
            {
                refuse(fault);
            }
        }
        if (!ids.emplace(fields[0]).second)
        {
            refuse("id " + quoted(fields[0]) + " is there already");
        }
        asio::error_code error;
        const asio::ip::address address = asio::ip::make_address(std::string(fields[1]), error);
        if (error)
        {
            refuse(quoted(fields[1]) + " is not an IP address");
        }
        const auto port = parse<unsigned short>(fields[2]);
        if (!port)
        {
            refuse(quoted(fields[2]) + " is not a port from 0 to 65535");
        }
        const auto period = parse<unsigned int>(fields[3]);
        if (!period || *period == 0)
        {
            refuse(quoted(fields[3]) + " is not a period in milliseconds, a whole number from 1");
        }
        devices.push_back(
            {std::string(fields[0]), address.to_string(), *port, *period, std::string(fields[4]), std::string(fields[5]), number});
    }
    if (devices.empty())
    {
        throw DeviceListError(file + ": names no device");
    }
    return devices;
}

}  // namespace Fleet
