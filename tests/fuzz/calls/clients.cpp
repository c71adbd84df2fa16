#include "fuzz/calls/clients.hpp"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <set>
#include <utility>

#include "fuzz/calls/addresses.hpp"
#include "fuzz/calls/heap.hpp"
#include "image/source_image.hpp"
#include "module/class_factory.hpp"
#include "support/refusing.hpp"

namespace orlix::fuzz {
namespace {

std::set<IUnknown*>& LiveClients() {
    static std::set<IUnknown*> clients;
    return clients;
}

// Base of all: calls the world back whatever it is asked. Within a call it keeps itself: what the world does then may
// let go of it.
template <class... Interfaces>
class Client : public CountedObject<Refusing<Interfaces>...> {
    using Counted = CountedObject<Refusing<Interfaces>...>;

public:
    STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
        const Entry entry(*this, "QueryInterface");
        if (!object) return E_POINTER;
        *object = nullptr;
        if (world_.choices().Chance(8)) return world_.choices().Chance(128) ? S_OK : E_NOINTERFACE;  // S_OK without one
        return Answer(iid, object);
    }
    STDMETHODIMP_(ULONG) AddRef() noexcept override {
        Counted::AddRef();
        const Entry entry(*this, "AddRef");
        return 0;
    }
    STDMETHODIMP_(ULONG) Release() noexcept override {
        const Entry entry(*this, "Release");
        return Counted::Release() - 1;
    }

protected:
    Client(World& world, const char* name) : world_(world), name_(name) {
        ++world_.liveClients;
        (LiveClients().insert(static_cast<Refusing<Interfaces>*>(this)), ...);
    }
    ~Client() override {
        --world_.liveClients;
        (LiveClients().erase(static_cast<Refusing<Interfaces>*>(this)), ...);
    }

    virtual HRESULT Answer(REFIID iid, void** object) noexcept { return Counted::QueryInterface(iid, object); }
    // Methods that the library has no business with.
    HRESULT Refused(const char* method) noexcept override {
        const Entry entry(*this, method);
        return E_NOTIMPL;
    }

    class Entry {
    public:
        Entry(Client& client, const char* method) noexcept : client_(client) {
            client_.Counted::AddRef();
            client_.CallBack(method);
        }
        ~Entry() { client_.Counted::Release(); }
        Entry(const Entry&) = delete;
        Entry& operator=(const Entry&) = delete;

    private:
        ClientHeap heap_;
        Client& client_;
    };

    // What a call answers: mostly that it went well.
    HRESULT Verdict() noexcept {
        if (!world_.choices().Chance(14)) return S_OK;
        constexpr HRESULT kVerdicts[] = {S_FALSE, E_FAIL, E_NOTIMPL, E_POINTER, DISP_E_EXCEPTION, 2, E_OUTOFMEMORY};
        return kVerdicts[world_.choices().Below(std::size(kVerdicts))];
    }
    // Now and then another number than the true one.
    LONG Told(LONG truth) noexcept { return world_.choices().Chance(10) ? world_.Long() : truth; }
    // A method that answers a value.
    template <class T>
    HRESULT Tell(const char* method, T* to, const std::type_identity_t<T>& value) noexcept {
        const Entry entry(*this, method);
        *to = value;
        return Verdict();
    }

    World& world_;
    bool quiet_ = false;  // does not call back

private:
    void LetGo() noexcept override { CallBack("last Release"); }
    void CallBack(const char* method) noexcept {
        if (!quiet_) world_.Called(name_, method);
    }

    const char* name_;
};

class Region final : public Client<IRegionOfInterest> {
public:
    explicit Region(World& world)
        : Client(world, "region"),
          bottom_(static_cast<LONG>(world.choices().Below(40))),
          kind_(world.choices().Byte()) {}

