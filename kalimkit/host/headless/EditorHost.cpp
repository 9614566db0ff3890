#include "kalimkit/host/headless/EditorHost.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>
#include <vector>

#include "kalimkit/json/JsonText.h"

namespace kalim {

namespace {

// It is points.
constexpr double longestSide = 32767;

std::shared_ptr<TesselViewController> create(const EditorSetup& setup,
                                             std::weak_ptr<TesselViewControllerDelegate> host) {
    if (!setup.entrance) {
        return TesselViewController::initWithSourceImageWithDelegate(setup.picture,
                                                                     std::move(host));
    }
    return TesselViewController::
        initWithSourceImageScaleNeedInitAnimateFromRectFromScaleWithDelegate(
            setup.picture, 0, true, setup.entrance->fromRect, setup.entrance->fromScale,
            std::move(host));
}

template <typename... Kinds>
Problem readArguments(std::string_view name, const JsonValue::Array& arguments, Kinds&... values) {
    constexpr std::size_t wanted = sizeof...(Kinds);
    if (arguments.size() != wanted) {
        return std::string(name) + " takes " + std::to_string(wanted) +
               (wanted == 1 ? " argument, not " : " arguments, not ") +
               std::to_string(arguments.size());
    }
    Problem problem;
    std::size_t index = 0;
    [[maybe_unused]] const auto read = [&](auto& value) {
        if (!problem) {
            problem =
                readAs(arguments[index],
                       "argument " + std::to_string(index + 1) + " of " + std::string(name), value);
        }
        ++index;
    };
    (read(values), ...);
    return problem;
}

}  // namespace

// ---- making

std::shared_ptr<EditorHost> EditorHost::make(const EditorSetup& setup, EditorSeat& seat,
                                             HeadlessEnvironment& environment) {
    const std::shared_ptr<EditorHost> host(new EditorHost(seat, environment));
    host->_self = host;
    host->_editor = create(setup, host);
    host->_editor->setLogTranferBlock(
        [logs = host->_logs](const std::string& text) { logs->push_back(text); });
    host->_editor->view();
    return host;
}

void EditorHost::present(SeatLayout layout) {
    _seat.setLayout(layout);
    // A phone's shell has no buttons for what keys ask of a host, and its scenarios no such keys.
    _seat.present(_editor,
                  layout == SeatLayout::Phone ? std::weak_ptr<EditorKeysDelegate>() : _self);
}

void EditorHost::remove() {
    _seat.present(nullptr);
}

// ---- operations

struct EditorHost::Operation {
    std::string_view name;
    Problem (*call)(EditorHost& host, std::string_view name, const JsonValue::Array& arguments);
};

const EditorHost::Operation
    EditorHost::operations[] =
        {
            {"startAnimateIn",
             [](EditorHost& host, std::string_view name, const JsonValue::Array& arguments) {
                 if (Problem problem = readArguments(name, arguments)) return problem;
                 host._editor->startAnimateIn({});
                 return Problem();
             }},
            {"startAnimateOut",
             [](EditorHost& host, std::string_view name, const JsonValue::Array& arguments) {
                 gfx::Rect target;
                 if (Problem problem = readArguments(name, arguments, target)) return problem;
                 host._editor->startAnimateOut(target);
                 return Problem();
             }},
            {"setTopNavigationItemTitle",
             [](EditorHost& host, std::string_view name, const JsonValue::Array& arguments) {
                 bool isClose = false;
                 std::string title;
                 if (Problem problem = readArguments(name, arguments, isClose, title))
                     return problem;
                 host._editor->setTopNavigationItemTitle(isClose, title);
                 return Problem();
             }},
            {"clickPickImage",
             [](EditorHost& host, std::string_view name, const JsonValue::Array& arguments) {
                 if (Problem problem = readArguments(name, arguments)) return problem;
                 host._editor->clickPickImage();
                 return Problem();
             }},
            {"setExportsAtPictureScale",
             [](EditorHost& host, std::string_view name, const JsonValue::Array& arguments) {
                 bool exports = false;
                 if (Problem problem = readArguments(name, arguments, exports)) return problem;
                 host._editor->setExportsAtPictureScale(exports);
                 return Problem();
             }},
            {"setCanvasBasis",
             [](EditorHost& host, std::string_view name, const JsonValue::Array& arguments) {
                 double points = 0;
                 if (Problem problem = readArguments(name, arguments, points)) return problem;
                 host._editor->setCanvasBasis(points);
                 return Problem();
             }},
            {"setLaysPictureBetweenBars",
             [](EditorHost& host, std::string_view name, const JsonValue::Array& arguments) {
                 bool lays = false;
                 if (Problem problem = readArguments(name, arguments, lays)) return problem;
                 host._editor->setLaysPictureBetweenBars(lays);
                 return Problem();
             }},
            {"setClipsToPicture",
             [](EditorHost& host, std::string_view name, const JsonValue::Array& arguments) {
                 bool clips = false;
                 if (Problem problem = readArguments(name, arguments, clips)) return problem;
                 host._editor->setClipsToPicture(clips);
                 return Problem();
             }},
            {"setCropKeepsDrawings",
             [](EditorHost& host, std::string_view name, const JsonValue::Array& arguments) {
                 bool keeps = false;
                 if (Problem problem = readArguments(name, arguments, keeps)) return problem;
                 host._editor->setCropKeepsDrawings(keeps);
                 return Problem();
             }},
            {"setOffersHidingStyles",
             [](EditorHost& host, std::string_view name, const JsonValue::Array& arguments) {
                 bool offers = false;
                 if (Problem problem = readArguments(name, arguments, offers)) return problem;
                 host._editor->setOffersHidingStyles(offers);
                 return Problem();
             }},
            {"setSafeArea",
             [](EditorHost& host, std::string_view name, const JsonValue::Array& arguments) {
                 ui::EdgeInsets insets;
                 if (Problem problem = readArguments(name, arguments, insets.top, insets.left,
                                                     insets.bottom, insets.right)) {
                     return problem;
                 }
                 ui::Screen screen = host._environment.screen();
                 screen.safeAreaInsets = insets;
                 host._environment.setScreen(screen);
                 host._editor->safeAreaDidChange();
                 return Problem();
             }},
            {"resize",
             [](EditorHost& host, std::string_view name, const JsonValue::Array& arguments) {
                 gfx::Size size;
                 if (Problem problem = readArguments(name, arguments, size.width, size.height)) {
                     return problem;
                 }
                 const auto isSide = [](double side) { return side >= 1 && side <= longestSide; };
                 if (!isSide(size.width) || !isSide(size.height)) {
                     return Problem("resize takes sides from 1 to 32767");
                 }
                 host.resize(size);
                 return Problem();
             }},
            {"remove",
             [](EditorHost& host, std::string_view name, const JsonValue::Array& arguments) {
                 if (Problem problem = readArguments(name, arguments)) return problem;
                 host.remove();
                 return Problem();
             }},
};

Problem EditorHost::call(const std::string& name, const JsonValue::Array& arguments) {
    std::vector<std::string_view> names;
    for (const Operation& operation : operations) {
        if (operation.name == name) return operation.call(*this, name, arguments);
        names.push_back(operation.name);
    }
    return "a host has no operation " + shownName(name) + suggestion(name, names);
}

void EditorHost::resize(gfx::Size size) {
    ui::Screen screen = _environment.screen();
    if (!screen.isPhone) {
        screen.nativeSize = {static_cast<int>(std::lround(size.width * screen.scale)),
                             static_cast<int>(std::lround(size.height * screen.scale))};
        _environment.setScreen(screen);
    }
    _seat.window().setSize(size);
}

// ---- what it hears

JsonValue::Array EditorHost::takeMessages() {
    return std::exchange(_messages, {});
}

JsonValue::Array EditorHost::takeLogs() {
    return std::exchange(*_logs, {});
}

void EditorHost::didDrawViewControllerFinishHandleImage(TesselViewController&,
                                                        const gfx::ImageRef& image) {
    take("didDrawViewControllerFinishHandleImage", image, {});
}

void EditorHost::close() {
    _messages.push_back(JsonValue::Array{"close"});
}

void EditorHost::editorKeysCopyPicture(const gfx::ImageRef& image) {
    take("editorKeysCopyPicture", image, "已拷贝");
}

void EditorHost::editorKeysSavePicture(const gfx::ImageRef& image) {
    take("editorKeysSavePicture", image, "已保存");
}

void EditorHost::editorKeysSavePictureAs(const gfx::ImageRef& image) {
    take("editorKeysSavePictureAs", image, "已保存");
}

void EditorHost::take(const char* message, const gfx::ImageRef& image, const std::string& note) {
    _lastPicture = image;
    JsonValue picture;
    if (image) {
        const gfx::PixelSize pixels = image->pixelSize();
        picture =
            JsonValue::Object{{"size", JsonValue::Array{image->size().width, image->size().height}},
                              {"scale", image->scale()},
                              {"pixels", JsonValue::Array{pixels.width, pixels.height}}};
    }
    _messages.push_back(JsonValue::Array{message, std::move(picture)});
    if (!note.empty() && _seat.remote())
        _seat.remote()->showNote(_environment.localizedString(note));
}

}  // namespace kalim
