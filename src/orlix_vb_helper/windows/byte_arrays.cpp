#include "orlix_vb_helper/byte_arrays.hpp"

#include <algorithm>

#include "automation/windows/script_arrays.hpp"
#include "component/failure.hpp"

namespace orlix {

std::vector<uint8_t> BytesOf(const VARIANT& value) {
    try {
        return automation::ReadBytes(automation::Plain(value), LOCALE_USER_DEFAULT);
    } catch (const automation::BadValue& bad) {
        throw FailedResult(bad.result);
    }
}

void ClearArray(VARIANT& value) { VariantInit(&value); }

void PutArray(std::span<const uint8_t> bytes, VARIANT& value) {
    automation::NewArray array(VT_UI1, bytes.size());
    if (!bytes.empty()) std::ranges::copy(bytes, array.data<uint8_t>());
    value = array.Detach();
}

}  // namespace orlix
