/*
 * debug_log.cpp -- ORTO_SetDebugFile and DebugLog.
 *
 * The file is opened and closed for every line, so that a line stands on
 * disk as soon as the call is over and no handle stays open between calls.
 * The file name is process-wide; two threads may interleave whole lines.
 */
#include "engine/debug_log.h"

#include <stdarg.h>
#include <stdio.h>
#include <time.h>

#include "engine/string_helpers.h"
#include "engine/types.h"
#include "orto.h"

static char debugFileName[PathSize]; /* empty: debugging is off */

/* The date in the fixed English form "Wed Jan 02 02:03:55 1980" with its
 * own line end, so that the log line is followed by an empty line. */
static void dateLine(char *out, size_t size)
{
    static const char *const days[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static const char *const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    time_t now = time(nullptr);
    struct tm t;
    localtime_r(&now, &t);
    snprintf(out, size, "%s %s %02d %02d:%02d:%02d %d\n", days[t.tm_wday % 7],
             months[t.tm_mon % 12], t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec, t.tm_year + 1900);
}

void DebugLogTo(const char *fileName, const char *format, va_list args)
{
    FILE *f = fopen(fileName, "a");
    if (!f)
        return; /* the line is lost; the next one tries again */
    time_t now = time(nullptr);
    struct tm t;
    localtime_r(&now, &t);
    fprintf(f, "%02d:%02d:%02d ", t.tm_hour, t.tm_min, t.tm_sec);
    vfprintf(f, format, args);
    fputs("\n", f);
    fclose(f);
}

void DebugLog(const char *format, ...)
{
    if (!debugFileName[0])
        return;
    va_list args;
    va_start(args, format);
    DebugLogTo(debugFileName, format, args);
    va_end(args);
}

extern "C" void ORTO_SetDebugFile(const char *fileName)
{
    char date[64];
    if (!fileName) {
        if (debugFileName[0]) {
            dateLine(date, sizeof date);
            DebugLog("Debugging stopped at %s", date);
        }
        debugFileName[0] = 0;
    } else {
        StrCopy(debugFileName, sizeof debugFileName, fileName);
    }
    if (debugFileName[0]) {
        dateLine(date, sizeof date);
        DebugLog("Debugging started at %s", date);
    }
}
