// Setting the machine's clock, as CTime and the daylight-saving manager share it.
#pragma once

#include "ortha/ortha3/Time.h"

namespace General::Ortha {

/// Asks the verify hook; false, with an error line, if it forbids the change.
bool mayModifyTime();

/// Sets clock and daylight-saving flag in one step: asks the verify hook, sets the clock through the hook for records, and, if that did not
/// fail, takes `dst` over as the flag, telling the conversion callback of a new value. False if it was forbidden or failed.
bool Ortha_setCurrentTimeInternal(const SystemTimeEx& time, int tolerance);

}  // namespace General::Ortha
