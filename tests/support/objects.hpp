// What tests ask of objects and of the thread's error information.
#pragma once

#include <orlix/client.hpp>

#include <optional>
#include <string>

namespace orlix {

inline ULONG ReferencesOf(IUnknown* object) {
    object->AddRef();
    return object->Release();
}

struct ErrorReport {
    std::string description, source, helpFile;
    DWORD helpContext = 0;
    GUID guid = {};
};

// Takes the thread's error information, so that none is left.
inline std::optional<ErrorReport> TakeErrorReport() {
    ComPtr<IErrorInfo> info;
    if (GetErrorInfo(0, info.Out()) != S_OK) return {};
    ErrorReport report;
    Text text;
    info->GetDescription(text.Out());
    report.description = text.Utf8();
    info->GetSource(text.Out());
    report.source = text.Utf8();
    info->GetHelpFile(text.Out());
    report.helpFile = text.Utf8();
    info->GetHelpContext(&report.helpContext);
    info->GetGUID(&report.guid);
    return report;
}

}  // namespace orlix
