#include "component/guard.hpp"

#include <cstdio>

#include "component/error_report.hpp"

namespace orlix {

HRESULT ResultOfCurrentException(const CLSID& clsid, const MethodName& name) noexcept {
    try {
        throw;
    } catch (const Failure& failure) {
        ReportError(clsid, failure.what());
        return failure.result();
    } catch (const MethodFailure& failure) {
        if (!name.owner.empty()) {
            char text[128];  // longer than any name in the contract
            std::snprintf(text, sizeof text, "%.*s::%s: %s", static_cast<int>(name.owner.size()), name.owner.data(),
                          name.method, failure.what());
            ReportError(clsid, text);
        }
        return E_FAIL;
    } catch (const FailedResult& failed) {
        return failed.result();
    } catch (...) {
        return E_FAIL;
    }
}

}  // namespace orlix
