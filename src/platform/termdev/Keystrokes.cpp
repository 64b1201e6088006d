#include "platform/termdev/Keystrokes.h"

namespace platform::termdev {
namespace {

constexpr char kForeign = '\xFF';

/// The characters of a key without and with shift, its HID usage and its code in an input event.
struct Key {
    char plain;
    char shifted;
    uchar usage;
    unsigned short code;
};

constexpr Key kKeys[] = {
    {'1', '!', 0x1E, KEY_1},         {'2', '@', 0x1F, KEY_2},         {'3', '#', 0x20, KEY_3},
    {'4', '$', 0x21, KEY_4},         {'5', '%', 0x22, KEY_5},         {'6', '^', 0x23, KEY_6},
    {'7', '&', 0x24, KEY_7},         {'8', '*', 0x25, KEY_8},         {'9', '(', 0x26, KEY_9},
    {'0', ')', 0x27, KEY_0},         {'-', '_', 0x2D, KEY_MINUS},     {'=', '+', 0x2E, KEY_EQUAL},
    {';', ':', 0x33, KEY_SEMICOLON}, {',', '<', 0x36, KEY_COMMA},     {'.', '>', 0x37, KEY_DOT},
    {'/', '?', 0x38, KEY_SLASH},     {'b', 'B', 0x05, KEY_B},         {'e', 'E', 0x08, KEY_E},
    {'\r', '\r', 0x28, KEY_ENTER},   {'\r', '\r', 0x58, KEY_KPENTER}, {'1', '1', 0x59, KEY_KP1},
    {'2', '2', 0x5A, KEY_KP2},       {'3', '3', 0x5B, KEY_KP3},       {'4', '4', 0x5C, KEY_KP4},
    {'5', '5', 0x5D, KEY_KP5},       {'6', '6', 0x5E, KEY_KP6},       {'7', '7', 0x5F, KEY_KP7},
    {'8', '8', 0x60, KEY_KP8},       {'9', '9', 0x61, KEY_KP9},       {'0', '0', 0x62, KEY_KP0},
    {'+', '+', 0x57, KEY_KPPLUS},
};

template <typename Number>
char find(Number Key::*member, Number number, bool isShifted) {
    for (const Key& key : kKeys) {
        if (key.*member == number) return isShifted ? key.shifted : key.plain;
    }
    return kForeign;
}

}  // namespace

char Keystrokes::character(const input_event& event) {
    if (event.type != EV_KEY) return 0;
    if (event.code == KEY_LEFTSHIFT || event.code == KEY_RIGHTSHIFT) {
        isShifted_ = event.value != 0;
        return 0;
    }
    constexpr int kPressed = 1;
    if (event.value != kPressed) return 0;
    // Switches that some readers press around a swipe.
    if (event.code == KEY_CAPSLOCK || event.code == KEY_NUMLOCK) return 0;
    return find(&Key::code, event.code, isShifted_);
}

char Keystrokes::ofUsage(uchar usage, bool isShifted) {
    return find(&Key::usage, usage, isShifted);
}

}  // namespace platform::termdev
