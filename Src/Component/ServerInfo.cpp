#include "component/ServerInfo.h"

namespace General::Component {

// Ready before any code runs: other modules' static objects may refer to them.
constinit const ClassID ClassID::local("Local");
constinit const ServerInfo ServerInfo::none = {};
const ComSelChannelInfo ComSelChannelInfo::local;

Ortha::string getClassId(Ortha::string& first, Ortha::string& second)
{
    return second.empty() ? first : first + "." + second;
}

}  // namespace General::Component
