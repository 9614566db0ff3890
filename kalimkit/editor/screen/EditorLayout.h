#pragma once

#include <cstddef>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/gfx/Size.h"
#include "kalimkit/ui/environment/EdgeInsets.h"

namespace kalim {

// What the places of the editor's views follow from. Points.
struct EditorMeasures {
    gfx::Size view;
    // Of the main screen, which the canvas is as high as.
    double screenHeight = 0;
    ui::EdgeInsets safeArea;
    // The panel's bottom is this far below its place.
    double panelShift = 0;
    // The colour and size pickers are this far inside the ends of the pen picker.
    double pickerInset = 0;
    // The edit and delete buttons are this far from the pen button.
    double configShift = 0;
    // Of the pickers as they are folded now.
    double penPickerWidth = 0;
    double colorPickerWidth = 0;
    double sizePickerWidth = 0;
};

// Where the views go: between the insets, except for the canvas. Where the height is too small for
// all of it, below 280 points without insets, the rows of the panel move closer. The pickers are in
// the panel's coordinates, all others in those of the controller's view.
struct KALIM_API EditorLayout {
    gfx::Rect drawView;
    gfx::Rect toolView;
    gfx::Rect maskView;
    gfx::Rect nibView;
    gfx::Rect penView;
    gfx::Rect confirmButton;
    gfx::Rect panelView;
    gfx::Rect penPicker;
    gfx::Rect colorPicker;
    gfx::Rect sizePicker;
    gfx::Rect editButton;
    gfx::Rect deleteButton;

    // The tool bar and the pen button cover so much of the canvas, with a gap beside the button.
    ui::EdgeInsets canvasMargin() const;
};

KALIM_API EditorLayout editorLayout(const EditorMeasures& measures);

// How far the edit and delete buttons stand from the pen button when they are out.
constexpr double configViewDistance = 50;
// How far the panel slides.
constexpr double panelSlide = 100;

// The gap between the dots of an open picker, and how far a folded colour or size picker is moved
// inwards: a dot a pen spread over the view, two of them over its thirds. Wider views than 480
// points count as that wide, so that the dots stay within reach of each other.
struct PickerSpacing {
    double padding = 0;
    double offset = 0;
};
KALIM_API PickerSpacing pickerSpacing(double viewWidth, std::size_t pens);

}  // namespace kalim
