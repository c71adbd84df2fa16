// viewer [FILE]: shows an image in a window, as an example of how a program uses the library on Windows.
//
//     wheel               zooms about the pointer         Ctrl+O   opens a file
//     drag, left button   moves the picture               S        spreads the greys over what the image uses
//     drag, right button  zooms to the rectangle          0        shows the whole image
//     arrow keys          move the picture            D, B     finds dark, or bright, particles
//     click               shows a particle's numbers  Escape   forgets the particles
//
// Here are the window, its menu and its messages. What is done with the image stands in image_view.hpp, what is done
// with its particles in particles.hpp.
#include "image_view.hpp"

#include <windows.h>
#include <windowsx.h>
// After windows.h
#include <commctrl.h>
#include <commdlg.h>

#include <exception>
#include <stdexcept>
#include <string>

namespace {

constexpr wchar_t kTitle[] = L"Orlix viewer";

enum Command : WORD { kOpen = 100, kExit, kSnap, kReset, kLeft, kRight, kUp, kDown, kDark, kBright, kForget };

// What the library reported, in its words.
void ShowError(HWND window, const std::exception& error) {
    static bool showing = false;  // the window goes on meanwhile, and may fail again
    if (std::exchange(showing, true)) return;
    MessageBoxW(window, orlix::ToUtf16(error.what()).c_str(), kTitle, MB_ICONERROR);
    showing = false;
}

void Open(HWND window, ImageView& view, const std::wstring& file) {
    view.Open(file);
    SetWindowTextW(window, (file.substr(file.find_last_of(L"\\/") + 1) + L" - " + kTitle).c_str());
}

void AskAndOpen(HWND window, ImageView& view) {
    std::wstring file(32768, L'\0');
    OPENFILENAMEW question = {};
    question.lStructSize = sizeof question;
    question.hwndOwner = window;
    question.lpstrFilter = L"Images\0*.png;*.bmp;*.pgm;*.ppm\0All files\0*.*\0";
    question.lpstrFile = file.data();
    question.nMaxFile = static_cast<DWORD>(file.size());
    question.Flags = OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    if (GetOpenFileNameW(&question)) Open(window, view, file.c_str());
}

void Do(WORD command, HWND window, ImageView& view) {
    if (command == kOpen) return AskAndOpen(window, view);
    if (command == kExit) {
        DestroyWindow(window);
        return;
    }
    if (!view.HasImage()) return;
    switch (command) {
        case kSnap:
            return view.SnapDisplayRange();
        case kReset:
            return view.ResetZoom();
        case kLeft:
            return view.Pan(&IPictureExZoom::PanLeft);
        case kRight:
            return view.Pan(&IPictureExZoom::PanRight);
        case kUp:
            return view.Pan(&IPictureExZoom::ScrollUp);
        case kDown:
            return view.Pan(&IPictureExZoom::ScrollDown);
        case kDark:
            return view.FindParticles(true);
        case kBright:
            return view.FindParticles(false);
        case kForget:
            return view.ForgetParticles();
    }
}

// True for what is thereby done.
bool HandleMouse(UINT message, WPARAM wParam, POINT point, HWND window, ImageView& view) {
    if (message < WM_MOUSEFIRST || message > WM_MOUSELAST || !view.HasImage()) return false;
    switch (message) {
        case WM_MOUSEWHEEL:
            ScreenToClient(window, &point);  // unlike the others it tells the point of the screen
            view.Wheel(point, GET_WHEEL_DELTA_WPARAM(wParam));
            return true;
        case WM_MOUSEMOVE:
            view.MovePointer(point);
            return true;
        case WM_LBUTTONDOWN:
            view.BeginDrag(ImageView::Drag::Pan, point);
            return true;
        case WM_LBUTTONUP:
            view.EndDrag(ImageView::Drag::Pan, point);
            return true;
        case WM_RBUTTONDOWN:
            view.BeginDrag(ImageView::Drag::Band, point);
            return true;
        case WM_RBUTTONUP:
            view.EndDrag(ImageView::Drag::Band, point);
            return true;
        default:
            return false;
    }
}

LRESULT Handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam, ImageView& view) {
    if (HandleMouse(message, wParam, {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}, window, view)) return 0;
    switch (message) {
        case WM_PAINT:
            view.Paint();
            return 0;
        case WM_ERASEBKGND:
            return 1;  // nothing is to be seen before the picture, which covers everything
        case WM_SIZE:
            view.Resize();
            return 0;
        case WM_COMMAND:
            Do(LOWORD(wParam), window, view);
            return 0;
        case WM_CAPTURECHANGED:
            view.ForgetDrag();
            return 0;
        case WM_DESTROY:
            PostQuitMessage(0);
            return 0;
        default:
            return DefWindowProcW(window, message, wParam, lParam);
    }
}

