#pragma once

#include <memory>
#include <optional>
#include <utility>

#include "kalimkit/canvas/MDrawViewDelegate.h"
#include "kalimkit/json/JsonValue.h"

namespace kalim {

// Writes down what a canvas tells its delegate, each message as ["name", argument...], and hands it
// on to the receiver, if there is one.
class CanvasEvents : public MDrawViewDelegate {
public:
    explicit CanvasEvents(std::weak_ptr<MDrawViewDelegate> receiver = {})
        : _receiver(std::move(receiver)) {}

    // The messages since the last call, oldest first.
    JsonValue::Array take();

    void didDrawStarted() override;
    void seletedToolsStateChanged(bool hasSelection) override;
    void currentSelectedToolsPropertyChangedColorLineWidth(std::int64_t type,
                                                           const gfx::ColorRef& color,
                                                           double lineWidth) override;
    void canUndoStateChangedCanRedo(bool canUndo, bool canRedo) override;
    void textToolEditing(bool isEditing) override;
    // These two are handed on only: they come with every move of a finger.
    void didDrawOver(const std::optional<gfx::Rect>& viewRect) override;
    void canvasWillShow() override;
    void didCanvasScaleAndPanStart() override;
    void didCanvasScaleAndPanEnd() override;
    // The receiver's answers; none where there is no receiver.
    std::optional<bool> isToolbarPlaceBottom() override;
    std::optional<double> toolbarHeight() override;

private:
    // Writes it down and hands it on.
    template <typename Message>
    void relay(JsonValue::Array event, Message message);

    std::weak_ptr<MDrawViewDelegate> _receiver;
    JsonValue::Array _events;
};

}  // namespace kalim
