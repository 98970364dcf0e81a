// The records of the component system: which class, on which server, for which channel or device.
//
//     ServerInfo info = {};
//     info.address = "10.0.0.7";
//     info.port = 37777;
//     info.userName = "operator";
//
// Strings in these records are borrowed. Copying a record copies pointers, never text: whoever keeps a record keeps the texts alive.
// Operations of the library that remember a record copy its texts. A null string counts as an empty one.
//
// Threads: plain records.
#pragma once

#include <cstdint>

#include "ortha/ortha3/Export.h"
#include "ortha/ortha3/FlexString.h"

namespace General::Component {

/// The name of a class: "Tcp.Sensor". What stands before the first "." names the class of clients that connect to the server; a name
/// without "." is one in full.
struct ORTHA_API ClassID
{
    constexpr ClassID(const char* className) : name(className) {}

    const char* name;  ///< borrowed

    /// "Local": this process.
    static const ClassID local;
};

/// One connection to a server. Two records with equal fields marked "client" share a client, with equal fields marked "instance" an
/// instance of the registry. The meaning of `kind` and of the extra fields is that of the client class.
struct ORTHA_API ServerInfo
{
    const char* address;      ///< client, instance
    int port;                 ///< client, instance
    const char* userName;     ///< client, instance
    const char* password;     ///< client, instance
    const char* extraText1;   ///< client
    std::uint8_t kind;        ///< client, instance
    std::uint8_t extraByte1;  ///< client
    std::uint16_t extraShort1;
    const char* extraText2;  ///< client
    const char* extraText3;  ///< client
    const char* extraText4;  ///< client
    const char* extraText5;
    int extraInt1;               ///< client
    const char* extraText6;      ///< client
    std::uint8_t extraByte2;     ///< client
    std::uint8_t extraBit1 : 1;  ///< client
    std::uint8_t extraBit2 : 1;  ///< not kept by clients
    std::uint8_t extraBits3 : 6;
    std::uint16_t extraShort2;  ///< client
    int extraInt2;              ///< client
    int extraInt3;
    const char* extraText7;  ///< client
    const char* extraText8;  ///< client
    const char* extraText9;
    const char* extraText10;  ///< client
    std::uint8_t extraByte3;  ///< client
    std::uint8_t reserved1[7];
    std::uint8_t reserved2[120];

    /// No server: what is asked for is local. Known by its address, not by its contents: a copy of it is a server with empty fields.
    static const ServerInfo none;
};

/// A server's challenge at a login.
struct ORTHA_API ServerChallenge
{
    Ortha::mini_string text1;
    Ortha::mini_string text2;
    Ortha::mini_string text3;
    Ortha::mini_string text4;
    Ortha::mini_string text5;
    std::uint8_t reserved[108] = {};
};

/// Selects a component by channel.
struct ORTHA_API ComSelChannelInfo
{
    ComSelChannelInfo() : ComSelChannelInfo(-1, nullptr, -1) {}
    ComSelChannelInfo(int channelNumber, const char* channelName, int subChannelNumber)
        : channel(channelNumber), subChannel(subChannelNumber), name(channelName)
    {
    }

    int channel;     ///< -1: local
    int subChannel;  ///< -1: none
    const char* name;
    std::uint8_t reserved[112];  ///< not set

    static const ComSelChannelInfo local;
};

/// Selects a component by the identifier of its device.
struct ORTHA_API ComSelDeviceIdInfo
{
    ComSelDeviceIdInfo() : deviceId(nullptr), name(nullptr) {}

    const char* deviceId;
    const char* name;
    std::uint8_t reserved[112];  ///< not set
};

/// `first` + "." + `second`; `first` alone if `second` is empty.
[[nodiscard]] ORTHA_API Ortha::string getClassId(Ortha::string& first, Ortha::string& second);

}  // namespace General::Component
