#include "orlix_vb_helper/orlix_vb_helper.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <initializer_list>
#include <optional>
#include <random>
#include <vector>

#include <orlix/client.hpp>

#include "component/error_report.hpp"
#include "component/stream_bytes.hpp"
#include "component/strings.hpp"
#include "orlix_buffer/clipboard.hpp"
#include "orlix_vb_helper/byte_arrays.hpp"
#include "orlix_vb_helper/copied_image.hpp"
#include "orlix_vb_helper/file_measurement.hpp"
#include "orlix_vb_helper/folder_dialog.hpp"
#include "orlix_vb_helper/script_stream.hpp"
#include "platform/temporary_files.hpp"
#include "text/encoding.hpp"

using namespace orlix;

namespace {

constexpr double kLargestPosition = 9007199254740992.0;           // 2^53: all whole numbers up to it are doubles
constexpr auto kFileNotFound = static_cast<HRESULT>(0x80030002);  // STG_E_FILENOTFOUND

bool BeginsWith(std::span<const uint8_t> bytes, std::initializer_list<uint8_t> mark) {
    return bytes.size() >= mark.size() && std::equal(mark.begin(), mark.end(), bytes.begin());
}

WideString TextOf(std::span<const uint8_t> bytes) {
    const bool little = BeginsWith(bytes, {0xff, 0xfe});
    if (little || BeginsWith(bytes, {0xfe, 0xff})) {
        WideString text;
        for (size_t i = 2; i + 1 < bytes.size(); i += 2)
            text += static_cast<OLECHAR>(bytes[i + !little] | bytes[i + little] << 8);
        return text;
    }
    return FromUtf8(bytes.subspan(BeginsWith(bytes, {0xef, 0xbb, 0xbf}) ? 3 : 0));
}

// The UTF-16 of a text with its terminator, as bytes.
std::span<const uint8_t> TerminatedBytes(const WideString& text) {
    return {reinterpret_cast<const uint8_t*>(text.c_str()), (text.size() + 1) * sizeof(OLECHAR)};
}

// The failures of the library's own objects are this object's.
template <class Body>
auto Reported(const Body& body) try {
    return body();
} catch (const Error& error) {
    if (!error.message().empty()) ReportError(__uuidof(OrlixVBHelper), error.message().c_str());
    throw FailedResult(error.result());
}

}  // namespace

// ------------------------------------------------------------------------------------------------------------- streams

STDMETHODIMP OrlixVBHelper::OpenFileStream(BSTR fileName, FileStreamMode mode, IUnknown** stream) noexcept {
    return Guarded<IVBHelper>([&] {
        Require(stream);
        *stream = nullptr;
        DWORD access = 0;
        switch (mode) {
            case FSM_Read:
                access = STGM_READ | STGM_SHARE_DENY_WRITE;
                break;
            case FSM_Create:
                access = STGM_READWRITE | STGM_CREATE | STGM_SHARE_EXCLUSIVE;
                break;
            case FSM_Update:
                access = STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
                break;
            default:
                throw MethodFailure("unknown mode.");
        }
        constexpr DWORD kNormalFile = 0x80;
        const WideString name(ToView(fileName));
        if (name.empty() || name.find(OLECHAR{0}) != name.npos) throw FailedResult(kFileNotFound);
        ComPtr<IStream> opened;
        PassOn(SHCreateStreamOnFileEx(name.c_str(), access, kNormalFile, mode == FSM_Create, nullptr, opened.Out()));
        *stream = ForScripts(opened).Detach();
    });
}

STDMETHODIMP OrlixVBHelper::CreateMemoryStream(IUnknown** stream) noexcept {
    return Guarded([&] {
        Require(stream);
        *stream = nullptr;
        ComPtr<IStream> created;
        PassOn(CreateStreamOnHGlobal(nullptr, TRUE, created.Out()));
        *stream = ForScripts(created).Detach();
    });
}

STDMETHODIMP OrlixVBHelper::get_StreamPosition(IUnknown* stream, double* position) noexcept {
    return Guarded([&] {
        Require(stream), Require(position);
        *position = 0;
        ULARGE_INTEGER at = {};
        PassOn(StreamOf(stream)->Seek({}, STREAM_SEEK_CUR, &at));
        *position = static_cast<double>(at.QuadPart);
    });
}

STDMETHODIMP OrlixVBHelper::put_StreamPosition(IUnknown* stream, double position) noexcept {
    return Guarded<IVBHelper>([&] {
        Require(stream);
        if (!(position >= 0 && position <= kLargestPosition && position == std::floor(position)))
            throw MethodFailure("the position must be a whole number of bytes.");
        LARGE_INTEGER to = {};
        to.QuadPart = static_cast<int64_t>(position);
        PassOn(StreamOf(stream)->Seek(to, STREAM_SEEK_SET, nullptr));
    });
}

STDMETHODIMP OrlixVBHelper::get_StreamSize(IUnknown* stream, double* size) noexcept {
    return Guarded([&] {
        Require(stream), Require(size);
        *size = 0;
        STATSTG state = {};
        PassOn(StreamOf(stream)->Stat(&state, STATFLAG_NONAME));
        *size = static_cast<double>(state.cbSize.QuadPart);
    });
}

STDMETHODIMP OrlixVBHelper::ReadText(IUnknown* stream, BSTR* text) noexcept {
    return Guarded([&] {
        Require(stream), Require(text);
        *text = nullptr;
        *text = CopyToBstr(TextOf(ReadRest(StreamOf(stream).get())));
    });
}

