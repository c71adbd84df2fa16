#include "orlix_vb_helper/folder_dialog.hpp"

#include <shlobj.h>
#include <windows.h>

#include <memory>

#include "component/failure.hpp"

namespace orlix {
namespace {

struct FreeTaskMemory {
    void operator()(void* memory) const { CoTaskMemFree(memory); }
};

int CALLBACK ChooseStart(HWND dialog, UINT message, LPARAM, LPARAM start) {
    if (message == BFFM_INITIALIZED && start) SendMessageW(dialog, BFFM_SETSELECTIONW, TRUE, start);
    return 0;
}

}  // namespace

std::optional<WideString> AskForFolder(const WideString& title, const WideString& start) {
    BROWSEINFOW dialog = {};
    dialog.hwndOwner = GetActiveWindow();
    dialog.lpszTitle = title.c_str();
    dialog.ulFlags = BIF_RETURNONLYFSDIRS | BIF_NEWDIALOGSTYLE;
    dialog.lpfn = &ChooseStart;
    dialog.lParam = start.empty() ? 0 : reinterpret_cast<LPARAM>(start.c_str());
    const std::unique_ptr<ITEMIDLIST, FreeTaskMemory> chosen(SHBrowseForFolderW(&dialog));
    if (!chosen) return std::nullopt;
    WideString path(MAX_PATH, 0);
    while (!SHGetPathFromIDListEx(chosen.get(), path.data(), static_cast<DWORD>(path.size()), GPFIDL_DEFAULT)) {
        constexpr size_t kLongestPath = 32768;
        if (path.size() >= kLongestPath) throw FailedResult(E_FAIL);
        path.resize(2 * path.size());
    }
    path.resize(path.find(OLECHAR{0}));
    return path;
}

}  // namespace orlix
