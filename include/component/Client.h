// IClient: one logged-in connection to one server. Every component of a server is reached through a client, and components with the same
// login share one.
//
//     class CTcpClient : public IClient { ... login(), logout(), updateBroken(), getUserID() over a socket ... };
//     class CTcpClientFactory : public IClient::IFactory
//     {
//     public:
//         const char* clsid() override { return "Tcp"; }
//         IClient* create(const ServerInfo& info) override { return new CTcpClient(info); }
//     };
//     CTcpClientFactory factory;
//     factory.registerFactory(IClient::IFactory::iid());
//
// From then on components of the classes "Tcp.anything" log in by it: getComponentFactory (ComponentHelper.h) makes the client when it is
// needed first, logs in, and finds it again for others with the same ServerInfo.
//
// | State      | login() true | login() false | updateBroken() true | updateBroken() false |
// |------------|--------------|---------------|---------------------|----------------------|
// | created    | logged in    | created       |                     |                      |
// | logged in  |              |               | broken              | logged in            |
// | broken     | logged in    | broken        |                     |                      |
//
// A client in use has one reference for each holder; with the last one logout() and destroy() run. One whose login failed stays, for a
// later attempt, and ends after five minutes without one. docs/components.md has the life of a client step by step.
//
// Who calls your operations: login() and updateBroken() are called by getComponentFactory on its caller's thread, without a lock, so two
// threads may ask the same client at once. logout() and destroy() are called on the thread that gives the last reference up, or on a
// timer's, without a lock. A factory's create() is called under one lock of the process, one at a time.
//
// Threads: any thread.
#pragma once

#include "component/ComPtr.h"
#include "component/Factory.h"
#include "component/ServerInfo.h"
#include "component/Unknown.h"
#include "ortha/ortha3/Function.h"
#include "ortha/ortha3/Time.h"

namespace General::Component {

struct ClientInternal;

class ORTHA_API IClient : public IUnknown
{
public:
    class IFactory;

    /// Why a status procedure is called. Others are the client class's.
    enum Status : int
    {
        statusAborted = 2
    };
    /// Custom data, class, client, status, reason. The class's name lives as long as the client.
    using StatusProc = Ortha::TFunction5<void, void*, ClassID, TComPtr<IClient>, Status, int>;

    IClient();
    ~IClient() override;
    /// Share the records of the other client: not a way to duplicate one.
    IClient(const IClient& other);
    IClient& operator=(const IClient& other);

    /// Looks at the connection; true when it has broken.
    virtual bool updateBroken() = 0;
    /// Connects and logs in. A failure sets its cause as last error.
    virtual bool login() = 0;
    /// Closes the connection.
    virtual bool logout() = 0;
    /// Gives the identifier of the user. The result is not looked at; without one leave `userId` as it is. Called with locks of the library
    /// held: it returns at once, and takes no lock that is held while the library is called.
    virtual bool getUserID(int& userId) = 0;

    // What a client class need not have: false with last error 0x10030010.

    virtual bool getCurrentTime(Ortha::CTime& time);
    virtual bool setCurrentTime(const Ortha::CTime& time, int value);
    virtual bool loginAgain(const ServerInfo& info);
    virtual bool checkAuthorityString(const char* authority);
    virtual bool loginFirst();
    virtual bool getChallenge(ServerChallenge& challenge);

    /// Has a procedure called at each change of status; there is room for 8. False if there is none left, or the procedure is there
    /// already. A procedure runs on the thread that calls abort(), without a lock; it may detach itself and release the client.
    virtual bool attachStatusProc(StatusProc proc);
    /// Does not wait for a call that is under way. False if it is not attached.
    virtual bool detachStatusProc(StatusProc proc);

    // For a client that came from the library; asserted.

    /// Fills in what the client was made with, but `extraBit2` and the reserved fields. The texts are the client's, and live as long. A
    /// warning tells of an empty user name. Always true.
    bool getServerInfo(ServerInfo& info);
    /// When login() last succeeded. Always true.
    bool getLoginTime(Ortha::CTime& time);
    /// Tells the status procedures statusAborted with a reason, and calls logout(), whose result it gives. The state stays as it is. The
    /// client may have ended when this returns, if a procedure gave up the last reference.
    bool abort(int reason);
    void setCustomData(void* data);
    void* getCustomData();
    /// Names the user once, which changes whom the client is found for; later calls change nothing, and a warning says so. Always true. Not
    /// while others use the client.
    bool saveUserName(const char* name);

    /// The user of the client that the calling thread used last through a TComPtr; 0 if it used none.
    static int getCurrentUserID();

private:
    friend struct ClientInternal;

    ClientInternal* m_internal;
};

/// Makes the clients of a class.
class ORTHA_API IClient::IFactory : public IFactoryUnknown
{
public:
    /// A new client for a server, not logged in, or null. The texts of `info` are borrowed for the time of the call.
    virtual IClient* create(const ServerInfo& info) = 0;

    /// The name of the interface of clients, "Client".
    static const char* iid();
    /// The first client of this class that a user has, with one more reference; null if there is none.
    IClient* instance(int userId);
};

}  // namespace General::Component

/// Ends the check for clients that nobody needs, before the process ends.
extern "C" ORTHA_API void Ortha_uninitComponentFactory();
