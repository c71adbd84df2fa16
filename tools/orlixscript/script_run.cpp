#include "script_run.hpp"

#include <filesystem>
#include <functional>
#include <memory>
#include <utility>

#include <orlix/counted_object.hpp>

#include "../orlix/console.hpp"

namespace script_host {
namespace {

std::wstring Decoded(std::string_view bytes, UINT codePage, DWORD flags) {
    const auto size = static_cast<int>(bytes.size());
    std::wstring text(bytes.size(), L'\0');  // no code page has more units than bytes
    const int length = size == 0 ? 0 : MultiByteToWideChar(codePage, flags, bytes.data(), size, text.data(), size);
    text.resize(static_cast<size_t>(length));
    return text;
}

std::wstring TextOf(std::string_view bytes) {
    if (bytes.starts_with("\xff\xfe")) {
        std::wstring text;
        for (size_t i = 2; i + 1 < bytes.size(); i += 2)
            text.push_back(static_cast<wchar_t>(static_cast<unsigned char>(bytes[i]) |
                                                static_cast<unsigned char>(bytes[i + 1]) << 8));
        return text;
    }
    if (bytes.starts_with("\xef\xbb\xbf")) bytes.remove_prefix(3);
    std::wstring text = Decoded(bytes, CP_UTF8, MB_ERR_INVALID_CHARS);
    return text.empty() ? Decoded(bytes, CP_ACP, 0) : text;
}

struct Exception : EXCEPINFO {
    Exception() : EXCEPINFO{} {}
    Exception(const Exception&) = delete;
    Exception& operator=(const Exception&) = delete;
    ~Exception() {
        for (const BSTR text : {bstrSource, bstrDescription, bstrHelpFile}) SysFreeString(text);
    }
};

// Without the end of line that some descriptions have.
std::string Utf8(BSTR text) {
    const std::string utf8 = orlix::ToUtf8({text ? text : L"", SysStringLen(text)});
    return utf8.substr(0, utf8.find_last_not_of(" \r\n") + 1);
}

// "SOURCE: DESCRIPTION", from what there is.
std::string Reason(HRESULT result, const EXCEPINFO& exception) {
    const std::string source = Utf8(exception.bstrSource), description = Utf8(exception.bstrDescription);
    const HRESULT code = exception.scode ? exception.scode : result;
    return (source.empty() ? "" : source + ": ") + (description.empty() ? orlix::Describe(code) : description);
}

// What the engine asks of its host.
class Site final : public orlix::CountedObject<IActiveScriptSite, IActiveScriptSiteWindow> {
public:
    Site(const std::string& path, std::function<void(std::string_view)> report)
        : path_(path), report_(std::move(report)) {}

    void SetWScript(orlix::ComPtr<IDispatch> object) { wscript_ = std::move(object); }
    int errors() const { return errors_; }
    void Report(const std::string& place, HRESULT result, const EXCEPINFO& exception) {
        ++errors_;
        report_(path_ + place + " " + Reason(result, exception) + "\r\n");
    }

