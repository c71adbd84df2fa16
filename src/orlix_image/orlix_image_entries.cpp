#include <algorithm>
#include <cstring>

#include "component/strings.hpp"
#include "files/image_file.hpp"
#include "orlix_image/orlix_image.hpp"

using namespace orlix;

namespace {

template <class Entries>
auto& EntryAt(Entries& entries, LONG index, const char* outOfRange) {
    if (index < 0 || static_cast<size_t>(index) >= entries.size()) throw Failure(outOfRange);
    return entries[static_cast<size_t>(index)];
}

template <class Entries>
void RemoveAt(Entries& entries, LONG index, const char* outOfRange) {
    EntryAt(entries, index, outOfRange);
    entries.erase(entries.begin() + index);
}

template <class Entries>
auto FindKeyword(Entries& entries, const WideString& keyword) {
    return std::find_if(entries.begin(), entries.end(), [&](const auto& entry) { return entry.keyword == keyword; });
}

}  // namespace

STDMETHODIMP OrlixImage::get_NumberOfTextEntries(LONG* number) noexcept {
    return Guarded<IImageEntries>([&] {
        Require(number);
        *number = static_cast<LONG>(Typed()->store().properties().texts.size());
    });
}

STDMETHODIMP OrlixImage::GetTextEntry(LONG index, BSTR* keyword, BSTR* text) noexcept {
    return Guarded<IImageEntries>([&] {
        Require(keyword), Require(text);
        *keyword = nullptr;
        *text = nullptr;
        const TextEntry& entry =
            EntryAt(Typed()->store().properties().texts, index, "IImageEntries::GetTextEntry: Index is out of range.");
        BSTR copy = CopyToBstr(entry.keyword);
        try {
            *text = CopyToBstr(entry.text);
        } catch (...) {
            SysFreeString(copy);
            throw;
        }
        *keyword = copy;
    });
}

STDMETHODIMP OrlixImage::PutTextEntry(BSTR keyword, BSTR text) noexcept {
    return Guarded<IImageEntries>([&] {
        ImageProperties& properties = Typed()->store().properties();
        WideString key(ToView(keyword));
        WideString value(ToView(text));
        if (!IsFileKeyword(key)) throw Failure("IImageEntries::PutTextEntry: invalid keyword.");
        std::vector<TextEntry>& texts = properties.texts;
        const auto found = FindKeyword(texts, key);
        if (key == kDescriptionKeyword) {
            properties.hasDescription = !value.empty();
            properties.description = std::move(value);
        } else if (value.empty()) {
            std::erase_if(texts, [&](const TextEntry& entry) { return entry.keyword == key; });
        } else if (found != texts.end()) {
            found->text = std::move(value);
        } else {
            texts.push_back({std::move(key), std::move(value)});
        }
        modified_ = true;
    });
}

STDMETHODIMP OrlixImage::RemoveTextEntry(LONG index) noexcept {
    return Guarded<IImageEntries>([&] {
        RemoveAt(Typed()->store().properties().texts, index, "IImageEntries::RemoveTextEntry: Index is out of range.");
        modified_ = true;
    });
}

STDMETHODIMP OrlixImage::get_NumberOfBinaryEntries(LONG* number) noexcept {
    return Guarded<IImageEntries>([&] {
        Require(number);
        *number = static_cast<LONG>(Typed()->store().properties().binaries.size());
    });
}

STDMETHODIMP OrlixImage::GetBinaryEntry(LONG index, BSTR* keyword, LONG* size) noexcept {
    return Guarded<IImageEntries>([&] {
        Require(keyword), Require(size);
        *keyword = nullptr;
        *size = 0;
        const BinaryEntry& entry = EntryAt(Typed()->store().properties().binaries, index,
                                           "IImageEntries::GetBinaryEntry: Index is out of range.");
        *keyword = CopyToBstr(entry.keyword);
        *size = static_cast<LONG>(entry.bytes.size());
    });
}

STDMETHODIMP OrlixImage::ReadBinaryEntry(LONG index, LONG offset, LONG size, unsigned char* bytes) noexcept {
    return Guarded<IImageEntries>([&] {
        Require(bytes);
        const BinaryEntry& entry = EntryAt(Typed()->store().properties().binaries, index,
                                           "IImageEntries::ReadBinaryEntry: Index is out of range.");
        if (offset < 0 || size < 0 || int64_t{offset} + size > static_cast<int64_t>(entry.bytes.size()))
            throw Failure("IImageEntries::ReadBinaryEntry: the bytes are out of range.");
        std::copy_n(entry.bytes.begin() + offset, size, bytes);
    });
}

STDMETHODIMP OrlixImage::PutBinaryEntry(BSTR keyword, LONG size, unsigned char* bytes) noexcept {
    return Guarded<IImageEntries>([&] {
        if (size > 0) Require(bytes);
        std::vector<BinaryEntry>& binaries = Typed()->store().properties().binaries;
        WideString key(ToView(keyword));
        if (!IsFileKeyword(key)) throw Failure("IImageEntries::PutBinaryEntry: invalid keyword.");
        if (size < 0) throw Failure("IImageEntries::PutBinaryEntry: Size must not be negative.");
        std::vector<uint8_t> copy(bytes, bytes + size);
        if (const auto found = FindKeyword(binaries, key); found != binaries.end())
            found->bytes = std::move(copy);
        else
            binaries.push_back({std::move(key), std::move(copy)});
        modified_ = true;
    });
}

STDMETHODIMP OrlixImage::RemoveBinaryEntry(LONG index) noexcept {
    return Guarded<IImageEntries>([&] {
        RemoveAt(Typed()->store().properties().binaries, index,
                 "IImageEntries::RemoveBinaryEntry: Index is out of range.");
        modified_ = true;
    });
}
