#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/tool/ToolProperty.h"

namespace kalim {

class TesselViewController;

// What a host does in the editor in the user's place, the same under every host: chooses, closes,
// and brings another picture. What is chosen before the editor has appeared is lost.
class KALIM_API EditorRemote {
public:
    explicit EditorRemote(std::weak_ptr<TesselViewController> editor);
    ~EditorRemote();
    EditorRemote(const EditorRemote&) = delete;
    EditorRemote& operator=(const EditorRemote&) = delete;

    // ---- choices
    // A pen by its number, see EditorPen, for what is drawn next; deselects, unless it is the one
    // that selects.
    void choosePen(unsigned pen);
    // Also for what is selected, as a line width in points; neither need be one of the pickers'.
    void chooseColor(const gfx::ColorRef& color);
    void chooseLineWidth(double width);

    // What else there is to choose of the selection's look, or of the pen's; see
    // MDrawView::setToolProperty. Whether anything has it and can take the value.
    bool chooseProperty(const std::string& name, const ToolPropertyValue& value);
    // How mosaic patches hide: those selected, and the next ones. See HidingStyle.
    void chooseHidingStyle(std::uint64_t drawType);

    // Tells people shortly that something was done, where the shell has room for it; in their
    // language already.
    void showNote(const std::string& text);

    // As the close button does: asks first when something was drawn.
    void askToClose();

    // ---- another picture
    // Shows another picture, and asks first when that would lose work: something drawn, or a crop.
    // While the crop editor is open it is refused with an alert that says so; one that comes while
    // the user is still asked takes the place of the one before. Null is refused with an alert that
    // says that it cannot be opened.
    // `answer` hears once whether the picture has been opened.
    using OpeningAnswer = std::function<void(bool isOpened)>;
    void openPicture(const gfx::ImageRef& image, OpeningAnswer answer = {});
    // Tells the user why a picture cannot be opened.
    void refusePicture(const std::string& reason);

private:
    struct Offer {
        void end(bool isOpened) const;

        gfx::ImageRef image;
        OpeningAnswer answer;
    };
    void askToOpen();
    void decideOffer(bool isWanted);

    // Held by the host as long as it is shown; weak, because a message of its may end that.
    std::weak_ptr<TesselViewController> _editor;
    // The picture that the user is asked about; without one while nobody is.
    Offer _offer;
    // For a question that may outlive this object.
    std::shared_ptr<EditorRemote*> _self = std::make_shared<EditorRemote*>(this);
};

}  // namespace kalim
