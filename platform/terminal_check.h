/*
 * terminal_check.h -- whether a person sits at the process's terminal:
 * the one question the window layer asks the system before it chooses the
 * terminal front end.
 */
#ifndef ORTO_PLATFORM_TERMINAL_CHECK_H
#define ORTO_PLATFORM_TERMINAL_CHECK_H

/* True when standard input and standard output are both terminals. */
bool standardStreamsAreTerminals(void);

#endif
