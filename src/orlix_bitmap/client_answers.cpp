#include "orlix_bitmap/client_answers.hpp"

#include "component/failure.hpp"
#include "platform/memory_probe.hpp"

namespace orlix {

ClientBitmap::ClientBitmap(IBitmap* bitmap) : bitmap_(bitmap), rows_{} {
    BITMAP record = {};
    PassOn(bitmap->get_Bitmap(&record));
    if (record.bmWidth >= 1 && record.bmHeight >= 1) rows_ = ReadableRows(record);
}

std::vector<SElement> ElementsOf(IStructuringElement* element) {
    if (!element) return {};
    const ComPtr<IStructuringElement> alive(element);
    LONG count = 0;
    PassOn(element->get_NumberOfElements(&count));
    if (count <= 0) return {};
    SElement* list = nullptr;
    PassOn(element->get_Elements(&list));
    const size_t bytes = static_cast<size_t>(count) * sizeof(SElement);
    if (bytes / sizeof(SElement) != static_cast<size_t>(count) || !list ||
        reinterpret_cast<uintptr_t>(list) % alignof(SElement) != 0 || !IsReadable(list, bytes))
        throw FailedResult(E_FAIL);
    return {list, list + count};
}

}  // namespace orlix
