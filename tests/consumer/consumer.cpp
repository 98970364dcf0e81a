#include "ortha/ortha3/Mutex.h"
#include "ortha/ortha3/PrintLog.h"

int main()
{
#if defined(ORTHA_STATIC)
    const char* kind = "static";
#else
    const char* kind = "shared";
#endif
    General::Ortha::CMutex mutex;
    General::Ortha::CGuard guard(mutex);
    return General::Ortha::logInfo("consumer: linked as %s\n", kind) > 0 ? 0 : 1;
}
