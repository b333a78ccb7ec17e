/*
 * gdi.cpp -- fonts, brushes and the device contexts of the colour
 * requests: small records behind handles, so that the dialogs' steps on
 * them (copy the font with another weight, make a brush of the button-face
 * colour, set a background, delete) run as written.  A terminal shows a
 * font's weight as normal or bold and a brush as a background colour.
 *
 * Handles work as window handles do: a slot and a generation, so a deleted
 * font that a control still names reads as no font at all.
 */
#include <string.h>

#include "ui/window.h"

enum GdiKind { GdiFree, GdiFont, GdiBrush, GdiDeviceContext };

struct GdiObject {
    GdiKind kind;
    uint32_t generation;
    LOGFONTA font;
    COLORREF color;               /* a brush's colour, a device context's background */
};

static std::vector<GdiObject> gdiSlots;

static HGDIOBJ gdiHandle(size_t slot, uint32_t generation)
{
    return (HGDIOBJ)(uintptr_t)(((uintptr_t)(generation & 0x7FFF) << 16) | (slot + 1));
}

static GdiObject *gdiOf(HGDIOBJ handle, GdiKind kind)
{
    uintptr_t value = (uintptr_t)handle;
    if ((value & 0xFFFF) == 0 || value > 0x7FFFFFFFu)
        return nullptr;
    size_t slot = (value & 0xFFFF) - 1;
    if (slot >= gdiSlots.size())
        return nullptr;
    GdiObject &o = gdiSlots[slot];
    if (o.kind == GdiFree || (o.generation & 0x7FFF) != (value >> 16) || (kind != GdiFree && o.kind != kind))
        return nullptr;
    return &o;
}

static HGDIOBJ gdiCreate(GdiKind kind)
{
    size_t slot = 0;
    while (slot < gdiSlots.size() && gdiSlots[slot].kind != GdiFree)
        slot++;
    if (slot == gdiSlots.size()) {
        if (slot >= 0xFFFF)
            return nullptr;
        gdiSlots.push_back(GdiObject{GdiFree, 0, LOGFONTA{}, 0});
    }
    GdiObject &o = gdiSlots[slot];
    o.kind = kind;
    o.generation++;
    o.font = LOGFONTA{};
    o.color = 0;
    return gdiHandle(slot, o.generation);
}

HFONT CreateFontIndirectA(const LOGFONTA *font)
{
    if (!font)
        return nullptr;
    HFONT h = gdiCreate(GdiFont);
    if (GdiObject *o = gdiOf(h, GdiFont)) {
        o->font = *font;
        o->font.lfFaceName[sizeof o->font.lfFaceName - 1] = '\0';
    }
    return h;
}

HBRUSH CreateSolidBrush(COLORREF color)
{
    HBRUSH h = gdiCreate(GdiBrush);
    if (GdiObject *o = gdiOf(h, GdiBrush))
        o->color = color;
    return h;
}

HDC createDeviceContext(void)
{
    HDC h = gdiCreate(GdiDeviceContext);
    if (GdiObject *o = gdiOf(h, GdiDeviceContext))
        o->color = GetSysColor(COLOR_WINDOW);
    return h;
}

int32_t GetObjectA(HGDIOBJ object, int32_t size, void *out)
{
    GdiObject *o = gdiOf(object, GdiFont);
    if (!o || !out || size < (int32_t)sizeof(LOGFONTA))
        return 0;
    memcpy(out, &o->font, sizeof(LOGFONTA));
    return (int32_t)sizeof(LOGFONTA);
}

int32_t DeleteObject(HGDIOBJ object)
{
    GdiObject *o = gdiOf(object, GdiFree);
    if (!o)
        return 0;
    o->kind = GdiFree;
    return 1;
}

/* The classic light grey of buttons, white windows, black text. */
COLORREF GetSysColor(int32_t index)
{
    switch (index) {
    case COLOR_BTNFACE:
        return 0xC0C0C0;
    case COLOR_WINDOW:
        return 0xFFFFFF;
    default:
        return 0x000000;
    }
}

COLORREF SetBkColor(HDC dc, COLORREF color)
{
    GdiObject *o = gdiOf(dc, GdiDeviceContext);
    if (!o)
        return 0xFFFFFFFFu; /* CLR_INVALID */
    COLORREF before = o->color;
    o->color = color;
    return before;
}

COLORREF brushColor(HBRUSH brush, COLORREF fallback)
{
    GdiObject *o = gdiOf(brush, GdiBrush);
    return o ? o->color : fallback;
}

int32_t fontWeightOf(HWND window)
{
    Window *w = windowOf(window);
    GdiObject *o = w ? gdiOf(w->font, GdiFont) : nullptr;
    return o ? o->font.lfWeight : FW_NORMAL;
}
