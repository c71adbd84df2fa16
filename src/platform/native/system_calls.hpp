// System calls that signals interrupt, and the descriptors they give.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace orlix {

// Repeats a system call while signals interrupt it.
template <class Call>
auto Retried(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR) result = call();
    return result;
}

// Owns a file descriptor; a negative number stands for none.
class Descriptor {
public:
    explicit Descriptor(int number) noexcept : number_(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { Close(); }

    int number() const noexcept { return number_; }
    explicit operator bool() const noexcept { return number_ >= 0; }
    bool Close() noexcept {
        const int number = std::exchange(number_, -1);
        return number < 0 || ::close(number) == 0;
    }

private:
    int number_;
};

}  // namespace orlix
