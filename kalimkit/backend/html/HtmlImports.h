#pragma once

#include <cstdint>

// What a page supplies: kalimkit/backend/html/drawing.js, which says more. Pictures and surfaces
// are numbers, 0 is none; colours are 0xRRGGBBAA, straight; texts and fonts' families are UTF-8
// with their length; a font's style is 1 for bold and 2 for italic. A transform is its six
// components and leads to a surface's pixels.
#if defined(__wasm__)
#define KALIM_PAGE(name) __attribute__((import_module("kalim"), import_name(name)))
#else
#define KALIM_PAGE(name)
#endif

namespace kalim::gfx::page {

// ---- surfaces and pictures
KALIM_PAGE("surface_make") int surfaceMake(int width, int height, bool opaque);
KALIM_PAGE("surface_picture") int surfacePicture(int surface);
// The pixels lie as in a Bitmap.
KALIM_PAGE("picture_make") int pictureMake(const std::uint8_t* pixels, int width, int height);
KALIM_PAGE("picture_width") int pictureWidth(int picture);
KALIM_PAGE("picture_height") int pictureHeight(int picture);
KALIM_PAGE("picture_read") void pictureRead(int picture, std::uint8_t* pixels);
// Gives back a surface or a picture.
KALIM_PAGE("release") void release(int thing);

// ---- state
KALIM_PAGE("save") void save(int surface);
KALIM_PAGE("restore") void restore(int surface);
// Paths are commands and points in a surface's points, with its pixels per point.
KALIM_PAGE("clip")
void clip(int surface, const void* commands, int count, const void* points, double scale);
// How the next thing is painted, until this is called again: without a shadow unless one is set
// after it. Offset and blur in pixels.
KALIM_PAGE("paint") void paint(double alpha, int blendMode, int interpolation);
KALIM_PAGE("shadow") void shadow(double x, double y, double blur, std::uint32_t color);
// What is filled instead of with a colour, until paint() is called again; the transform carries the
// picture's pixels.
KALIM_PAGE("pattern")
void pattern(int picture, double a, double b, double c, double d, double tx, double ty);

// ---- painting
KALIM_PAGE("fill")
void fill(int surface, const void* commands, int count, const void* points, double scale,
          std::uint32_t color);
// The pen is a circle of the width carried through (a, b, c, d).
KALIM_PAGE("stroke")
void stroke(int surface, const void* commands, int count, const void* points, double scale,
            std::uint32_t color, double width, int cap, int join, double a, double b, double c,
            double d);
// Draws a picture or a surface; the transform carries its pixels.
KALIM_PAGE("draw")
void draw(int surface, int source, double a, double b, double c, double d, double tx, double ty);
// Outlined with the pen's width, filled when that is 0. The transform carries points from the
// baseline's start.
KALIM_PAGE("text")
void text(int surface, const char* text, int length, const char* family, int familyLength,
          double size, int style, std::uint32_t color, double width, int join, double a, double b,
          double c, double d, double tx, double ty);
// The group is a box of pixels; it is painted at its end as paint() says then.
KALIM_PAGE("group_begin") void groupBegin(int surface, int x, int y, int width, int height);
KALIM_PAGE("group_end") void groupEnd(int surface);

// ---- text measures. All but the second write into room for one number for each byte of the
// text and one more, and answer how many they wrote.
KALIM_PAGE("advances")
int advances(const char* text, int length, const char* family, int familyLength, double size,
             int style, double* out);
// Writes ascent, descent and leading.
KALIM_PAGE("line_metrics")
void lineMetrics(const char* family, int familyLength, double size, int style, double* out);
// Boundaries ascend and count units of UTF-16; 0 and the end are among them.
KALIM_PAGE("boundaries")
int boundaries(const char* text, int length, int kind, std::uint32_t* out);
// Writes a number for the paragraph and, unless it runs from left to right wholly, one for each of
// its graphemes: a level, and 128 more where it is blank. The base is a BaseDirection.
KALIM_PAGE("directions")
int directions(const char* text, int length, int base, std::uint8_t* out);

// ---- errors
// Throws a JavaScript Error. Both are C strings.
[[noreturn]] KALIM_PAGE("raise") void raise(const char* name, const char* reason);

}  // namespace kalim::gfx::page
