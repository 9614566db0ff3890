#include "kalimkit/host/sdl/DesktopPortal.h"

#include <dbus/dbus.h>
#include <dlfcn.h>

#include <cstdint>
#include <cstdlib>

namespace kalim {

namespace {

// The functions of the bus's library that are used, where the system has it.
struct Bus {
    Bus() {
        void* const library = ::dlopen("libdbus-1.so.3", RTLD_NOW | RTLD_LOCAL);
        if (!library) return;
        find(library, "dbus_bus_get_private", get);
        find(library, "dbus_connection_set_exit_on_disconnect", setExit);
        find(library, "dbus_connection_close", close);
        find(library, "dbus_connection_unref", release);
        find(library, "dbus_connection_send_with_reply_and_block", ask);
        find(library, "dbus_message_new_method_call", makeCall);
        find(library, "dbus_message_append_args", append);
        find(library, "dbus_message_unref", releaseMessage);
        find(library, "dbus_message_iter_init", iterate);
        find(library, "dbus_message_iter_recurse", enter);
        find(library, "dbus_message_iter_get_arg_type", typeOf);
        find(library, "dbus_message_iter_get_basic", take);
        isWhole = _missing == 0;
    }

    bool isWhole = false;
    decltype(&dbus_bus_get_private) get = nullptr;
    decltype(&dbus_connection_set_exit_on_disconnect) setExit = nullptr;
    decltype(&dbus_connection_close) close = nullptr;
    decltype(&dbus_connection_unref) release = nullptr;
    decltype(&dbus_connection_send_with_reply_and_block) ask = nullptr;
    decltype(&dbus_message_new_method_call) makeCall = nullptr;
    decltype(&dbus_message_append_args) append = nullptr;
    decltype(&dbus_message_unref) releaseMessage = nullptr;
    decltype(&dbus_message_iter_init) iterate = nullptr;
    decltype(&dbus_message_iter_recurse) enter = nullptr;
    decltype(&dbus_message_iter_get_arg_type) typeOf = nullptr;
    decltype(&dbus_message_iter_get_basic) take = nullptr;

private:
    template <typename Function>
    void find(void* library, const char* name, Function& function) {
        function = reinterpret_cast<Function>(::dlsym(library, name));
        if (!function) ++_missing;
    }

    int _missing = 0;
};

// The number inside the variants of an answer.
std::optional<std::uint32_t> numberIn(const Bus& bus, DBusMessage* answer) {
    DBusMessageIter place;
    if (!bus.iterate(answer, &place)) return std::nullopt;
    while (bus.typeOf(&place) == DBUS_TYPE_VARIANT) {
        DBusMessageIter inner;
        bus.enter(&place, &inner);
        place = inner;
    }
    if (bus.typeOf(&place) != DBUS_TYPE_UINT32) return std::nullopt;
    std::uint32_t number = 0;
    bus.take(&place, &number);
    return number;
}

std::optional<std::uint32_t> askFor(const Bus& bus, DBusConnection* connection, const char* key) {
    // A desktop that is slower shows its colours late, not its windows.
    constexpr int milliseconds = 200;
    DBusMessage* const call =
        bus.makeCall("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
                     "org.freedesktop.portal.Settings", "Read");
    if (!call) return std::nullopt;
    const char* space = "org.freedesktop.appearance";
    bus.append(call, DBUS_TYPE_STRING, &space, DBUS_TYPE_STRING, &key, DBUS_TYPE_INVALID);
    DBusMessage* const answer = bus.ask(connection, call, milliseconds, nullptr);
    bus.releaseMessage(call);
    if (!answer) return std::nullopt;
    const auto number = numberIn(bus, answer);
    bus.releaseMessage(answer);
    return number;
}

}  // namespace

std::optional<ui::Appearance> portalAppearance() {
    const char* const address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    if (!address || !*address) return std::nullopt;
    static const Bus bus;
    DBusConnection* const connection = bus.isWhole ? bus.get(DBUS_BUS_SESSION, nullptr) : nullptr;
    if (!connection) return std::nullopt;
    bus.setExit(connection, 0);
    const auto scheme = askFor(bus, connection, "color-scheme");
    const auto contrast = scheme ? askFor(bus, connection, "contrast") : std::nullopt;
    bus.close(connection);
    bus.release(connection);
    // 1 is dark, 2 is light, and anything else says nothing.
    if (scheme != 1U && scheme != 2U && contrast != 1U) return std::nullopt;
    return ui::Appearance{scheme == 1U, contrast == 1U};
}

}  // namespace kalim