    STDMETHODIMP get_Width(LONG* hVal) noexcept override { return Tell("get_Width", hVal, Told(20)); }
    STDMETHODIMP get_Height(LONG* hVal) noexcept override { return Tell("get_Height", hVal, Told(20)); }
    STDMETHODIMP get_BoundingBox(RECT* hVal) noexcept override {
        return Tell("get_BoundingBox", hVal, {Told(0), Told(0), Told(INT_MAX), Told(bottom_)});
    }
    STDMETHODIMP GetRowRuns(LONG, SRun** hBegin, SRun** hEnd) noexcept override {
        const Entry entry(*this, "GetRowRuns");
        Choices& choices = world_.choices();
        *hBegin = *hEnd = nullptr;
        if (choices.Chance(10)) return Verdict();
        const size_t count = kind_ < 160 ? 1 : choices.Below(6);
        runs_ = std::vector<SRun>(count);  // what was handed out before is gone
        LONG start = static_cast<LONG>(choices.Below(4));
        for (SRun& run : runs_) {
            const LONG stop = start + static_cast<LONG>(choices.Below(40));
            run.m_lStart = kind_ < 224 ? start : world_.Long();
            run.m_lStop = kind_ < 240 ? stop : world_.Long();
            start = kind_ < 208 ? stop + 2 : start;  // or overlapping
        }
        *hBegin = runs_.data();
        *hEnd = runs_.data() + runs_.size();
        if (choices.Chance(4)) std::swap(*hBegin, *hEnd);
        // More than any row has: nobody may look at them.
        if (choices.Chance(3)) *hEnd = reinterpret_cast<SRun*>(UINTPTR_MAX - 7);
        if (choices.Chance(3)) *hBegin = reinterpret_cast<SRun*>(reinterpret_cast<uintptr_t>(*hBegin) | 1);
        return Verdict();
    }

private:
    LONG bottom_;
    int kind_;
    std::vector<SRun> runs_;
};

// Its memory is as large as the largest image that it ever claims to be, and its table stays within that memory.
class Image final : public Client<IImageVPA, IImageFile, IPixelAccess> {
public:
    explicit Image(World& world)
        : Client(world, "image"),
          samples_(world.Memory(size_t{kSide} * kSide * 8)),
          table_(kSide + 2 * kMargin),
          tells_(world.choices().Byte()) {
        constexpr LONG kTypes[] = {DT_BYTE, DT_WORD, DT_DWORD, DT_Float, DT_Short, 7};
        Choices& choices = world.choices();
        type_ = kTypes[choices.Below(std::size(kTypes))];
        width_ = 1 + static_cast<LONG>(choices.Below(kSide));
        height_ = 1 + static_cast<LONG>(choices.Below(kSide));
        bands_ = choices.Chance(24) ? INT_MAX : 1 + static_cast<LONG>(choices.Below(3));
        for (size_t i = 0; i < samples_.size(); i += 1 + i / 8) samples_[i] = choices.Byte();
        const bool ordered = choices.Chance(160);
        for (LONG i = -LONG{kMargin}; i < LONG{kSide} + kMargin; ++i) {
            const LONG at = (i % kSide + kSide) % kSide;
            table_[static_cast<size_t>(i + kMargin)] = {ordered ? at : kSide - 1 - at, at * kSide};
        }
    }

    STDMETHODIMP Dimensions(LONG* bands, LONG* width, LONG* height) noexcept override {
        const Entry entry(*this, "Dimensions");
        // What it claims must be what its memory holds; numbers that no image has are for the library to refuse.
        *bands = Told(bands_);
        *width = width_;
        *height = height_;
        if (world_.choices().Chance(8)) *width = -LONG{world_.choices().Byte()};
        if (world_.choices().Chance(8)) *height = 1 + static_cast<LONG>(world_.choices().Below(kSide));
        return Verdict();
    }
    STDMETHODIMP DataType(LONG, LONG* type) noexcept override { return Tell("DataType", type, Told(type_)); }
    STDMETHODIMP VPA(LONG, void** base, VPAEntry** table) noexcept override {
        const Entry entry(*this, "VPA");
        *base = samples_.data();
        *table = table_.data() + kMargin;
        if (world_.choices().Chance(4)) *base = nullptr;
        if (world_.choices().Chance(4)) *table = nullptr;
        if (world_.choices().Chance(4)) *base = samples_.data() + 1;
        return Verdict();
    }
    STDMETHODIMP GetCoords(TCoordinateMap* map) noexcept override {
        return Tell("GetCoords", map, {world_.Double(), world_.Double(), {1, world_.Double(), 0, world_.Double()}});
    }

    STDMETHODIMP GetMicronsPerPixel(double* x, double* y) noexcept override {
        const Entry entry(*this, "GetMicronsPerPixel");
        *x = world_.Double();
        *y = world_.Double();
        return Verdict();
    }

    STDMETHODIMP Accessible() noexcept override {
        const Entry entry(*this, "Accessible");
        return Verdict();
    }

private:
    HRESULT Answer(REFIID iid, void** object) noexcept override {
        if (iid == __uuidof(IImageFile) && tells_ < 128) return E_NOINTERFACE;
        if (iid == __uuidof(IPixelAccess) && tells_ % 4 != 0) return E_NOINTERFACE;
        return Client::Answer(iid, object);
    }

    static constexpr LONG kSide = 40;
    static constexpr LONG kMargin = 200;
    std::span<uint8_t> samples_;
    std::vector<VPAEntry> table_;
    int tells_;
    LONG type_, width_, height_, bands_;
};

class Bits final : public Client<IBitmap> {
public:
    explicit Bits(World& world) : Client(world, "bitmap"), bytes_(world.Memory(16 * 40)) {}

