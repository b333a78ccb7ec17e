#include "platform/terminal_check.h"

#include <unistd.h>

bool standardStreamsAreTerminals(void) { return isatty(0) && isatty(1); }
