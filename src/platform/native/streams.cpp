#include <orlix/orlix.h>
#include <orlix/counted_object.hpp>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "platform/native/file_path.hpp"
#include "platform/native/system_calls.hpp"

namespace {

using orlix::CountedObject;
using orlix::DerivedInterface;
using orlix::NativePath;
using orlix::Retried;

constexpr int64_t kLargestPosition = std::numeric_limits<int64_t>::max();

// What both kinds of streams have in common. They are direct: nothing to commit, nothing to revert, no locks.
class Stream : public CountedObject<DerivedInterface<IStream, ISequentialStream>> {
public:
    // From the current positions of both streams.
    STDMETHODIMP CopyTo(IStream* to, ULARGE_INTEGER size, ULARGE_INTEGER* readOut,
                        ULARGE_INTEGER* writtenOut) noexcept override {
        if (!to) return STG_E_INVALIDPOINTER;
        BYTE piece[4096];
        uint64_t done = 0, stored = 0;
        HRESULT result = S_OK;
        while (done < size.QuadPart && SUCCEEDED(result)) {
            const auto step = static_cast<ULONG>(std::min<uint64_t>(size.QuadPart - done, sizeof piece));
            ULONG read = 0, written = 0;
            result = Read(piece, step, &read);
            done += read;
            if (FAILED(result) || read == 0) break;
            result = to->Write(piece, read, &written);
            stored += written;
            if (SUCCEEDED(result) && written != read) result = STG_E_MEDIUMFULL;
        }
        if (readOut) readOut->QuadPart = done;
        if (writtenOut) writtenOut->QuadPart = stored;
        return FAILED(result) ? result : S_OK;
    }
    STDMETHODIMP Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) noexcept override {
        int64_t from = 0;
        if (origin == STREAM_SEEK_CUR)
            from = position_;
        else if (origin == STREAM_SEEK_END)
            from = Size();
        else if (origin != STREAM_SEEK_SET)
            return STG_E_INVALIDFUNCTION;
        if (from < 0) return STG_E_SEEKERROR;
        if (move.QuadPart < -from || move.QuadPart > kLargestPosition - from) return STG_E_INVALIDFUNCTION;
        position_ = from + move.QuadPart;
        if (position) position->QuadPart = static_cast<uint64_t>(position_);
        return S_OK;
    }
    STDMETHODIMP Stat(STATSTG* stat, DWORD) noexcept override {
        if (!stat) return STG_E_INVALIDPOINTER;
        *stat = {};
        const int64_t size = Size();
        if (size < 0) return STG_E_READFAULT;
        stat->type = STGTY_STREAM;
        stat->cbSize.QuadPart = static_cast<uint64_t>(size);
        stat->grfMode = Mode();
        return S_OK;
    }
    STDMETHODIMP Commit(DWORD) noexcept override { return S_OK; }
    STDMETHODIMP Revert() noexcept override { return S_OK; }
    STDMETHODIMP LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) noexcept override { return STG_E_INVALIDFUNCTION; }
    STDMETHODIMP UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) noexcept override { return STG_E_INVALIDFUNCTION; }

protected:
    explicit Stream(int64_t position = 0) : position_(position) {}

    virtual int64_t Size() const noexcept = 0;  // -1 when it cannot be told
    virtual DWORD Mode() const noexcept = 0;

    int64_t position_;
};

class MemoryStream final : public Stream {
public:
    using Bytes = std::vector<BYTE>;
    explicit MemoryStream(std::shared_ptr<Bytes> bytes, int64_t position = 0)
        : Stream(position), bytes_(std::move(bytes)) {}

    STDMETHODIMP Read(void* data, ULONG size, ULONG* read) noexcept override {
        if (read) *read = 0;
        if (!data) return STG_E_INVALIDPOINTER;
        const int64_t left = std::max<int64_t>(Size() - position_, 0);
        const auto step = static_cast<ULONG>(std::min<int64_t>(size, left));
        if (step) std::memcpy(data, bytes_->data() + position_, step);
        position_ += step;
        if (read) *read = step;
        return S_OK;
    }
    STDMETHODIMP Write(const void* data, ULONG size, ULONG* written) noexcept override {
        if (written) *written = 0;
        if (!data) return STG_E_INVALIDPOINTER;
        if (size == 0) return S_OK;
        const uint64_t end = static_cast<uint64_t>(position_) + size;
        if (end > bytes_->size() && !Resize(end)) return STG_E_MEDIUMFULL;
        std::memcpy(bytes_->data() + position_, data, size);
        position_ += size;
        if (written) *written = size;
        return S_OK;
    }
    STDMETHODIMP SetSize(ULARGE_INTEGER size) noexcept override {
        return Resize(size.QuadPart) ? S_OK : STG_E_MEDIUMFULL;
    }
    STDMETHODIMP Clone(IStream** clone) noexcept override {
        if (!clone) return STG_E_INVALIDPOINTER;
        *clone = new (std::nothrow) MemoryStream(bytes_, position_);
        return *clone ? S_OK : E_OUTOFMEMORY;
    }

private:
    int64_t Size() const noexcept override { return static_cast<int64_t>(bytes_->size()); }
    DWORD Mode() const noexcept override { return STGM_READWRITE; }
    bool Resize(uint64_t size) noexcept {
        try {
            if (size > bytes_->max_size()) return false;
            bytes_->resize(static_cast<size_t>(size));
            return true;
        } catch (const std::bad_alloc&) {
            return false;
        }
    }

