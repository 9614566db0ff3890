#include "kalimkit/host/sdl/SdlWindow.h"

#include <SDL.h>
#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>

#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/codec/Encode.h"
#include "kalimkit/codec/Files.h"
#include "kalimkit/editor/screen/EditorKeys.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/shapes/MDrawFreeline.h"
#include "kalimkit/ui/control/AlertView.h"
#include "tests/support/ProgramRun.h"

namespace kalim::test {

namespace {

struct Owner : TesselViewControllerDelegate {
    void close() override { ++closed; }
    int closed = 0;
};

// The editor in a window of SDL's driver without a screen, 600 x 800 pixels at two a point.
class SdlWindowTest : public testing::Test {
protected:
    SdlWindowTest() {
        SDL_SetHint(SDL_HINT_VIDEODRIVER, "dummy");
        EXPECT_EQ(SdlWindow::startVideo(), std::nullopt);
        sdl = SDL_CreateWindow("", 0, 0, 600, 800, SDL_WINDOW_RESIZABLE);
        window = std::make_unique<SdlWindow>(sdl, 2);
        editor = TesselViewController::initWithSourceImageWithDelegate(
            window->environment().device().makeImage(gfx::Bitmap(300, 200), 1,
                                                     gfx::ImageOrientation::Up),
            owner);
        window->present(editor);
        window->update();
    }
    ~SdlWindowTest() override {
        editor = nullptr;
        window = nullptr;
        SDL_DestroyWindow(sdl);
        SDL_Quit();
    }
    static void TearDownTestSuite() { gfx::CairoDevice::releaseFontCaches(); }

    void touch(std::uint32_t type, int finger, double x, double y) {
        SDL_Event event{};
        event.tfinger.type = type;
        event.tfinger.timestamp = SDL_GetTicks();
        event.tfinger.touchId = 7;
        event.tfinger.fingerId = finger;
        event.tfinger.x = static_cast<float>(x / 300);
        event.tfinger.y = static_cast<float>(y / 400);
        event.tfinger.windowID = SDL_GetWindowID(sdl);
        window->handle(event);
    }
    void type(std::uint32_t kind, const char* text) {
        SDL_Event event{};
        event.type = kind;
        event.text.windowID = SDL_GetWindowID(sdl);
        std::strcpy(kind == SDL_TEXTINPUT ? event.text.text : event.edit.text, text);
        window->handle(event);
    }
    void press(SDL_Keycode symbol, SDL_Scancode place, int modifiers = 0) {
        SDL_Event event{};
        event.type = SDL_KEYDOWN;
        event.key.windowID = SDL_GetWindowID(sdl);
        event.key.keysym = {place, symbol, static_cast<std::uint16_t>(modifiers), 0};
        window->handle(event);
    }
    void mouse(std::uint32_t type, int x, int y) {
        SDL_Event event{};
        event.type = type;
        event.common.timestamp = SDL_GetTicks();
        if (type == SDL_MOUSEMOTION) {
            event.motion.windowID = SDL_GetWindowID(sdl);
            event.motion.x = 2 * x;
            event.motion.y = 2 * y;
        } else {
            event.button.windowID = SDL_GetWindowID(sdl);
            event.button.button = SDL_BUTTON_LEFT;
            event.button.x = 2 * x;
            event.button.y = 2 * y;
        }
        window->handle(event);
    }
    MDrawView& canvas() { return *editor->drawView(); }

