#pragma once

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"

namespace kalim {

// What the editor is at: the tool that the user has, and where the panel and the buttons are. The
// controller is made of this and changes it.
class KALIM_API EditorState {
public:
    // ---- the tool that the user has
    // Of the dot that was tapped last: 0 colour, 1 size, 2 pen, 3 shape.
    unsigned currentType() const { return _currentType; }
    unsigned currentShape() const { return _currentShape; }
    unsigned currentPen() const { return _currentPen; }
    unsigned currentSize() const { return _currentSize; }
    const gfx::ColorRef& currentColor() const { return _currentColor; }

    // ---- states
    bool showPanel() const { return _showPanel; }
    // The panel opens or closes.
    bool isAnimation() const { return _isAnimation; }
    // It is open or opens.
    bool isPanelUp() const { return !_isPanelClosing && (_showPanel || _isAnimation); }
    bool elementSelected() const { return _elementSelected; }
    bool lockConfigView() const { return _lockConfigView; }
    bool isConfigViewOut() const { return _isConfigViewOut; }
    bool isConfigViewWillOut() const { return _isConfigViewWillOut; }
    bool shouldBlinkPenview() const { return _shouldBlinkPenview; }
    // Once a crop has changed how many pixels the content has.
    bool isImageCroped() const { return _isImageCroped; }
    // The picture is what a crop has left of the one that was opened.
    bool hasCropped() const { return _hasCropped; }
    // It is another than the one that the editor was made with.
    bool hasOpenedPicture() const { return _hasOpenedPicture; }
    // Between the dots of an open picker, and how far a folded one is moved inwards.
    double padding() const { return _padding; }
    double offset() const { return _offset; }

protected:
    EditorState() = default;
    ~EditorState() = default;

    unsigned _currentType = 0;
    unsigned _currentShape = 0;
    unsigned _currentPen = 0;
    unsigned _currentSize = 0;
    gfx::ColorRef _currentColor;

    bool _showPanel = false;
    bool _isAnimation = false;
    bool _isPanelClosing = false;
    bool _elementSelected = false;
    bool _lockConfigView = false;
    bool _isConfigViewOut = false;
    bool _isConfigViewWillOut = false;
    bool _shouldBlinkPenview = false;
    bool _isImageCroped = false;
    bool _hasCropped = false;
    bool _hasOpenedPicture = false;
    double _padding = 0;
    double _offset = 0;
};

}  // namespace kalim
