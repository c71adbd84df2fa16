#include "automation/windows/script_sink.hpp"

#include <utility>

#include <orlix/counted_object.hpp>

#include "automation/windows/contract_rows.hpp"
#include "automation/windows/script_values.hpp"

namespace orlix::automation {
namespace {

constexpr DISPID kOnRender = 1;

class PictureEventsOfScript final : public CountedObject<IPictureExEvents> {
public:
    explicit PictureEventsOfScript(ComPtr<IDispatch> script) : script_(std::move(script)) {}

    STDMETHODIMP OnRender(IPictureEx* picture, void* hdcDest, RenderSourceType sourceType) noexcept override {
        // The script may disconnect meanwhile.
        const ComPtr<IDispatch> script = script_;
        const auto object = ComPtr<IPictureEx>(picture).As<IDispatch>();
        VARIANT arguments[3];  // the last one first; what they refer to belongs to this call
        arguments[0] = NumberValue(sourceType);
        arguments[1] = HandleValue(hdcDest);
        VariantInit(&arguments[2]);
        arguments[2].vt = VT_DISPATCH;
        arguments[2].pdispVal = object.get();
        DISPPARAMS given = {arguments, nullptr, 3, 0};
        return script->Invoke(kOnRender, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &given, nullptr, nullptr,
                              nullptr);
    }

private:
    ComPtr<IDispatch> script_;
};

}  // namespace

bool IsEventsForScripts(REFIID iid, REFIID source) noexcept {
    return source == __uuidof(IPictureExEvents) && iid == kPictureEvents;
}

ComPtr<IUnknown> ConnectScript(IUnknown* sink, REFIID source) {
    ComPtr<IDispatch> script;
    if (source != __uuidof(IPictureExEvents) || FAILED(sink->QueryInterface(kPictureEvents, script.OutVoid())) ||
        !script)
        return {};
    return MakeCounted<PictureEventsOfScript>(std::move(script)).As<IUnknown>();
}

}  // namespace orlix::automation
