#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/editor/screen/EditorStage.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim {

// The picture under edit, on the canvas: how the host wants that to be, and what has become of the
// picture since the editor was made with it.
class EditorPicture {
public:
    explicit EditorPicture(const EditorStage& stage) : _stage(stage) {}

    // ---- making
    void setSnipImage(gfx::ImageRef image) { _snipImage = std::move(image); }
    void setFScal(float scale) { _fScal = scale; }
    void makeCanvas(bool isHidden);
    // Lays the canvas with the picture into the screen's view.
    void showCanvas(std::weak_ptr<MDrawViewDelegate> delegate);
    // Null until it is made.
    const std::shared_ptr<MDrawView>& canvas() const { return _canvas; }
    // What the editor was made with; else the first picture that was picked.
    const gfx::ImageRef& snipImage() const { return _snipImage; }

    // ---- what the host wants, see TesselViewController
    void setForgiving(bool forgiving);
    double largestMagnification() const { return _largestMagnification; }
    void setLargestMagnification(double pixels);
    double canvasBasis() const { return _canvasBasis; }
    void setCanvasBasis(double points);
    bool clipsToPicture() const { return _clipsToPicture; }
    void setClipsToPicture(bool clips);
    bool cropKeepsDrawings() const { return _cropKeepsDrawings; }
    void setCropKeepsDrawings(bool keeps) { _cropKeepsDrawings = keeps; }
    bool exportsAtPictureScale() const { return _exportsAtPictureScale; }
    void setExportsAtPictureScale(bool exports) { _exportsAtPictureScale = exports; }

    // ---- changes
    // Puts another picture in the place of the one there is, with what was drawn on it.
    void open(const gfx::ImageRef& image);
    // Or a document; answers with what is wrong.
    std::optional<std::string> open(const Document& document, const gfx::ImageRef& picture);
    // As it was picked: none leaves nothing to draw on.
    void takePicked(const gfx::ImageRef& image);
    // What a crop has left.
    void takeCropped(const gfx::ImageRef& image);
    // Shows another cut of what pictureToCrop() was, from where it is seen already, coordinates of
    // the screen's view. Answers whether crops keep the drawings; nothing happens otherwise.
    bool takeCut(const PictureCut& cut, const gfx::Rect& seenAt);
    // Whether something is selected on the canvas, as that has told last.
    void selectionChanged(bool hasSelection) { _hasSelection = hasSelection; }
    // The host has saved what is there.
    void noteSaved();

    // ---- readings
    bool hasSelection() const { return _hasSelection; }
    bool hasOpened() const { return _hasOpened; }
    bool hasCropped() const;
    // A crop has changed how many pixels there are.
    bool isCroped() const;
    // Something was drawn, or a crop applied, and it is not what was saved last.
    bool hasWork() const;
    // ---- what a crop is chosen from: all of the picture, turned as it is, where crops keep the
    // drawings; else what is exported
    gfx::ImageRef pictureToCrop() const;
    // Canvas points.
    gfx::Rect contentToCrop() const;
    // The part that is shown already, its pixels; nothing for all of it.
    std::optional<gfx::Rect> presentCrop() const;
    // The picture with all that is drawn. Ends what is being typed.
    gfx::ImageRef exported() const;
    // Where the canvas shows a rectangle of its own, coordinates of the screen's view.
    gfx::Rect shown(const gfx::Rect& rect) const;

private:
    void applyOwnWays();
    bool cutsGeometry() const;
    bool isSaved() const;

    const EditorStage& _stage;
    std::shared_ptr<MDrawView> _canvas;
    gfx::ImageRef _snipImage;
    float _fScal = 0;
    double _largestMagnification = 0;
    double _canvasBasis = 0;
    bool _clipsToPicture = false;
    bool _exportsAtPictureScale = false;
    bool _cropKeepsDrawings = false;
    bool _hasSelection = false;
    bool _hasOpened = false;
    // What was on the canvas before the first step came with a document.
    bool _isDocument = false;
    bool _hasCropped = false;
    bool _isCroped = false;
    // MUndoManager::changeCount() as it was then.
    std::optional<std::uint64_t> _savedCount;
};

}  // namespace kalim
