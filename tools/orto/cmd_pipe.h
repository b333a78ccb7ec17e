/*
 * cmd_pipe.h -- the loop of the ispell pipe, apart from the command line,
 * so that other drivers (the fuzz target) run the very code of `orto -a`.
 */
#ifndef ORTO_CMD_PIPE_H
#define ORTO_CMD_PIPE_H

#include <stdio.h>

#include "lexicons.h"

/* Answers each line of `in` on `out` by the pipe protocol, until `in`
 * ends; the banner is the caller's.  Notes go to standard error. */
void pipeLines(LexiconSet *set, const CheckOptions &options, FILE *in, FILE *out);

#endif
