/*
 * check_placement.cpp -- where the Check Spelling dialog opens: where the
 * user locked it, else clear of the window that shows the text (below it,
 * above, right, left, in that order), else in the corner of the work area
 * where it covers the least of that window.
 *
 * The placement state outlives every dialog and is never stored: each end
 * of the dialog writes it, and a host may set it.
 */
#include "dialogs/check_dialog.h"
#include "orto.h"

i16 lastLeft, lastTop;
i32 lockPosition;

static int32_t lesser(int32_t a, int32_t b) { return a < b ? a : b; }

static int64_t overlapArea(const RECT &a, const RECT &b)
{
    RECT common;
    if (!IntersectRect(&common, &a, &b))
        return 0;
    return (int64_t)(common.right - common.left) * (common.bottom - common.top);
}

void placeCheckDialog(HWND dialog, HWND ctrl)
{
    RECT d;
    GetWindowRect(dialog, &d);
    int32_t W = d.right - d.left, H = d.bottom - d.top;
    int32_t fx = GetSystemMetrics(SM_CXFRAME), fy = GetSystemMetrics(SM_CYFRAME);
    RECT area;
    uint32_t version = GetVersion();
    if ((version & 0x80000000u) && (version & 0xFF) >= 4)
        SystemParametersInfoA(SPI_GETWORKAREA, 0, &area, 0);
    else
        GetWindowRect(GetDesktopWindow(), &area);
    if (lockPosition) {
        MoveWindow(dialog, lastLeft, lastTop, W, H, 0);
        return;
    }
    if (!ctrl)
        return;
    RECT c;
    GetWindowRect(ctrl, &c);
    int32_t xMax = area.right - W - fx, yMax = area.bottom - H - fy;
    int32_t x, y;
    if (c.bottom + H + fy <= area.bottom) { /* below */
        x = lesser(c.left, xMax);
        y = lesser(c.bottom + fy, yMax);
    } else if (c.top - fy >= H) {           /* above */
        x = lesser(c.left, xMax);
        y = lesser(c.top - fy - H, yMax);
    } else if (c.right + W + fx < area.right) { /* right */
        x = lesser(c.right + fx, xMax);
        y = lesser(c.top, yMax);
    } else if (W + fx < c.left) {          /* left */
        x = lesser(c.left - W - fx, xMax);
        y = lesser(c.top, yMax);
    } else {
        /* the corner that covers the least of the control; the first of
         * equals wins */
        const int32_t corners[4][2] = {{area.right - W, area.bottom - H}, {area.left, area.bottom - H},
                                       {area.right - W, area.top}, {area.left, area.top}};
        int64_t best = -1;
        x = y = 0;
        for (const auto &corner : corners) {
            RECT r;
            SetRect(&r, corner[0], corner[1], corner[0] + W, corner[1] + H);
            int64_t area2 = overlapArea(r, c);
            if (best < 0 || area2 < best) {
                best = area2;
                x = corner[0];
                y = corner[1];
            }
        }
    }
    MoveWindow(dialog, x, y, W, H, 0);
}

extern "C" ORTO_API void ORTO_SetDialogOrigin(int16_t x, int16_t y)
{
    lastLeft = x;
    lastTop = y;
    lockPosition = 1;
}