    STDMETHODIMP get_Width(LONG* hVal) noexcept override { return Tell("get_Width", hVal, Told(100)); }
    STDMETHODIMP get_Height(LONG* hVal) noexcept override { return Tell("get_Height", hVal, Told(40)); }
    STDMETHODIMP get_Bitmap(BITMAP* hVal) noexcept override {
        const Entry entry(*this, "get_Bitmap");
        Choices& choices = world_.choices();
        *hVal = {
            0, static_cast<LONG>(choices.Below(129)), static_cast<LONG>(choices.Below(41)), 16, 1, 1, bytes_.data()};
        if (choices.Chance(16)) hVal->bmBits = HostileAddress(choices.Byte());
        if (choices.Chance(12)) hVal->bmWidth = -1 - world_.Long();
        if (choices.Chance(12)) hVal->bmHeight = -LONG{choices.Byte()};
        if (choices.Chance(12)) hVal->bmWidthBytes = static_cast<LONG>(choices.Below(17));
        if (choices.Chance(12)) hVal->bmPlanes = choices.Byte();
        if (choices.Chance(12)) hVal->bmBitsPixel = choices.Byte();
        return Verdict();
    }

private:
    std::span<uint8_t> bytes_;
};

class Counts final : public Client<IHistogram> {
public:
    explicit Counts(World& world) : Client(world, "histogram"), bins_(world.Memory(300 * sizeof(LONG))) {
        const size_t size = world.choices().Below(300);
        for (size_t i = 0; i < size; ++i) {
            const LONG count = i % 8 == 0 ? world.Long() : static_cast<LONG>(i);
            std::memcpy(&bins_[i * sizeof count], &count, sizeof count);
        }
    }

    STDMETHODIMP get_NumberOfBins(LONG* hVal) noexcept override {
        const auto count = static_cast<LONG>(world_.choices().Below(300));
        return Tell("get_NumberOfBins", hVal, world_.choices().Chance(16) ? std::min(world_.Long(), LONG{300}) : count);
    }
    STDMETHODIMP get_Left(double* hVal) noexcept override { return Tell("get_Left", hVal, world_.Double()); }
    STDMETHODIMP get_Right(double* hVal) noexcept override { return Tell("get_Right", hVal, world_.Double()); }
    STDMETHODIMP get_Bins(LONG** hVal) noexcept override {
        void* const bins = world_.choices().Chance(16) ? HostileAddress(world_.choices().Byte()) : bins_.data();
        return Tell("get_Bins", hVal, static_cast<LONG*>(bins));
    }

private:
    std::span<uint8_t> bins_;
};

// Keeps what is written to it for later readers, who get it whole, in pieces, with an error in between or changed.
class Stream final : public Client<IStream> {
public:
    explicit Stream(World& world) : Client(world, "stream"), bytes_(world.savedStream()) {
        Choices& choices = world.choices();
        if (choices.Chance(96))
            for (size_t n = 1 + choices.Below(4); n > 0 && !bytes_.empty(); --n)
                bytes_[choices.Below(std::min(bytes_.size(), size_t{60000}))] = choices.Byte();
        if (choices.Chance(24)) bytes_.resize(choices.Below(std::min(bytes_.size() + 1, size_t{60000})));
        if (choices.Chance(96)) piece_ = 1 + 7 * choices.Below(1000);
    }

    STDMETHODIMP Read(void* pv, ULONG cb, ULONG* pcbRead) noexcept override {
        const Entry entry(*this, "Read");
        const size_t count = std::min({size_t{cb}, bytes_.size() - at_, piece_});
        if (count) std::memcpy(pv, bytes_.data() + at_, count);
        at_ += count;
        if (pcbRead) *pcbRead = static_cast<ULONG>(count);
        if (pcbRead && world_.choices().Chance(2)) *pcbRead = static_cast<ULONG>(world_.Long());
        return world_.choices().Chance(24) ? Verdict() : count == cb ? S_OK : S_FALSE;
    }
    STDMETHODIMP Write(const void* pv, ULONG cb, ULONG* pcbWritten) noexcept override {
        const Entry entry(*this, "Write");
        const auto* const from = static_cast<const uint8_t*>(pv);
        if (bytes_.size() + cb <= size_t{1} << 20) {
            bytes_.resize(at_);
            bytes_.insert(bytes_.end(), from, from + cb);
            at_ = bytes_.size();
            world_.savedStream() = bytes_;
        }
        if (pcbWritten) *pcbWritten = world_.choices().Chance(4) ? static_cast<ULONG>(world_.Long()) : cb;
        return world_.choices().Chance(24) ? Verdict() : S_OK;
    }
    STDMETHODIMP Seek(LARGE_INTEGER to, DWORD, ULARGE_INTEGER* position) noexcept override {
        const Entry entry(*this, "Seek");
        if (to.QuadPart >= 0 && to.QuadPart <= static_cast<LONGLONG>(bytes_.size()))
            at_ = static_cast<size_t>(to.QuadPart);
        if (position) position->QuadPart = at_;
        return Verdict();
    }
    STDMETHODIMP Stat(STATSTG* stat, DWORD) noexcept override {
        const Entry entry(*this, "Stat");
        *stat = {};
        stat->cbSize.QuadPart = static_cast<ULONGLONG>(Told(static_cast<LONG>(bytes_.size())));
        return Verdict();
    }

private:
    Bytes bytes_;
    size_t at_ = 0;
    size_t piece_ = SIZE_MAX;
};

class Sink final : public Client<IPictureExEvents> {
public:
    explicit Sink(World& world) : Client(world, "sink") {}

