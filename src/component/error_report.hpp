// The reporter: makes a text the thread's error information.
#pragma once

#include <orlix/orlix.h>

namespace orlix {

// Description: the message, taken in the thread's code page (UTF-8 off Windows). Source: the ProgID registered for
// clsid, if any. Help context and file are set only when both are given. Result: the given one, or DISP_E_EXCEPTION
// when it is 0; E_POINTER for a null message and E_OUTOFMEMORY, after both of which the error information is as before.
HRESULT ReportError(const CLSID& clsid, const char* message, const IID& iid = GUID_NULL, HRESULT result = 0,
                    DWORD helpContext = 0, const char* helpFile = nullptr) noexcept;

// The same with a text of the module's string table, "Unknown Error" where the table has none; a result of 0 becomes
// 0x80040000 | resource.
HRESULT ReportErrorResource(const CLSID& clsid, WORD resource, const IID& iid = GUID_NULL, HRESULT result = 0) noexcept;

}  // namespace orlix
