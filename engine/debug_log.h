/*
 * debug_log.h -- the engine's log: one line per message, each opening with
 * the local time, written only while a debug file is named.
 */
#ifndef ORTO_ENGINE_DEBUG_LOG_H
#define ORTO_ENGINE_DEBUG_LOG_H

#include <stdarg.h>

void DebugLog(const char *format, ...) __attribute__((format(printf, 1, 2)));
/* One line of that form in the file `fileName`, which is opened for it and
 * closed after it; nothing if it can't be opened.  The dialogs' log, which
 * keeps a file name of its own, writes by it too. */
void DebugLogTo(const char *fileName, const char *format, va_list args) __attribute__((format(printf, 2, 0)));

#endif
