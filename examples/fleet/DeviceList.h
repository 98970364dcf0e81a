// The device list: one device a line, "id, address, port, period in milliseconds". Blank lines and lines that begin with # are skipped.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "Asio.h"

namespace Fleet {

struct Device
{
    std::string id;
    asio::ip::tcp::endpoint endpoint;  ///< port 0: nothing to connect to until the simulator gives it one
    unsigned int period = 0;           ///< milliseconds, at least 1
    unsigned int line = 0;             ///< where it stands in the list
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
