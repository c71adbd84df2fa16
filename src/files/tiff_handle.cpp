#include "files/tiff_handle.hpp"

#include <algorithm>
#include <limits>
#include <string_view>

namespace orlix {
namespace {

TiffMemory& MemoryOf(thandle_t handle) { return *static_cast<TiffMemory*>(handle); }

tmsize_t ReadBytes(thandle_t handle, void* to, tmsize_t size) {
    return static_cast<tmsize_t>(MemoryOf(handle).Read(to, static_cast<size_t>(std::max<tmsize_t>(size, 0))));
}
tmsize_t WriteBytes(thandle_t handle, void* from, tmsize_t size) {
    return static_cast<tmsize_t>(MemoryOf(handle).Write(from, static_cast<size_t>(std::max<tmsize_t>(size, 0))));
}
toff_t SeekTo(thandle_t handle, toff_t offset, int whence) { return MemoryOf(handle).Seek(offset, whence); }
int KeepOpen(thandle_t) { return 0; }
toff_t SizeOf(thandle_t handle) { return MemoryOf(handle).Size(); }

// libtiff reads what it maps, although the type allows more.
int Map(thandle_t handle, void** base, toff_t* size) {
    const TiffMemory& memory = MemoryOf(handle);
    *base = const_cast<uint8_t*>(memory.Whole());
    *size = memory.Size();
    return *base != nullptr;
}
void Unmap(thandle_t, void*, toff_t) {}

int SayNothing(TIFF*, void*, const char*, const char*, va_list) { return 1; }

int NoteDiscarded(TIFF*, void* discarded, const char*, const char* format, va_list) {
    if (format && std::string_view(format).starts_with("Discarding")) *static_cast<bool*>(discarded) = true;
    return 1;
}

}  // namespace

TiffHandle::TiffHandle(const TiffLibrary& library, TiffMemory& memory, const char* mode, uint64_t most)
    : library_(library) {
    TIFFOpenOptions* const options = library.TIFFOpenOptionsAlloc();
    if (!options) return;
    constexpr auto kMost = static_cast<uint64_t>(std::numeric_limits<tmsize_t>::max());
    library.TIFFOpenOptionsSetMaxSingleMemAlloc(options, static_cast<tmsize_t>(std::min(most, kMost)));
    library.TIFFOpenOptionsSetErrorHandlerExtR(options, &SayNothing, nullptr);
    library.TIFFOpenOptionsSetWarningHandlerExtR(options, &NoteDiscarded, &discarded_);
    tiff_ = library.TIFFClientOpenExt("", mode, &memory, &ReadBytes, &WriteBytes, &SeekTo, &KeepOpen, &SizeOf, &Map,
                                      &Unmap, options);
    library.TIFFOpenOptionsFree(options);
}

}  // namespace orlix
