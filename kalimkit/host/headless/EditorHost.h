#pragma once

#include <memory>
#include <string>

#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/host/headless/EditorSetup.h"
#include "kalimkit/host/headless/HeadlessEnvironment.h"
#include "kalimkit/host/headless/ScenarioValues.h"
#include "kalimkit/host/seat/EditorSeat.h"
#include "kalimkit/json/JsonValue.h"

namespace kalim {

// The host application of a scenario: presents the editor, does to it what hosts do, and writes
// down what it hears from it.
class EditorHost : public TesselViewControllerDelegate, public EditorKeysDelegate {
public:
    // The seat and the environment must outlive it. The editor is loaded, not yet shown.
    static std::shared_ptr<EditorHost> make(const EditorSetup& setup, EditorSeat& seat,
                                            HeadlessEnvironment& environment);

    TesselViewController& editor() const { return *_editor; }
    const std::shared_ptr<TesselViewController>& sharedEditor() const { return _editor; }
    void present(SeatLayout layout = SeatLayout::Phone);
    void remove();
    bool isPresented() const { return _editor->window() != nullptr; }
    // An operation of the host by its name. After a problem nothing has happened.
    Problem call(const std::string& name, const JsonValue::Array& arguments);
    // The window's size is points.
    void resize(gfx::Size size);

    // ---- what it has heard since it was asked last, oldest first
    JsonValue::Array takeMessages();
    JsonValue::Array takeLogs();
    // The picture that was handed over last; null before the first.
    const gfx::ImageRef& lastPicture() const { return _lastPicture; }

    void didDrawViewControllerFinishHandleImage(TesselViewController& editor,
                                                const gfx::ImageRef& image) override;
    void close() override;

    // It has a clipboard and files, and writes down what it is given for them.
    bool editorKeysOffers(EditorAction /*action*/) const override { return true; }
    void editorKeysCopyPicture(const gfx::ImageRef& image) override;
    void editorKeysSavePicture(const gfx::ImageRef& image) override;
    void editorKeysSavePictureAs(const gfx::ImageRef& image) override;

private:
    struct Operation;
    static const Operation operations[];

    EditorHost(EditorSeat& seat, HeadlessEnvironment& environment)
        : _seat(seat), _environment(environment) {}

    void take(const char* message, const gfx::ImageRef& image, const std::string& note);

    EditorSeat& _seat;
    HeadlessEnvironment& _environment;
    std::shared_ptr<TesselViewController> _editor;
    std::weak_ptr<EditorKeysDelegate> _self;
    std::shared_ptr<JsonValue::Array> _logs = std::make_shared<JsonValue::Array>();
    JsonValue::Array _messages;
    gfx::ImageRef _lastPicture;
};

}  // namespace kalim
