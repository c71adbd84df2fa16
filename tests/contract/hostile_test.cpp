// Clients' objects that an image, a bitmap or its blobs ask, at their worst: in any of the calls that they get, AddRef
// and Release included, they change whatever they reach, let go of it all, fail, or lie.
#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

constexpr LONG kWidth = 70, kHeight = 6;

// The calls that clients' objects get, counted; `at` is told the number of each. Calls made meanwhile do not count.
struct Calls {
    int count = 0;
    std::function<void(int)> at;
    bool inside = false;
    bool isAddRef = false;  // the one that `at` is told of

    void Next(bool addRef = false) {
        if (std::exchange(inside, true)) return;
        const int number = count++;
        isAddRef = addRef;
        if (at) at(number);
        inside = false;
    }
};

// Any interface, answered by an object of the library behind it; what it answers can be falsified.
template <class I>
class Hostile : public CountedObject<Refusing<I>> {
    using Base = CountedObject<Refusing<I>>;

public:
    Calls* calls = nullptr;
    ComPtr<I> real;
    HRESULT result = S_OK;  // instead of an answer

    STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
        calls->Next();
        return Base::QueryInterface(iid, object);
    }
    STDMETHODIMP_(ULONG) AddRef() noexcept override {
        const ULONG references = Base::AddRef();
        calls->Next(true);
        return references;
    }
    STDMETHODIMP_(ULONG) Release() noexcept override {
        calls->Next();
        return Base::Release();
    }

protected:
    // Forwards a call and falsifies what it wrote. The object is used after the client was let loose.
    template <class... Parameters>
    HRESULT Answer(HRESULT (STDMETHODCALLTYPE I::*method)(Parameters...), const std::function<void(Parameters...)>& lie,
                   std::type_identity_t<Parameters>... arguments) noexcept {
        calls->Next();
        if (result != S_OK) return result;
        const HRESULT answer = (real.get()->*method)(arguments...);
        if (lie) lie(arguments...);
        return answer;
    }
};

class HostileBitmap final : public Hostile<IBitmap> {
public:
    std::function<void(BITMAP*)> lie;
    STDMETHODIMP get_Bitmap(BITMAP* value) noexcept override { return Answer(&IBitmap::get_Bitmap, lie, value); }
};

class HostileElement final : public Hostile<IStructuringElement> {
    using I = IStructuringElement;

public:
    std::function<void(LONG*)> lieOfNumber;
    std::function<void(SElement**)> lieOfList;
    STDMETHODIMP get_NumberOfElements(LONG* n) noexcept override {
        return Answer(&I::get_NumberOfElements, lieOfNumber, n);
    }
    STDMETHODIMP get_Elements(SElement** list) noexcept override { return Answer(&I::get_Elements, lieOfList, list); }
};

class HostileRegion final : public Hostile<IRegionOfInterest> {
    using I = IRegionOfInterest;

public:
    std::function<void(RECT*)> lieOfBox;
    std::function<void(LONG, SRun**, SRun**)> lieOfRuns;
    STDMETHODIMP get_BoundingBox(RECT* box) noexcept override { return Answer(&I::get_BoundingBox, lieOfBox, box); }
    STDMETHODIMP GetRowRuns(LONG row, SRun** begin, SRun** end) noexcept override {
        return Answer(&I::GetRowRuns, lieOfRuns, row, begin, end);
    }
};

class HostileImage final : public Hostile<IImageVPA> {
    using I = IImageVPA;

public:
    std::function<void(LONG*, LONG*, LONG*)> lieOfSize;
    std::function<void(LONG, LONG*)> lieOfType;
    std::function<void(LONG, void**, VPAEntry**)> lieOfPixels;
    STDMETHODIMP Dimensions(LONG* bands, LONG* width, LONG* height) noexcept override {
        return Answer(&I::Dimensions, lieOfSize, bands, width, height);
    }
    STDMETHODIMP DataType(LONG band, LONG* type) noexcept override {
        return Answer(&I::DataType, lieOfType, band, type);
    }
    STDMETHODIMP VPA(LONG band, void** base, VPAEntry** table) noexcept override {
        return Answer(&I::VPA, lieOfPixels, band, base, table);
    }
    STDMETHODIMP GetCoords(TCoordinateMap* map) noexcept override { return Answer(&I::GetCoords, {}, map); }
};

