// The component system in full.
#pragma once

#include "component/Client.h"
#include "component/ComPtr.h"
#include "component/ComponentHelper.h"
#include "component/Factory.h"
#include "component/ObjectTable.h"
#include "component/Registry.h"
#include "component/ServerInfo.h"
#include "component/ServerInfoQueryer.h"
#include "component/Unknown.h"