// The system calls it, and no exception may reach the system.
LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* const view = reinterpret_cast<ImageView*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (!view) return DefWindowProcW(window, message, wParam, lParam);
    try {
        return Handle(window, message, wParam, lParam, *view);
    } catch (const std::exception& error) {
        ShowError(window, error);
        return 0;
    }
}

HMENU MakeMenu() {
    const HMENU file = CreatePopupMenu(), view = CreatePopupMenu(), particles = CreatePopupMenu(), bar = CreateMenu();
    AppendMenuW(file, MF_STRING, kOpen, L"&Open...\tCtrl+O");
    AppendMenuW(file, MF_STRING, kExit, L"E&xit");
    AppendMenuW(view, MF_STRING, kSnap, L"&Snap display range\tS");
    AppendMenuW(view, MF_STRING, kReset, L"&Reset zoom\t0");
    AppendMenuW(particles, MF_STRING, kDark, L"Find &dark ones\tD");
    AppendMenuW(particles, MF_STRING, kBright, L"Find &bright ones\tB");
    AppendMenuW(particles, MF_STRING, kForget, L"&Forget them\tEsc");
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(file), L"&File");
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(view), L"&View");
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(particles), L"&Particles");
    return bar;
}

HWND MakeWindow(HINSTANCE instance) {
    WNDCLASSW description = {};
    description.lpfnWndProc = WindowProcedure;
    description.hInstance = instance;
    description.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32515));  // a cross
    description.lpszClassName = L"OrlixViewer";
    RegisterClassW(&description);
    return CreateWindowW(description.lpszClassName, kTitle, WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT,
                         CW_USEDEFAULT, 800, 600, nullptr, MakeMenu(), instance, nullptr);
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int show) try {
    const orlix::Apartment apartment;
    InitCommonControls();
    const HWND window = MakeWindow(instance);
    if (!window) throw std::runtime_error("The system gives no window.");
    const HWND status =
        CreateWindowW(STATUSCLASSNAMEW, L"Ctrl+O opens an image", WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP, 0, 0, 0, 0,
                      window, nullptr, instance, nullptr);
    const HWND panel = CreateWindowW(L"STATIC", L"", WS_CHILD | WS_BORDER | SS_NOPREFIX, 0, 0, 0, 0, window, nullptr,
                                     instance, nullptr);
    SendMessageW(panel, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), FALSE);
    ImageView view(window, status, panel);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&view));
    ShowWindow(window, show);

    int count = 0;
    wchar_t** const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    try {
        if (count > 1) Open(window, view, arguments[1]);
    } catch (const std::exception& error) {
        ShowError(window, error);
    }
    LocalFree(arguments);

    ACCEL keys[] = {{FVIRTKEY | FCONTROL, 'O', kOpen}, {FVIRTKEY, 'S', kSnap},       {FVIRTKEY, '0', kReset},
                    {FVIRTKEY, VK_LEFT, kLeft},        {FVIRTKEY, VK_RIGHT, kRight}, {FVIRTKEY, VK_UP, kUp},
                    {FVIRTKEY, VK_DOWN, kDown},        {FVIRTKEY, 'D', kDark},       {FVIRTKEY, 'B', kBright},
                    {FVIRTKEY, VK_ESCAPE, kForget}};
    const HACCEL accelerators = CreateAcceleratorTableW(keys, static_cast<int>(std::size(keys)));
    MSG message = {};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (TranslateAcceleratorW(window, accelerators, &message)) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    DestroyAcceleratorTable(accelerators);
    return static_cast<int>(message.wParam);
} catch (const std::exception& error) {
    ShowError(nullptr, error);
    return 1;
}
