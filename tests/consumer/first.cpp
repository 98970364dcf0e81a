#include "ortha/ortha3/PrintLog.h"
#include "ortha/ortha3/Thread.h"
#include "ortha/ortha3/ThreadManager.h"
#include "ortha/ortha3/Timer.h"

using namespace General::Ortha;

void onTick(unsigned long number)
{
    General::Ortha::logInfo("tick %lu, on thread %d\n", number, CThread::getCurrentThreadID());
}

int main()
{
    CThreadManager::instance()->registerMainThread();
    CTimer timer("Tick");
    timer.start(TFunction1<void, unsigned long>(onTick), 100, 200, 1, 50);  // in 100 ms, then every 200 ms
    CThread::sleep(1000);
    timer.stopAndWait();
    CThreadManager::instance()->dumpThreads();
}
