#include <SDL.h>
#include <SDL_syswm.h>
#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>
#include <dlfcn.h>

#include <cstdint>
#include <map>
#include <string_view>
#include <vector>

#include "kalimkit/host/sdl/Pens.h"

// Tablets of an X server. SDL makes mouse events of the pointer that a pen moves; what the pen's
// own device tells comes beside them, over a connection of this unit's own: the events of a slave
// device reach whoever selects them, whatever grabs its master has.

namespace kalim {

namespace {

// The pen moves the pointer that long after its last event, milliseconds.
constexpr std::uint64_t penTime = 60;

// The functions of the X libraries that are used, where the system has them.
struct XInput {
    XInput() {
        void* const x = ::dlopen("libX11.so.6", RTLD_NOW | RTLD_LOCAL);
        void* const input = ::dlopen("libXi.so.6", RTLD_NOW | RTLD_LOCAL);
        if (!x || !input) return;
        find(x, "XOpenDisplay", open);
        find(x, "XCloseDisplay", close);
        find(x, "XQueryExtension", queryExtension);
        find(x, "XInternAtom", atom);
        find(x, "XPending", pending);
        find(x, "XNextEvent", next);
        find(x, "XGetEventData", getData);
        find(x, "XFreeEventData", freeData);
        find(x, "XSync", sync);
        find(x, "XSetErrorHandler", setErrorHandler);
        find(input, "XIQueryVersion", queryVersion);
        find(input, "XIQueryDevice", queryDevice);
        find(input, "XIFreeDeviceInfo", freeDevices);
        find(input, "XISelectEvents", select);
        isWhole = _missing == 0;
    }

    bool isWhole = false;
    decltype(&XOpenDisplay) open = nullptr;
    decltype(&XCloseDisplay) close = nullptr;
    decltype(&XQueryExtension) queryExtension = nullptr;
    decltype(&XInternAtom) atom = nullptr;
    decltype(&XPending) pending = nullptr;
    decltype(&XNextEvent) next = nullptr;
    decltype(&XGetEventData) getData = nullptr;
    decltype(&XFreeEventData) freeData = nullptr;
    decltype(&XSync) sync = nullptr;
    decltype(&XSetErrorHandler) setErrorHandler = nullptr;
    decltype(&XIQueryVersion) queryVersion = nullptr;
    decltype(&XIQueryDevice) queryDevice = nullptr;
    decltype(&XIFreeDeviceInfo) freeDevices = nullptr;
    decltype(&XISelectEvents) select = nullptr;

private:
    template <typename Function>
    void find(void* library, const char* name, Function& function) {
        function = reinterpret_cast<Function>(::dlsym(library, name));
        if (!function) ++_missing;
    }

    int _missing = 0;
};

const XInput& xInput() {
    static const XInput input;
    return input;
}

// While it lives, what the server refuses does not end the program, as it does otherwise: a tablet
// that is listed may be unplugged by the time that it is listened to.
class Leniency {
public:
    explicit Leniency(Display* display)
        : _display(display),
          _before(xInput().setErrorHandler([](Display*, XErrorEvent*) { return 0; })) {}
    ~Leniency() {
        xInput().sync(_display, False);
        xInput().setErrorHandler(_before);
    }
    Leniency(const Leniency&) = delete;
    Leniency& operator=(const Leniency&) = delete;

private:
    Display* _display;
    XErrorHandler _before;
};

class X11Pens : public Pens {
public:
    X11Pens(Display* display, Window window, int extension)
        : _display(display), _window(window), _extension(extension) {
        const auto named = [&](const char* name) { return xInput().atom(_display, name, False); };
        _pressure = named("Abs Pressure");
        _tiltX = named("Abs Tilt X");
        _tiltY = named("Abs Tilt Y");
        unsigned char bits[XIMaskLen(XI_LASTEVENT)] = {};
        XISetMask(bits, XI_HierarchyChanged);
        XIEventMask mask{XIAllDevices, sizeof(bits), bits};
        xInput().select(_display, _window, &mask, 1);
        findPens();
    }
    ~X11Pens() override { xInput().close(_display); }
    X11Pens(const X11Pens&) = delete;
    X11Pens& operator=(const X11Pens&) = delete;

