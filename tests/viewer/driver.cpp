// Works the viewer as a person would: finds its window, moves the mouse, turns the wheel, presses keys. The input goes
// through the system (SendInput), which finds the window under the pointer or with the focus by itself.
//
//     driver find                              waits for the window; prints the top left corner of its picture on the
//                                              screen
//     driver size WIDTH HEIGHT                 makes the picture that large and prints the same
//     driver wheel X Y NOTCHES                 positive is away from the user
//     driver press|release left|right X Y      moves there first
//     driver move X Y
//     driver key CODE                          a virtual key, pressed and released
//     driver status                            prints the text of the status line
//     driver panel                             prints what the panel tells of a particle, its lines joined by ' | '; an
//                                              empty line when it does not show
//     driver open FILE                         opens it by way of the menu's dialog
//     driver message                           waits for a message box, prints its text and closes it
//     driver close                             closes the window and waits until it is gone
//
// Coordinates are those of the picture. Status 1: there is no such window, or it did not come in time.
#include <windows.h>
// After windows.h
#include <commctrl.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

namespace {

constexpr DWORD kPatience = 20000;  // ms

bool Wait(const std::function<bool()>& fulfilled) {
    for (const DWORD start = GetTickCount(); GetTickCount() - start < kPatience; Sleep(5))
        if (fulfilled()) return true;
    return false;
}

HWND Window() { return FindWindowW(L"OrlixViewer", nullptr); }
HWND StatusLine(HWND window) { return FindWindowExW(window, nullptr, STATUSCLASSNAMEW, nullptr); }

LONG StatusHeight(HWND window) {
    RECT status = {};
    GetWindowRect(StatusLine(window), &status);
    return status.bottom - status.top;
}

void PrintOrigin(HWND window) {
    POINT origin = {};
    ClientToScreen(window, &origin);
    std::printf("%ld %ld\n", origin.x, origin.y);
}

bool Find() {
    HWND window = nullptr;
    if (!Wait([&] { return (window = Window()) && IsWindowVisible(window) && StatusLine(window); })) return false;
    SetForegroundWindow(window);
    PrintOrigin(window);
    return true;
}

bool Resize(HWND window, LONG width, LONG height) {
    const LONG clientHeight = height + StatusHeight(window);
    RECT outer = {}, client = {};
    // The menu may break into more lines, or fewer, with another width.
    for (int i = 0; i < 2; ++i) {
        GetWindowRect(window, &outer);
        GetClientRect(window, &client);
        SetWindowPos(window, nullptr, 40, 40, width + (outer.right - outer.left) - client.right,
                     clientHeight + (outer.bottom - outer.top) - client.bottom, SWP_NOZORDER);
    }
    GetClientRect(window, &client);
    PrintOrigin(window);
    return client.right == width && client.bottom == clientHeight;
}

// One event for both, the place and what happens there: the screen's own reports of where the pointer was may come in
// between two. `data` is that of the wheel.
bool Mouse(HWND window, LONG x, LONG y, DWORD event, int data = 0) {
    POINT point = {x, y};
    ClientToScreen(window, &point);
    const int width = GetSystemMetrics(SM_CXSCREEN), height = GetSystemMetrics(SM_CYSCREEN);
    INPUT input = {};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE | event;
    // The screen is 65536 units wide and high.
    input.mi.dx = (point.x * 65536 + 32768) / width;
    input.mi.dy = (point.y * 65536 + 32768) / height;
    input.mi.mouseData = static_cast<DWORD>(data);
    return SendInput(1, &input, sizeof input) == 1;
}

bool SendKey(WORD code, WORD character, DWORD flags) {
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = code;
    input.ki.wScan = character;
    input.ki.dwFlags = flags;
    return SendInput(1, &input, sizeof input) == 1;
}
bool Key(WORD code) { return SendKey(code, 0, 0) && SendKey(code, 0, KEYEVENTF_KEYUP); }
bool Type(char character) {
    const auto code = static_cast<WORD>(character);
    return SendKey(0, code, KEYEVENTF_UNICODE) && SendKey(0, code, KEYEVENTF_UNICODE | KEYEVENTF_KEYUP);
}

HWND Dialog(const wchar_t* title) {
    HWND dialog = nullptr;
    Wait([&] { return (dialog = FindWindowW(L"#32770", title)) && IsWindowVisible(dialog); });
    return dialog;
}

// Ctrl+O, the name, Enter. The name has ASCII characters only.
bool Open(const std::string& file) {
    SendKey(VK_CONTROL, 0, 0);
    Key('O');
    SendKey(VK_CONTROL, 0, KEYEVENTF_KEYUP);
    const HWND dialog = Dialog(L"Open");
    if (!dialog || !Wait([&] { return GetForegroundWindow() == dialog; })) return false;
    for (const char character : file) Type(character);
    Key(VK_RETURN);
    return Wait([&] { return !IsWindow(dialog); });
}

bool Message() {
    const HWND box = Dialog(L"Orlix viewer");
    if (!box) return false;
    wchar_t text[500] = L"";
    for (HWND part = nullptr; (part = FindWindowExW(box, part, L"Static", nullptr));) {
        GetWindowTextW(part, text, 500);
        if (*text) break;
    }
    std::printf("%ls\n", text);
    PostMessageW(box, WM_COMMAND, IDOK, 0);
    return Wait([&] { return !IsWindow(box); });
}

// The control's text lies in its own process, which WM_GETTEXT crosses and SB_GETTEXT does not.
bool Status(HWND window) {
    wchar_t text[200] = L"";
    SendMessageW(StatusLine(window), WM_GETTEXT, 200, reinterpret_cast<LPARAM>(text));
    std::printf("%ls\n", text);
    return true;
}

bool Panel(HWND window) {
    const HWND panel = FindWindowExW(window, nullptr, L"Static", nullptr);
    wchar_t text[300] = L"";
    if (IsWindowVisible(panel)) SendMessageW(panel, WM_GETTEXT, 300, reinterpret_cast<LPARAM>(text));
    for (const wchar_t* c = text; *c; ++c) std::printf(*c == L'\n' ? " | " : "%lc", static_cast<wint_t>(*c));
    std::printf("\n");
    return panel != nullptr;
}

bool Close(HWND window) {
    PostMessageW(window, WM_CLOSE, 0, 0);
    return Wait([&] { return !IsWindow(window); });
}

bool Do(const std::vector<std::string>& words) {
    const auto number = [&](size_t i) { return i < words.size() ? std::atoi(words[i].c_str()) : 0; };
    const std::string& verb = words[0];
    if (verb == "find") return Find();
    if (verb == "message") return Message();
    const HWND window = Window();
    if (!window) return false;
    if (verb == "size") return Resize(window, number(1), number(2));
    if (verb == "status") return Status(window);
    if (verb == "panel") return Panel(window);
    if (verb == "open" && words.size() == 2) return Open(words[1]);
    if (verb == "close") return Close(window);
    if (verb == "key") return Key(static_cast<WORD>(number(1)));
    if (verb == "move") return Mouse(window, number(1), number(2), 0);
    if (verb == "wheel") return Mouse(window, number(1), number(2), MOUSEEVENTF_WHEEL, number(3) * WHEEL_DELTA);
    const bool left = words.size() > 1 && words[1] == "left";
    if (verb == "press")
        return Mouse(window, number(2), number(3), left ? MOUSEEVENTF_LEFTDOWN : MOUSEEVENTF_RIGHTDOWN);
    if (verb == "release") return Mouse(window, number(2), number(3), left ? MOUSEEVENTF_LEFTUP : MOUSEEVENTF_RIGHTUP);
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    return !words.empty() && Do(words) ? 0 : 1;
}
