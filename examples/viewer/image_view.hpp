// The view of an image in a window: with particles.hpp, everything in this example that uses the library.
//
// An image object is its own picture. It knows which part of it is shown (IPictureExZoom), draws that part on a window
// (Render) and maps points of the window to pixels. So there is no drawing and no scaling here; what the program adds
// are the rubber band and the outlines of particles, drawn from the event that tells of each drawing
// (IPictureExEvents).
//
// One rule holds everywhere: points are mapped as the picture was drawn LAST. So whoever changes the view has it drawn
// at once (Redraw) and not at the next opportunity, when other messages may have come in between.
#ifndef ORLIX_EXAMPLES_IMAGE_VIEW_HPP
#define ORLIX_EXAMPLES_IMAGE_VIEW_HPP

#include <orlix/client.hpp>

#include <windows.h>
// After windows.h
#include <commctrl.h>
#include <ocidl.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <new>
#include <string>

#include "particles.hpp"

// Called by the picture whenever it has been drawn. While somebody is connected the picture is drawn into memory first,
// and the context given here is that memory: picture and frame appear on the screen together, so nothing flickers.
class Overlays final : public IPictureExEvents {
public:
    Particles particles;
    RECT frame = {};  // in the window's coordinates, which are those of the context; empty: none

    STDMETHODIMP OnRender(IPictureEx* picture, void* hdcDest, RenderSourceType) noexcept override {
        const auto context = static_cast<HDC>(hdcDest);
        TCoordinateMap map = {};
        const HRESULT result = picture->get_PixelToDestCoords(&map);
        if (FAILED(result)) return result;
        try {
            particles.Draw(context, map);
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;  // the library called: no exception may get there
        }
        if (IsRectEmpty(&frame)) return S_OK;
        SetDCBrushColor(context, RGB(255, 255, 0));
        FrameRect(context, &frame, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
        return S_OK;
    }

    STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
        *object = iid == __uuidof(IUnknown) || iid == __uuidof(IPictureExEvents) ? this : nullptr;
        return *object ? S_OK : E_NOINTERFACE;
    }
    // Part of the view, which disconnects it before both go: no references are counted.
    STDMETHODIMP_(ULONG) AddRef() noexcept override { return 2; }
    STDMETHODIMP_(ULONG) Release() noexcept override { return 1; }
};

class ImageView {
public:
    enum class Drag { None, Pan, Band };

    // The window shows the image above its status line, and the panel, over the picture, what is selected there.
    ImageView(HWND window, HWND status, HWND panel)
        : window_(window),
          status_(status),
          panel_(panel),
          image_(orlix::CreateObject<IImageVPAExPlus>("Orlix.Image")),
          picture_(orlix::Cast<IPictureExZoom>(image_)),  // the same object
          display_(orlix::Cast<IDisplayProcess>(image_)) {
        Check(picture_->put_Surround(RGB(40, 44, 52)));
        const auto connections = orlix::Cast<IConnectionPointContainer>(image_);
        orlix::Check(connections->FindConnectionPoint(__uuidof(IPictureExEvents), events_.Out()));
        orlix::Check(events_->Advise(&overlays_, &connection_));
    }
    ~ImageView() { events_->Unadvise(connection_); }
    ImageView(const ImageView&) = delete;
    ImageView& operator=(const ImageView&) = delete;

    bool HasImage() const {
        LONG width = 0;
        Check(picture_->get_Width(&width));
        return width > 0;
    }

    // A file that cannot be read leaves the image that is shown.
    void Open(const std::wstring& file) {
        orlix::Check(image_->CreateFromFile(orlix::Text(orlix::ToUtf8(file))), image_);
        ForgetParticles();
        ResetZoom();  // it would be kept for an image of the same size
    }

