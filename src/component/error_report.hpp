// Error reporting: sets the thread's error information.
#pragma once

#include <orlix/orlix.h>

namespace orlix {

// Description: the message, decoded in the thread's code page (UTF-8 off Windows). Source: the ProgID registered for
// clsid, if any. Help context and help file are set only when both are given. Returns the given result, or
// DISP_E_EXCEPTION when that is 0. Returns E_POINTER for a null message and E_OUTOFMEMORY; both leave the error
// information unchanged.
HRESULT ReportError(const CLSID& clsid, const char* message, const IID& iid = GUID_NULL, HRESULT result = 0,
                    DWORD helpContext = 0, const char* helpFile = nullptr) noexcept;

// The same with a text of the module's string table, or "Unknown Error" when the table has none; a result of 0 becomes
// 0x80040000 | resource.
HRESULT ReportErrorResource(const CLSID& clsid, WORD resource, const IID& iid = GUID_NULL, HRESULT result = 0) noexcept;

}  // namespace orlix
