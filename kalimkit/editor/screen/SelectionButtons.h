#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "kalimkit/editor/screen/EditorPanel.h"
#include "kalimkit/editor/screen/EditorPicture.h"
#include "kalimkit/editor/screen/EditorStage.h"
#include "kalimkit/editor/screen/PenButton.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/ui/control/Button.h"

namespace kalim {

// The buttons that edit and delete what is selected, on both sides of the pen button, for which
// they stand in meanwhile: they come out of it and go back. While the panel covers them they stay
// as they are.
class SelectionButtons {
public:
    SelectionButtons(const EditorStage& stage, EditorPicture& picture, PenButton& pen,
                     EditorPanel& panel)
        : _stage(stage), _picture(picture), _pen(pen), _panel(panel) {}

    // At the first appearance, and what they do.
    void make(std::function<void()> edit, std::function<void()> remove);

    // ---- coming and going
    // Soon follows what is selected; a burst of changes makes for one way.
    void selectionChanged(bool hasSelection);
    // Sets off to where they ought to be, unless they are on their way, the end of which looks at
    // that again.
    void move();
    void fade(double alpha);

    // ---- editing: the panel opens in their place
    // Calls `then` once they have gone back.
    void edit(std::function<void()> then);
    void editingEnded() { _isEditing = false; }
    // Something is edited, and has been only since a moment: a tap where the edit button was is the
    // second half of a double click on it.
    bool isDoubleClicked() const;

    // ---- readings
    bool isOut() const { return _isOut; }
    // Holds while they are out or on their way there.
    bool standIn() const { return _target.value_or(_isOut); }
    bool isEditing() const { return _isEditing; }
    // A change has been heard of and not followed yet.
    bool isLocked() const { return _isLocked; }
    // How far they are from the pen button, points.
    double shift() const { return _shift; }
    gfx::Rect frame() const { return _edit->frame().unionWith(_delete->frame()); }

    // ---- views; null until they are made
    const std::shared_ptr<ui::Button>& editButton() const { return _edit; }
    const std::shared_ptr<ui::Button>& deleteButton() const { return _delete; }

private:
    std::shared_ptr<ui::Button> makeButton(const std::string& image, const std::string& label,
                                           std::function<void()> action) const;
    void moveTo(bool isOut);

    const EditorStage& _stage;
    EditorPicture& _picture;
    PenButton& _pen;
    EditorPanel& _panel;
    std::shared_ptr<ui::Button> _edit;
    std::shared_ptr<ui::Button> _delete;
    bool _isOut = false;
    // Where they are on their way to; nothing while they rest.
    std::optional<bool> _target;
    bool _isLocked = false;
    double _shift = 0;
    // The panel is open, or about to be, in their place.
    bool _isEditing = false;
    // When the edit button was tapped last, by the run loop's clock.
    double _editTime = 0;
};

}  // namespace kalim
