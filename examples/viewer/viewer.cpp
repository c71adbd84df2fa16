// viewer [FILE]: shows an image in a window, as an example of how a program uses the library on Windows.
//
//     wheel               zooms about the pointer         Ctrl+O   opens a file
//     drag, left button   moves the picture               S        spreads the greys over what the image uses
//     drag, right button  zooms to the rectangle          0        shows the whole image
//     arrow keys          move the picture
//
// An image object is its own picture. It knows which part of it is shown (IPictureExZoom), draws that part on a window
// (Render) and maps points of the window to pixels. So there is no drawing and no scaling here; what the program adds is the
// rubber band, and that is drawn by the picture's leave, from its event (IPictureExEvents).
//
// One rule holds everywhere: points of the window are mapped as the picture was drawn LAST. So whoever changes the view has
// it drawn at once (Viewer::Redraw) and not at the next opportunity, when another message may have come in between.
#include <orlix/client.hpp>

#include <windows.h>
#include <windowsx.h>
// After windows.h
#include <commctrl.h>
#include <commdlg.h>
#include <ocidl.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <string>

namespace {

constexpr wchar_t kTitle[] = L"Orlix viewer";
constexpr COLORREF kSurround = RGB(40, 44, 52);
constexpr COLORREF kBandColor = RGB(255, 255, 0);
constexpr double kTrim = 0.001;  // share of the darkest and of the brightest pixels that snapping leaves out of account
constexpr int kSmallestBand = 4;  // device pixels; a smaller rectangle was a click
constexpr int kPanSteps = 16;     // of the library's steps, for an arrow key

enum Command : WORD { kOpen = 100, kExit, kSnap, kReset, kLeft, kRight, kUp, kDown };

// -------------------------------------------------------------------------------------------------------- rubber band

// Called by the picture whenever it has been drawn. While somebody is connected the picture is drawn into memory first, and
// the context given here is that memory: picture and frame appear on the screen together, so nothing flickers.
class RubberBand final : public IPictureExEvents {
public:
    RECT frame = {};  // in the window's coordinates, which are those of the context; empty: none

    STDMETHODIMP OnRender(IPictureEx*, void* hdcDest, RenderSourceType) noexcept override {
        const auto context = static_cast<HDC>(hdcDest);
        if (IsRectEmpty(&frame)) return S_OK;
        SetDCBrushColor(context, kBandColor);
        FrameRect(context, &frame, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
        return S_OK;
    }

    STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
        *object = iid == __uuidof(IUnknown) || iid == __uuidof(IPictureExEvents) ? this : nullptr;
        return *object ? S_OK : E_NOINTERFACE;
    }
    // Part of the viewer, which disconnects it before both go: no references are counted.
    STDMETHODIMP_(ULONG) AddRef() noexcept override { return 2; }
    STDMETHODIMP_(ULONG) Release() noexcept override { return 1; }
};

// ------------------------------------------------------------------------------------------------------------- viewer

struct Point {
    double x, y;
};

// WM_PAINT's context; the window counts as drawn even when drawing fails, or it would be asked for again for ever.
class PaintScope {
public:
    explicit PaintScope(HWND window) : window_(window), context_(BeginPaint(window, &paint_)) {}
    ~PaintScope() { EndPaint(window_, &paint_); }
    PaintScope(const PaintScope&) = delete;
    PaintScope& operator=(const PaintScope&) = delete;
    HDC context() const { return context_; }

private:
    HWND window_;
    PAINTSTRUCT paint_;
    HDC context_;
};

class Viewer {
public:
    // One object, three of its interfaces.
    explicit Viewer(HWND window)
        : window_(window),
          status_(CreateWindowW(STATUSCLASSNAMEW, L"Ctrl+O opens an image", WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP, 0,
                                0, 0, 0, window, nullptr, nullptr, nullptr)),
          image_(orlix::CreateObject<IImageVPAExPlus>("Orlix.Image")),
          picture_(orlix::Cast<IPictureExZoom>(image_)),
          display_(orlix::Cast<IDisplayProcess>(image_)) {
        orlix::Check(picture_->put_Surround(kSurround), picture_);
        orlix::Check(orlix::Cast<IConnectionPointContainer>(image_)->FindConnectionPoint(__uuidof(IPictureExEvents),
                                                                                         events_.Out()));
        orlix::Check(events_->Advise(&band_, &connection_));
    }
    ~Viewer() { events_->Unadvise(connection_); }
    Viewer(const Viewer&) = delete;
    Viewer& operator=(const Viewer&) = delete;