    void Paint() {
        const bool hasImage = HasImage();
        RECT view = {}, status = {};
        GetClientRect(window_, &view);
        GetWindowRect(status_, &status);
        view.bottom = std::max(0L, view.bottom - (status.bottom - status.top));
        PAINTSTRUCT paint;
        const HDC context = BeginPaint(window_, &paint);
        HRESULT result = S_OK;
        if (hasImage)
            result = picture_->Render(context, 0, 0, view.right, view.bottom);
        else
            FillRect(context, &view, static_cast<HBRUSH>(GetStockObject(DKGRAY_BRUSH)));
        EndPaint(window_, &paint);
        Check(result);
    }

    void Resize() {
        SendMessageW(status_, WM_SIZE, 0, 0);  // it finds its place
        ShowNumbers();
        InvalidateRect(window_, nullptr, FALSE);
    }

    // ------------------------------------------------------------------------------------------------------- commands

    // The darkest and the brightest pixel used become black and white; a thousandth of the pixels may lie beyond.
    void SnapDisplayRange() {
        orlix::Check(display_->SnapDisplayRange(0.001, 0.001, FALSE), display_);
        Redraw();
    }

    // What is darker, or brighter, than the rest.
    void FindParticles(bool dark) {
        overlays_.particles.Find(image_, dark);
        ShowNumbers();
        Redraw();
    }

    void ForgetParticles() {
        overlays_.particles = {};
        ShowNumbers();
        Redraw();
    }

    void ResetZoom() {
        Check(picture_->ResetZoom());
        Redraw();
    }

    // By one of PanLeft, PanRight, ScrollUp and ScrollDown, whose steps are small: one pixel.
    void Pan(HRESULT (STDMETHODCALLTYPE IPictureExZoom::*step)()) {
        for (int i = 0; i < 16; ++i) Check((picture_.get()->*step)());
        Redraw();
    }

    // ---------------------------------------------------------------------------------------------------------- mouse

    // By notches, of which a fine wheel turns parts.
    void Wheel(POINT point, int delta) {
        pointer_ = point;
        for (wheel_ += delta; wheel_ >= WHEEL_DELTA; wheel_ -= WHEEL_DELTA) ZoomAbout(point, true);
        for (; wheel_ <= -WHEEL_DELTA; wheel_ += WHEEL_DELTA) ZoomAbout(point, false);
    }

    void BeginDrag(Drag drag, POINT point) {
        if (drag_ != Drag::None) return;
        drag_ = drag;
        first_ = last_ = point;
        SetCapture(window_);
        // The centre may lie nearer to an edge of the image than half a view, which then does not move before the
        // centre has come out of there. So a drag starts from what is seen.
        if (drag == Drag::Pan) PutCentre(MiddleOfView());
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
            IntersectRect(&overlays_.frame, &drawn, &shown);
            Redraw();
        } else {
            ShowPixel();
        }
    }

    void EndDrag(Drag drag, POINT point) {
        if (drag_ != drag) return;
        MovePointer(point);
        constexpr LONG kSmallest = 4;  // less was a click
        const RECT frame = overlays_.frame;
        const bool click = std::abs(point.x - first_.x) < kSmallest && std::abs(point.y - first_.y) < kSmallest;
        ReleaseCapture();  // the system then calls for ForgetDrag
        if (drag == Drag::Pan && click) SelectParticle(point);
        if (drag == Drag::Band && frame.right - frame.left >= kSmallest && frame.bottom - frame.top >= kSmallest)
            ZoomTo(frame);
    }

    void ForgetDrag() {
        if (drag_ == Drag::None) return;
        drag_ = Drag::None;
        overlays_.frame = {};
        Redraw();
    }

