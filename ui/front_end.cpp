/*
 * front_end.cpp -- who plays the user.  A host or a test hands over a
 * front end; null chooses the terminal, which is the choice at the start.
 * The terminal front end plays only where a person can be: when standard
 * input and output are terminals, of a type that can show the dialogs.  Elsewhere (a pipe, a test run, a
 * service) the dialogs have no user, and every act is the one a front end
 * with all its fields null makes.
 */
#include "platform/terminal_check.h"
#include "ui/term.h"

extern const ORTO_FrontEnd terminalFrontEnd;

static ORTO_FrontEnd chosenFrontEnd;
static bool terminalChosen = true;
static const ORTO_FrontEnd noUser = {};

const ORTO_FrontEnd *currentFrontEnd(void)
{
    if (!terminalChosen)
        return &chosenFrontEnd;
    return standardStreamsAreTerminals() && termUsable() ? &terminalFrontEnd : &noUser;
}

/* The outermost dialog has ended: the terminal goes back to the shell. */
void frontEndIdle(void)
{
    if (terminalChosen && term.active)
        termFrontEndIdle();
}

extern "C" ORTO_API void ORTO_SetFrontEnd(const ORTO_FrontEnd *frontEnd)
{
    terminalChosen = frontEnd == nullptr;
    chosenFrontEnd = frontEnd ? *frontEnd : ORTO_FrontEnd{};
}