    // A file that cannot be read leaves the image that is shown.
    void Open(const std::wstring& file) {
        orlix::Check(image_->CreateFromFile(orlix::Text(orlix::ToUtf8(file))), image_);
        Check(picture_->ResetZoom());  // it would be kept for an image of the same size
        SetWindowTextW(window_, (file.substr(file.find_last_of(L"\\/") + 1) + L" - " + kTitle).c_str());
        Redraw();
    }

    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam) {
        const POINT point = {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
        switch (message) {
            case WM_PAINT:
                Paint();
                return 0;
            case WM_ERASEBKGND:
                return 1;  // the picture and its surround cover everything
            case WM_SIZE:
                SendMessageW(status_, WM_SIZE, 0, 0);
                InvalidateRect(window_, nullptr, FALSE);
                return 0;
            case WM_COMMAND:
                Do(LOWORD(wParam));
                return 0;
            case WM_MOUSEWHEEL:
                Wheel(point, GET_WHEEL_DELTA_WPARAM(wParam));
                return 0;
            case WM_LBUTTONDOWN:
                BeginDrag(Drag::Pan, point);
                return 0;
            case WM_RBUTTONDOWN:
                BeginDrag(Drag::Band, point);
                return 0;
            case WM_MOUSEMOVE:
                MovePointer(point);
                return 0;
            case WM_LBUTTONUP:
                MovePointer(point);
                EndDrag(Drag::Pan);
                return 0;
            case WM_RBUTTONUP:
                MovePointer(point);
                EndDrag(Drag::Band);
                return 0;
            case WM_CAPTURECHANGED:
                ForgetDrag();
                return 0;
            default:
                return DefWindowProcW(window_, message, wParam, lParam);
        }
    }

private:
    enum class Drag { None, Pan, Band };

    HRESULT Check(HRESULT result) const { return orlix::Check(result, picture_); }

    // --- what is shown

    // The window without its status line.
    RECT View() const {
        RECT view = {}, status = {};
        GetClientRect(window_, &view);
        GetWindowRect(status_, &status);
        view.bottom = std::max(0L, view.bottom - (status.bottom - status.top));
        return view;
    }

    bool HasImage() const {
        LONG width = 0;
        Check(picture_->get_Width(&width));
        return width > 0;
    }

    void Paint() {
        const PaintScope paint(window_);
        const RECT view = View();
        if (HasImage())
            Check(picture_->Render(paint.context(), 0, 0, view.right, view.bottom));
        else
            FillRect(paint.context(), &view, static_cast<HBRUSH>(GetStockObject(DKGRAY_BRUSH)));
    }

    void Redraw() {
        InvalidateRect(window_, nullptr, FALSE);
        UpdateWindow(window_);
        ShowPixel();
    }

    // The pixel under the pointer, in the status line.
    void ShowPixel() {
        if (!HasImage()) return;
        double x = 0, y = 0, value = 0, zoom = 0;
        OLE_COLOR color = 0;
        const bool onImage = Check(picture_->GetPixelInfo(pointer_.x, pointer_.y, &x, &y, &value, &color)) == S_OK;
        Check(picture_->get_ZoomFactor(&zoom));
        wchar_t text[100];
        if (onImage)
            swprintf(text, std::size(text), L"x %.0f   y %.0f   value %g   zoom %.2f", std::floor(x + 0.5),
                     std::floor(y + 0.5), value, zoom);
        else
            swprintf(text, std::size(text), L"zoom %.2f", zoom);
        SendMessageW(status_, SB_SETTEXTW, 0, reinterpret_cast<LPARAM>(text));
    }

    // --- zoom and pan

    // Whole numbers are the centres of pixels.
    Point PixelUnder(POINT point) const {
        Point pixel = {};
        double value = 0;
        OLE_COLOR color = 0;
        Check(picture_->GetPixelInfo(point.x, point.y, &pixel.x, &pixel.y, &value, &color));
        return pixel;
    }
    Point PixelInTheMiddle() const {
        RECT shown = {};
        Check(picture_->get_DestRect(&shown));
        return PixelUnder({(shown.left + shown.right) / 2, (shown.top + shown.bottom) / 2});
    }
    // A centre beside the image is refused, and the former one stays: no failure here.
    void PutCentre(Point pixel) {
        picture_->put_ZoomCenterX(pixel.x);
        picture_->put_ZoomCenterY(pixel.y);
    }

    // ZoomInFromPoint and ZoomOutFromPoint bring the pixel under the pointer into the middle of the view. Here it is to stay
    // under the pointer, so the centre is put where the former middle is then: nearer to that pixel when the scale has grown.
    void ZoomAbout(POINT point, bool in) {
        const Point fixed = PixelUnder(point), middle = PixelInTheMiddle();
        double before = 1, after = 1;
        Check(picture_->get_ZoomFactor(&before));
        Check(in ? picture_->ZoomInFromPoint(point.x, point.y) : picture_->ZoomOutFromPoint(point.x, point.y));
        Check(picture_->get_ZoomFactor(&after));
        const double growth = after / before;
        PutCentre({fixed.x + (middle.x - fixed.x) / growth, fixed.y + (middle.y - fixed.y) / growth});
        Redraw();
    }

    void Wheel(POINT screenPoint, int delta) {
        if (!HasImage()) return;
        ScreenToClient(window_, &screenPoint);
        pointer_ = screenPoint;
        // Fine wheels turn by parts of a notch.
        for (wheel_ += delta; wheel_ >= WHEEL_DELTA; wheel_ -= WHEEL_DELTA) ZoomAbout(pointer_, true);
        for (; wheel_ <= -WHEEL_DELTA; wheel_ += WHEEL_DELTA) ZoomAbout(pointer_, false);
    }

    // All of the rectangle, as large as possible.
    void ZoomTo(const RECT& rectangle) {
        const LONG width = rectangle.right - rectangle.left, height = rectangle.bottom - rectangle.top;
        Check(picture_->ZoomFromRectangle(rectangle.left, rectangle.top, width, height));
        // That has put the centre. The factor it leaves is not the magnification but the SHARE of the image that was selected
        // (0.1 for a tenth of it), the smaller of the shares of width and height; and a factor below 1 shows the whole image.
        // The magnification is the reciprocal, and must be that of the larger share for the whole rectangle to be seen.
        LONG imageWidth = 0, imageHeight = 0;
        TCoordinateMap toPixel = {};
        Check(picture_->get_Width(&imageWidth));
        Check(picture_->get_Height(&imageHeight));
        Check(picture_->get_DestToPixelCoords(&toPixel));
        const double share =
            std::max((toPixel.Matrix.A11 * width + 1) / imageWidth, (toPixel.Matrix.A22 * height + 1) / imageHeight);
        Check(picture_->put_ZoomFactor(std::max(1 / share, 1.0)));
        Redraw();
    }

    void BeginDrag(Drag drag, POINT point) {
        if (drag_ != Drag::None || !HasImage()) return;
        drag_ = drag;
        first_ = last_ = point;
        SetCapture(window_);
        // The centre may lie nearer to an edge of the image than half a view, which then does not move before the centre has
        // come out of there. So a drag starts from what is seen.
        if (drag == Drag::Pan) PutCentre(PixelInTheMiddle());
    }

    void MovePointer(POINT point) {
        pointer_ = point;
        if (drag_ == Drag::Pan) {
            Check(picture_->PanScrollFromPoints(last_.x, last_.y, point.x, point.y));
            last_ = point;
            Redraw();
        } else if (drag_ == Drag::Band) {
            RECT shown = {};
            Check(picture_->get_DestRect(&shown));
            const RECT drawn = {std::min(first_.x, point.x), std::min(first_.y, point.y), std::max(first_.x, point.x),
                                std::max(first_.y, point.y)};
            IntersectRect(&band_.frame, &drawn, &shown);
            Redraw();
        } else {
            ShowPixel();
        }
    }

    void EndDrag(Drag drag) {
        if (drag_ != drag) return;
        const RECT frame = band_.frame;
        ReleaseCapture();  // ForgetDrag
        if (drag == Drag::Band && frame.right - frame.left >= kSmallestBand &&
            frame.bottom - frame.top >= kSmallestBand)
            ZoomTo(frame);
    }

    void ForgetDrag() {
        if (drag_ == Drag::None) return;
        drag_ = Drag::None;
        band_.frame = {};
        Redraw();
    }

    // --- commands

    void Do(WORD command) {
        if (command == kOpen) return AskAndOpen();
        if (command == kExit) {
            DestroyWindow(window_);
            return;
        }
        if (!HasImage()) return;
        const auto pan = [&](HRESULT (STDMETHODCALLTYPE IPictureExZoom::*step)()) {
            for (int i = 0; i < kPanSteps; ++i) Check((picture_.get()->*step)());
        };
        switch (command) {
            case kSnap:
                orlix::Check(display_->SnapDisplayRange(kTrim, kTrim, FALSE), display_);
                break;
            case kReset:
                Check(picture_->ResetZoom());
                break;
            case kLeft:
                pan(&IPictureExZoom::PanLeft);
                break;
            case kRight:
                pan(&IPictureExZoom::PanRight);
                break;
            case kUp:
                pan(&IPictureExZoom::ScrollUp);
                break;
            case kDown:
                pan(&IPictureExZoom::ScrollDown);
                break;
            default:
                return;
        }
        Redraw();
    }

    void AskAndOpen() {
        std::wstring file(32768, L'\0');
        OPENFILENAMEW question = {};
        question.lStructSize = sizeof question;
        question.hwndOwner = window_;
        question.lpstrFilter = L"Images\0*.png;*.bmp;*.pgm;*.ppm\0All files\0*.*\0";
        question.lpstrFile = file.data();
        question.nMaxFile = static_cast<DWORD>(file.size());
        question.Flags = OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
        if (GetOpenFileNameW(&question)) Open(file.c_str());
    }

    HWND window_;
    HWND status_;
    orlix::ComPtr<IImageVPAExPlus> image_;
    orlix::ComPtr<IPictureExZoom> picture_;
    orlix::ComPtr<IDisplayProcess> display_;
    orlix::ComPtr<IConnectionPoint> events_;
    DWORD connection_ = 0;
    RubberBand band_;
    Drag drag_ = Drag::None;
    POINT first_ = {}, last_ = {};  // of the drag
    POINT pointer_ = {};
    int wheel_ = 0;  // turned, but less than a notch
};

// ------------------------------------------------------------------------------------------------------------- window

void ShowError(HWND window, const std::exception& error) {
    MessageBoxW(window, orlix::ToUtf16(error.what()).c_str(), kTitle, MB_ICONERROR);
}

// No exception may leave it: the system calls it.
LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    Viewer* const viewer = reinterpret_cast<Viewer*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == WM_DESTROY) PostQuitMessage(0);
    if (!viewer) return DefWindowProcW(window, message, wParam, lParam);
    try {
        return viewer->Handle(message, wParam, lParam);
    } catch (const std::exception& error) {
        ShowError(window, error);
        return 0;
    }
}

