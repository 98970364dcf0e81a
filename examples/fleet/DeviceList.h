// The device list: one device a line, "id, address, port, period in milliseconds, user, password". Blank lines and lines that begin with #
// are skipped.
//
// A device is one reading at a server. Devices of one address, port, user and password share a connection and its login.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace Fleet {

constexpr std::size_t maxWord = 64;

struct Device
{
    std::string id;
    std::string address;      ///< an IP address
    unsigned short port = 0;  ///< 0: nothing to connect to until the simulator gives it one
    unsigned int period = 0;  ///< milliseconds, at least 1
    std::string user;         ///< a word, as id and password are: 1 to maxWord characters, no blanks
    std::string password;
    unsigned int line = 0;  ///< where it stands in the list
};

/// A list that cannot be used. The text names the file, and the line if one is to blame: "devices.csv:7: empty id".
class DeviceListError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
    DeviceListError(const std::string& file, unsigned int line, const std::string& fault);
};

/// Reads a list of at least one device. Throws DeviceListError.
std::vector<Device> readDeviceList(const std::string& file);

}  // namespace Fleet