    STDMETHODIMP OnRender(IPictureEx* picture, void*, RenderSourceType) noexcept override {
        const ClientHeap heap;
        // Before anything lets go of the picture.
        if (world_.choices().Chance(64)) world_.AdoptCopy(__uuidof(IPictureEx), picture);
        const Entry entry(*this, "OnRender");
        return Verdict();
    }
};

// What a client left as the thread's error information.
class Info final : public Client<IErrorInfo> {
public:
    explicit Info(World& world) : Client(world, "error information") {
#ifdef _WIN32
        // SetErrorInfo of the system lets go of the former object while the thread still refers to it.
        quiet_ = true;
#endif
    }
};

// What an overlay is drawn over.
class Picture final : public Client<IPictureEx> {
public:
    explicit Picture(World& world) : Client(world, "picture") {}

    STDMETHODIMP get_PixelToDestCoords(TCoordinateMap* map) noexcept override {
        return Tell("get_PixelToDestCoords", map,
                    {world_.Double(), world_.Double(), {world_.Double(), 0, world_.Double(), 1}});
    }
};

// Around an object of the library: what is asked of that one comes here.
class Outer final : public Client<IUnknown> {
public:
    explicit Outer(World& world) : Client(world, "outer object") {}
    bool Aggregate(const CLSID& clsid) {
        ComPtr<IClassFactory> factory;
        return SUCCEEDED(GetClassFactory(clsid, __uuidof(IClassFactory), factory.OutVoid())) &&
               SUCCEEDED(factory->CreateInstance(this, __uuidof(IUnknown), inner_.OutVoid()));
    }

private:
    HRESULT Answer(REFIID iid, void** object) noexcept override {
        if (iid == __uuidof(IUnknown)) return Client::Answer(iid, object);
        return inner_ ? inner_->QueryInterface(iid, object) : E_NOINTERFACE;
    }

    ComPtr<IUnknown> inner_;
};

template <class Made, class I>
ComPtr<IUnknown> Make(World& world) {
    return ComPtr<IUnknown>::Attach(static_cast<Refusing<I>*>(new Made(world)));
}

}  // namespace

ComPtr<IUnknown> MakeClientOf(World& world, const IID& iid) {
    const struct {
        const IID& iid;
        ComPtr<IUnknown> (*make)(World& world);
    } makers[] = {
        {__uuidof(IRegionOfInterest), &Make<Region, IRegionOfInterest>},
        {__uuidof(IImageVPA), &Make<Image, IImageVPA>},
        {__uuidof(IBitmap), &Make<Bits, IBitmap>},
        {__uuidof(IHistogram), &Make<Counts, IHistogram>},
        {__uuidof(IStream), &Make<Stream, IStream>},
        {__uuidof(IErrorInfo), &Make<Info, IErrorInfo>},
        {__uuidof(IPictureEx), &Make<Picture, IPictureEx>},
        {__uuidof(IPictureExEvents), &Make<Sink, IPictureExEvents>},
        {__uuidof(IUnknown), &Make<Sink, IPictureExEvents>},
    };
    for (const auto& maker : makers)
        if (maker.iid == iid) return maker.make(world);
    return {};
}

ComPtr<IUnknown> MakeOuter(World& world, const CLSID& clsid) {
    const auto outer = MakeCounted<Outer>(world);
    return outer->Aggregate(clsid) ? ComPtr<IUnknown>(outer.get()) : ComPtr<IUnknown>();
}

bool IsClient(IUnknown* object) { return LiveClients().contains(object); }

}  // namespace orlix::fuzz
