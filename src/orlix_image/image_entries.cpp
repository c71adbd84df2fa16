#include "orlix_image/image_entries.hpp"

#include <algorithm>
#include <cstring>

#include "component/strings.hpp"
#include "files/image_file.hpp"

namespace orlix {

namespace {

template <class Entries>
auto& EntryAt(Entries& entries, LONG index, const char* outOfRange) {
    if (index < 0 || static_cast<size_t>(index) >= entries.size()) throw Failure(outOfRange);
    return entries[static_cast<size_t>(index)];
}

template <class Entry>
void RemoveAt(ImageStore& store, std::vector<Entry> ImageProperties::*entries, LONG index, const char* outOfRange) {
    EntryAt(store.properties().*entries, index, outOfRange);
    std::vector<Entry>& all = store.ChangeProperties().*entries;
    all.erase(all.begin() + index);
}

template <class Entries>
auto FindKeyword(Entries& entries, const WideString& keyword) {
    return std::find_if(entries.begin(), entries.end(), [&](const auto& entry) { return entry.keyword == keyword; });
}

}  // namespace

STDMETHODIMP ImageEntries::get_NumberOfTextEntries(LONG* number) noexcept {
    return Guarded<IImageEntries>([&] {
        Require(number);
        *number = static_cast<LONG>(Typed()->store().properties().texts.size());
    });
}

STDMETHODIMP ImageEntries::GetTextEntry(LONG index, BSTR* keyword, BSTR* text) noexcept {
    return Guarded<IImageEntries>([&] {
        Require(keyword), Require(text);
        *keyword = nullptr;
        *text = nullptr;
        const TextEntry& entry =
            EntryAt(Typed()->store().properties().texts, index, "IImageEntries::GetTextEntry: Index is out of range.");
        Text first(entry.keyword), second(entry.text);
        *keyword = first.Detach();
        *text = second.Detach();
    });
}

STDMETHODIMP ImageEntries::PutTextEntry(BSTR keyword, BSTR text) noexcept {
    return Guarded<IImageEntries>([&] {
        ImageStore& store = Typed()->store();
        WideString key(ToView(keyword));
        WideString value(ToView(text));
        if (!IsFileKeyword(key)) throw Failure("IImageEntries::PutTextEntry: invalid keyword.");
        ImageProperties& properties = store.ChangeProperties();
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
    });
}

STDMETHODIMP ImageEntries::RemoveTextEntry(LONG index) noexcept {
    return Guarded<IImageEntries>([&] {
        RemoveAt(Typed()->store(), &ImageProperties::texts, index,
                 "IImageEntries::RemoveTextEntry: Index is out of range.");
    });
}

STDMETHODIMP ImageEntries::get_NumberOfBinaryEntries(LONG* number) noexcept {
    return Guarded<IImageEntries>([&] {
        Require(number);
        *number = static_cast<LONG>(Typed()->store().properties().binaries.size());
    });
}

STDMETHODIMP ImageEntries::GetBinaryEntry(LONG index, BSTR* keyword, LONG* size) noexcept {
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

STDMETHODIMP ImageEntries::ReadBinaryEntry(LONG index, LONG offset, LONG size, unsigned char* bytes) noexcept {
    return Guarded<IImageEntries>([&] {
        Require(bytes);
        const BinaryEntry& entry = EntryAt(Typed()->store().properties().binaries, index,
                                           "IImageEntries::ReadBinaryEntry: Index is out of range.");
        if (offset < 0 || size < 0 || int64_t{offset} + size > static_cast<int64_t>(entry.bytes.size()))
            throw Failure("IImageEntries::ReadBinaryEntry: the bytes are out of range.");
        std::copy_n(entry.bytes.begin() + offset, size, bytes);
    });
}

STDMETHODIMP ImageEntries::PutBinaryEntry(BSTR keyword, LONG size, unsigned char* bytes) noexcept {
    return Guarded<IImageEntries>([&] {
        if (size > 0) Require(bytes);
        ImageStore& store = Typed()->store();
        WideString key(ToView(keyword));
        if (!IsFileKeyword(key)) throw Failure("IImageEntries::PutBinaryEntry: invalid keyword.");
        if (size < 0) throw Failure("IImageEntries::PutBinaryEntry: Size must not be negative.");
        std::vector<uint8_t> copy(bytes, bytes + size);
        std::vector<BinaryEntry>& binaries = store.ChangeProperties().binaries;
        if (const auto found = FindKeyword(binaries, key); found != binaries.end())
            found->bytes = std::move(copy);
        else
            binaries.push_back({std::move(key), std::move(copy)});
    });
}

STDMETHODIMP ImageEntries::RemoveBinaryEntry(LONG index) noexcept {
    return Guarded<IImageEntries>([&] {
        RemoveAt(Typed()->store(), &ImageProperties::binaries, index,
                 "IImageEntries::RemoveBinaryEntry: Index is out of range.");
    });
}

}  // namespace orlix
