#include "component/stream_bytes.hpp"

#include <algorithm>
#include <limits>

#include "component/failure.hpp"

namespace orlix {
namespace {

constexpr size_t kLargestTransfer = size_t{1} << 30;

// The system's headers call this number STG_E_CANTSAVE.
constexpr HRESULT kShortWrite = static_cast<HRESULT>(0x80030103);

}  // namespace

ComPtr<IStream> StreamOf(IUnknown* object) {
    Require(object);
    const ComPtr<IUnknown> held(object);
    ComPtr<IStream> stream;
    PassOn(object->QueryInterface(__uuidof(IStream), stream.OutVoid()));
    if (!stream) throw FailedResult(E_NOINTERFACE);
    return stream;
}

size_t ReadFrom(IStream* stream, uint8_t* bytes, size_t size) {
    const auto wanted = static_cast<ULONG>(std::min(size, kLargestTransfer));
    ULONG read = 0;
    PassOn(stream->Read(bytes, wanted, &read));
    if (read > wanted) throw FailedResult(E_FAIL);
    return read;
}

std::vector<uint8_t> ReadUpTo(IStream* stream, size_t most) {
    constexpr size_t kFirst = 64 * 1024, kLargest = 16 * 1024 * 1024;
    std::vector<uint8_t> bytes;
    for (size_t done = 0; done < most;) {
        if (done == bytes.size()) bytes.resize(done + std::min(std::clamp(done, kFirst, kLargest), most - done));
        const size_t read = ReadFrom(stream, bytes.data() + done, bytes.size() - done);
        done += read;
        if (read == 0) {
            bytes.resize(done);
            break;
        }
    }
    return bytes;
}

std::vector<uint8_t> ReadRest(IStream* stream) {
    constexpr size_t kMost = std::numeric_limits<int32_t>::max();
    std::vector<uint8_t> bytes = ReadUpTo(stream, kMost + 1);
    if (bytes.size() > kMost) throw FailedResult(E_FAIL);
    return bytes;
}

void WriteTo(IStream* stream, std::span<const uint8_t> bytes) {
    while (!bytes.empty()) {
        const auto step = static_cast<ULONG>(std::min(bytes.size(), kLargestTransfer));
        ULONG written = 0;
        PassOn(stream->Write(bytes.data(), step, &written));
        if (written != step) throw FailedResult(kShortWrite);
        bytes = bytes.subspan(step);
    }
}

}  // namespace orlix
