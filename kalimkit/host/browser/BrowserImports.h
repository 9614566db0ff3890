#pragma once

#include <cstdint>

#include "kalimkit/backend/html/HtmlImports.h"

// What a page supplies beside the drawing: kalimkit/host/browser/kalim.js, which says more. Texts
// are UTF-8 with their length, colours 0xRRGGBBAA.
namespace kalim::page {

// Brings a part of a surface, pixels, to the canvas on the screen.
KALIM_PAGE("present") void present(int surface, int x, int y, int width, int height);
// Counts seconds since 1970.
KALIM_PAGE("wall_clock") double wallClock();
// The page's text for a key, its form for so many things, or for none with a NaN; -1 where it has
// no text. Writes no more than there is room for and answers with the whole length.
KALIM_PAGE("localized")
int localized(const char* key, int length, double count, char* out, int room);

// Has an assistive technology say it.
KALIM_PAGE("announce") void announce(const char* text, int length);
// The key that is pressed leads the focus on to what is around the editor.
KALIM_PAGE("leave_by_tab") void leaveByTab();

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

// ---- what the user chooses
// 0 or 1; -1 for what was never set.
KALIM_PAGE("user_default") int userDefault(const char* key, int length);
KALIM_PAGE("set_user_default") void setUserDefault(const char* key, int length, bool value);
// As localized(), and the page keeps it.
KALIM_PAGE("user_setting") int userSetting(const char* key, int length, char* out, int room);
KALIM_PAGE("set_user_setting")
void setUserSetting(const char* key, int length, const char* text, int textLength);
// The page answers with a call of picked().
KALIM_PAGE("pick_image") void pickImage();

// ---- the editor on the page
// What the pointer is to look like: a ui::Cursor.
KALIM_PAGE("set_cursor") void setCursor(int cursor);
// Whether the page lets so many things go that people delete. It may look at the editor meanwhile,
// and does nothing to it.
KALIM_PAGE("may_delete") bool mayDelete(int count);
// The editor fills the screen from now on, or does no more.
KALIM_PAGE("toggle_full_screen") void toggleFullScreen();
// The rest of the module is wanted; the page fetches it and calls rest_arrived().
KALIM_PAGE("want_rest") void wantRest();

// ---- what the editor tells. The page takes what it needs of a picture before it returns, and does
// nothing to the editor until then; the picture is 0 where there is none.
KALIM_PAGE("on_confirm") void onConfirm(int picture);
// How a picture that is told of next, or answered with, came about: its number, that of the picture
// on the canvas, the place of the part in it and its quarter turns, the part, empty for a picture
// at another scale, and the rectangles that are hidden, four numbers each. See ExportedPicture.
KALIM_PAGE("exported") void exported(const double* numbers, int count);
KALIM_PAGE("on_close") void onClose();
// The user goes on with the drawing in the picture that is open.
KALIM_PAGE("on_reopen") void onReopen();
// What the steps on the canvas begin with, told before the first one; a finished step; and that
// another picture or document has come, of which no step was told yet.
KALIM_PAGE("on_set_up") void onSetUp(const char* text, int length);
KALIM_PAGE("on_step") void onStep(const char* text, int length);
KALIM_PAGE("on_restart") void onRestart();
// The picture is to go to the clipboard; where it cannot, the page calls copy_failed().
KALIM_PAGE("copy_picture") void copyPicture(int picture);
// The user gets the picture as a file.
KALIM_PAGE("save_picture") void savePicture(int picture);

}  // namespace kalim::page