STDMETHODIMP OrlixVBHelper::WriteText(IUnknown* stream, BSTR text) noexcept {
    return Guarded([&] {
        const ComPtr<IStream> to = StreamOf(stream);
        const std::string bytes = ToUtf8Bytes(ToView(text));
        WriteTo(to.get(), {reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()});
    });
}

STDMETHODIMP OrlixVBHelper::ReadBytes(IUnknown* stream, LONG size, VARIANT* bytes) noexcept {
    return Guarded<IVBHelper>([&] {
        Require(stream), Require(bytes);
        ClearArray(*bytes);
        const ComPtr<IStream> from = StreamOf(stream);
        if (size < -1) throw MethodFailure("Size must not be below -1.");
        PutArray(size < 0 ? ReadRest(from.get()) : ReadUpTo(from.get(), static_cast<size_t>(size)), *bytes);
    });
}

STDMETHODIMP OrlixVBHelper::WriteBytes(IUnknown* stream, VARIANT bytes) noexcept {
    return Guarded([&] {
        const ComPtr<IStream> to = StreamOf(stream);
        WriteTo(to.get(), BytesOf(bytes));
    });
}

// ----------------------------------------------------------------------------------------------------------- clipboard

STDMETHODIMP OrlixVBHelper::get_ClipboardText(BSTR* text) noexcept {
    return Guarded<IVBHelper>([&] {
        Require(text);
        *text = nullptr;
        WideString found;
        if (const auto bytes = FromClipboard(ClipboardFormat::Text)) {
            found.resize(bytes->size() / sizeof(OLECHAR));
            std::memcpy(found.data(), bytes->data(), found.size() * sizeof(OLECHAR));
            found.resize(std::min(found.find(OLECHAR{0}), found.size()));
        }
        *text = CopyToBstr(found);
    });
}

STDMETHODIMP OrlixVBHelper::put_ClipboardText(BSTR text) noexcept {
    return Guarded<IVBHelper>([&] {
        const WideString copy(ToView(text));
        const ClipboardItem items[] = {{ClipboardFormat::Text, TerminatedBytes(copy)}};
        ToClipboard(items);
    });
}

STDMETHODIMP OrlixVBHelper::CopyImage(IImageVPA* image) noexcept {
    return Guarded<IVBHelper>([&] {
        Require(image);
        const CopiedImage copy = Reported([&] { return CopyOfImage(image); });
        std::vector<ClipboardItem> items;
        if (!copy.png.empty()) items.push_back({ClipboardFormat::Png, copy.png});
        items.push_back({ClipboardFormat::Bitmap, copy.bitmap});
        ToClipboard(items);
    });
}

STDMETHODIMP OrlixVBHelper::PasteImage(IImageVPA** image) noexcept {
    return Guarded<IVBHelper>([&]() -> HRESULT {
        Require(image);
        *image = nullptr;
        ComPtr<IImageVPA> found;
        if (const auto png = FromClipboard(ClipboardFormat::Png))
            found = Reported([&] { return ImageOfPng(*png); });
        else if (const auto bitmap = FromClipboard(ClipboardFormat::Bitmap))
            found = Reported([&] { return ImageOfBitmap(*bitmap); });
        *image = found.Detach();
        return *image ? S_OK : S_FALSE;
    });
}

// --------------------------------------------------------------------------------------------------- folders and names

STDMETHODIMP OrlixVBHelper::BrowseForFolder(BSTR title, BSTR startFolder, BSTR* folder) noexcept {
    return Guarded<IVBHelper>([&]() -> HRESULT {
        Require(folder);
        *folder = nullptr;
        const std::optional<WideString> chosen =
            AskForFolder(WideString(ToView(title)), WideString(ToView(startFolder)));
        *folder = CopyToBstr(chosen.value_or(WideString()));
        return chosen ? S_OK : S_FALSE;
    });
}

STDMETHODIMP OrlixVBHelper::get_TemporaryFolder(BSTR* folder) noexcept {
    return Guarded([&] {
        Require(folder);
        *folder = nullptr;
        *folder = CopyToBstr(TemporaryFolder());
    });
}

STDMETHODIMP OrlixVBHelper::TemporaryName(BSTR extension, BSTR* fileName) noexcept {
    return Guarded<IVBHelper>([&] {
        Require(fileName);
        *fileName = nullptr;
        constexpr OLECHAR kSeparators[] = {'/', '\\', ':', 0};
        const WideStringView end = ToView(extension);
        if (end.find_first_of(WideStringView(kSeparators, 4)) != end.npos)
            throw MethodFailure("the extension must not hold a folder.");
        std::random_device random;
        WideString name;
        do {
            name = TemporaryFolder();
            for (const char letter : std::string_view("orlix-")) name += static_cast<OLECHAR>(letter);
            for (int digits = 0; digits < 16; ++digits) name += static_cast<OLECHAR>("0123456789abcdef"[random() % 16]);
            name += end;
        } while (PathExists(name));
        *fileName = CopyToBstr(name);
    });
}

// -------------------------------------------------------------------------------------------------------- measurements

STDMETHODIMP OrlixVBHelper::MeasureFile(BSTR fileName, AutoThresholdType threshold, LONG bright, LONG bandIndex,
                                        SFileMeasurements* measurements) noexcept {
    return Guarded<IVBHelper>([&] {
        Require(measurements);
        const LONG size = measurements->m_lSize;
        *measurements = Reported([&] { return MeasureImageFile(fileName, threshold, bright != 0, bandIndex); });
        measurements->m_lSize = size;
    });
}
