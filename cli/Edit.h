#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/PictureFormat.h"
#include "cli/PictureWriting.h"
#include "kalimkit/gfx/Color.h"
#include "kalimkit/host/seat/EditorSeat.h"

namespace kalim::cli {

struct EditOptions {
    // A picture, a document, or a picture with a document inside; "-" stands for standard input.
    std::string photo;
    // "-" stands for standard output, and so does an empty one if the photo comes from standard
    // input; else an empty one is a new name beside the photo.
    std::string output;
    // Nothing: as the output is called, or as the photo is.
    std::optional<PictureFormat> format;
    // This many pixels make a point; 0 for as many as the system says.
    double scale = 0;
    SeatLayout layout = SeatLayout::Auto;
    // Such as "de"; empty for that of the locale.
    std::string language;
    // The colours of what is around the picture.
    enum class Theme { Auto, Light, Dark, Contrast };
    Theme theme = Theme::Auto;
    // Of an EditorPen; nothing for what the editor begins with, as for the next two.
    std::optional<unsigned> pen;
    // Widths are points.
    std::optional<double> lineWidth;
    gfx::ColorRef color;
    // What is shown to choose from, in this order; empty for what the editor shows. Names of pens,
    // and widths in points.
    std::vector<std::string> pens;
    std::vector<gfx::ColorRef> colors;
    std::vector<double> widths;
    // The result has the pixels of the screen instead of those of the photo.
    bool isScreenSize = false;
    // What is drawn beyond the photo enlarges the result instead of being cut at the photo's edge.
    bool grows = false;
    // What is sent goes to the clipboard, and without an output nowhere else.
    bool copies = false;
    // The first copy or save is the end.
    bool endsEarly = false;
    // What a key does, one after the other; nothing for what it does in every editor.
    enum class Action { SaveToFile, SaveToClipboard, Exit };
    std::optional<std::vector<Action>> onEnter;
    std::optional<std::vector<Action>> onEscape;
    // Where a document goes besides the result; empty for the one that was opened, if any, and
    // else for a new name beside the photo when the user asks for one.
    std::string document;
    // How it is written, see DocumentSaving.
    bool isSealed = false;
    bool isLinked = false;
    // The result, a PNG picture, carries a sealed document inside.
    bool isDocumentInside = false;
    // Of a photo with a document inside: the user is asked, or the document is opened, or it is
    // just the picture.
    enum class Inside { Ask, Reopen, Flat };
    Inside inside = Inside::Ask;
    // A scenario to play in the window; empty for none.
    std::string scenario;
    // Files of fonts that texts are set in.
    std::vector<std::string> fonts;
    // What becomes of unfinished work on the photo: the user is asked, or it is gone on with, or it
    // is left alone and nothing new is recorded.
    enum class Recovery { Ask, GoOn, Off };
    Recovery recovery = Recovery::Ask;
    PictureWriting writing;
};

// Runs `kalimkit edit`: shows the editor in a window until the user confirms or closes it. The exit
// status: 0 once the picture is written, 1 when the window was closed and nothing is, 2 after an
// error, which is on standard error then.
int edit(const EditOptions& asked);

}  // namespace kalim::cli
