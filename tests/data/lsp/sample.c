#include "stdoi.h"

/* Returns the lenght of the buffer: getBufferLength and
 * getBufferLenght are identifiers, split into words. */
static int getBufferLength(const char *buf)
{
    return printf("%d charactres\n", 3); // a comnt
}
