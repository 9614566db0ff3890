#pragma once

#include <cstdint>

#include "kalimkit/backend/html/HtmlImports.h"

// What a page supplies beside the drawing: kalimkit/host/browser/kalim.js, which says more. Texts
// are UTF-8 with their length, colours 0xRRGGBBAA.
namespace kalim::page {

// Brings a part of a surface, pixels, to the canvas on the screen.
KALIM_PAGE("present") void present(int surface, int x, int y, int width, int height);
// Seconds since 1970.
KALIM_PAGE("wall_clock") double wallClock();
// The host's text for a key; -1 where it has none. Writes no more than there is room for and
// answers with the whole length.
KALIM_PAGE("localized")
int localized(const char* key, int length, char* out, int room);

// ---- text input
// As localized().
KALIM_PAGE("clipboard_read") int clipboardRead(char* out, int room);
KALIM_PAGE("clipboard_write") void clipboardWrite(const char* text, int length);
// The focused text and its selection, bytes; whether a part of it is being composed; the caret in
// points of the window.
KALIM_PAGE("text_focused")
void textFocused(const char* text, int length, int begin, int end, bool isComposing, double x,
                 double y, double height);
// No text has the focus.
KALIM_PAGE("text_left") void textLeft();

// ---- what the canvas tells
KALIM_PAGE("on_started") void onStarted();
KALIM_PAGE("on_selection") void onSelection(bool hasSelection);
// Without a colour when `hasColor` is false.
KALIM_PAGE("on_selected")
void onSelected(int type, bool hasColor, std::uint32_t color, double lineWidth);
KALIM_PAGE("on_history") void onHistory(bool canUndo, bool canRedo);
KALIM_PAGE("on_alert")
void onAlert(const char* title, int titleLength, const char* message, int messageLength);

}  // namespace kalim::page
