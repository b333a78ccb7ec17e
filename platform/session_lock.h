/*
 * session_lock.h -- the one lock of the engine, around the choice of a
 * session slot.
 */
#ifndef ORTO_PLATFORM_SESSION_LOCK_H
#define ORTO_PLATFORM_SESSION_LOCK_H

/* Waits at most `timeoutMs` for the lock.  Returns true if it was had; after
 * the time-out the caller goes on without it. */
bool sessionLockAcquire(unsigned timeoutMs);
/* Gives the lock up; call only after sessionLockAcquire returned true. */
void sessionLockRelease();

#endif
