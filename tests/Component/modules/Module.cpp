// A module for the tests of the registry, built once for each class. MODULE_ENTRY names its creator.
#include "component/Component.h"

namespace ModuleTest {

struct Door : General::Component::IUnknown
{
    void destroy() override { delete this; }
    void reservedOperation() override {}
};

General::Component::IUnknown* createDoor()
{
    return General::Component::Detail::CComponentHelper::makeComponentObject(new Door);
}

#ifdef MODULE_REGISTERS
const bool registered = General::Component::registerComponent("Along", [](const General::Component::ServerInfo*) { return createDoor(); });
#endif

}  // namespace ModuleTest

extern "C" ORTHA_EXPORT General::Component::IUnknown* MODULE_ENTRY(const General::Component::ServerInfo*)
{
    return ModuleTest::createDoor();
}
