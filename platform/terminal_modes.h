/*
 * terminal_modes.h -- a mode the terminal keeps after the program (such as
 * bracketed paste), set so that it is undone however the program ends:
 * by the caller, or by the ending signal that curses catches.
 */
#ifndef ORTO_PLATFORM_TERMINAL_MODES_H
#define ORTO_PLATFORM_TERMINAL_MODES_H

/* Writes `sequence` to standard output and keeps `undo` (up to 63 bytes)
 * to write if SIGINT or SIGTERM ends the process while the mode is set. */
void setTerminalMode(const char *sequence, const char *undo);
/* Writes the kept `undo`, if a mode is set. */
void clearTerminalMode(void);

#endif