// A bitmap with a region, its blobs, and the objects that methods take. The calls of the others end with the scene.
struct Scene {
    Calls calls;
    ComPtr<IBitmapProcess> bitmap = NewBitmap(kWidth, kHeight);
    ComPtr<IBlobs> blobs;
    ComPtr<IImageVPAExPlus> pixels = NewImage<float>(kWidth, kHeight);
    ComPtr<IOrlixImageProcess> process = Cast<IOrlixImageProcess>(pixels);
    ComPtr<HostileBitmap> other = MakeCounted<HostileBitmap>();
    ComPtr<HostileElement> element = MakeCounted<HostileElement>(), element2 = MakeCounted<HostileElement>();
    ComPtr<HostileRegion> region = MakeCounted<HostileRegion>();
    ComPtr<HostileImage> image = MakeCounted<HostileImage>();
    std::string before;

    Scene() {
        Begin(other, ComPtr<IBitmap>(NewBitmap(kWidth, kHeight).get()));
        for (auto* each : {&element, &element2}) {
            auto places = CreateObject<IStructuringElement>("Orlix.StructuringElement");
            places->AddElement(0, 0);
            places->AddElement(each == &element ? 1 : -2, 1);
            Begin(*each, places);
        }
        Begin(region, ComPtr<IRegionOfInterest>(RectangleOf(400, 300, 2, 1, 380, 280).get()));
        const auto source = NewImage<float>(kWidth, kHeight);
        source.Fill([](LONG x, LONG y) { return x == 20 ? kNaN : static_cast<double>(x % 7 * y); });
        Begin(image, ComPtr<IImageVPA>(source.get()));
        bitmap->DrawDisk(20, 3, 2.5, DT_On);
        bitmap->DrawDisk(60, 2, 2, DT_On);
        other->real->DrawRectangle(0, 2, 66, 4, DT_On);
        blobs = Get(bitmap, &IBitmapProcess::FindBlobs, CT_8);
        SetRegion(region.get());
        before = State();
        calls.count = 0;
    }
    ~Scene() {
        calls.at = nullptr;
        SetRegion(nullptr);
        LetGo();
    }
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    // The pixels of both, or of the bitmap alone while the image is empty.
    std::string State() const {
        if (LONG type = 0; pixels->DataType(0, &type) != S_OK) return RowsOf(bitmap.get());
        const std::vector<float> values = PixelsOf<float>(pixels);
        return RowsOf(bitmap.get()) +
               std::string(reinterpret_cast<const char*>(values.data()), values.size() * sizeof(float));
    }
    void Create(LONG width, LONG height, LONG type = DT_Float) {
        if (bitmap) bitmap->Create(width, height, 1);
        if (pixels) pixels->Create(width, height, 1, type, 1);
    }
    void SetRegion(IRegionOfInterest* to) {
        if (bitmap) bitmap->put_RegionOfInterest(to);
        if (process) process->put_RegionOfInterest(to);
    }
    void LetGo() {
        bitmap = nullptr;
        blobs = nullptr;
        pixels = nullptr;
        process = nullptr;
        other = nullptr;
        element = element2 = nullptr;
        region = nullptr;
        image = nullptr;
    }

private:
    template <class Object, class I>
    void Begin(const ComPtr<Object>& object, const ComPtr<I>& real) {
        object->calls = &calls;
        object->real = real;
    }
};

struct HostileCall {
    const char* name;
    HRESULT (*call)(Scene&);
};

// Arguments are looked up before anything is called, as the scene may lose them.
template <class Object, class I, class... Arguments>
HRESULT On(const ComPtr<Object>& object, HRESULT (STDMETHODCALLTYPE I::*method)(Arguments...),
           std::type_identity_t<Arguments>... arguments) {
    return object ? (object.get()->*method)(arguments...) : E_POINTER;
}