    ::SDL_Window* sdl = nullptr;
    std::unique_ptr<SdlWindow> window;
    std::shared_ptr<Owner> owner = std::make_shared<Owner>();
    std::shared_ptr<TesselViewController> editor;
};

}  // namespace

TEST_F(SdlWindowTest, ShowsWhatTheWindowDraws) {
    window->update();
    const SDL_Surface* const screen = SDL_GetWindowSurface(sdl);
    const auto shown = window->window().surface()->makeImage()->pixels();
    for (const auto& [x, y] : {std::pair{20, 20}, {300, 740}, {300, 400}}) {
        std::uint32_t pixel = 0;
        std::memcpy(&pixel, static_cast<const char*>(screen->pixels) + y * screen->pitch + x * 4,
                    4);
        char text[10];
        std::snprintf(text, sizeof text, "#%06XFF", pixel & 0xFFFFFFU);
        EXPECT_EQ(shown->colorAt(x, y).hex(), text) << x << "," << y;
    }
    EXPECT_EQ(window->environment().areaBudget(), (gfx::Size{2560, 1440}));
}

TEST_F(SdlWindowTest, OneFingerDrawsAndTwoZoom) {
    touch(SDL_FINGERDOWN, 3, 100, 200);
    touch(SDL_FINGERMOTION, 3, 150, 220);
    touch(SDL_FINGERUP, 3, 200, 240);
    EXPECT_EQ(canvas().tools().size(), 1U);
    touch(SDL_FINGERDOWN, 1, 100, 200);
    touch(SDL_FINGERDOWN, 2, 200, 200);
    for (int i = 1; i <= 10; ++i) {
        touch(SDL_FINGERMOTION, 1, 100 - 5 * i, 200);
        touch(SDL_FINGERMOTION, 2, 200 + 5 * i, 200);
    }
    EXPECT_GT(canvas().getScale(), 1.5);
    touch(SDL_FINGERUP, 1, 50, 200);
    touch(SDL_FINGERUP, 2, 250, 200);
    EXPECT_EQ(canvas().tools().size(), 1U);
}

TEST_F(SdlWindowTest, InputMethodsComposeInTheFocusedText) {
    EXPECT_EQ(SDL_IsTextInputActive(), SDL_FALSE);
    press(SDLK_t, SDL_SCANCODE_T);
    touch(SDL_FINGERDOWN, 1, 150, 200);
    touch(SDL_FINGERUP, 1, 150, 200);
    ASSERT_EQ(SDL_IsTextInputActive(), SDL_TRUE);
    const auto text = ui::TextView::focusedIn(window->window());
    type(SDL_TEXTEDITING, "ni");
    EXPECT_EQ(text->text(), "ni");
    type(SDL_TEXTEDITING, "");
    type(SDL_TEXTINPUT, "你好");
    press(SDLK_BACKSPACE, SDL_SCANCODE_BACKSPACE);
    EXPECT_EQ(text->text(), "你");
    press(SDLK_ESCAPE, SDL_SCANCODE_ESCAPE);
    EXPECT_EQ(SDL_IsTextInputActive(), SDL_FALSE);
}

// As an input method such as IBus gives it.
TEST_F(SdlWindowTest, CompositionsAreCancelledEndedByATouchAndOfAnyLength) {
    press(SDLK_t, SDL_SCANCODE_T);
    touch(SDL_FINGERDOWN, 1, 150, 200);
    touch(SDL_FINGERUP, 1, 150, 200);
    const auto text = ui::TextView::focusedIn(window->window());
    type(SDL_TEXTINPUT, "שלום ");
    type(SDL_TEXTEDITING, "עול");
    EXPECT_EQ(text->text(), "שלום עול");
    const gfx::Rect caret = text->caretRect();
    EXPECT_LT(caret.minX(), text->bounds().midX()) << "it goes on to the left";
    type(SDL_TEXTEDITING, "");
    EXPECT_EQ(text->text(), "שלום ");
    EXPECT_FALSE(text->markedRange());

    // A touch settles what is composed. Some input methods give it once more then, others go on.
    const auto tap = [&](double share) {
        const gfx::Rect field = text->convertRectTo(text->bounds(), nullptr);
        const double x = field.minX() + share * field.size.width;
        touch(SDL_FINGERDOWN, 1, x, field.midY());
        touch(SDL_FINGERUP, 1, x, field.midY());
    };
    const struct {
        double place;
        const char* given;
        const char* text;
    } touches[] = {{0.01, "ni", "ni"}, {0.99, "hao", "nihao"}};
    for (const auto& step : touches) {
        text->setText("");
        type(SDL_TEXTEDITING, "ni");
        EXPECT_TRUE(text->markedRange());
        tap(step.place);
        EXPECT_FALSE(text->markedRange());
        EXPECT_EQ(text->text(), "ni");
        EXPECT_EQ(SDL_IsTextInputActive(), SDL_TRUE);
        type(SDL_TEXTINPUT, step.given);
        EXPECT_EQ(text->text(), step.text);
    }

    std::string sentence;
    for (int i = 0; i < 30; ++i)
        sentence += "字";
    SDL_Event event{};
    event.type = SDL_TEXTEDITING_EXT;
    event.editExt.windowID = SDL_GetWindowID(sdl);
    event.editExt.text = SDL_strdup(sentence.c_str());
    event.editExt.start = 30;
    window->handle(event);
    EXPECT_EQ(text->text(), "nihao" + sentence);
    type(SDL_TEXTEDITING, "");
    EXPECT_EQ(text->text(), "nihao");
}

TEST_F(SdlWindowTest, KeysOfOtherLayoutsGoByTheirPlace) {
    press(static_cast<SDL_Keycode>(0x43A), SDL_SCANCODE_R);
    EXPECT_EQ(editor->currentPen(), 3U) << "Cyrillic";
    press(SDLK_AMPERSAND, SDL_SCANCODE_2);
    EXPECT_EQ(editor->currentColor()->hex(), "#FFF700FF") << "French";
    // A Y where others have their Z.
    touch(SDL_FINGERDOWN, 3, 100, 200);
    touch(SDL_FINGERUP, 3, 200, 240);
    press(SDLK_z, SDL_SCANCODE_Y, KMOD_LCTRL);
    EXPECT_FALSE(canvas().hasDrawed());
}

TEST_F(SdlWindowTest, FollowsTheWindowsSizeAndAsksBeforeItCloses) {
    SDL_SetWindowSize(sdl, 2000, 1600);
    SDL_Event event;
    while (SDL_PollEvent(&event) == 1)
        window->handle(event);
    window->update();
    EXPECT_EQ(window->window().size(), (gfx::Size{1000, 800}));
    EXPECT_EQ(editor->view()->frame().size, (gfx::Size{1000, 800}));
    // Four times the window is more than the least.
    EXPECT_EQ(window->environment().areaBudget(), (gfx::Size{4000, 3200}));

    // An editor that comes before the events of a change finds the window as it is.
    window->present(nullptr);
    SDL_SetWindowSize(sdl, 900, 1200);
    window->present(editor);
    window->update();
    EXPECT_EQ(editor->view()->frame().size, (gfx::Size{450, 600}));

    event = {};
    event.type = SDL_WINDOWEVENT;
    event.window.windowID = SDL_GetWindowID(sdl);
    event.window.event = SDL_WINDOWEVENT_CLOSE;
    window->handle(event);
    EXPECT_EQ(owner->closed, 1);
    event.window.windowID += 1;
    window->handle(event);
    EXPECT_EQ(owner->closed, 1) << "another window";
}

TEST_F(SdlWindowTest, ACanvasAloneHasWheelTouchpadKeysAndTheCloseButton) {
    struct Screen : ui::ViewController {
        void loadView() override { setView(canvas); }
        const std::shared_ptr<MDrawView> canvas = MDrawView::initWithFrame({});
    };
    const auto screen = std::make_shared<Screen>();
    window->presentCanvas(screen, screen->canvas);
    screen->canvas->setSnipImage(editor->drawView()->sourceImage());
    window->update();
    EXPECT_EQ(screen->canvas->bounds().size, (gfx::Size{300, 400}));
    const auto scroll = [&](float sideways, float upwards) {
        SDL_Event event{};
        event.type = SDL_MOUSEWHEEL;
        event.wheel.windowID = SDL_GetWindowID(sdl);
        event.wheel.mouseX = 300;
        event.wheel.mouseY = 400;
        event.wheel.preciseX = sideways;
        event.wheel.preciseY = upwards;
        window->handle(event);
        const gfx::AffineTransform shown = screen->canvas->mViewTransform();
        return shown.apply({150, 200});
    };
    EXPECT_NEAR(scroll(0, 3).x, 150, 1) << "about the pointer";
    EXPECT_NEAR(screen->canvas->getScale(), 1.52, 0.01);
    EXPECT_NEAR(scroll(0.5F, 0.25F).x, 126, 1);
    EXPECT_NEAR(scroll(0, 0).y, 212, 1);
    press(SDLK_0, SDL_SCANCODE_0, KMOD_CTRL);
    EXPECT_EQ(screen->canvas->getScale(), 1);

    SDL_Event event{};
    event.type = SDL_WINDOWEVENT;
    event.window.windowID = SDL_GetWindowID(sdl);
    event.window.event = SDL_WINDOWEVENT_CLOSE;
    window->handle(event);
    EXPECT_TRUE(window->isStopped());
    window->present(nullptr);
}

TEST_F(SdlWindowTest, ADroppedPictureThatTheHostRefusesLeavesTheOneThatIsThere) {
    codec::Bytes png;
    ASSERT_EQ(codec::encodePng(gfx::Bitmap(30, 20), png), std::nullopt);
    const TemporaryFolder folder;
    const std::string path = folder.path() / "dropped.png";
    ASSERT_EQ(codec::writeFileAtomically(path, png), std::nullopt);
    const auto drop = [&] {
        SDL_Event event{};
        event.type = SDL_DROPFILE;
        event.drop.file = SDL_strdup(path.c_str());
        window->handle(event);
        return canvas().sourceImage()->pixelSize().width;
    };
    window->setPictureRefusal([](gfx::PixelSize size) {
        return std::optional(std::to_string(size.width) + " are too many");
    });
    EXPECT_EQ(drop(), 300);
    EXPECT_NE(ui::AlertView::topmostIn(window->window()), nullptr);
    window->setPictureRefusal({});
    EXPECT_EQ(drop(), 30);
}

TEST_F(SdlWindowTest, WhatDoesNotFitInMemoryIsAnAlertAndTheWorkGoesOn) {
    touch(SDL_FINGERDOWN, 3, 100, 200);
    touch(SDL_FINGERMOTION, 3, 150, 220);
    touch(SDL_FINGERUP, 3, 200, 240);
    window->environment().runLoop().async([] { throw std::bad_alloc(); });
    window->run(0.05);
    EXPECT_NE(ui::AlertView::topmostIn(window->window()), nullptr);
    EXPECT_TRUE(canvas().hasDrawed());
}

// A tablet of 1024 levels, whose pen leans by parts of 2000.
TEST_F(SdlWindowTest, PenDrawsAsHardAsItsDeviceTells) {
    struct Tablet : Pens {
        std::optional<ui::TouchContact> contact() override {
            if (!isNear) return std::nullopt;
            const std::pair<int, double> values[] = {{2, level}, {3, 1000}};
            return penContact({PenAxis{2, 0, 1024}, PenAxis{3, -2000, 2000}, {}}, values, {});
        }
        bool isNear = true;
        double level = 256;
    };
    auto made = std::make_unique<Tablet>();
    Tablet& tablet = *made;
    window->setPens(std::move(made));
    editor->setForgiving(true);
    canvas().beginDrawingForTypeWithDrawType(4, 0);
    mouse(SDL_MOUSEBUTTONDOWN, 100, 200);
    tablet.level = 512;
    mouse(SDL_MOUSEMOTION, 120, 220);
    mouse(SDL_MOUSEBUTTONUP, 140, 200);
    tablet.isNear = false;
    mouse(SDL_MOUSEBUTTONDOWN, 100, 250);
    mouse(SDL_MOUSEMOTION, 140, 250);
    mouse(SDL_MOUSEBUTTONUP, 140, 250);
    ASSERT_EQ(canvas().tools().size(), 1u);
    const auto& drawing = static_cast<MDrawFreeline&>(*canvas().tools().front());
    ASSERT_EQ(drawing.linePoints().size(), 2u);
    ASSERT_EQ(drawing.linePressures().size(), 1u);
    EXPECT_EQ(drawing.linePressures().front(),
              (std::vector<gfx::Point>{{0.25, 32}, {0.5, 32}, {0.5, 32}}));
}

}  // namespace kalim::test
