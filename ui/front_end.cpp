/*
 * front_end.cpp -- who plays the user.  A host or a test hands over a
 * front end; null chooses the terminal.  Until a terminal front end is
 * built in, the terminal is a front end without a user: every field null.
 */
#include "ui/window.h"

static ORTO_FrontEnd chosenFrontEnd;

const ORTO_FrontEnd *currentFrontEnd(void) { return &chosenFrontEnd; }

extern "C" ORTO_API void ORTO_SetFrontEnd(const ORTO_FrontEnd *frontEnd)
{
    chosenFrontEnd = frontEnd ? *frontEnd : ORTO_FrontEnd{};
}
