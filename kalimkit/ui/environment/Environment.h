#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "kalimkit/gfx/Device.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/Size.h"
#include "kalimkit/ui/environment/Alert.h"
#include "kalimkit/ui/environment/Appearance.h"
#include "kalimkit/ui/environment/EdgeInsets.h"
#include "kalimkit/ui/environment/Keyboard.h"
#include "kalimkit/ui/loop/RunLoop.h"

namespace kalim::ui {

class PhotoLibrary;
class TextView;
class Window;
class WorkStore;

// Tells facts of the main screen.
struct Screen {
    // So many device pixels make a point.
    double scale = 1;
    // The whole screen in device pixels, portrait, whatever the application covers of it.
    gfx::PixelSize nativeSize;
    bool isPhone = false;
    // What a notch, round corners and a home indicator take up of the application's window, points.
    // Nothing stands for what the shell knows of the screen, see safeAreaInsets().
    std::optional<EdgeInsets> safeAreaInsets = std::nullopt;
};

// What a host plugs in once, before the first view. One is current at a time; tests install their
// own. Everything optional has a harmless default, so that a small host implements little.
class KALIM_API Environment {
public:
    virtual ~Environment();

    // The one in force. Asking while none is installed is a programming error that is raised as
    // "EnvironmentException"; nothing could go on without one, so the process ends where the
    // handler returns.
    static Environment& current();
    static bool hasCurrent();
    // Installs one, or none with null; returns the one it replaces.
    static std::shared_ptr<Environment> install(std::shared_ptr<Environment> environment);

    virtual gfx::Device& device() = 0;
    virtual Screen screen() const = 0;
    virtual RunLoop& runLoop() = 0;
    // Counts seconds since 1970 by the wall clock.
    virtual double wallClock() const = 0;

    // The largest area, in device pixels, that drawn content may grow to; nothing for no limit.
    virtual std::optional<gfx::Size> areaBudget() const { return std::nullopt; }
    // Resident memory of the process and free memory of the machine, bytes; nothing where the host
    // cannot tell.
    virtual std::optional<double> usedMemory() const { return std::nullopt; }
    virtual std::optional<double> availableMemory() const { return std::nullopt; }
    // The host's text for a key; the key itself where the host has none.
    virtual std::string localizedString(const std::string& key) const { return key; }
    // Its form for so many things, for a key whose texts have plurals; see localText().
    virtual std::string localizedCount(const std::string& key, std::int64_t /*count*/) const {
        return localizedString(key);
    }
    // The language of these texts, such as "de"; empty where they are the keys.
    virtual std::string language() const { return {}; }
    // Whether the language is written from right to left: what stands side by side is the other way
    // round then, but for pictures and what is drawn on them. Off at first; the host tells it
    // before it makes a window, or presents another screen.
    bool readsRightToLeft() const { return _readsRightToLeft; }
    void setReadsRightToLeft(bool reads) { _readsRightToLeft = reads; }
    // Shows a modal alert. The default tells the alert at once that its first button was tapped.
    virtual void presentAlert(const Alert& alert);

    // ---- what the user chose. The defaults keep it in memory.
    // Nothing for what was never set.
    virtual std::optional<bool> userDefault(const std::string& key) const;
    virtual void setUserDefault(const std::string& key, bool value);
    // The same for texts.
    virtual std::optional<std::string> userSetting(const std::string& key) const;
    virtual void setUserSetting(const std::string& key, const std::string& text);

    // Whether the user wants things to be where they go, instead of watching them go there.
    // Animations then end as they begin, and their completions run at the run loop's next turn. Off
    // at first; the host tells it.
    bool prefersReducedMotion() const { return _prefersReducedMotion; }
    void setPrefersReducedMotion(bool prefers) { _prefersReducedMotion = prefers; }

    // Whether the user's system is dark or light, and how much contrast it asks for. The host tells
    // it, and has its windows drawn anew.
    const Appearance& appearance() const { return _appearance; }
    void setAppearance(const Appearance& appearance);
    // Held weakly; hears of another appearance once it has changed.
    void addAppearanceObserver(const std::weak_ptr<AppearanceObserver>& observer);

    // ---- around the application's windows
    // The first window that was made and still exists; null for none.
    Window* keyWindow() const { return _windows->empty() ? nullptr : _windows->front(); }
    // Those that exist, in the order they were made. Windows enter and leave by themselves; the
    // list outlives the environment for them.
    const std::shared_ptr<std::vector<Window*>>& windows() const { return _windows; }
    virtual void setStatusBarHidden(bool /*hidden*/, bool /*animated*/) {}
    // 0 is dark on light, 1 light on dark.
    virtual void setStatusBarStyle(int /*style*/) {}
    // Whether the user can be asked for a picture of his own.
    virtual bool isPhotoLibraryAvailable() const { return false; }
    // Asks for one; nothing once the user has cancelled that. The default has none to offer and
    // answers at once.
    virtual void pickImage(const std::function<void(std::optional<gfx::ImageRef>)>& picked);
    // The library that pictures are saved in; each call may answer with another object. Null where
    // the host has none.
    virtual std::shared_ptr<PhotoLibrary> makePhotoLibrary() { return nullptr; }
    // Where unfinished works are kept, so that they survive a crash; the environment's own. Null
    // where the host does not keep any.
    virtual WorkStore* workStore() { return nullptr; }

    // Has an assistive technology say something that is not to be seen as a text. The default has
    // none.
    virtual void announce(const std::string& /*text*/) {}

    // Tab has come to an end of what is in the window: whether the focus goes on to what is around
    // it, where there is anything. The default begins anew in the window.
    virtual bool leaveByTab() { return false; }

    // ---- text input
    // The text on the clipboard, empty where there is none; the default has no clipboard.
    virtual std::string clipboardText() { return {}; }
    virtual void setClipboardText(const std::string& /*text*/) {}
    // The text view that has the focus now, null for none: called when the focus, the text or the
    // caret's place has changed, so that a host can show its keyboard and place an input method's
    // window.
    virtual void textInputChanged(TextView* /*focused*/) {}
    // The host tells it the on-screen keyboard's height.
    Keyboard& keyboard() { return _keyboard; }

    // What a room keeps for as long as the environment lives, one object of each class: made when
    // it is first asked for, from the environment where its constructor takes one.
    template <typename T>
    T& attachment();

private:
    Keyboard _keyboard;
    bool _prefersReducedMotion = false;
    bool _readsRightToLeft = false;
    Appearance _appearance;
    std::vector<std::weak_ptr<AppearanceObserver>> _appearanceObservers;
    std::map<std::string, bool> _userDefaults;
    std::map<std::string, std::string> _userSettings;
    std::shared_ptr<std::vector<Window*>> _windows = std::make_shared<std::vector<Window*>>();
    // They are found by their class.
    std::map<const void*, std::shared_ptr<void>> _attachments;
};

// Ask from one source file alone, so that a class has one place whatever libraries are linked.
template <typename T>
T& Environment::attachment() {
    // Its address stands for the class, as type information may be off.
    static char place;
    std::shared_ptr<void>& attached = _attachments[&place];
    if (!attached) {
        if constexpr (std::is_constructible_v<T, Environment&>) {
            attached = std::make_shared<T>(*this);
        } else {
            attached = std::make_shared<T>();
        }
    }
    return *static_cast<T*>(attached.get());
}

}  // namespace kalim::ui
