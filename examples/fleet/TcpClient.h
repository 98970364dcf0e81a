// TcpClient: one login at a device server over TCP, shared by all sensors behind it. What is said on the connection, in lines from the
// client:
//
// | Request               | Answer                                                   |
// |-----------------------|----------------------------------------------------------|
// | LOGIN user password   | the line "OK number", the user's id, from 1; or "DENIED" |
// | READ device           | a frame, see Frame.h                                     |
//
// Words have no blanks. A server is not trusted: another answer ends the connection.
#pragma once

#include <component/Client.h>
#include <ortha/ortha3/Mutex.h>

#include <atomic>
#include <string>

#include "Connection.h"
#include "FramePool.h"
#include "Reading.h"

namespace Fleet {

constexpr int errorNoConnection = 0x10040001;  ///< nobody there, or nobody who answers a login

/// Threads: any thread. Requests go one at a time; each waits for those before it.
class TcpClient : public General::Component::IClient
{
public:
    void destroy() override { delete this; }
    void reservedOperation() override {}

    /// True as well if the peer has closed the connection.
    bool updateBroken() override;
    /// Connects and logs in, once for all threads that ask meanwhile. False with last error errorPasswordNotValid or errorNoConnection.
    bool login() override;
    bool logout() override;
    /// The user's id of the last login; 0, nobody's, before the first.
    bool getUserID(int& userId) override;

    /// As ISensor::read.
    Reading read(const std::string& deviceId, FramePool& pool);

    std::atomic<bool> used{false};  ///< a sensor has been made for it

private:
    int logIn();
    void onStatus(void* customData, General::Component::ClassID clsid, General::Component::TComPtr<IClient> client, Status status,
                  int reason);

    General::Ortha::CMutex m_mutex;  // held through every request, a login too
    Connection m_connection;         // under m_mutex
    int m_failure = 0;               // under m_mutex: of the last login, 0 for none
    std::atomic<unsigned int> m_logins{0};
    std::atomic<int> m_userId{0};
    std::atomic<bool> m_lossTold{false};  // since the last login
};

}  // namespace Fleet
