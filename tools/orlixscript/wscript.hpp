// The object WScript, as scripts know it from the system's host.
#pragma once

#include <activscp.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <orlix/client.hpp>

#include "event_connections.hpp"

namespace script_host {

// What a script reaches outside itself. Texts are UTF-8.
struct Surroundings {
    std::function<void(std::string_view text)> print;   // to standard output
    std::function<void(std::string_view text)> report;  // to standard error
    std::function<void(int code)> quit;                 // ends the process
};

// A script while it runs. WScript shares it, because other objects may keep WScript for longer than the script.
struct RunningScript {
    std::string path;  // full
    std::vector<std::string> arguments;
    Surroundings surroundings;
    EventConnections connections;
    orlix::ComPtr<IActiveScript> engine;  // null when the script has ended
};

// Members, in any case of letters:
//     Arguments                          Item(i) (the default), Count, Length, and For Each; Arguments(i) for short
//     CreateObject(progId, [prefix])     an object of a class, with its events connected if there is a prefix
//     ConnectObject(object, prefix)      see EventConnections; connections end with the script
//     DisconnectObject(object)
//     Echo(...)                          a line of all arguments, with blanks between them
//     Quit([code])                       ends the process at once: a failure that ends the script could be caught
//     ScriptFullName, ScriptName
//     Sleep(milliseconds)                messages are dispatched meanwhile, so events arrive
//     StdOut, StdErr                     Write(text), WriteLine([text])
orlix::ComPtr<IDispatch> MakeWScript(const std::shared_ptr<RunningScript>& script);

}  // namespace script_host
