#include "platform/memory_probe.hpp"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/native/system_calls.hpp"

namespace orlix {
namespace {

// Lets the kernel read one byte of a page, and write the same byte back: it answers EFAULT where a load or
// store would fault. That covers what permissions do not tell, such as a mapped file that has been cut short.
class PageProbe {
public:
    PageProbe() {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) return;
        read_ = ends[0];
        write_ = ends[1];
    }
    ~PageProbe() {
        if (read_ >= 0) close(read_);
        if (write_ >= 0) close(write_);
    }
    PageProbe(const PageProbe&) = delete;
    PageProbe& operator=(const PageProbe&) = delete;

    bool Accessible(uintptr_t address, bool forWriting) const {
        if (read_ < 0) return false;
        auto* byte = reinterpret_cast<unsigned char*>(address);
        if (Retried([&] { return write(write_, byte, 1); }) != 1) return false;
        if (forWriting && Retried([&] { return read(read_, byte, 1); }) == 1) return true;
        unsigned char discarded = 0;
        (void)Retried([&] { return read(read_, &discarded, 1); });
        return !forWriting;
    }

private:
    int read_ = -1;
    int write_ = -1;
};

struct Mapping {
    uintptr_t from = 0;
    uintptr_t to = 0;
    bool readable = false;
    bool writable = false;
    bool file = false;
};

// What kernels from 6.11 on answer to a question about one address (PROCMAP_QUERY, struct procmap_query), in a tenth of
// the time that the list takes.
struct MappingQuery {
    uint64_t size = sizeof(MappingQuery);
    uint64_t flags = 0;
    uint64_t address = 0;
    uint64_t from = 0, to = 0;
    uint64_t permissions = 0;  // 1: readable, 2: writable
    uint64_t pageSize = 0, offset = 0, inode = 0;
    uint32_t device[2] = {}, nameSize = 0, buildIdSize = 0;
    uint64_t name = 0, buildId = 0;
};
static_assert(sizeof(MappingQuery) == 104);

// The mapping that holds the address; one of no bytes if none does. No answer from older kernels.
std::optional<Mapping> MappingAt(int maps, uintptr_t address) {
    MappingQuery query;
    query.address = address;
    if (ioctl(maps, _IOWR('f', 17, MappingQuery), &query) == 0)
        return Mapping{static_cast<uintptr_t>(query.from), static_cast<uintptr_t>(query.to),
                       (query.permissions & 1) != 0, (query.permissions & 2) != 0, query.inode != 0};
    if (errno == ENOENT) return Mapping();
    return std::nullopt;
}

// One line of the kernel's list of mappings: "from-to perm offset device inode path".
bool Parse(std::string_view line, Mapping& mapping) {
    const char* const end = line.data() + line.size();
    auto [dash, first] = std::from_chars(line.data(), end, mapping.from, 16);
    if (first != std::errc() || dash == end || *dash != '-') return false;
    auto [blank, second] = std::from_chars(dash + 1, end, mapping.to, 16);
    if (second != std::errc() || end - blank < 5) return false;
    mapping.readable = blank[1] == 'r';
    mapping.writable = blank[2] == 'w';
    std::string_view rest(blank + 5, static_cast<size_t>(end - blank - 5));
    for (int skipped = 0; skipped < 2; ++skipped) {  // offset and device
        rest.remove_prefix(std::min(rest.size(), rest.find_first_not_of(' ')));
        rest.remove_prefix(std::min(rest.size(), rest.find(' ')));
    }
    rest.remove_prefix(std::min(rest.size(), rest.find_first_not_of(' ')));
    mapping.file = !rest.empty() && rest[0] != '0';
    return true;
}

bool Accessible(const void* memory, size_t size, bool forWriting) {
    if (size == 0) return true;
    uintptr_t next = reinterpret_cast<uintptr_t>(memory);
    if (!memory || next + (size - 1) < next) return false;
    const uintptr_t last = next + (size - 1);

    const Descriptor maps(open("/proc/self/maps", O_RDONLY | O_CLOEXEC));
    const uintptr_t page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto probeTo = [&](uintptr_t stop) {
        const PageProbe probe;
        for (;; next = (next | (page - 1)) + 1) {
            if (!probe.Accessible(next, forWriting)) return false;
            if ((next | (page - 1)) >= stop) return true;
        }
    };
    if (!maps) return probeTo(last);

    // The answer, if the mapping that holds `next` settles it.
    const auto settled = [&](const Mapping& mapping) -> std::optional<bool> {
        if (mapping.from > next || mapping.to <= next) return false;
        if (!mapping.readable || (forWriting && !mapping.writable)) return false;
        const uintptr_t stop = std::min(last, mapping.to - 1);
        if (mapping.file && !probeTo(stop)) return false;
        if (stop == last) return true;
        next = mapping.to;
        return std::nullopt;
    };
    while (const auto mapping = MappingAt(maps.number(), next))
        if (const auto answer = settled(*mapping)) return *answer;

    std::string text;
    char block[4096];
    for (;;) {
        const ssize_t got = Retried([&] { return read(maps.number(), block, sizeof block); });
        if (got < 0) return false;
        if (got == 0) break;
        text.append(block, static_cast<size_t>(got));
        size_t start = 0;
        for (size_t newline; (newline = text.find('\n', start)) != std::string::npos; start = newline + 1) {
            Mapping mapping;
            if (!Parse(std::string_view(text).substr(start, newline - start), mapping)) return false;
            if (mapping.to <= next) continue;
            if (const auto answer = settled(mapping)) return *answer;
        }
        text.erase(0, start);
    }
    return false;
}

}  // namespace

bool IsReadable(const void* memory, size_t size) { return Accessible(memory, size, false); }
bool IsWritable(const void* memory, size_t size) { return Accessible(memory, size, true); }

}  // namespace orlix
