#include "component/connection_point.hpp"

#include <algorithm>
#include <new>
#include <utility>

#include <orlix/counted_object.hpp>

#include "platform/module_lock.hpp"
#ifdef _WIN32
#include "automation/windows/script_sink.hpp"
#endif

namespace orlix {
namespace {

#ifdef _WIN32
using automation::ConnectScript;
using automation::IsEventsForScripts;
#else
// There are no scripts.
bool IsEventsForScripts(REFIID, REFIID) { return false; }
ComPtr<IUnknown> ConnectScript(IUnknown*, REFIID) { return {}; }
#endif

// The system's result codes for connection points. The header that declares them is available on Windows only.
constexpr auto kNoConnection = static_cast<HRESULT>(0x80040200), kCannotConnect = static_cast<HRESULT>(0x80040202);

// Returns an element as an enumerator hands it out, with a reference added.
IConnectionPoint* Counted(const ComPtr<IConnectionPoint>& point) {
    point->AddRef();
    return point.get();
}
CONNECTDATA Counted(const std::shared_ptr<const ConnectionPoint::Connection>& connection) {
    connection->sink->AddRef();
    return {connection->sink.get(), connection->cookie};
}

// Enumerates a snapshot of the elements. Interface is IEnumConnectionPoints or IEnumConnections. A client may call
// back, and even release the enumerator, while a reference to it is taken. Releasing the elements may call the
// enumerator too: it is at its end by then.
template <class Interface, class Out, class Element>
class Enumerator final : public CountedObject<Interface> {
public:
    explicit Enumerator(std::vector<Element> elements, size_t next = 0) : elements_(std::move(elements)), next_(next) {
        LockModule();
    }

    STDMETHODIMP Next(ULONG count, Out* out, ULONG* fetched) noexcept override {
        if (fetched) *fetched = 0;
        if (!out || (!fetched && count > 1)) return E_POINTER;
        const ComPtr<Interface> alive(this);
        ULONG given = 0;
        for (; given < count && next_ < elements_.size(); ++given) out[given] = Counted(elements_[next_++]);
        if (fetched) *fetched = given;
        return given == count ? S_OK : S_FALSE;
    }
    STDMETHODIMP Skip(ULONG count) noexcept override {
        const size_t skipped = std::min<size_t>(count, elements_.size() - next_);
        next_ += skipped;
        return skipped == count ? S_OK : S_FALSE;
    }
    STDMETHODIMP Reset() noexcept override {
        next_ = 0;
        return S_OK;
    }
    STDMETHODIMP Clone(Interface** clone) noexcept override {
        if (!clone) return E_POINTER;
        *clone = nullptr;
        const ComPtr<Interface> alive(this);
        try {
            *clone = new Enumerator(elements_, next_);
            return S_OK;
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        }
    }

private:
    ~Enumerator() override { UnlockModule(); }

    void LetGo() noexcept override {
        next_ = 0;
        std::exchange(elements_, {}).clear();
    }

    std::vector<Element> elements_;
    size_t next_;
};

}  // namespace

void ConnectionPoint::Close() noexcept {
    closed_ = true;
    const Connections gone = std::exchange(connections_, {});
}

HRESULT ConnectionPoint::EnumPoints(IEnumConnectionPoints** points) noexcept {
    if (!points) return E_POINTER;
    *points = nullptr;
    try {
        using Point = ComPtr<IConnectionPoint>;
        *points = new Enumerator<IEnumConnectionPoints, IConnectionPoint*, Point>(std::vector<Point>(1, Point(this)));
        return S_OK;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

HRESULT ConnectionPoint::FindPoint(REFIID iid, IConnectionPoint** point) noexcept {
    if (!point) return E_POINTER;
    *point = iid == source_ || IsEventsForScripts(iid, source_) ? this : nullptr;
    if (!*point) return kNoConnection;
    AddRef();
    return S_OK;
}

STDMETHODIMP ConnectionPoint::QueryInterface(REFIID iid, void** object) noexcept {
    if (!object) return E_POINTER;
    *object = iid == __uuidof(IUnknown) || iid == __uuidof(IConnectionPoint) ? this : nullptr;
    if (!*object) return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

STDMETHODIMP ConnectionPoint::GetConnectionInterface(IID* iid) noexcept {
    if (!iid) return E_POINTER;
    *iid = source_;
    return S_OK;
}

STDMETHODIMP ConnectionPoint::GetConnectionPointContainer(IConnectionPointContainer** container) noexcept {
    if (!container) return E_POINTER;
    *container = &container_;
    AddRef();
    return S_OK;
}

STDMETHODIMP ConnectionPoint::Advise(IUnknown* sink, DWORD* cookie) noexcept {
    if (!cookie) return E_POINTER;
    *cookie = 0;
    if (!sink) return E_POINTER;
    const ComPtr<IConnectionPoint> alive(this);
    ComPtr<IUnknown> source;
    try {
        if (FAILED(sink->QueryInterface(source_, source.OutVoid()))) source = ConnectScript(sink, source_);
        if (!source || closed_) return kCannotConnect;
        connections_.push_back(std::make_shared<const Connection>(Connection{lastCookie_ + 1, std::move(source)}));
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
    *cookie = ++lastCookie_;
    return S_OK;
}

STDMETHODIMP ConnectionPoint::Unadvise(DWORD cookie) noexcept {
    const ComPtr<IConnectionPoint> alive(this);  // before the list is read: an outer object may call back
    const auto found = std::find_if(connections_.begin(), connections_.end(),
                                    [&](const auto& connection) { return connection->cookie == cookie; });
    if (found == connections_.end()) return kNoConnection;
    // Released once the list is consistent again: the client's Release may call back.
    const auto gone = std::move(*found);
    connections_.erase(found);
    return S_OK;
}

STDMETHODIMP ConnectionPoint::EnumConnections(IEnumConnections** connections) noexcept {
    if (!connections) return E_POINTER;
    *connections = nullptr;
    try {
        *connections = new Enumerator<IEnumConnections, CONNECTDATA, Connections::value_type>(connections_);
        return S_OK;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

}  // namespace orlix
