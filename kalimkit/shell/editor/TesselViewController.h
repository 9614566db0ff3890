#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kalimkit/canvas/view/MDrawView.h"
#include "kalimkit/canvas/view/MDrawViewDelegate.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/imageedit/crop/EditImageInitialViewDelegate.h"
#include "kalimkit/imageedit/crop/EditImageIntialView.h"
#include "kalimkit/shell/bar/TesselTopTool.h"
#include "kalimkit/shell/bar/TesselTopToolDelegate.h"
#include "kalimkit/shell/config/TesselConfig.h"
#include "kalimkit/shell/editor/EditorLayout.h"
#include "kalimkit/shell/editor/TesselViewControllerDelegate.h"
#include "kalimkit/shell/picker/TesselDot.h"
#include "kalimkit/shell/picker/TesselPenView.h"
#include "kalimkit/shell/picker/TesselPenViewDelegate.h"
#include "kalimkit/shell/picker/TesselPopDelegate.h"
#include "kalimkit/shell/picker/TesselPopView.h"
#include "kalimkit/shell/sheet/KLMActionsheetView.h"
#include "kalimkit/shell/sheet/KLMActionsheetViewDelegate.h"
#include "kalimkit/shell/sheet/QNTMaskView.h"
#include "kalimkit/shell/sheet/QNTMaskViewDelegate.h"
#include "kalimkit/shell/sheet/TesselConfirmButton.h"
#include "kalimkit/ui/control/Button.h"
#include "kalimkit/ui/control/ImageView.h"
#include "kalimkit/ui/touch/GestureDelegate.h"
#include "kalimkit/ui/view/ViewController.h"

