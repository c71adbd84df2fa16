#include "platform/process_registry.hpp"

#include <algorithm>
#include <new>

namespace orlix {
namespace {

constexpr OLECHAR Folded(OLECHAR c) { return c >= u'a' && c <= u'z' ? static_cast<OLECHAR>(c - u'a' + u'A') : c; }

bool LiesBelow(WideStringView path, WideStringView key) {
    return path.size() > key.size() && path[key.size()] == u'\\' &&
           std::equal(key.begin(), key.end(), path.begin(),
                      [](OLECHAR a, OLECHAR b) { return Folded(a) == Folded(b); });
}

WideString Below(WideStringView key) { return WideString(key) + u'\\'; }

}  // namespace

bool ProcessRegistry::IgnoringCase::operator()(WideStringView a, WideStringView b) const noexcept {
    // Most characters are equal in the same case: paths begin alike.
    const size_t shared = std::min(a.size(), b.size());
    for (size_t i = 0; i < shared; ++i)
        if (a[i] != b[i] && Folded(a[i]) != Folded(b[i])) return Folded(a[i]) < Folded(b[i]);
    return a.size() < b.size();
}

ProcessRegistry& ProcessRegistry::OfThisProcess() {
    // Never destroyed: objects that outlive the program's static objects may still report failures.
    static ProcessRegistry& registry = *new ProcessRegistry;
    return registry;
}

ProcessRegistry::Keys::iterator ProcessRegistry::Create(WideStringView key) {
    if (const auto found = keys_.find(key); found != keys_.end()) return found;
    if (const size_t parent = key.rfind(u'\\'); parent != WideStringView::npos) Create(key.substr(0, parent));
    return keys_.emplace(key, Values{}).first;
}

void ProcessRegistry::CreateKey(WideStringView key) {
    const std::lock_guard lock(mutex_);
    Create(key);
}

void ProcessRegistry::SetValue(WideStringView key, WideStringView name, Value value) {
    const std::lock_guard lock(mutex_);
    Values& values = Create(key)->second;
    const auto found = values.find(name);
    if (found != values.end())
        found->second = std::move(value);
    else
        values.emplace(name, std::move(value));
}

bool ProcessRegistry::HasKey(WideStringView key) const {
    const std::lock_guard lock(mutex_);
    return keys_.contains(key);
}

std::optional<WideString> ProcessRegistry::FindText(WideStringView key, WideStringView name) const {
    const std::lock_guard lock(mutex_);
    const auto found = keys_.find(key);
    if (found == keys_.end()) return std::nullopt;
    const auto value = found->second.find(name);
    if (value == found->second.end()) return std::nullopt;
    const auto* text = std::get_if<WideString>(&value->second);
    return text ? std::optional(*text) : std::nullopt;
}

bool ProcessRegistry::DeleteValue(WideStringView key, WideStringView name) {
    const std::lock_guard lock(mutex_);
    const auto found = keys_.find(key);
    if (found == keys_.end()) return false;
    const auto value = found->second.find(name);
    if (value == found->second.end()) return false;
    found->second.erase(value);
    return true;
}

// Paths with a common beginning are neighbours in the map.
ProcessRegistry::Keys::iterator ProcessRegistry::EndOfTree(Keys::iterator below, WideStringView key) {
    while (below != keys_.end() && LiesBelow(below->first, key)) ++below;
    return below;
}

bool ProcessRegistry::DeleteTree(WideStringView key) {
    const std::lock_guard lock(mutex_);
    const auto found = keys_.find(key);
    if (found == keys_.end()) return false;
    const auto below = keys_.lower_bound(Below(key));
    keys_.erase(below, EndOfTree(below, key));
    keys_.erase(found);
    return true;
}

bool ProcessRegistry::DeleteIfEmpty(WideStringView key) {
    const std::lock_guard lock(mutex_);
    const auto found = keys_.find(key);
    if (found == keys_.end() || !found->second.empty()) return false;
    const auto below = keys_.lower_bound(Below(key));
    if (below != EndOfTree(below, key)) return false;
    keys_.erase(found);
    return true;
}

ProcessRegistry::Keys ProcessRegistry::Snapshot() const {
    const std::lock_guard lock(mutex_);
    return keys_;
}

}  // namespace orlix

HRESULT ProgIDFromCLSID(REFCLSID clsid, LPOLESTR* progid) {
    using namespace orlix;
    if (!progid) return E_INVALIDARG;
    *progid = nullptr;
    if (const HRESULT result = ProcessRegistry::OfThisProcess().PrepareLookUp(); FAILED(result)) return result;
    OLECHAR identifier[39];
    StringFromGUID2(clsid, identifier, 39);
    try {
        const auto found =
            ProcessRegistry::OfThisProcess().FindText(WideString(u"HKCR\\CLSID\\") + identifier + u"\\ProgID", u"");
        if (!found) return REGDB_E_CLASSNOTREG;
        auto* text = static_cast<OLECHAR*>(CoTaskMemAlloc((found->size() + 1) * sizeof(OLECHAR)));
        if (!text) return E_OUTOFMEMORY;
        std::copy_n(found->c_str(), found->size() + 1, text);
        *progid = text;
        return S_OK;
    } catch (...) {
        return E_OUTOFMEMORY;
    }
}
