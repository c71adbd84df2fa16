#include "component/guard.hpp"

#include "component/error_report.hpp"

namespace orlix {

HRESULT ResultOfCurrentException(const CLSID& clsid) noexcept {
    try {
        throw;
    } catch (const Failure& failure) {
        ReportError(clsid, failure.what());
        return failure.result();
    } catch (const FailedResult& failed) {
        return failed.result();
    } catch (...) {
        return E_FAIL;
    }
}

}  // namespace orlix
