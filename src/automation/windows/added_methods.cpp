#include "automation/windows/added_methods.hpp"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <new>
#include <utility>
#include <vector>

#include <orlix/com_ptr.hpp>
#include <orlix/counted_object.hpp>

#include "automation/windows/named_values.hpp"
#include "automation/windows/pixel_arrays.hpp"
#include "automation/windows/script_arrays.hpp"
#include "automation/windows/script_values.hpp"
#include "platform/module_lock.hpp"

namespace orlix::automation {
namespace {

// Counts of a histogram: all of them, or one.
HRESULT Counts(IHistogram* histogram, HRESULT (STDMETHODCALLTYPE IHistogram::*get)(LONG**), LONG index,
               VARIANT* counts) {
    LONG number = 0;
    LONG* bins = nullptr;
    HRESULT result = histogram->get_NumberOfBins(&number);
    if (SUCCEEDED(result)) result = (histogram->*get)(&bins);
    if (FAILED(result)) return result;
    const auto size = static_cast<size_t>(bins ? std::max<LONG>(number, 0) : 0);
    if (index != kAll) {
        if (index < 0 || static_cast<size_t>(index) >= size) return DISP_E_BADINDEX;
        *counts = NumberValue(bins[index]);
        return S_OK;
    }
    NewArray array(VT_I4, size);
    if (size > 0) std::memcpy(array.data<LONG>(), bins, size * sizeof(LONG));
    *counts = array.Detach();
    return result;
}

VARIANT BytesValue(const std::vector<uint8_t>& bytes, size_t size) {
    NewArray array(VT_UI1, size);
    if (size > 0) std::memcpy(array.data<uint8_t>(), bytes.data(), size);
    return array.Detach();
}

LONG CheckedSize(const std::vector<uint8_t>& bytes) {
    if (bytes.size() > INT32_MAX) throw BadValue{DISP_E_OVERFLOW};
    return static_cast<LONG>(bytes.size());
}

// Replaces a count that was left out, and says how many elements the method may write: none of those that it refuses.
HRESULT FindRange(IBlobs* blobs, LONG first, LONG& count, size_t& written) {
    LONG all = 0;
    const HRESULT result = blobs->get_Count(&all);
    if (FAILED(result)) return result;
    if (count == kAll) count = first >= 0 && first <= all ? all - first : 0;
    written = static_cast<size_t>(first >= 0 && count > 0 && first <= all && count <= all - first ? count : 0);
    return S_OK;
}

// An array of objects, one for each record that `measure` fills.
template <class T, class Measure>
HRESULT BlobRecords(IBlobs* blobs, LONG first, LONG count, VARIANT* records, const Measure& measure) {
    size_t written = 0;
    HRESULT result = FindRange(blobs, first, count, written);
    if (FAILED(result)) return result;
    const RecordMemory memory = NewRecords(RecordOf<T>(), written);
    result = measure(count, reinterpret_cast<T*>(memory.get()));
    if (FAILED(result)) return result;
    NewArray array(VT_VARIANT, written);
    for (size_t i = 0; i < written; ++i)
        array.data<VARIANT>()[i] = ObjectValue(ShowRecord(RecordOf<T>(), memory, i * sizeof(T)).Detach());
    *records = array.Detach();
    return result;
}

// For Each: the items from the first to the last.
class BlobItems final : public CountedObject<IEnumVARIANT> {
public:
    BlobItems(ComPtr<IBlobs> blobs, LONG next) : blobs_(std::move(blobs)), next_(next) { LockModule(); }