using B = IBitmapProcess;
using I = IImageVPAExPlus;
using P = IOrlixImageProcess;
constexpr HostileCall kHostileCalls[] = {
    {"CreateFromImage", [](Scene& s) { return On(s.pixels, &I::CreateFromImage, s.image.get(), 0); }},
    {"CreateFromSubImage",
     [](Scene& s) { return On(s.pixels, &I::CreateFromSubImage, s.image.get(), 0, -1, 1, 5, 4); }},
    {"CastEquals", [](Scene& s) { return On(s.process, &P::CastEquals, s.image.get(), 0); }},
    {"PlusEquals", [](Scene& s) { return On(s.process, &P::PlusEquals, s.image.get(), 0); }},
    {"Gaussian3x3", [](Scene& s) { return On(s.process, &P::Gaussian3x3, s.image.get(), 0); }},
    {"ExtremumSharpening", [](Scene& s) { return On(s.process, &P::ExtremumSharpening, 4, s.image.get(), 0); }},
    {"ScalarPlusEquals", [](Scene& s) { return On(s.process, &P::ScalarPlusEquals, 1.0); }},
    {"CorrectPlanar",
     [](Scene& s) {
         SPlanarFit plane = {};
         return On(s.process, &P::CorrectPlanar, &plane);
     }},
    {"Threshold",
     [](Scene& s) {
         ComPtr<IBitmap> bits;
         return On(s.process, &P::Threshold, -1.0, 3.0, 1, bits.Out());
     }},
    {"CreateFromBitmap", [](Scene& s) { return On(s.bitmap, &IBitmap::CreateFromBitmap, s.other.get()); }},
    {"put_RegionOfInterest", [](Scene& s) { return On(s.bitmap, &B::put_RegionOfInterest, s.region.get()); }},
    {"Invert", [](Scene& s) { return On(s.bitmap, &B::Invert); }},
    {"ShiftEquals", [](Scene& s) { return On(s.bitmap, &B::ShiftEquals, 3, 1); }},
    {"Dilate", [](Scene& s) { return On(s.bitmap, &B::Dilate, CT_8, 2); }},
    {"CloseRectangle", [](Scene& s) { return On(s.bitmap, &B::CloseRectangle, 5, 3); }},
    {"OpenDisk", [](Scene& s) { return On(s.bitmap, &B::OpenDisk, 1.5); }},
    {"Split", [](Scene& s) { return On(s.bitmap, &B::Split, 0.5, 0.0, CT_8); }},
    {"ThresholdLocally", [](Scene& s) { return On(s.bitmap, &B::ThresholdLocally, s.image.get(), 0, 2, 1.0, 0.0, 1); }},
    {"XorEquals", [](Scene& s) { return On(s.bitmap, &B::XorEquals, s.other.get()); }},
    {"Reconstruct", [](Scene& s) { return On(s.bitmap, &B::Reconstruct, s.other.get(), CT_4); }},
    {"CloseElement", [](Scene& s) { return On(s.bitmap, &B::CloseElement, s.element.get()); }},
    {"HitOrMiss", [](Scene& s) { return On(s.bitmap, &B::HitOrMiss, s.element.get(), s.element2.get()); }},
    {"ApplyTable",
     [](Scene& s) {
         static unsigned char table[512] = {1, 1, 1};
         LONG passes = 0;
         return On(s.bitmap, &B::ApplyTable, table, 2, &passes);
     }},
    {"get_PixelCount",
     [](Scene& s) {
         LONG count = 0;
         const HRESULT result = On(s.bitmap, &B::get_PixelCount, &count);
         EXPECT_TRUE(count >= 0 && count <= 300 * 200) << count;
         return result;
     }},
    {"FindBlobs",
     [](Scene& s) {
         ComPtr<IBlobs> found;
         const HRESULT result = On(s.bitmap, &B::FindBlobs, CT_8, found.Out());
         EXPECT_EQ(result == S_OK, static_cast<bool>(found));
         return result;
     }},
    {"MeasureGray", [](Scene& s) { return On(s.blobs, &IBlobs::MeasureGray, s.image.get(), 0, 31); }},
    {"GetLevelMeasurements",
     [](Scene& s) {
         SLevelMeasurements measured[2] = {};
         return On(s.blobs, &IBlobs::GetLevelMeasurements, s.image.get(), 0, 2.5, 0, 2, measured);
     }},
    {"get_LevelOutline",
     [](Scene& s) {
         ComPtr<IPolygon> outline;
         const HRESULT result = On(s.blobs, &IBlobs::get_LevelOutline, 0, s.image.get(), 0, kNaN, -1, outline.Out());
         EXPECT_EQ(result == S_OK, static_cast<bool>(outline));
         return result;
     }},
};

// What a client does in a call, and in how many that follow it (later: 0, 1, ...).
struct Deed {
    const char* name;
    void (*act)(Scene&, const HostileCall& method, int later);
    bool changesPixels = true;
    int times = 1;
};
constexpr Deed kDeeds[] = {
    {"nothing", [](Scene&, const HostileCall&, int) {}, false},
    {"makes the bitmap and the image smaller", [](Scene& s, const HostileCall&, int) { s.Create(3, 2); }},
    {"makes it larger", [](Scene& s, const HostileCall&, int) { s.Create(300, 200); }},
    {"makes it larger for a while",
     [](Scene& s, const HostileCall&, int i) { i == 0 ? s.Create(300, 200) : s.Create(kWidth, kHeight); }, true, 3},
    {"makes it anew", [](Scene& s, const HostileCall&, int) { s.Create(kWidth, kHeight); }},
    {"gives it other types", [](Scene& s, const HostileCall&, int i) { s.Create(2, 2, i == 0 ? DT_WORD : DT_Double); },
     true, 2},
    {"makes its own bitmap anew",
     [](Scene& s, const HostileCall&, int) { s.other ? void(s.other->real->Create(2, 2, 1)) : void(); }, false},
    {"takes the region away", [](Scene& s, const HostileCall&, int) { s.SetRegion(nullptr); }, false},
    {"sets a region of another size",
     [](Scene& s, const HostileCall&, int) { s.SetRegion(CircleOf(900, 900, 450, 450, 449).get()); }, false},
    {"calls the same method", [](Scene& s, const HostileCall& m, int) { m.call(s); }},
    // Not when a reference is taken: that of another argument may be the next one.
    {"lets go of everything", [](Scene& s, const HostileCall&, int) { s.calls.isAddRef ? void() : s.LetGo(); }},
    {"fails",
     [](Scene& s, const HostileCall&, int) {
         s.other->result = s.element->result = s.element2->result = s.region->result = s.image->result = E_OUTOFMEMORY;
     },
     false},
};

