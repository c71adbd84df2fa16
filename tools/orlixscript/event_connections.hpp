// Events of objects that reach functions of a script.
#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include <orlix/client.hpp>

namespace script_host {

class EventConnections {
public:
    // Failures of the script's functions, which the source of an event may ignore, go there.
    explicit EventConnections(std::function<void(HRESULT result, const EXCEPINFO& exception)> failed);
    EventConnections(const EventConnections&) = delete;
    EventConnections& operator=(const EventConnections&) = delete;
    ~EventConnections();

    // From now on each event of the object calls the function among `functions` that has the prefix and the name of the
    // event, with the arguments of the event; events without such a function are skipped. The object says its events by
    // IProvideClassInfo2, its type library their names. Throws orlix::Error for an object without events.
    void Connect(const orlix::ComPtr<IUnknown>& object, std::string_view prefix,
                 const orlix::ComPtr<IDispatch>& functions);
    // Ends all connections of the object, if it has some. No function is called afterwards, even if the object keeps
    // its references.
    void Disconnect(const orlix::ComPtr<IUnknown>& object);
    void Clear();

private:
    struct Connection;

    std::function<void(HRESULT, const EXCEPINFO&)> failed_;
    std::vector<std::unique_ptr<Connection>> connections_;
    orlix::ComPtr<ITypeInfo> lastNames_;  // keeps a type library in memory, because loading takes milliseconds
};

}  // namespace script_host