    STDMETHODIMP Next(ULONG count, VARIANT* items, ULONG* fetched) noexcept override {
        if (fetched) *fetched = 0;
        if (!items || (!fetched && count > 1)) return E_POINTER;
        ULONG given = 0;
        try {
            for (; given < count && next_ < Count(); ++given) {
                VariantInit(&items[given]);
                const HRESULT result = Added<IBlobs>::get_Item(blobs_.get(), next_, &items[given]);
                if (FAILED(result)) return TakeBack(items, given, result);
                ++next_;
            }
        } catch (const std::bad_alloc&) {
            return TakeBack(items, given, E_OUTOFMEMORY);
        }
        if (fetched) *fetched = given;
        return given == count ? S_OK : S_FALSE;
    }
    STDMETHODIMP Skip(ULONG count) noexcept override {
        const auto left = static_cast<ULONG>(Count() - next_);
        next_ += static_cast<LONG>(std::min(count, left));
        return count <= left ? S_OK : S_FALSE;
    }
    STDMETHODIMP Reset() noexcept override {
        next_ = 0;
        return S_OK;
    }
    STDMETHODIMP Clone(IEnumVARIANT** clone) noexcept override {
        if (!clone) return E_POINTER;
        *clone = nullptr;
        try {
            *clone = new BlobItems(blobs_, next_);
            return S_OK;
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        }
    }

private:
    ~BlobItems() override { UnlockModule(); }

    LONG Count() const {
        LONG count = 0;
        return SUCCEEDED(blobs_->get_Count(&count)) ? std::max(count, next_) : next_;
    }
    HRESULT TakeBack(VARIANT* items, ULONG given, HRESULT result) noexcept {
        for (ULONG i = 0; i < given; ++i) VariantClear(&items[i]);
        next_ -= static_cast<LONG>(given);
        return result;
    }

