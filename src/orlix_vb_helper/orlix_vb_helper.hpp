// The object that scripts get streams, the clipboard, folders and measurements from.
#pragma once

#include <orlix/orlix.h>

#include "component/object.hpp"

class OrlixVBHelper final : public orlix::Object<OrlixVBHelper, IVBHelper> {
public:
    // Scripts' view of the object; its interface has these methods too.
    STDMETHODIMP GetTypeInfoCount(UINT* count) noexcept override;
    STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) noexcept override;
    STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) noexcept override;
    STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                        EXCEPINFO* exception, UINT* badArgument) noexcept override;

    STDMETHODIMP OpenFileStream(BSTR fileName, FileStreamMode mode, IUnknown** stream) noexcept override;
    STDMETHODIMP CreateMemoryStream(IUnknown** stream) noexcept override;
    STDMETHODIMP get_StreamPosition(IUnknown* stream, double* position) noexcept override;
    STDMETHODIMP put_StreamPosition(IUnknown* stream, double position) noexcept override;
    STDMETHODIMP get_StreamSize(IUnknown* stream, double* size) noexcept override;
    STDMETHODIMP ReadText(IUnknown* stream, BSTR* text) noexcept override;
    STDMETHODIMP WriteText(IUnknown* stream, BSTR text) noexcept override;
    STDMETHODIMP ReadBytes(IUnknown* stream, LONG size, VARIANT* bytes) noexcept override;
    STDMETHODIMP WriteBytes(IUnknown* stream, VARIANT bytes) noexcept override;

    STDMETHODIMP get_ClipboardText(BSTR* text) noexcept override;
    STDMETHODIMP put_ClipboardText(BSTR text) noexcept override;
    STDMETHODIMP CopyImage(IImageVPA* image) noexcept override;
    STDMETHODIMP PasteImage(IImageVPA** image) noexcept override;

    STDMETHODIMP BrowseForFolder(BSTR title, BSTR startFolder, BSTR* folder) noexcept override;
    STDMETHODIMP get_TemporaryFolder(BSTR* folder) noexcept override;
    STDMETHODIMP TemporaryName(BSTR extension, BSTR* fileName) noexcept override;

    STDMETHODIMP MeasureFile(BSTR fileName, AutoThresholdType threshold, LONG bright, LONG bandIndex,
                             SFileMeasurements* measurements) noexcept override;
};
