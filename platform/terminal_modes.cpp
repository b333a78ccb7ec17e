#include "platform/terminal_modes.h"

#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

static volatile sig_atomic_t modeSet;
static char undoSequence[64]; /* written by the signal handler: kept ready */
static const int endingSignals[2] = {SIGINT, SIGTERM};
static struct sigaction before[2]; /* curses' handlers, or the defaults */

static void writeUndo(void)
{
    if (modeSet && write(STDOUT_FILENO, undoSequence, strlen(undoSequence)) < 0) {
        /* the terminal is gone: nothing to undo */
    }
    modeSet = 0;
}

/* The mode is undone first; then what handled the signal before runs
 * (curses gives the screen back and ends the process), or its default. */
static void undoOnSignal(int sig)
{
    writeUndo();
    for (int i = 0; i < 2; i++) {
        if (endingSignals[i] != sig)
            continue;
        const struct sigaction &was = before[i];
        if ((was.sa_flags & SA_SIGINFO) == 0 && was.sa_handler != SIG_DFL && was.sa_handler != SIG_IGN) {
            was.sa_handler(sig);
        } else if (was.sa_handler != SIG_IGN) {
            signal(sig, SIG_DFL);
            raise(sig);
        }
    }
}

void setTerminalMode(const char *sequence, const char *undo)
{
    static bool caught;
    if (!caught) {
        for (int i = 0; i < 2; i++) {
            struct sigaction ours = {};
            ours.sa_handler = undoOnSignal;
            sigemptyset(&ours.sa_mask);
            sigaction(endingSignals[i], &ours, &before[i]);
        }
        caught = true;
    }
    fflush(stdout);
    snprintf(undoSequence, sizeof undoSequence, "%s", undo);
    if (write(STDOUT_FILENO, sequence, strlen(sequence)) < 0) {
        /* the terminal is gone: nothing to set */
    }
    modeSet = 1;
}

void clearTerminalMode(void)
{
    fflush(stdout);
    writeUndo();
}
