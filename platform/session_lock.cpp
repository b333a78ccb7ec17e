/*
 * session_lock.cpp -- the session lock as a process-wide mutex.
 *
 * The session table belongs to one process, so callers of ORTO_OpenSession
 * only need excluding from each other within the process: a timed pthread
 * mutex does that, bounded at the caller's time-out.
 */
#include "platform/session_lock.h"

#include <errno.h>
#include <pthread.h>
#include <time.h>

static pthread_mutex_t sessionMutex = PTHREAD_MUTEX_INITIALIZER;

bool sessionLockAcquire(unsigned timeoutMs)
{
    struct timespec until;
    clock_gettime(CLOCK_REALTIME, &until);
    until.tv_sec += timeoutMs / 1000;
    until.tv_nsec += (long)(timeoutMs % 1000) * 1000000L;
    if (until.tv_nsec >= 1000000000L) {
        until.tv_sec++;
        until.tv_nsec -= 1000000000L;
    }
    return pthread_mutex_timedlock(&sessionMutex, &until) == 0;
}

void sessionLockRelease()
{
    pthread_mutex_unlock(&sessionMutex);
}