private:
    struct Point {
        double x, y;
    };

    HRESULT Check(HRESULT result) const { return orlix::Check(result, picture_); }

    void Redraw() {
        InvalidateRect(window_, nullptr, FALSE);
        UpdateWindow(window_);
        ShowPixel();
    }

    // The pixel under the pointer, in the status line.
    void ShowPixel() {
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

    // The middle of the device pixel counts.
    void SelectParticle(POINT point) {
        const Point pixel = ToImage(point.x + 0.5, point.y + 0.5);
        overlays_.particles.Select(pixel.x, pixel.y);
        ShowNumbers();
        Redraw();
    }

    // In a panel as large as its text, in the half of the view where the pointer is not; hidden without a text.
    void ShowNumbers() {
        const std::wstring numbers = overlays_.particles.Numbers();
        RECT text = {}, view = {};
        const HDC context = GetDC(panel_);
        SelectObject(context, reinterpret_cast<HFONT>(SendMessageW(panel_, WM_GETFONT, 0, 0)));
        DrawTextW(context, numbers.c_str(), -1, &text, DT_CALCRECT);
        ReleaseDC(panel_, context);
        GetClientRect(window_, &view);
        constexpr LONG kBorder = 1, kApart = 8;
        const LONG width = text.right + 2 * kBorder, height = text.bottom + 2 * kBorder;
        const LONG left = pointer_.x < view.right / 2 ? view.right - width - kApart : kApart;
        SetWindowPos(panel_, HWND_TOP, left, kApart, width, height,
                     SWP_NOACTIVATE | SWP_NOCOPYBITS | (numbers.empty() ? SWP_HIDEWINDOW : SWP_SHOWWINDOW));
        SetWindowTextW(panel_, numbers.c_str());
    }

    // Device pixels have their edges at whole numbers, pixels of the image their centres.
    Point ToImage(double x, double y) const {
        TCoordinateMap map = {};
        Check(picture_->get_DestToPixelCoords(&map));
        const TMatrix& m = map.Matrix;
        return {map.OrgX + m.A11 * x + m.A12 * y, map.OrgY + m.A21 * x + m.A22 * y};
    }
    Point MiddleOfView() const {
        RECT shown = {};
        Check(picture_->get_DestRect(&shown));
        return ToImage((shown.left + shown.right) / 2.0, (shown.top + shown.bottom) / 2.0);
    }
    // A centre beside the image is refused, and the former one stays: no failure here.
    void PutCentre(Point pixel) {
        picture_->put_ZoomCenterX(pixel.x);
        picture_->put_ZoomCenterY(pixel.y);
    }

    // ZoomInFromPoint and ZoomOutFromPoint bring the pixel under the pointer into the middle of the view. Here it is to
    // stay under the pointer, so the centre is put where the former middle is then: nearer to that pixel when the scale
    // has grown.
    void ZoomAbout(POINT point, bool in) {
        const Point fixed = ToImage(point.x + 0.5, point.y + 0.5), middle = MiddleOfView();
        double before = 1, after = 1;
        Check(picture_->get_ZoomFactor(&before));
        Check(in ? picture_->ZoomInFromPoint(point.x, point.y) : picture_->ZoomOutFromPoint(point.x, point.y));
        Check(picture_->get_ZoomFactor(&after));
        const double growth = after / before;
        PutCentre({fixed.x + (middle.x - fixed.x) / growth, fixed.y + (middle.y - fixed.y) / growth});
        Redraw();
    }

    // All of the rectangle, as large as possible.
    void ZoomTo(const RECT& rectangle) {
        const LONG width = rectangle.right - rectangle.left, height = rectangle.bottom - rectangle.top;
        Check(picture_->ZoomFromRectangle(rectangle.left, rectangle.top, width, height));
        // That has put the centre. The factor it leaves is not the magnification but the SHARE of the image that was
        // selected (0.1 for a tenth of it), the smaller of the shares of width and height; and a factor below 1 shows
        // the whole image. The magnification is the reciprocal, and must be that of the larger share for the whole
        // rectangle to be seen.
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

    const HWND window_, status_, panel_;
    orlix::ComPtr<IImageVPAExPlus> image_;
    orlix::ComPtr<IPictureExZoom> picture_;
    orlix::ComPtr<IDisplayProcess> display_;
    orlix::ComPtr<IConnectionPoint> events_;
    DWORD connection_ = 0;
    Overlays overlays_;
    Drag drag_ = Drag::None;
    POINT first_ = {}, last_ = {};  // of the drag
    POINT pointer_ = {};
    int wheel_ = 0;  // turned, but less than a notch
};

#endif
