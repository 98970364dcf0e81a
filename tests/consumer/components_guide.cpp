#include <cstdio>

#include "component/Component.h"

using namespace General::Component;
using General::Component::Detail::CComponentHelper;

// What others see of a door.
class IDoor : public IUnknown
{
public:
    virtual void open() = 0;
};

class CDoor : public IDoor
{
public:
    void destroy() override { delete this; }
    void reservedOperation() override {}
    void open() override { std::printf("opened %d times\n", ++m_count); }

private:
    int m_count = 0;
};

IUnknown* createDoor(const ServerInfo*)
{
    return CComponentHelper::makeComponentObject(new CDoor);
}

int main()
{
    registerComponent("Door", createDoor);

    TComPtr<IDoor> mine(dynamic_cast<IDoor*>(createComponentObject("Door", nullptr)), nullptr);  // adopts the first reference
    mine->open();

    TComPtr<IDoor> front(dynamic_cast<IDoor*>(getComponentInstance("Door", nullptr)), nullptr);  // made now
    TComPtr<IDoor> same(dynamic_cast<IDoor*>(getComponentInstance("Door", nullptr)), nullptr);   // the same door
    front->open();
    same->open();
}
