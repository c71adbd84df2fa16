// Events: the connection point of an object's source interface.
#pragma once

#include <orlix/orlix.h>

#include <memory>
#include <vector>

#include <orlix/com_ptr.hpp>

namespace orlix {

// A member of the object that raises the events. The object derives from IConnectionPointContainer and forwards its two
// methods here. References to the point are references to the object. Notes:
//  (1) Cookies are 1, 2, ... in the order of the connections and are never reused.
//  (2) Connecting or disconnecting during an event takes effect with the next one.
class ConnectionPoint final : public IConnectionPoint {
public:
    // source: the interface that connecting clients must implement. On Windows scripts connect by a dispatch interface
    // in its place (automation/windows/script_sink.hpp); EnumConnections has an object of the library for each of them.
    ConnectionPoint(IConnectionPointContainer& container, REFIID source) noexcept
        : container_(container), source_(source) {}

    bool connected() const { return !connections_.empty(); }

    // Calls tell(interface) for each connected client.
    template <class Source, class Tell>
    void Raise(Tell&& tell) const {
        const Connections connections = connections_;
        for (const auto& connection : connections) tell(static_cast<Source*>(connection->sink.get()));
    }

    // Called at the end of the container's life: disconnects all clients and refuses new connections from then on.
    void Close() noexcept;

    // The container's two methods.
    HRESULT EnumPoints(IEnumConnectionPoints** points) noexcept;
    HRESULT FindPoint(REFIID iid, IConnectionPoint** point) noexcept;

    STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override;
    STDMETHODIMP_(ULONG) AddRef() noexcept override { return container_.AddRef(); }
    STDMETHODIMP_(ULONG) Release() noexcept override { return container_.Release(); }
    STDMETHODIMP GetConnectionInterface(IID* iid) noexcept override;
    STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer** container) noexcept override;
    STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) noexcept override;
    STDMETHODIMP Unadvise(DWORD cookie) noexcept override;
    STDMETHODIMP EnumConnections(IEnumConnections** connections) noexcept override;

    struct Connection {
        DWORD cookie;
        ComPtr<IUnknown> sink;  // the source interface
    };

private:
    // Shared, so the list can be copied without calling clients, which could change it meanwhile.
    using Connections = std::vector<std::shared_ptr<const Connection>>;
    IConnectionPointContainer& container_;
    IID source_;
    DWORD lastCookie_ = 0;
    bool closed_ = false;
    Connections connections_;
};

}  // namespace orlix