    std::shared_ptr<Bytes> bytes_;
};

class FileStream final : public Stream {
public:
    FileStream(int file, DWORD mode) : file_(file), mode_(mode) {}
    ~FileStream() override { ::close(file_); }

    STDMETHODIMP Read(void* data, ULONG size, ULONG* readOut) noexcept override {
        if (readOut) *readOut = 0;
        if (!data) return STG_E_INVALIDPOINTER;
        if (mode_ == STGM_WRITE) return STG_E_ACCESSDENIED;
        ULONG done = 0;
        while (done < size) {
            const ssize_t got =
                Retried([&] { return ::pread(file_, static_cast<BYTE*>(data) + done, Step(size - done), position_); });
            if (got < 0) return STG_E_READFAULT;
            if (got == 0) break;
            done += Advance(got, readOut);
        }
        return S_OK;
    }
    STDMETHODIMP Write(const void* data, ULONG size, ULONG* writtenOut) noexcept override {
        if (writtenOut) *writtenOut = 0;
        if (!data) return STG_E_INVALIDPOINTER;
        if (mode_ == STGM_READ) return STG_E_ACCESSDENIED;
        ULONG done = 0;
        while (done < size) {
            const ssize_t put = Retried(
                [&] { return ::pwrite(file_, static_cast<const BYTE*>(data) + done, Step(size - done), position_); });
            if (put <= 0) return put < 0 && errno == ENOSPC ? STG_E_MEDIUMFULL : STG_E_WRITEFAULT;
            done += Advance(put, writtenOut);
        }
        return S_OK;
    }
    STDMETHODIMP SetSize(ULARGE_INTEGER size) noexcept override {
        if (mode_ == STGM_READ) return STG_E_ACCESSDENIED;
        if (size.QuadPart > static_cast<uint64_t>(kLargestPosition)) return STG_E_MEDIUMFULL;
        const auto length = static_cast<off_t>(size.QuadPart);
        return Retried([&] { return ::ftruncate(file_, length); }) == 0 ? S_OK : STG_E_MEDIUMFULL;
    }
    STDMETHODIMP Clone(IStream** clone) noexcept override {
        if (!clone) return STG_E_INVALIDPOINTER;
        *clone = nullptr;
        return E_NOTIMPL;
    }

private:
    static size_t Step(ULONG size) { return std::min<size_t>(size, size_t{1} << 30); }
    ULONG Advance(ssize_t by, ULONG* total) {
        position_ += by;
        if (total) *total += static_cast<ULONG>(by);
        return static_cast<ULONG>(by);
    }
    int64_t Size() const noexcept override {
        struct stat status;
        return ::fstat(file_, &status) == 0 ? status.st_size : -1;
    }
    DWORD Mode() const noexcept override { return mode_; }

    const int file_;
    const DWORD mode_;
};

// The system's number of an error, as a result.
constexpr HRESULT FromSystem(uint32_t number) { return static_cast<HRESULT>(0x80070000u | number); }

HRESULT FromErrno(int error) {
    switch (error) {
        case ENOENT:
            return FromSystem(2);  // not found
        case ENOTDIR:
            return FromSystem(3);  // no such folder
        case EACCES:
        case EPERM:
        case EROFS:
        case EISDIR:
            return FromSystem(5);  // access denied
        case EEXIST:
            return FromSystem(80);  // exists
        default:
            return E_FAIL;
    }
}

}  // namespace

HRESULT CreateStreamOnHGlobal(HGLOBAL memory, BOOL, IStream** stream) {
    if (!stream) return E_INVALIDARG;
    *stream = nullptr;
    if (memory) return E_INVALIDARG;
    try {
        *stream = new MemoryStream(std::make_shared<MemoryStream::Bytes>());
        return S_OK;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

HRESULT SHCreateStreamOnFileEx(LPCOLESTR path, DWORD mode, DWORD, BOOL create, IStream* templateStream,
                               IStream** stream) {
    if (!stream) return E_INVALIDARG;
    *stream = nullptr;
    const DWORD access = mode & 3;
    if (!path || templateStream || access == 3) return E_INVALIDARG;
    try {
        const std::string name = NativePath(path);
        if (name.empty()) return FromErrno(ENOENT);
        // Not blocking: opening a pipe would otherwise wait for its other end. Emptied only once it is known to be a
        // file.
        int flags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
        flags |= access == STGM_READ ? O_RDONLY : access == STGM_WRITE ? O_WRONLY : O_RDWR;
        if (mode & STGM_CREATE)
            flags |= O_CREAT;
        else if (create)
            flags |= O_CREAT | O_EXCL;
        const int file = Retried([&] { return ::open(name.c_str(), flags, 0666); });
        if (file < 0) return FromErrno(errno);
        IStream* const made = new (std::nothrow) FileStream(file, access);
        if (!made) {
            ::close(file);
            return E_OUTOFMEMORY;
        }
        struct stat status;
        HRESULT result = S_OK;
        if (::fstat(file, &status) != 0 || !S_ISREG(status.st_mode))
            result = FromErrno(EACCES);
        else if ((mode & STGM_CREATE) && access != STGM_READ && Retried([&] { return ::ftruncate(file, 0); }) != 0)
            result = FromErrno(errno);
        if (FAILED(result))
            made->Release();
        else
            *stream = made;
        return result;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}
