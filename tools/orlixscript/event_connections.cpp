#include "event_connections.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

#include <orlix/counted_object.hpp>

namespace script_host {

// Answers the identifier of the events, which is all that tells it from another IDispatch.
class EventSink final : public orlix::CountedObject<IDispatch> {
public:
    using Failed = std::function<void(HRESULT, const EXCEPINFO&)>;
    EventSink(const IID& events, orlix::ComPtr<ITypeInfo> names, std::string_view prefix,
              orlix::ComPtr<IDispatch> functions, Failed failed)
        : events_(events),
          names_(std::move(names)),
          prefix_(orlix::ToUtf16(prefix)),
          functions_(std::move(functions)),
          failed_(std::move(failed)) {}

    void End() noexcept { functions_ = nullptr; }

    STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
        return CountedObject::QueryInterface(iid == events_ ? __uuidof(IDispatch) : iid, object);
    }
    STDMETHODIMP GetTypeInfoCount(UINT*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) noexcept override { return E_NOTIMPL; }

    STDMETHODIMP Invoke(DISPID id, REFIID, LCID locale, WORD, DISPPARAMS* given, VARIANT* result, EXCEPINFO*,
                        UINT*) noexcept override {
        if (result) VariantInit(result);
        if (!given || (given->cArgs && !given->rgvarg)) return E_INVALIDARG;
        try {
            // The function may disconnect.
            const orlix::ComPtr<EventSink> alive(this);
            const orlix::ComPtr<IDispatch> functions = functions_;
            orlix::Text event;
            UINT found = 0;
            if (!functions || FAILED(names_->GetNames(id, event.Out(), 1, &found)) || found == 0 || !event) return S_OK;
            std::wstring name = prefix_ + static_cast<BSTR>(event);
            LPOLESTR names[] = {name.data()};
            DISPID function = DISPID_UNKNOWN;
            if (FAILED(functions->GetIDsOfNames(IID_NULL, names, 1, locale, &function))) return S_OK;
            EXCEPINFO exception = {};
            const HRESULT called =
                functions->Invoke(function, IID_NULL, locale, DISPATCH_METHOD, given, result, &exception, nullptr);
            if (FAILED(called)) failed_(called, exception);
            for (const BSTR text : {exception.bstrSource, exception.bstrDescription, exception.bstrHelpFile})
                SysFreeString(text);
            return called;
        } catch (...) {
            return E_OUTOFMEMORY;
        }
    }

private:
    const IID events_;
    const orlix::ComPtr<ITypeInfo> names_;
    const std::wstring prefix_;
    orlix::ComPtr<IDispatch> functions_;
    const Failed failed_;
};

namespace {

constexpr char kSource[] = "WScript.ConnectObject";

[[noreturn]] void HasNoEvents() { throw orlix::Error(E_NOINTERFACE, "the object has no events for scripts.", kSource); }

// The description of events; null when the object's type library does not have them.
orlix::ComPtr<ITypeInfo> NamesOf(const orlix::ComPtr<IProvideClassInfo2>& classInfo, const IID& events) {
    orlix::ComPtr<ITypeInfo> info, names;
    orlix::ComPtr<ITypeLib> library;
    UINT index = 0;
    if (SUCCEEDED(classInfo->GetClassInfo(info.Out())) && info &&
        SUCCEEDED(info->GetContainingTypeLib(library.Out(), &index)) && library)
        library->GetTypeInfoOfGuid(events, names.Out());
    return names;
}

}  // namespace

struct EventConnections::Connection {
    ~Connection() {
        sink->End();
        if (cookie) point->Unadvise(cookie);
    }

    orlix::ComPtr<IUnknown> object;  // its identity
    orlix::ComPtr<IConnectionPoint> point;
    orlix::ComPtr<EventSink> sink;
    DWORD cookie = 0;
};

EventConnections::EventConnections(EventSink::Failed failed) : failed_(std::move(failed)) {}
EventConnections::~EventConnections() { Clear(); }

void EventConnections::Connect(const orlix::ComPtr<IUnknown>& object, std::string_view prefix,
                               const orlix::ComPtr<IDispatch>& functions) {
    const auto classInfo = object.As<IProvideClassInfo2>();
    const auto container = object.As<IConnectionPointContainer>();
    IID events = {};
    if (!classInfo || !container || FAILED(classInfo->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &events)))
        HasNoEvents();
    const auto names = NamesOf(classInfo, events);
    orlix::ComPtr<IConnectionPoint> point;
    if (!names || FAILED(container->FindConnectionPoint(events, point.Out())) || !point) HasNoEvents();
    lastNames_ = names;
    auto sink = orlix::MakeCounted<EventSink>(events, names, prefix, functions, failed_);
    auto connection = std::make_unique<Connection>();
    connection->object = object.As<IUnknown>();
    connection->point = std::move(point);
    connection->sink = std::move(sink);
    const HRESULT advised = connection->point->Advise(connection->sink.get(), &connection->cookie);
    if (FAILED(advised)) throw orlix::Error(advised, "the object refuses the connection.", kSource);
    connections_.push_back(std::move(connection));
}

// Objects may call back when they are disconnected, so a list is put in order before its connections end.

void EventConnections::Disconnect(const orlix::ComPtr<IUnknown>& object) {
    const auto identity = object.As<IUnknown>();
    const auto first = std::stable_partition(connections_.begin(), connections_.end(),
                                             [&](const auto& each) { return each->object.get() != identity.get(); });
    const std::vector<std::unique_ptr<Connection>> ended(std::make_move_iterator(first),
                                                         std::make_move_iterator(connections_.end()));
    connections_.erase(first, connections_.end());
}

void EventConnections::Clear() { const auto ended = std::exchange(connections_, {}); }

}  // namespace script_host
