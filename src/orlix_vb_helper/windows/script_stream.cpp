#include "orlix_vb_helper/script_stream.hpp"

#include <orlix/counted_object.hpp>

#include <utility>

namespace orlix {
namespace {

class ScriptStream final : public CountedObject<DerivedInterface<IStream, ISequentialStream>, IDispatch> {
public:
    explicit ScriptStream(ComPtr<IStream> stream) : stream_(std::move(stream)) {}

    STDMETHODIMP Read(void* data, ULONG size, ULONG* read) noexcept override { return stream_->Read(data, size, read); }
    STDMETHODIMP Write(const void* data, ULONG size, ULONG* written) noexcept override {
        return stream_->Write(data, size, written);
    }
    STDMETHODIMP Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) noexcept override {
        return stream_->Seek(move, origin, position);
    }
    STDMETHODIMP SetSize(ULARGE_INTEGER size) noexcept override { return stream_->SetSize(size); }
    STDMETHODIMP CopyTo(IStream* to, ULARGE_INTEGER size, ULARGE_INTEGER* read,
                        ULARGE_INTEGER* written) noexcept override {
        return stream_->CopyTo(to, size, read, written);
    }
    STDMETHODIMP Commit(DWORD flags) noexcept override { return stream_->Commit(flags); }
    STDMETHODIMP Revert() noexcept override { return stream_->Revert(); }
    STDMETHODIMP LockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER size, DWORD type) noexcept override {
        return stream_->LockRegion(offset, size, type);
    }
    STDMETHODIMP UnlockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER size, DWORD type) noexcept override {
        return stream_->UnlockRegion(offset, size, type);
    }
    STDMETHODIMP Stat(STATSTG* state, DWORD flags) noexcept override { return stream_->Stat(state, flags); }
    STDMETHODIMP Clone(IStream** clone) noexcept override { return stream_->Clone(clone); }

    STDMETHODIMP GetTypeInfoCount(UINT* count) noexcept override { return count ? (*count = 0, S_OK) : E_POINTER; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo** info) noexcept override {
        return info ? (*info = nullptr, DISP_E_BADINDEX) : E_POINTER;
    }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT count, LCID, DISPID* ids) noexcept override {
        if (!ids) return E_POINTER;
        for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
        return DISP_E_UNKNOWNNAME;
    }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) noexcept override {
        return DISP_E_MEMBERNOTFOUND;
    }

private:
    ComPtr<IStream> stream_;
};

}  // namespace

ComPtr<IUnknown> ForScripts(ComPtr<IStream> stream) {
    return MakeCounted<ScriptStream>(std::move(stream)).As<IUnknown>();
}

}  // namespace orlix