    std::optional<ui::TouchContact> contact() override {
        while (xInput().pending(_display) > 0) {
            XEvent event;
            xInput().next(_display, &event);
            XGenericEventCookie& cookie = event.xcookie;
            if (cookie.type != GenericEvent || cookie.extension != _extension) continue;
            if (!xInput().getData(_display, &cookie)) continue;
            take(cookie);
            xInput().freeData(_display, &cookie);
        }
        const bool isNear = _isDown || (_hasMoved && SDL_GetTicks64() - _time < penTime);
        return isNear ? std::optional(_contact) : std::nullopt;
    }

private:
    // Tablets may be plugged in at any time.
    void take(const XGenericEventCookie& cookie) {
        if (cookie.evtype == XI_HierarchyChanged) return findPens();
        const auto& event = *static_cast<const XIDeviceEvent*>(cookie.data);
        const auto pen = _pens.find(event.deviceid);
        if (pen == _pens.end()) return;
        if (cookie.evtype != XI_Motion) _isDown = cookie.evtype == XI_ButtonPress;
        std::vector<std::pair<int, double>> values;
        const double* value = event.valuators.values;
        for (int axis = 0; axis < event.valuators.mask_len * 8; ++axis) {
            if (XIMaskIsSet(event.valuators.mask, axis)) values.emplace_back(axis, *value++);
        }
        _contact = penContact(pen->second, values, _contact);
        _time = SDL_GetTicks64();
        _hasMoved = true;
    }

    void findPens() {
        const Leniency leniency(_display);
        _pens.clear();
        _isDown = false;
        int count = 0;
        XIDeviceInfo* const devices = xInput().queryDevice(_display, XIAllDevices, &count);
        if (!devices) return;
        for (int i = 0; i < count; ++i) {
            const PenAxes axes = axesOf(devices[i]);
            if (devices[i].use != XISlavePointer || !axes.pressure) continue;
            _pens[devices[i].deviceid] = axes;
            listenTo(devices[i].deviceid);
        }
        xInput().freeDevices(devices);
    }

    // Touch screens may measure a pressure, too, and are no pens: they tell of touches themselves.
    PenAxes axesOf(const XIDeviceInfo& device) const {
        PenAxes axes;
        for (int i = 0; i < device.num_classes; ++i) {
            if (device.classes[i]->type == XITouchClass) return {};
            if (device.classes[i]->type != XIValuatorClass) continue;
            const auto& value = *reinterpret_cast<const XIValuatorClassInfo*>(device.classes[i]);
            const PenAxis axis{value.number, value.min, value.max};
            if (value.label == _pressure) axes.pressure = axis;
            if (value.label == _tiltX) axes.tiltX = axis;
            if (value.label == _tiltY) axes.tiltY = axis;
        }
        return axes;
    }

    void listenTo(int device) const {
        unsigned char bits[XIMaskLen(XI_LASTEVENT)] = {};
        for (const int kind : {XI_Motion, XI_ButtonPress, XI_ButtonRelease})
            XISetMask(bits, kind);
        XIEventMask mask{device, sizeof(bits), bits};
        xInput().select(_display, _window, &mask, 1);
    }

    Display* _display;
    Window _window;
    int _extension;
    Atom _pressure = None;
    Atom _tiltX = None;
    Atom _tiltY = None;
    std::map<int, PenAxes> _pens;
    // As the last of its events has told.
    ui::TouchContact _contact;
    bool _isDown = false;
    bool _hasMoved = false;
    std::uint64_t _time = 0;
};

}  // namespace

std::unique_ptr<Pens> Pens::ofWindow(::SDL_Window* window) {
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    if (!SDL_GetWindowWMInfo(window, &info) || info.subsystem != SDL_SYSWM_X11) return nullptr;
    if (!xInput().isWhole) return nullptr;
    Display* const display = xInput().open(nullptr);
    if (!display) return nullptr;
    int extension = 0;
    int event = 0;
    int error = 0;
    int major = 2;
    int minor = 2;
    if (!xInput().queryExtension(display, "XInputExtension", &extension, &event, &error) ||
        xInput().queryVersion(display, &major, &minor) != Success) {
        xInput().close(display);
        return nullptr;
    }
    return std::make_unique<X11Pens>(display, info.info.x11.window, extension);
}

}  // namespace kalim
