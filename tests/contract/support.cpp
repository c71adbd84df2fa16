#include "contract/support.hpp"

#include <cstdlib>
#include <optional>

namespace orlix::testing {
namespace {

// The thread of the tests is an apartment from the first test to the last.
class TestApartment : public ::testing::Environment {
public:
    void SetUp() override { apartment_.emplace(); }
    void TearDown() override { apartment_.reset(); }

private:
    std::optional<Apartment> apartment_;
};
[[maybe_unused]] ::testing::Environment* const environment = ::testing::AddGlobalTestEnvironment(new TestApartment);

}  // namespace

Reported TakeReported() {
    ComPtr<IErrorInfo> info;
    if (GetErrorInfo(0, info.Out()) != S_OK) return {};
    Text text;
    Text source;
    info->GetDescription(text.Out());
    info->GetSource(source.Out());
    return {text.Utf8(), source.Utf8()};
}

::testing::AssertionResult Fails(HRESULT result, const std::string& text, const char* source, HRESULT expected) {
    const Reported reported = TakeReported();
    if (result == expected && reported.text == text && reported.source == source) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "result 0x" << std::hex << static_cast<uint32_t>(result) << ", text \""
                                         << reported.text << "\", source \"" << reported.source << "\"";
}

::testing::AssertionResult FailsSilently(HRESULT result, HRESULT expected) { return Fails(result, "", "", expected); }

ULONG ReferencesOf(IUnknown* object) {
    object->AddRef();
    return object->Release();
}

void ForeignImage::SetOffsets(const std::function<LONG(LONG)>& column, const std::function<LONG(LONG)>& row) {
    const auto inside = [](LONG i, LONG length) {
        if (length == 1) return LONG{0};
        const LONG folded = std::abs(i) % (2 * (length - 1));
        return std::min(folded, 2 * (length - 1) - folded);
    };
    const LONG longer = std::max(width, height);
    table.clear();
    for (LONG i = -200; i < longer + 200; ++i) table.push_back({column(inside(i, width)), row(inside(i, height))});
}

HRESULT ForeignImage::Dimensions(LONG* outBands, LONG* outWidth, LONG* outHeight) noexcept {
    *outBands = bands;
    *outWidth = width;
    *outHeight = height;
    return dimensionsResult;
}

HRESULT ForeignImage::DataType(LONG, LONG* outType) noexcept {
    *outType = type;
    return typeResult;
}

HRESULT ForeignImage::VPA(LONG, void** outBase, VPAEntry** outTable) noexcept {
    *outBase = base;
    *outTable = nullTable || table.empty() ? nullptr : table.data() + 200;
    height += growAfterVpa;
    if (onVpa) onVpa();
    return vpaResult;
}

HRESULT ForeignImage::GetCoords(TCoordinateMap* map) noexcept {
    *map = {7, 8, {1, 2, 3, 4}};
    return coordsResult;
}

STDMETHODIMP ForeignRegion::GetRowRuns(LONG row, SRun** begin, SRun** end) noexcept {
    if (onRuns) onRuns();
    *begin = runs.data();
    *end = runs.data() + runs.size();
    return row == failingRow ? runsResult : S_OK;
}

}  // namespace orlix::testing