namespace kalim {

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
                                       public ui::GestureDelegate {
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

    // ---- for the host
    // The title of the close button, or of the send button.
    void setTopNavigationItemTitle(bool isCloseButton, const std::string& title);
    // Gets every log text from now on; an empty one takes it away. One for the whole process.
    void setLogTranferBlock(std::function<void(const std::string& text)> block);
    // Zooms the picture from fromRect into its place on the canvas. The callback, if any, belongs
    // to the animation: what it changes is animated along.
    void startAnimateIn(const std::function<void()>& alongside = {});
    // Zooms what was drawn to a rectangle of the controller's view. Ignored once a crop has changed
    // the picture's size.
    void startAnimateOut(const gfx::Rect& target);
    // Has the user choose another picture; ignored where there is no photo library.
    void clickPickImage();
    // Tells the user when an image has no bitmap.
    void checkAndTipImageVaild(const gfx::ImageRef& image);
    // Confirming hands over the picture at its own scale, pixel for pixel, instead of at the
    // screen's, and so does cropping to the canvas. Off at first.
    bool exportsAtPictureScale() const { return _exportsAtPictureScale; }
    void setExportsAtPictureScale(bool exports) { _exportsAtPictureScale = exports; }
    // What confirming would hand over now. Ends what is being typed.
    gfx::ImageRef exportedImage();

    // ---- coming and going
    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewDidAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;
    void viewDidDisappear(bool animated) override;
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
    void didCanvasScaleAndPanStart() override { hideTool(); }
    void didCanvasScaleAndPanEnd() override { showTool(); }
    std::optional<bool> isToolbarPlaceBottom() override { return true; }
    std::optional<double> toolbarHeight() override { return 0.0; }

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
    // The canvas takes the picture, and the crop editor goes.
    void onCropImageDone(const gfx::ImageRef& image) override;
    void OnClickEditImageDoneBarButton() override;
    void OnClickEditImageBackBarButton() override;

    // ---- what it was made with
    const gfx::ImageRef& snipImage() const { return _snipImage; }
    bool needInitAnimate() const { return _needInitAnimate; }
    const gfx::Rect& fromRect() const { return _fromRect; }
    double fromScale() const { return _fromScale; }

    // ---- views; null until the controller's view is loaded
    const std::shared_ptr<MDrawView>& drawView() const { return _drawView; }
    const std::shared_ptr<TesselTopTool>& toolView() const { return _toolView; }
    const std::shared_ptr<TesselDot>& nibView() const { return _nibView; }
    const std::shared_ptr<TesselPenView>& penView() const { return _penView; }
    const std::shared_ptr<TesselConfirmButton>& confirmButton() const { return _confirmButton; }
    const std::shared_ptr<QNTMaskView>& maskView() const { return _maskView; }
    const std::shared_ptr<ui::View>& panelView() const { return _panelView; }
    // Null until the first appearance, as the dots.
    const std::shared_ptr<TesselPopView>& colorPopView() const { return _colorPopView; }
    const std::shared_ptr<TesselPopView>& sizePopView() const { return _sizePopView; }
    const std::shared_ptr<TesselPopView>& penPopView() const { return _penPopView; }
    const std::shared_ptr<ui::Button>& configViewEdit() const { return _configViewEdit; }
    const std::shared_ptr<ui::Button>& configViewDelete() const { return _configViewDelete; }
    // The picture of a transition under way, or of one to come; null for none.
    const std::shared_ptr<ui::ImageView>& viewAnimateImageView() const {
        return _viewAnimateImageView;
    }
    // The question before closing while it is asked; null for none.
    const std::shared_ptr<KLMActionsheetView>& actionSheet() const { return _actionSheet; }
    // The crop editor while it is open; null for none.
    const std::shared_ptr<EditImageIntialView>& editImageInitialView() const {
        return _editImageInitialView;
    }

    // ---- the pickers' dots, in the order in which they are shown
    using Dots = std::vector<std::shared_ptr<TesselDot>>;
    const Dots& colorViews() const { return _colorViews; }
    const Dots& sizeViews() const { return _sizeViews; }
    const Dots& penViews() const { return _penViews; }
    // Never shown.
    const Dots& shapeViews() const { return _shapeViews; }
    const Dots& colors() const { return _colorViews; }
    const Dots& sizes() const { return _sizeViews; }
    const Dots& pens() const { return _penViews; }

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
    // Between the dots of an open picker, and how far a folded one is moved inwards.
    double padding() const { return _padding; }
    double offset() const { return _offset; }

    // ---- delegate
    std::shared_ptr<TesselViewControllerDelegate> delegate() const { return _delegate.lock(); }
    void setDelegate(std::weak_ptr<TesselViewControllerDelegate> delegate);

protected:
    TesselViewController() = default;

private:
    std::shared_ptr<TesselViewController> self();
    // Runs a step later, as long as the controller is still there.
    void after(double delay, std::function<void(TesselViewController&)> step);
    static void log(const std::string& text, const char* method);

    // ---- set-up
    void initSubviews();
    void makeCanvas();
    void makeToolView();
    void makePenButton();
    void makePanel();
    void setUpAfterAppearance();
    void startRingHint();
    void doApplyTransBlockToCoreModel();

    // ---- layout (TesselViewControllerLayout.cpp)
    EditorMeasures measures() const;
    void placeViews();
    void layout();
    void spacePickers();

    // ---- tools (TesselViewControllerTools.cpp)
    void initDraw();
    void blinkPenview();
    void chooseColor(const gfx::ColorRef& color);
    void chooseSize(unsigned size);
    void choosePen(unsigned pen);
    void chooseShape(unsigned shape);
    void resetPopSelectIndexWithColorSizePen(const gfx::ColorRef& color, unsigned size,
                                             unsigned pen);

    // ---- cropping (TesselViewControllerCrop.cpp)
    void initEditCutView();
    void dropEditCutView();

    // ---- panel (TesselViewControllerPanel.cpp)
    void initData();
    void initSubviews2();
    std::shared_ptr<TesselPopView> makePicker(const Dots& dots, int tag, int selectIndex);
    std::shared_ptr<ui::Button> makeConfigButton(const std::string& image, const std::string& label,
                                                 void (TesselViewController::*action)());
    void resetOffset();
    void setFolded(bool color, bool size, bool isInset);
    void setPenpopEnable();
    void shrinkPanel();
    std::function<void(bool finished)> panelMoved(void (TesselViewController::*ended)());
    void panelDidOpen();
    void panelDidClose();
    void hideTool() { fadeTool(0); }
    void showTool() { fadeTool(1); }
    void fadeTool(double alpha);

    // ---- edit and delete buttons (TesselViewControllerSelection.cpp)
    void animateEditShape();
    void moveConfigViews(bool isOut);

    // ---- transitions (TesselViewControllerTransitions.cpp)
    void makeTransitionView(const gfx::ImageRef& image);
    void dropTransitionView();
    void placeTransitionView(const gfx::Rect& rect, double scale);
    void placeTransitionViewOnCanvas(const gfx::Rect& rect);
    void insertTransitionView();
    void didAnimateIn();
    void didAnimateOut();
    void animateTransition(const std::function<void()>& changes,
                           void (TesselViewController::*ended)());
    void cleanUpTransition(void (*finish)(TesselViewController& controller));

    // ---- other pictures (TesselViewControllerPicking.cpp)
    void didPickImage(const gfx::ImageRef& image);
    void didCancelPicking();

    std::weak_ptr<TesselViewControllerDelegate> _delegate;
    std::function<void(const std::string& text)> _transBlock;
    gfx::ImageRef _snipImage;
    bool _needInitAnimate = false;
    gfx::Rect _fromRect;
    double _fromScale = 0;
    float _fsacal = 0;
    bool _exportsAtPictureScale = false;

    std::shared_ptr<MDrawView> _drawView;
    std::shared_ptr<TesselTopTool> _toolView;
    std::shared_ptr<TesselDot> _nibView;
    std::shared_ptr<TesselPenView> _penView;
    std::shared_ptr<TesselConfirmButton> _confirmButton;
    std::shared_ptr<QNTMaskView> _maskView;
    std::shared_ptr<ui::View> _panelView;
    std::shared_ptr<TesselPopView> _colorPopView;
    std::shared_ptr<TesselPopView> _sizePopView;
    std::shared_ptr<TesselPopView> _penPopView;
    std::shared_ptr<ui::Button> _configViewEdit;
    std::shared_ptr<ui::Button> _configViewDelete;
    std::shared_ptr<ui::ImageView> _viewAnimateImageView;
    std::shared_ptr<KLMActionsheetView> _actionSheet;
    std::shared_ptr<EditImageIntialView> _editImageInitialView;
    Dots _colorViews;
    Dots _sizeViews;
    Dots _penViews;
    Dots _shapeViews;

    unsigned _currentType = 0;
    unsigned _currentShape = 0;
    unsigned _currentPen = 0;
    unsigned _currentSize = 0;
    gfx::ColorRef _currentColor;

    bool _hasAppeared = false;
    bool _showPanel = false;
    bool _isAnimation = false;
    bool _isPanelClosing = false;
    bool _elementSelected = false;
    bool _lockConfigView = false;
    bool _isConfigViewOut = false;
    bool _isConfigViewWillOut = false;
    // The panel is open, or about to be, in the buttons' place.
    bool _isEditingSelection = false;
    // The state that the buttons are on their way to; nothing while they rest.
    std::optional<bool> _configViewTarget;
    bool _shouldBlinkPenview = false;
    bool _isImageCroped = false;
    // Counts openings and closings of the panel, and transitions, so that the end of one that has
    // been overtaken is ignored.
    unsigned _panelTurn = 0;
    unsigned _transitionTurn = 0;

    // What the layout reads besides the view's size.
    double _padding = 0;
    double _offset = 0;
    // How far the panel's bottom is below its place.
    double _panelShift = 0;
    // The colour and size pickers are moved inwards.
    bool _arePickersInset = true;
    // How far the edit and delete buttons are from the pen button.
    double _configShift = 0;
};

}  // namespace kalim