    ComPtr<IBlobs> blobs_;
    LONG next_;
};

}  // namespace

// ------------------------------------------------------------------------------------------------------- numbers

HRESULT Added<IHistogram>::get_Bins(IHistogram* histogram, LONG index, VARIANT* counts) {
    return Counts(histogram, &IHistogram::get_Bins, index, counts);
}
HRESULT Added<IHistogram>::get_DetailBins(IHistogram* histogram, LONG index, VARIANT* counts) {
    return Counts(histogram, &IHistogram::get_DetailBins, index, counts);
}
HRESULT Added<IHistogram>::get_SmoothBins(IHistogram* histogram, LONG index, VARIANT* counts) {
    return Counts(histogram, &IHistogram::get_SmoothBins, index, counts);
}

// ------------------------------------------------------------------------------------------------------ geometry

HRESULT Added<IPolygon>::Create(IPolygon* polygon, const GivenValue* vertices) {
    const GivenArray array(*vertices->value, vertices->locale);
    const bool isTable = array.dimensions() == 2;
    if (isTable ? array.size(1) != 2 && array.count() > 0 : array.count() % 2 != 0) throw BadValue{DISP_E_TYPEMISMATCH};
    const size_t number = array.count() / 2;
    if (number > INT32_MAX) throw BadValue{DISP_E_OVERFLOW};
    std::vector<SVertice> points(number);
    for (size_t i = 0; i < number; ++i) {
        points[i].m_dX = array.Real(isTable ? i : 2 * i);
        points[i].m_dY = array.Real(isTable ? number + i : 2 * i + 1);
    }
    SVertice none = {};
    return polygon->Create(static_cast<LONG>(number), number > 0 ? points.data() : &none);
}

HRESULT Added<IPolygon>::get_Vertices(IPolygon* polygon, VARIANT* vertices) {
    LONG number = 0;
    SVertice* points = nullptr;
    HRESULT result = polygon->get_NumberOfVertices(&number);
    if (SUCCEEDED(result)) result = polygon->get_Vertices(&points);
    if (FAILED(result)) return result;
    const auto size = static_cast<size_t>(points ? std::max<LONG>(number, 0) : 0);
    NewArray array(VT_R8, size, 2);
    for (size_t i = 0; i < size; ++i) {
        array.data<double>()[i] = points[i].m_dX;
        array.data<double>()[size + i] = points[i].m_dY;
    }
    *vertices = array.Detach();
    return result;
}

HRESULT Added<IPolygon>::GetVertex(IPolygon* polygon, LONG index, double* x, double* y) {
    LONG number = 0;
    SVertice* points = nullptr;
    HRESULT result = polygon->get_NumberOfVertices(&number);
    if (SUCCEEDED(result)) result = polygon->get_Vertices(&points);
    if (FAILED(result)) return result;
    if (!points || index < 0 || index >= number) return DISP_E_BADINDEX;
    *x = points[index].m_dX;
    *y = points[index].m_dY;
    return S_OK;
}

HRESULT Added<IStructuringElement>::get_Elements(IStructuringElement* element, VARIANT* elements) {
    LONG number = 0;
    SElement* pixels = nullptr;
    HRESULT result = element->get_NumberOfElements(&number);
    if (SUCCEEDED(result)) result = element->get_Elements(&pixels);
    if (FAILED(result)) return result;
    const auto size = static_cast<size_t>(pixels ? std::max<LONG>(number, 0) : 0);
    NewArray array(VT_I4, size, 2);
    for (size_t i = 0; i < size; ++i) {
        array.data<LONG>()[i] = pixels[i].m_lX;
        array.data<LONG>()[size + i] = pixels[i].m_lY;
    }
    *elements = array.Detach();
    return result;
}

HRESULT Added<IRegionOfInterest>::GetRowRuns(IRegionOfInterest* region, LONG row, VARIANT* runs) {
    SRun *begin = nullptr, *end = nullptr;
    const HRESULT result = region->GetRowRuns(row, &begin, &end);
    if (FAILED(result)) return result;
    const size_t size = begin && end > begin ? static_cast<size_t>(end - begin) : 0;
    NewArray array(VT_I4, size, 2);
    for (size_t i = 0; i < size; ++i) {
        array.data<LONG>()[i] = begin[i].m_lStart;
        array.data<LONG>()[size + i] = begin[i].m_lStop;
    }
    *runs = array.Detach();
    return result;
}

// --------------------------------------------------------------------------------------------------------- bytes

HRESULT Added<IImageEntries>::ReadBinaryEntry(IImageEntries* entries, LONG index, LONG offset, LONG size,
                                              VARIANT* bytes) {
    BSTR keyword = nullptr;
    LONG all = 0;
    const HRESULT found = entries->GetBinaryEntry(index, &keyword, &all);
    SysFreeString(keyword);
    if (FAILED(found)) return found;
    if (size == kAll && offset >= 0 && offset <= all) size = all - offset;
    // What does not exist is refused before anything is copied.
    std::vector<uint8_t> content(static_cast<size_t>(std::clamp<LONG>(size, 0, all)) + 1);
    const HRESULT read = entries->ReadBinaryEntry(index, offset, size == kAll ? 0 : size, content.data());
    if (FAILED(read)) return read;
    *bytes = BytesValue(content, content.size() - 1);
    return read;
}

HRESULT Added<IImageEntries>::PutBinaryEntry(IImageEntries* entries, BSTR keyword, const GivenValue* bytes) {
    std::vector<uint8_t> content = ReadBytes(*bytes->value, bytes->locale);
    return entries->PutBinaryEntry(keyword, CheckedSize(content), content.data());
}

HRESULT Added<IDIBImage>::GetPacked(IDIBImage* bitmap, LONG headerSize, VARIANT* bytes) {
    LONG needed = 0;
    HRESULT result = bitmap->GetPacked(headerSize, 0, nullptr, &needed);
    if (FAILED(result)) return result;
    std::vector<uint8_t> content(static_cast<size_t>(std::max<LONG>(needed, 0)));
    result = bitmap->GetPacked(headerSize, needed, content.data(), &needed);
    if (FAILED(result)) return result;
    *bytes = BytesValue(content, content.size());
    return result;
}

HRESULT Added<IDIBImage>::PutPacked(IDIBImage* bitmap, const GivenValue* bytes) {
    std::vector<uint8_t> content = ReadBytes(*bytes->value, bytes->locale);
    const LONG size = CheckedSize(content);
    content.resize(std::max<size_t>(content.size(), 1));  // no null pointer
    return bitmap->PutPacked(size, content.data());
}

HRESULT Added<IBitmapProcess>::ApplyTable(IBitmapProcess* bitmap, const GivenValue* table, LONG times, LONG* passes) {
    std::vector<uint8_t> entries = ReadBytes(*table->value, table->locale);
    if (entries.size() != 512) throw BadValue{DISP_E_TYPEMISMATCH};
    return bitmap->ApplyTable(entries.data(), times, passes);
}

HRESULT Added<IPersistStreamInitEx>::Save(IPersistStreamInitEx* image, IStream* stream, LONG clearDirty) {
    return image->Save(stream, clearDirty != 0);
}

HRESULT Added<IPersistStreamInitEx>::Load(IPersistStreamInitEx* image, IStream* stream) {
    return image->ReLoad(stream);
}

HRESULT Added<IImageFrames>::CreateFromFrame(IImageFrames* image, const GivenValue* bytes, LONG width, LONG height,
                                             LONG pixelFormat, LONG rowPitch, LONG bottomUp, LONG mosaic) {
    const GivenArray array(*bytes->value, bytes->locale);
    if (array.dimensions() != 1 || array.type() != VT_UI1) throw BadValue{DISP_E_TYPEMISMATCH};
    uint8_t none = 0;  // an empty buffer is too short, not missing
    SFrame frame = {};
    frame.m_pBuffer = array.count() > 0 ? const_cast<uint8_t*>(static_cast<const uint8_t*>(array.data())) : &none;
    frame.m_llSize = static_cast<LONGLONG>(array.count());
    frame.m_lWidth = width;
    frame.m_lHeight = height;
    frame.m_lPixelFormat = pixelFormat;
    frame.m_lRowPitch = rowPitch;
    frame.m_lBottomUp = bottomUp;
    frame.m_lMosaic = mosaic;
    return image->CreateFromFrame(&frame);
}

// --------------------------------------------------------------------------------------------------------- blobs

HRESULT Added<IBlobs>::GetValues(IBlobs* blobs, SingleMeasurementType type, LONG first, LONG count, VARIANT* values) {
    size_t written = 0;
    HRESULT result = FindRange(blobs, first, count, written);
    if (FAILED(result)) return result;
    NewArray array(VT_R8, written);
    double none = 0;
    result = blobs->GetValues(type, first, count, written > 0 ? array.data<double>() : &none);
    if (SUCCEEDED(result)) *values = array.Detach();
    return result;
}

HRESULT Added<IBlobs>::GetBinaryMeasurements(IBlobs* blobs, LONG desired, LONG first, LONG count, VARIANT* records) {
    return BlobRecords<SBinaryMeasurements>(blobs, first, count, records, [&](LONG number, SBinaryMeasurements* into) {
        return blobs->GetBinaryMeasurements(desired, first, number, into);
    });
}

HRESULT Added<IBlobs>::GetGrayMeasurements(IBlobs* blobs, LONG first, LONG count, VARIANT* records) {
    return BlobRecords<SBlobGrayMeasurements>(
        blobs, first, count, records,
        [&](LONG number, SBlobGrayMeasurements* into) { return blobs->GetGrayMeasurements(first, number, into); });
}

HRESULT Added<IBlobs>::GetLevelMeasurements(IBlobs* blobs, IImageVPA* image, LONG band, double level, LONG first,
                                            LONG count, VARIANT* records) {
    return BlobRecords<SLevelMeasurements>(blobs, first, count, records, [&](LONG number, SLevelMeasurements* into) {
        return blobs->GetLevelMeasurements(image, band, level, first, number, into);
    });
}

HRESULT Added<IBlobs>::get_Item(IBlobs* blobs, LONG index, VARIANT* record) {
    const RecordMemory memory = NewRecords(RecordOf<SBinaryMeasurements>(), 1);
    const HRESULT result =
        blobs->GetBinaryMeasurements(BEMT_All, index, 1, reinterpret_cast<SBinaryMeasurements*>(memory.get()));
    if (SUCCEEDED(result)) *record = ObjectValue(ShowRecord(RecordOf<SBinaryMeasurements>(), memory).Detach());
    return result;
}

HRESULT Added<IBlobs>::get__NewEnum(IBlobs* blobs, VARIANT* items) {
    *items = ObjectValue(new BlobItems(ComPtr<IBlobs>(blobs), 0));
    return S_OK;
}

}  // namespace orlix::automation