HMENU MakeMenu() {
    const HMENU file = CreatePopupMenu(), view = CreatePopupMenu(), bar = CreateMenu();
    AppendMenuW(file, MF_STRING, kOpen, L"&Open...\tCtrl+O");
    AppendMenuW(file, MF_STRING, kExit, L"E&xit");
    AppendMenuW(view, MF_STRING, kSnap, L"&Snap display range\tS");
    AppendMenuW(view, MF_STRING, kReset, L"&Reset zoom\t0");
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(file), L"&File");
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(view), L"&View");
    return bar;
}

HWND MakeWindow(HINSTANCE instance) {
    InitCommonControls();
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
    const HWND window = MakeWindow(instance);
    Viewer viewer(window);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&viewer));
    ShowWindow(window, show);

    int count = 0;
    wchar_t** const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    try {
        if (count > 1) viewer.Open(arguments[1]);
    } catch (const std::exception& error) {
        ShowError(window, error);
    }
    LocalFree(arguments);

    ACCEL keys[] = {{FVIRTKEY | FCONTROL, 'O', kOpen}, {FVIRTKEY, 'S', kSnap},       {FVIRTKEY, '0', kReset},
                    {FVIRTKEY, VK_LEFT, kLeft},        {FVIRTKEY, VK_RIGHT, kRight}, {FVIRTKEY, VK_UP, kUp},
                    {FVIRTKEY, VK_DOWN, kDown}};
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
