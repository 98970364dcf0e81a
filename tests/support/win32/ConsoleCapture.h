// Consoles for tests.
#pragma once

#include <functional>

#include "support/Capture.h"

namespace General::Ortha::Test {

/// As runInChild, with a console for the child, which its standard output is not connected to.
ChildResult runInConsole(const std::function<void()>& body);

}  // namespace General::Ortha::Test
