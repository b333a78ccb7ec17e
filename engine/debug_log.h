/*
 * debug_log.h -- the engine's log: one line per message, each opening with
 * the local time, written only while a debug file is named.
 */
#ifndef ORTO_ENGINE_DEBUG_LOG_H
#define ORTO_ENGINE_DEBUG_LOG_H

void DebugLog(const char *format, ...) __attribute__((format(printf, 1, 2)));

#endif