TEST(HostileClients, MayDoAnythingInAnyCall) {
    for (const HostileCall& method : kHostileCalls) {
        int most = 0;
        for (const Deed& deed : kDeeds) {
            int calls = 1;
            for (int k = 0; k < calls; ++k) {
                SCOPED_TRACE(std::string(method.name) + ": " + deed.name + " in call " + std::to_string(k));
                Scene scene;
                scene.calls.at = [&](int number) {
                    if (number >= k && number < k + deed.times) deed.act(scene, method, number - k);
                };
                const HRESULT result = method.call(scene);
                scene.calls.at = nullptr;
                EXPECT_TRUE(result == S_OK || result == S_FALSE || FAILED(result)) << result;
                calls = std::max(calls, std::min(scene.calls.count, 24));
                if (!scene.bitmap) continue;
                if (!deed.changesPixels && FAILED(result)) {
                    EXPECT_EQ(scene.before, scene.State());
                }
                // Nothing is left behind.
                scene.SetRegion(nullptr);
                scene.Create(5, 4);
                EXPECT_EQ(S_OK, scene.process->ScalarEquals(1));
                EXPECT_EQ(S_OK, scene.bitmap->Invert());
                EXPECT_EQ(20, Get(scene.bitmap, &IBitmapProcess::get_PixelCount));
            }
            most = std::max(most, calls);
        }
        EXPECT_GT(most, 1) << method.name;
    }
}

