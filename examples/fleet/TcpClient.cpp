#include "TcpClient.h"

#include <ortha/ortha3/Error.h>

#include <charconv>
#include <exception>
#include <stdexcept>
#include <string_view>

#include "Frame.h"
#include "Log.h"
#include "Sensor.h"

using General::Component::ClassID;
using General::Component::ServerInfo;
using General::Component::TComPtr;
using General::Memory::CPacket;
using General::Ortha::CGuard;
using General::Ortha::CTime;

namespace Fleet {

namespace {

constexpr Connection::Limit connectLimit{1000};
constexpr Connection::Limit answerLimit{2000};
constexpr std::size_t longestLine = 32;

// The user's id in the answer to a login; 0 if it was denied.
int userIdOf(const std::string& answer)
{
    if (answer == "DENIED")
    {
        return 0;
    }
    constexpr std::string_view accepted = "OK ";
    int userId = 0;
    const char* const end = answer.data() + answer.size();
    if (answer.rfind(accepted, 0) != 0 || std::from_chars(answer.data() + accepted.size(), end, userId).ptr != end || userId < 1)
    {
        throw std::runtime_error("a wrong answer to the login");
    }
    return userId;
}

}  // namespace

bool TcpClient::updateBroken()
{
    CGuard guard(m_mutex);
    return m_connection.isBroken();
}

bool TcpClient::login()
{
    const unsigned int loginsBefore = m_logins;
    CGuard guard(m_mutex);
    // A login that ended while this thread waited is its login too, whatever came of it.
    if (m_logins == loginsBefore && m_connection.isBroken())
    {
        m_failure = logIn();
        ++m_logins;
    }
    if (m_failure != 0)
    {
        General::Ortha::setLastError(m_failure);
    }
    return m_failure == 0;
}

// 0 or the last error.
int TcpClient::logIn()
{
    ServerInfo server = {};
    getServerInfo(server);
    try
    {
        m_connection.close();
        m_connection.open({asio::ip::make_address(server.address), static_cast<unsigned short>(server.port)}, connectLimit);
        m_connection.send(std::string("LOGIN ") + server.userName + " " + server.password + "\n", answerLimit);
        const int userId = userIdOf(m_connection.receiveLine(longestLine, answerLimit));
        if (userId == 0)
        {
            m_connection.close();
            return errorPasswordNotValid;
        }
        m_lossTold = false;
        attachStatusProc(StatusProc(&TcpClient::onStatus, this));  // nothing happens if it is there already
        const bool again = m_userId.exchange(userId) != 0;
        logLibName(levelInfo, moduleClients, " %s logged in%s at %s, user %d\n", server.userName, again ? " again" : "",
                   addressOf(server).c_str(), userId);
        return 0;
    }
    catch (const std::exception& failure)
    {
        m_connection.close();
        // The text of an error is one for all threads, so the cause is told here.
        logLibName(levelInfo, moduleClients, " %s not logged in at %s: %s\n", server.userName, addressOf(server).c_str(), failure.what());
        return errorNoConnection;
    }
}

bool TcpClient::logout()
{
    CGuard guard(m_mutex);
    m_connection.close();
    return true;
}

bool TcpClient::getUserID(int& userId)
{
    userId = m_userId;  // without the lock: the library asks under locks of its own
    return true;
}

void TcpClient::onStatus(void*, ClassID, TComPtr<IClient>, Status status, int)
{
    if (status == statusAborted && !m_lossTold.exchange(true))
    {
        ServerInfo server = {};
        getServerInfo(server);
        logLibName(levelInfo, moduleClients, " connection to %s lost\n", addressOf(server).c_str());
    }
}

Reading TcpClient::read(const std::string& deviceId, FramePool& pool)
{
    CGuard guard(m_mutex);
    if (!m_connection.isOpen())
    {
        throw std::runtime_error("the connection is lost");
    }
    try
    {
        CPacket frame = pool.take();  // before the request: an answer without room for it would be of no use
        unsigned char* const buffer = frame.getBuffer();
        m_connection.send("READ " + deviceId + "\n", answerLimit);
        m_connection.receive(buffer, frameLengthSize, answerLimit);
        frame.resize(frameSize(buffer));
        m_connection.receive(buffer + frameLengthSize, frame.size() - frameLengthSize, answerLimit);
        Reading reading;
        reading.time = CTime::getCurrentTime();
        takeApart(frame, reading.value, reading.unit);
        return reading;
    }
    catch (...)
    {
        m_connection.close();  // what is left of an answer must not pass for the next one
        throw;
    }
}

}  // namespace Fleet
