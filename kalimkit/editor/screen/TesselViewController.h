#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "kalimkit/canvas/MDrawViewDelegate.h"
#include "kalimkit/crop/EditImageInitialViewDelegate.h"
#include "kalimkit/editor/bar/TesselTopToolDelegate.h"
#include "kalimkit/editor/picker/TesselPenViewDelegate.h"
#include "kalimkit/editor/picker/TesselPopDelegate.h"
#include "kalimkit/editor/screen/EditorOffer.h"
#include "kalimkit/editor/screen/EditorReading.h"
#include "kalimkit/editor/screen/TesselViewControllerDelegate.h"
#include "kalimkit/editor/sheet/KLMActionsheetViewDelegate.h"
#include "kalimkit/editor/sheet/QNTMaskViewDelegate.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/ui/environment/EdgeInsets.h"
#include "kalimkit/ui/gesture/GestureDelegate.h"
#include "kalimkit/ui/window/ViewController.h"

namespace kalim {

struct Document;
class EditorShell;
struct EditorLayout;

// The editor's screen: the canvas with the picture, the tool bar above it, and below it the pen
// button, from which the panel with the pickers opens. A host makes one with a picture and a
// delegate, shows it, and takes it away again when the delegate is told to.
//
// It owns all its views. The panel goes from closed to opening, open, closing and closed again; the
// edit and delete buttons stand in for the pen button while something is selected. Lengths are
// points, durations seconds.
class KALIM_API TesselViewController : public ui::ViewController,
                                       public MDrawViewDelegate,
                                       public TesselTopToolDelegate,
                                       public TesselPopDelegate,
                                       public TesselPenViewDelegate,
                                       public QNTMaskViewDelegate,
                                       public KLMActionsheetViewDelegate,
                                       public EditImageInitialViewDelegate,
                                       public ui::GestureDelegate,
                                       public EditorReading {
public:
    // ---- making. With needInitAnimate the canvas stays hidden behind a picture at fromRect (of
    // the controller's view) until the host calls startAnimateIn(). `scale` is a display scale for
    // the canvas, see MDrawView::setFScal.
    static std::shared_ptr<TesselViewController>
    initWithSourceImageScaleNeedInitAnimateFromRectFromScaleWithDelegate(
        gfx::ImageRef image, float scale, bool needInitAnimate, const gfx::Rect& fromRect,
        double fromScale, std::weak_ptr<TesselViewControllerDelegate> delegate);
    // The picture starts at a scale of 0.
    static std::shared_ptr<TesselViewController>
    initWithSourceImageNeedInitAnimateFromRectWithDelegate(
        gfx::ImageRef image, bool needInitAnimate, const gfx::Rect& fromRect,
        std::weak_ptr<TesselViewControllerDelegate> delegate);
    static std::shared_ptr<TesselViewController> initWithSourceImageWithDelegate(
        gfx::ImageRef image, std::weak_ptr<TesselViewControllerDelegate> delegate);

    ~TesselViewController() override;

    // ---- for the host
    // The title of the close button, or of the send button.
    void setTopNavigationItemTitle(bool isCloseButton, const std::string& title);
    // Gets every log text from now on; an empty one takes it away. One for the whole process: the
    // last one that was set counts, and only who has set it can take it away.
    void setLogTranferBlock(std::function<void(const std::string& text)> block);
    // Zooms the picture from fromRect into its place on the canvas. The callback, if any, belongs
    // to the animation: what it changes is animated along.
    void startAnimateIn(const std::function<void()>& alongside = {});
    // Zooms what was drawn to a rectangle of the controller's view, which it fills in the end. The
    // completion is told true when it is there: shortly after, the canvas is back (see
    // setForgiving). It is told false when something else has overtaken the way, and at once,
    // without any, when a crop has changed the picture's size.
    void startAnimateOut(const gfx::Rect& target,
                         std::function<void(bool finished)> completion = {});
    // Has the user choose another picture; ignored where there is no photo library. Forgiving, it
    // asks before the picture replaces work, and one that cannot be opened replaces nothing.
    void clickPickImage();
    // Tells the user when an image has no bitmap.
    void checkAndTipImageVaild(const gfx::ImageRef& image);
    // Confirming hands over the picture at its own scale, pixel for pixel, instead of at the
    // screen's, and so does cropping to the canvas. Off at first.
    bool exportsAtPictureScale() const;
    void setExportsAtPictureScale(bool exports);
    // How far the canvas may be zoomed, see ZoomedCanvasView::setLargestMagnification. 0 at first.
    double largestMagnification() const;
    void setLargestMagnification(double pixels);
    // Mends what costs people work or nerves, on the canvas (see MDrawView::setForgiving) and in
    // the editor around it. Off at first.
    bool forgiving() const;
    void setForgiving(bool forgiving);
    // A crop is a step of undo that shows another part of the picture, and turns it: drawings stay
    // and can be edited, see MDrawView::setPictureCut. The crop editor then opens with the whole
    // picture and its present frame. Off at first, as without a picture: what is cropped becomes
    // the picture, with all that was drawn on it.
    bool cropKeepsDrawings() const;
    void setCropKeepsDrawings(bool keeps);
    // Shows another picture; what was drawn, or left by a crop, is lost. Null is ignored.
    void openPicture(const gfx::ImageRef& image);
    // What confirming would hand over as a document, see MDrawView::document(): everything can
    // still be moved. Ends what is under way.
    Document document();
    // Shows a document with its picture, decoded, in the place of all that is there; see
    // MDrawView::openDocument. Nothing of it counts as work before something changes.
    std::optional<std::string> openDocument(const Document& document, const gfx::ImageRef& picture);
    // Whether another picture would replace work: something was drawn, or the picture cropped,
    // since the host has said that it saved what is there.
    bool hasWork() const;
    void noteSaved();
    // Asks the user whether another picture may replace that work.
    void askToReplaceWork(std::function<void(bool isWanted)> answer);
    // Tells the user that no other picture is opened while the crop editor is.
    void tellThatCropIsOpen();
    // Whether the close button asks: when there is work. Forgiving, it also does after a crop that
    // was confirmed or has been begun, and after another picture was opened.
    bool asksBeforeClosing() const;
    // What canvas points are, see MDrawView::setCanvasBasis. 0 at first.
    double canvasBasis() const;
    void setCanvasBasis(double points);
    // The picture lies between the tool bar and the pen button in every size of the view, and the
    // button fades while something is drawn under it. Off at first: the picture is fitted into the
    // whole view.
    bool laysPictureBetweenBars() const { return _laysPictureBetweenBars; }
    void setLaysPictureBetweenBars(bool lays);
    // What goes beyond the picture is cut at its edge, see MDrawView::setClipsToPicture. Off at
    // first.
    bool clipsToPicture() const;
    void setClipsToPicture(bool clips);
    // The dots of sizes choose how the mosaic pen hides while that is in use, from sealed blocks on
    // (see MosaicStyle), with which it begins. Off at first: its patches average.
    bool offersHidingStyles() const;
    void setOffersHidingStyles(bool offers);
    // The host tells it when it has changed the screen's safe area and not the window's size.
    void safeAreaDidChange();
    // What confirming would hand over now. Ends what is being typed.
    gfx::ImageRef exportedImage();

    // What people may choose from, in both shells. The rows of dots are made anew.
    const EditorOffer& offer() const;
    void setOffer(EditorOffer offer);
    // The look that was last chosen for each tool is taken with it again, and a new editor begins
    // with the last one: in the user's settings, see ToolMemory. Off at first.
    bool remembersTools() const;
    void setRemembersTools(bool remembers);
    // What the pen in hand draws with has been changed on the canvas itself.
    void rememberTool();
    // Nothing can be changed, only looked at: the canvas is zoomed and moved, and the shells show
    // no more than that. Off at first.
    bool isReadOnly() const;
    void setReadOnly(bool isReadOnly);

    // ---- the shell
    // Other bars than the phone's, null for those, as at first. Passing from one to another loses
    // nothing that is selected, typed, dragged, cropped, zoomed or chosen.
    const std::shared_ptr<EditorShell>& shell() const;
    void setShell(std::shared_ptr<EditorShell> shell);
    // Has it read anew what it shows: for whoever changes the canvas by itself.
    void tellShell();
    // Told before the views are laid out in a view that has got another size, so that whoever
    // chooses the shell by the room there is does so in time.
    using SizeHandler = std::function<void(gfx::Size)>;
    void setSizeHandler(SizeHandler handler) { _sizeHandler = std::move(handler); }

    // ---- coming and going
    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewDidAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;
    void viewDidDisappear(bool animated) override;
    void viewWillLayoutSubviews() override;
    void viewDidLayoutSubviews() override;
    bool prefersStatusBarHidden() const override { return true; }
    int preferredStatusBarStyle() const override { return 1; }

    // ---- from the canvas
    void didDrawStarted() override;
    void seletedToolsStateChanged(bool hasSelection) override;
    void currentSelectedToolsPropertyChangedColorLineWidth(std::int64_t type,
                                                           const gfx::ColorRef& color,
                                                           double lineWidth) override;
    void canUndoStateChangedCanRedo(bool canUndo, bool canRedo) override;
    void textToolEditing(bool isEditing) override;
    void didDrawOver(const std::optional<gfx::Rect>& viewRect) override;
    void didCanvasScaleAndPanStart() override;
    void didCanvasScaleAndPanEnd() override;
    void canvasWillShow() override;
    std::optional<bool> isToolbarPlaceBottom() override { return true; }
    std::optional<double> toolbarHeight() override { return 0.0; }
    bool opensMenus() override;

    // ---- from the tool bar
    void clickTool() override;
    bool canContinueClose() override;
    void clickToolClose() override;
    void clickToolConfirm() override;
    void clickToolUndo() override;
    void clickToolRedo() override;
    void clickToolDone() override;
    // There is nothing more yet.
    void clickToolMore() override {}

    // ---- from the question before closing
    void modalAlertPressedWithButtonIndex(KLMActionsheetView& sheet, int index) override;

    // ---- from the pen button and the panel
    int clickAtPenView() override;
    void clickAtConfirm();
    void clickAtMaskView() override;
    void clickAtPop(TesselPopView& picker) override;
    void clickDotWithConfig(const std::shared_ptr<TesselConfig>& config) override;
    // A tap on a picker never closes the panel.
    bool shouldReceiveTouch(const ui::GestureRecognizer& recognizer,
                            const ui::Touch& touch) override;
    void showPop();
    // Also deselects everything on the canvas.
    void hidePop();
    void showPenview();

    // ---- from the buttons beside the pen button
    void clickConfigEdit();
    void clickDelete();

    // ---- from the crop editor, which gets and returns the content with all that is drawn on it
    void getOriginalImage(const OriginalImageCallback& callback) override;
    // There is none, so the callback gets null.
    void getDisplayImage(const DisplayImageCallback& callback) override;
    // Where the canvas shows the content, or would show all of the picture.
    std::optional<gfx::Rect> originalImageFrame() override;
    std::optional<gfx::Rect> originalCrop() override;
    // Where crops keep the drawings, the canvas shows the cut, and the crop editor goes.
    bool onCropChosen(const PictureCut& cut, const gfx::Rect& frame) override;
    // The canvas takes the picture, and the crop editor goes.
    void onCropImageDone(const gfx::ImageRef& image) override;
    void OnClickEditImageDoneBarButton() override;
    void OnClickEditImageBackBarButton() override;

    // ---- delegate
    std::shared_ptr<TesselViewControllerDelegate> delegate() const { return _delegate.lock(); }
    void setDelegate(std::weak_ptr<TesselViewControllerDelegate> delegate);

protected:
    TesselViewController();

private:
    std::shared_ptr<TesselViewController> self();

    // ---- set-up
    void initSubviews();
    void makeToolView();
    void makeNib();
    void setUpAfterAppearance();
    void startRingHint();
    void doApplyTransBlockToCoreModel();
    void placeViews();
    ui::EdgeInsets canvasMargin(const EditorLayout& layout);

    // ---- what several parts take part in (TesselViewControllerMessages.cpp)
    void blinkPenview();
    void bringPenButton();
    void fadeTool(double alpha);
    void leaveCrop();
    void endTypingFor(unsigned pen);

    // ---- other pictures (TesselViewControllerPicking.cpp)
    void takePickedImage(const gfx::ImageRef& image);
    void didPickImage(const gfx::ImageRef& image);
    void didCancelPicking();

    std::weak_ptr<TesselViewControllerDelegate> _delegate;
    std::function<void(const std::string& text)> _transBlock;
    bool _laysPictureBetweenBars = false;
    // The pen button, or what stands in for it, has faded for what is drawn under it.
    bool _isDrawnUnderPen = false;
    bool _hasAppeared = false;
    SizeHandler _sizeHandler;
    // What it was told last.
    gfx::Size _handledSize;
};

}  // namespace kalim
