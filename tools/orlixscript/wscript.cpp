#include "wscript.hpp"

#include <filesystem>

#include "../orlix/console.hpp"
#include "script_object.hpp"

namespace script_host {
namespace {

using Running = std::shared_ptr<RunningScript>;

Value Argument(const std::vector<std::string>& arguments, LONG index) {
    if (index < 0 || static_cast<size_t>(index) >= arguments.size())
        throw orlix::Error(
            DISP_E_BADINDEX,
            "no argument " + std::to_string(index) + ": there are " + std::to_string(arguments.size()) + ".",
            "WScript.Arguments");
    return Value(arguments[static_cast<size_t>(index)]);
}

orlix::ComPtr<IDispatch> MakeArguments(const Running& script) {
    const auto count = [script](const Arguments&) { return Value(static_cast<LONG>(script->arguments.size())); };
    return MakeScriptObject({
        {L"Item", DISPID_VALUE, 1, 1,
         [script](const Arguments& given) { return Argument(script->arguments, given.Number(0)); }},
        {L"Count", 1, 0, 0, count},
        {L"Length", 2, 0, 0, count},
        {L"_NewEnum", DISPID_NEWENUM, 0, 0,
         [script](const Arguments&) { return Value(MakeEnumerator(script->arguments)); }},
    });
}

orlix::ComPtr<IDispatch> MakeStream(const std::function<void(std::string_view)>& write) {
    return MakeScriptObject({
        {L"Write", 1, 1, 1,
         [write](const Arguments& given) {
             write(given.Text(0));
             return Value();
         }},
        {L"WriteLine", 2, 0, 1,
         [write](const Arguments& given) {
             write((given.size() ? given.Text(0) : "") + "\r\n");
             return Value();
         }},
    });
}

void Echo(const Running& script, const Arguments& given) {
    std::string line;
    for (UINT i = 0; i < given.size(); ++i) line += (i ? " " : "") + given.Text(i);
    script->surroundings.print(line + "\r\n");
}

void Connect(const Running& script, const orlix::ComPtr<IUnknown>& object, const std::string& prefix) {
    orlix::ComPtr<IDispatch> functions;
    if (!script->engine || FAILED(script->engine->GetScriptDispatch(nullptr, functions.Out())) || !functions)
        throw orlix::Error(E_UNEXPECTED, "the script has ended.", "WScript.ConnectObject");
    script->connections.Connect(object, prefix, functions);
}

[[noreturn]] void CannotCreate(HRESULT result, const std::string& progId) {
    std::string reason;
    orlix::ComPtr<IErrorInfo> info;
    orlix::Text text;
    if (GetErrorInfo(0, info.Out()) == S_OK && SUCCEEDED(info->GetDescription(text.Out()))) reason = text.Utf8();
    throw orlix::Error(result, progId + ": " + (reason.empty() ? orlix::Describe(result) : reason),
                       "WScript.CreateObject");
}

Value Create(const Running& script, const Arguments& given) {
    const std::string progId = given.Text(0);
    const std::string prefix = given.size() == 2 ? given.Text(1) : "";
    CLSID clsid = {};
    orlix::ComPtr<IDispatch> object;
    SetErrorInfo(0, nullptr);
    HRESULT result = CLSIDFromProgID(orlix::ToUtf16(progId).c_str(), &clsid);
    if (SUCCEEDED(result))
        result = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IDispatch), object.OutVoid());
    // A class that its library refuses is not looked for elsewhere.
    if (result == REGDB_E_CLASSNOTREG)
        result = CoCreateInstance(clsid, nullptr, CLSCTX_LOCAL_SERVER, __uuidof(IDispatch), object.OutVoid());
    if (FAILED(result) || !object) CannotCreate(FAILED(result) ? result : E_NOINTERFACE, progId);
    if (!prefix.empty()) Connect(script, object.As<IUnknown>(), prefix);
    return Value(std::move(object));
}

void Sleep(LONG milliseconds) {
    if (milliseconds < 0) throw orlix::Error(E_INVALIDARG, "milliseconds must not be negative.", "WScript.Sleep");
    const ULONGLONG end = GetTickCount64() + static_cast<ULONGLONG>(milliseconds);
    for (ULONGLONG now = GetTickCount64(); now < end; now = GetTickCount64()) {
        MSG message;
        if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        } else {
            MsgWaitForMultipleObjectsEx(0, nullptr, static_cast<DWORD>(end - now), QS_ALLINPUT, MWMO_INPUTAVAILABLE);
        }
    }
}

}  // namespace

orlix::ComPtr<IDispatch> MakeWScript(const Running& script) {
    const auto arguments = MakeArguments(script);
    const auto object = [](const orlix::ComPtr<IDispatch>& shared) {
        return [shared](const Arguments&) { return Value(shared); };
    };
    return MakeScriptObject({
        {L"Arguments", 1, 0, 1,
         [script, arguments](const Arguments& given) {
             return given.size() ? Argument(script->arguments, given.Number(0)) : Value(arguments);
         }},
        {L"ConnectObject", 2, 2, 2,
         [script](const Arguments& given) {
             Connect(script, given.Object(0), given.Text(1));
             return Value();
         }},
        {L"CreateObject", 3, 1, 2, [script](const Arguments& given) { return Create(script, given); }},
        {L"DisconnectObject", 4, 1, 1,
         [script](const Arguments& given) {
             script->connections.Disconnect(given.Object(0));
             return Value();
         }},
        {L"Echo", 5, 0, kAnyNumber,
         [script](const Arguments& given) {
             Echo(script, given);
             return Value();
         }},
        {L"Quit", 6, 0, 1,
         [script](const Arguments& given) -> Value {
             script->surroundings.quit(given.size() ? given.Number(0) : 0);
             throw orlix::Error(E_ABORT, "the script has quit.", "WScript.Quit");
         }},
        {L"ScriptFullName", 7, 0, 0, [script](const Arguments&) { return Value(script->path); }},
        {L"ScriptName", 8, 0, 0,
         [script](const Arguments&) { return Value(tool::Utf8(tool::Path(script->path).filename())); }},
        {L"Sleep", 9, 1, 1,
         [](const Arguments& given) {
             Sleep(given.Number(0));
             return Value();
         }},
        {L"StdErr", 10, 0, 0, object(MakeStream(script->surroundings.report))},
        {L"StdOut", 11, 0, 0, object(MakeStream(script->surroundings.print))},
    });
}

}  // namespace script_host
