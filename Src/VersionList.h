// What the older version stamps of the process tell.
#pragma once

/// True unless a stamp of that name, whatever the case of its letters, has a lower version; also if there is none.
bool isVersionAtLeast(const char* name, int major, int minor, int revision);
/// True unless a stamp of that name has another version.
bool isVersionSame(const char* name, int major, int minor, int revision);

/// Has whoever links the stamps link this library's report to the include-version check too. Does nothing else.
void touchIncludeVersionCheck();
