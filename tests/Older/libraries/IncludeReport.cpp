// A library that reports the headers it was built against, built once for each revision of one of them, DOOR_REVISION.
#include <iterator>

#include "ortha/CheckIncludeVersion.h"

static const IncludeNode doorHeaders[] = {ORTHA_INCLUDE_NODE("http:d/Door.h", DOOR_REVISION), ORTHA_INCLUDE_NODE("http:d/Knob.h", "7")};
static const CCheckIncludeVersion check("Doors" DOOR_REVISION, doorHeaders, std::size(doorHeaders));