TEST(HostileClients, AreNotBelieved) {
    static SRun odd[4] = {RunOf(5, 2), RunOf(kLeast, kMost), RunOf(kMost, kLeast), RunOf(9, 9)};
    const auto later = [](auto* pointer, ptrdiff_t bytes) {
        return reinterpret_cast<decltype(pointer)>(reinterpret_cast<char*>(pointer) + bytes);
    };
    using Lie = std::function<void(Scene&)>;
    const auto ofBitmap = [](void (*lie)(BITMAP&)) {
        return [=](Scene& s) { s.other->lie = [=](BITMAP* bitmap) { lie(*bitmap); }; };
    };
    const auto ofRuns = [](auto lie) {
        return [=](Scene& s) { s.region->lieOfRuns = [=](LONG, SRun** begin, SRun** end) { lie(*begin, *end); }; };
    };
    const auto ofBox = [](const RECT& box) {
        return [=](Scene& s) { s.region->lieOfBox = [=](RECT* r) { *r = box; }; };
    };
    const auto ofSize = [](auto lie) { return [=](Scene& s) { s.image->lieOfSize = lie; }; };
    const auto ofPixels = [](auto lie) {
        return
            [=](Scene& s) { s.image->lieOfPixels = [=](LONG, void** base, VPAEntry** table) { lie(*base, *table); }; };
    };
    const auto ofNumber = [](LONG number) {
        return [=](Scene& s) { s.element->lieOfNumber = [=](LONG* n) { *n = number; }; };
    };
    const auto ofList = [](auto lie) {
        return [=](Scene& s) { s.element->lieOfList = [=](SElement** l) { *l = lie(*l); }; };
    };
    const std::pair<const char*, Lie> lies[] = {
        {"no bits", ofBitmap([](BITMAP& b) { b.bmBits = nullptr; })},
        {"bits nowhere", ofBitmap([](BITMAP& b) { b.bmBits = reinterpret_cast<void*>(16); })},
        {"negative width", ofBitmap([](BITMAP& b) { b.bmWidth = -70; })},
        {"largest width", ofBitmap([](BITMAP& b) { b.bmWidth = kMost; })},
        {"largest height", ofBitmap([](BITMAP& b) { b.bmHeight = kMost; })},
        {"no height", ofBitmap([](BITMAP& b) { b.bmHeight = 0; })},
        {"short rows", ofBitmap([](BITMAP& b) { b.bmWidthBytes = 8; })},
        {"rows upwards", ofBitmap([](BITMAP& b) { b.bmWidthBytes = -b.bmWidthBytes; })},
        {"bytes for bits", ofBitmap([](BITMAP& b) { b.bmBitsPixel = 8; })},
        {"no planes", ofBitmap([](BITMAP& b) { b.bmPlanes = 0; })},
        {"box of all", ofBox({kLeast, kLeast, kMost, kMost})},
        {"box of nothing", ofBox({kMost, kMost, kLeast, kLeast})},
        {"odd runs", ofRuns([](SRun*& begin, SRun*& end) { begin = odd, end = odd + 4; })},
        {"runs backwards", ofRuns([](SRun*& begin, SRun*& end) { begin = odd + 4, end = odd; })},
        {"no first run", ofRuns([](SRun*& begin, SRun*&) { begin = nullptr; })},
        {"no last run", ofRuns([](SRun*&, SRun*& end) { end = nullptr; })},
        {"runs beside their places", ofRuns([=](SRun*& begin, SRun*& end) { begin = later(odd, 2), end = odd + 2; })},
        {"too many runs",
         ofRuns([](SRun*& begin, SRun*& end) { begin = odd, end = reinterpret_cast<SRun*>(~uintptr_t{7}); })},
        {"no bands", ofSize([](LONG* bands, LONG*, LONG*) { *bands = 0; })},
        {"largest image", ofSize([](LONG* bands, LONG* w, LONG* h) { *bands = *w = *h = kMost; })},
        {"negative image", ofSize([](LONG* bands, LONG* w, LONG* h) { *bands = *w = *h = kLeast; })},
        {"one column less", ofSize([](LONG*, LONG* width, LONG*) { --*width; })},
        {"another size each time", ofSize([n = LONG{0}](LONG*, LONG*, LONG* height) mutable { *height += n++; })},
        {"no columns", ofSize([](LONG*, LONG* width, LONG*) { *width = 0; })},
        {"another type each time",
         [](Scene& s) { s.image->lieOfType = [n = 0](LONG, LONG* type) mutable { *type = n++ ? 77 : *type; }; }},
        {"unknown type", [](Scene& s) { s.image->lieOfType = [](LONG, LONG* type) { *type = 77; }; }},
        {"no pixels", ofPixels([](void*& base, VPAEntry*&) { base = nullptr; })},
        {"no table", ofPixels([](void*&, VPAEntry*& table) { table = nullptr; })},
        {"pixels beside their places", ofPixels([=](void*& base, VPAEntry*&) { base = static_cast<char*>(base) + 1; })},
        {"table beside its place", ofPixels([=](void*&, VPAEntry*& table) { table = later(table, 1); })},
        {"negative number", ofNumber(kLeast)},
        {"largest number", ofNumber(kMost)},
        {"no number", ofNumber(0)},
        {"no list", ofList([](SElement*) { return static_cast<SElement*>(nullptr); })},
        {"list nowhere", ofList([](SElement*) { return reinterpret_cast<SElement*>(16); })},
        {"list beside its place", ofList([=](SElement* list) { return later(list, 1); })},
    };
    for (const auto& [name, lie] : lies) {
        int failures = 0, withoutEffect = 0;
        for (const HostileCall& method : kHostileCalls) {
            SCOPED_TRACE(std::string(method.name) + ": " + name);
            Scene scene;
            lie(scene);
            const HRESULT result = method.call(scene);
            EXPECT_TRUE(result == S_OK || FAILED(result)) << result;
            if (SUCCEEDED(result)) {
                ++withoutEffect;
                continue;
            }
            ++failures;
            // An image made of an unknown type is empty afterwards; State() tells the bitmap's pixels then.
            const bool mayBeEmpty = result == E_FAIL && std::string_view(name) == "unknown type";
            EXPECT_EQ(mayBeEmpty ? scene.before.substr(0, scene.State().size()) : scene.before, scene.State());
        }
        // Odd runs and boxes are clipped, lists without elements refused; everything else fails where it is asked.
        const std::string lenient[] = {"box of all",     "box of nothing", "odd runs",
                                       "runs backwards", "no first run",   "no last run"};
        const bool believed = std::find(std::begin(lenient), std::end(lenient), name) != std::end(lenient);
        EXPECT_EQ(believed, failures == 0) << name;
        EXPECT_GT(withoutEffect, 0) << name;
    }
}

}  // namespace
}  // namespace orlix::testing
