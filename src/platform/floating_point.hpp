// The floating-point control on which all arithmetic of the library relies, whatever the host has set: round to
// nearest, no flushing of denormals, exceptions masked, and a 64-bit mantissa in x87, which 32-bit mathematical
// functions use.
#pragma once

#include <emmintrin.h>

#include <cstdint>

namespace orlix {

class FloatingPointScope {
public:
    FloatingPointScope() noexcept : sse_(_mm_getcsr()) {
        if ((sse_ & ~kSseStatus) != kSseDefault) _mm_setcsr(kSseDefault);
#if defined(__i386__)
        __asm__ volatile("fnstcw %0" : "=m"(x87_));
        if (x87_ != kX87Default) {
            const uint16_t control = kX87Default;
            __asm__ volatile("fnclex\n\tfldcw %0" : : "m"(control));
        }
#endif
    }
    ~FloatingPointScope() {
        // Status bits raised inside are dropped: a host with unmasked exceptions would trap on them later.
        if ((sse_ & ~kSseStatus) != kSseDefault) _mm_setcsr(sse_);
#if defined(__i386__)
        if (x87_ != kX87Default) __asm__ volatile("fnclex\n\tfldcw %0" : : "m"(x87_));
#endif
    }
    FloatingPointScope(const FloatingPointScope&) = delete;
    FloatingPointScope& operator=(const FloatingPointScope&) = delete;

private:
    static constexpr unsigned kSseStatus = 0x3f;
    static constexpr unsigned kSseDefault = 0x1f80;
    unsigned sse_;
#if defined(__i386__)
    static constexpr uint16_t kX87Default = 0x037f;
    uint16_t x87_ = kX87Default;
#endif
};

}  // namespace orlix
