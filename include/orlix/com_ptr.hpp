// ComPtr<I>: owns one reference to an interface.
#ifndef ORLIX_COM_PTR_HPP
#define ORLIX_COM_PTR_HPP

#include <orlix/orlix.h>

#include <cstddef>
#include <string_view>
#include <utility>

namespace orlix {

// An interface's name.
template <class I>
constexpr std::string_view NameOf() {
#ifdef _MSC_VER
    constexpr std::string_view signature = __FUNCSIG__;
    constexpr size_t begin = signature.find("NameOf<") + 7;
    constexpr size_t end = signature.rfind(">(");
#else
    constexpr std::string_view signature = __PRETTY_FUNCTION__;
    constexpr size_t begin = signature.find("I = ") + 4;
    constexpr size_t end = signature.find_first_of(";]", begin);
#endif
    constexpr std::string_view name = signature.substr(begin, end - begin);
    return name.substr(name.find_last_of(" :") + 1);
}

template <class I>
class ComPtr {
public:
    ComPtr() noexcept = default;
    ComPtr(std::nullptr_t) noexcept {}
    // Shares: adds a reference.
    explicit ComPtr(I* pointer) noexcept : pointer_(pointer) {
        if (pointer_) pointer_->AddRef();
    }
    ComPtr(const ComPtr& other) noexcept : ComPtr(other.pointer_) {}
    ComPtr(ComPtr&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(pointer_, other.pointer_);
        return *this;
    }
    ~ComPtr() {
        if (pointer_) pointer_->Release();
    }

    // Takes over the caller's reference.
    static ComPtr Attach(I* pointer) noexcept {
        ComPtr result;
        result.pointer_ = pointer;
        return result;
    }
    // Hands the reference to the caller.
    [[nodiscard]] I* Detach() noexcept { return std::exchange(pointer_, nullptr); }

    // Another interface of the same object; null when the object does not have it.
    template <class Other>
    ComPtr<Other> As() const noexcept {
        void* other = nullptr;
        if (!pointer_ || FAILED(pointer_->QueryInterface(__uuidof(Other), &other))) return {};
        return ComPtr<Other>::Attach(static_cast<Other*>(other));
    }

    // For a method to write an interface to; releases the one held so far.
    I** Out() noexcept {
        *this = nullptr;
        return &pointer_;
    }
    void** OutVoid() noexcept { return reinterpret_cast<void**>(Out()); }

    I* get() const noexcept { return pointer_; }
    I* operator->() const noexcept { return pointer_; }
    I& operator*() const noexcept { return *pointer_; }
    explicit operator bool() const noexcept { return pointer_ != nullptr; }

private:
    I* pointer_ = nullptr;
};

}  // namespace orlix

#endif
