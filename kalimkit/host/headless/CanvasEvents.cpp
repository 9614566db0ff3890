#include "kalimkit/host/headless/CanvasEvents.h"

#include "kalimkit/host/headless/ScenarioValues.h"

namespace kalim {

JsonValue::Array CanvasEvents::take() {
    return std::exchange(_events, {});
}

template <typename Message>
void CanvasEvents::relay(JsonValue::Array event, Message message) {
    _events.push_back(std::move(event));
    if (const auto receiver = _receiver.lock()) message(*receiver);
}

void CanvasEvents::didDrawStarted() {
    relay({"didDrawStarted"}, [](MDrawViewDelegate& receiver) { receiver.didDrawStarted(); });
}

void CanvasEvents::seletedToolsStateChanged(bool hasSelection) {
    relay({"seletedToolsStateChanged", hasSelection},
          [=](MDrawViewDelegate& receiver) { receiver.seletedToolsStateChanged(hasSelection); });
}

void CanvasEvents::currentSelectedToolsPropertyChangedColorLineWidth(std::int64_t type,
                                                                     const gfx::ColorRef& color,
                                                                     double lineWidth) {
    relay({"currentSelectedToolsPropertyChangedColorLineWidth", type, toJson(color), lineWidth},
          [&](MDrawViewDelegate& receiver) {
              receiver.currentSelectedToolsPropertyChangedColorLineWidth(type, color, lineWidth);
          });
}

void CanvasEvents::canUndoStateChangedCanRedo(bool canUndo, bool canRedo) {
    relay({"canUndoStateChangedCanRedo", canUndo, canRedo}, [=](MDrawViewDelegate& receiver) {
        receiver.canUndoStateChangedCanRedo(canUndo, canRedo);
    });
}

void CanvasEvents::textToolEditing(bool isEditing) {
    relay({"textToolEditing", isEditing},
          [=](MDrawViewDelegate& receiver) { receiver.textToolEditing(isEditing); });
}

void CanvasEvents::didDrawOver(const std::optional<gfx::Rect>& viewRect) {
    if (const auto receiver = _receiver.lock()) receiver->didDrawOver(viewRect);
}

void CanvasEvents::canvasWillShow() {
    if (const auto receiver = _receiver.lock()) receiver->canvasWillShow();
}

void CanvasEvents::didCanvasScaleAndPanStart() {
    relay({"didCanvasScaleAndPanStart"},
          [](MDrawViewDelegate& receiver) { receiver.didCanvasScaleAndPanStart(); });
}

void CanvasEvents::didCanvasScaleAndPanEnd() {
    relay({"didCanvasScaleAndPanEnd"},
          [](MDrawViewDelegate& receiver) { receiver.didCanvasScaleAndPanEnd(); });
}

std::optional<bool> CanvasEvents::isToolbarPlaceBottom() {
    const auto receiver = _receiver.lock();
    return receiver ? receiver->isToolbarPlaceBottom() : std::nullopt;
}

std::optional<double> CanvasEvents::toolbarHeight() {
    const auto receiver = _receiver.lock();
    return receiver ? receiver->toolbarHeight() : std::nullopt;
}

}  // namespace kalim