    STDMETHODIMP GetLCID(LCID*) noexcept override { return E_NOTIMPL; }  // the user's
    STDMETHODIMP GetItemInfo(LPCOLESTR name, DWORD wanted, IUnknown** object, ITypeInfo** info) noexcept override {
        if ((wanted & SCRIPTINFO_IUNKNOWN) && !object) return E_POINTER;
        if ((wanted & SCRIPTINFO_ITYPEINFO) && info) *info = nullptr;
        if (!(wanted & SCRIPTINFO_IUNKNOWN)) return TYPE_E_ELEMENTNOTFOUND;
        const bool known = name && _wcsicmp(name, L"WScript") == 0;
        *object = known ? wscript_.As<IUnknown>().Detach() : nullptr;
        return *object ? S_OK : TYPE_E_ELEMENTNOTFOUND;
    }
    STDMETHODIMP GetDocVersionString(BSTR*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP OnScriptTerminate(const VARIANT*, const EXCEPINFO*) noexcept override { return S_OK; }
    STDMETHODIMP OnStateChange(SCRIPTSTATE) noexcept override { return S_OK; }
    STDMETHODIMP OnScriptError(IActiveScriptError* error) noexcept override {
        if (!error) return E_POINTER;
        try {
            Exception exception;
            const HRESULT told = error->GetExceptionInfo(&exception);
            if (exception.pfnDeferredFillIn) exception.pfnDeferredFillIn(&exception);
            DWORD context = 0;
            ULONG line = 0;
            LONG column = -1;
            error->GetSourcePosition(&context, &line, &column);
            Report("(" + std::to_string(line + 1) + ", " + std::to_string(column + 1) + ")",
                   FAILED(told) ? told : E_FAIL, exception);
            return S_OK;
        } catch (...) {
            return E_OUTOFMEMORY;
        }
    }
    STDMETHODIMP OnEnterScript() noexcept override { return S_OK; }
    STDMETHODIMP OnLeaveScript() noexcept override { return S_OK; }

    STDMETHODIMP GetWindow(HWND* window) noexcept override {
        if (!window) return E_POINTER;
        *window = nullptr;
        return S_OK;
    }
    STDMETHODIMP EnableModeless(BOOL) noexcept override { return S_OK; }

private:
    const std::string path_;
    const std::function<void(std::string_view)> report_;
    orlix::ComPtr<IDispatch> wscript_;
    int errors_ = 0;
};

}  // namespace

Script ReadScript(const std::string& path) {
    const std::string extension = tool::Extension(path);
    if (extension != ".vbs" && extension != ".js")
        throw NoScript(path + ": scripts are files .vbs (VBScript) and .js (JScript).");
    constexpr uintmax_t kMost = uintmax_t{1} << 26;
    std::error_code failed;
    const uintmax_t size = std::filesystem::file_size(tool::Path(path), failed);
    if (!failed && size > kMost) throw NoScript(path + ": larger than 64 MB.");
    std::string bytes;
    try {
        bytes = tool::ReadFile(tool::Path(path));
    } catch (const std::runtime_error& error) {
        throw NoScript(error.what());
    }
    std::wstring text = TextOf(bytes);
    // Engines read up to it.
    if (text.find(L'\0') != text.npos) throw NoScript(path + ": not a text, it has null characters.");
    const std::filesystem::path full = std::filesystem::absolute(tool::Path(path), failed);
    return {failed ? path : orlix::ToUtf8(full.native()), extension == ".js" ? "JScript" : "VBScript", std::move(text)};
}

bool Run(const Script& script, std::vector<std::string> arguments, Surroundings surroundings) {
    orlix::ComPtr<IActiveScript> engine;
    CLSID clsid = {};
    HRESULT result = CLSIDFromProgID(orlix::ToUtf16(script.engine).c_str(), &clsid);
    if (SUCCEEDED(result))
        result = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IActiveScript), engine.OutVoid());
    const auto parser = engine.As<IActiveScriptParse>();
    if (!parser)
        throw NoScript("this system has no engine for " + script.engine + ": " +
                       orlix::Describe(FAILED(result) ? result : E_NOINTERFACE));

    const auto site = orlix::MakeCounted<Site>(script.path, surroundings.report);
    const auto eventFailed = [site](HRESULT failed, const EXCEPINFO& exception) {
        const auto code = static_cast<DWORD>(failed);
        const bool told = code == SCRIPT_E_REPORTED || code == SCRIPT_E_RECORDED;  // by the engine
        if (!told) site->Report("", failed, exception);
    };
    const std::shared_ptr<RunningScript> running(new RunningScript{
        script.path, std::move(arguments), std::move(surroundings), EventConnections(eventFailed), engine});
    site->SetWScript(MakeWScript(running));

    Exception exception;
    result = engine->SetScriptSite(site.get());
    if (SUCCEEDED(result)) result = parser->InitNew();
    if (SUCCEEDED(result)) result = engine->AddNamedItem(L"WScript", SCRIPTITEM_ISVISIBLE);
    if (SUCCEEDED(result))
        result = parser->ParseScriptText(script.text.c_str(), nullptr, nullptr, nullptr, 0, 0,
                                         SCRIPTTEXT_ISVISIBLE | SCRIPTTEXT_HOSTMANAGESSOURCE, nullptr, &exception);
    if (SUCCEEDED(result)) result = engine->SetScriptState(SCRIPTSTATE_STARTED);
    if (FAILED(result) && site->errors() == 0) site->Report("", result, exception);

    running->connections.Clear();
    running->engine = nullptr;
    engine->SetScriptState(SCRIPTSTATE_CLOSED);
    engine->Close();
    site->SetWScript(nullptr);
    return site->errors() == 0;
}

}  // namespace script_host
