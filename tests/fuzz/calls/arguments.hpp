// An argument of each type that the contract's methods take, made by the choices. A type that is not known here does
// not compile: whoever adds a method of a new type says what its arguments are.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <type_traits>

#include "fuzz/calls/addresses.hpp"
#include "fuzz/calls/world.hpp"

namespace orlix::fuzz {

template <class T>
concept Interface = std::is_base_of_v<IUnknown, T>;

// Without an underlying type of its own an enumeration has no value that its members' bits cannot hold.
template <class T>
concept AnyNumber = requires {
    T{0};
};

template <class T>
T ValueFrom(World& world) {
    Choices& choices = world.choices();
    if constexpr (std::is_same_v<T, ConnectivityType>)
        return static_cast<T>(choices.Chance(16) ? world.Long() : choices.Chance(128) ? CT_4 : CT_8);
    else if constexpr (std::is_enum_v<T>)  // members and numbers that are none
        return static_cast<T>(AnyNumber<T> ? world.Long() : static_cast<LONG>(choices.Below(4)));
    else if constexpr (std::is_integral_v<T>)
        return static_cast<T>(world.Long());
    else if constexpr (std::is_same_v<T, double>)
        return world.Double();
    else if constexpr (std::is_same_v<T, TCoordinateMap>)
        return {world.Double(), world.Double(), {world.Double(), world.Double(), world.Double(), world.Double()}};
    else if constexpr (std::is_same_v<T, VARIANT>)  // nothing: arrays are tested with scripts
        return VARIANT{};
    else if constexpr (std::is_same_v<T, const IID&>)
        return world.Identifier();
    else if constexpr (std::is_same_v<T, void*>)
        // Everywhere but where a method of its own kind says otherwise: a device context.
        return DeviceContext(choices.Byte());
    else
        static_assert(!sizeof(T), "a type that is not known");
}

// get() is what is passed. Done() is called when the method is back, and looks at what came out.
template <class T>
class Argument {
public:
    explicit Argument(T value) : value_(value) {}
    explicit Argument(World& world) : value_(ValueFrom<T>(world)) {}
    T get() const { return value_; }
    void Done(World&) {}

private:
    T value_;
};

template <>
class Argument<BSTR> {
public:
    // Takes the string over.
    explicit Argument(BSTR text) : text_(text) {}
    explicit Argument(World& world) {
        Choices& choices = world.choices();
        constexpr const OLECHAR* kTexts[] = {
            OLESTR("text"),         OLESTR(""),       OLESTR("Description"), OLESTR("MicronsPerPixel"),
            OLESTR("\u00e4\u9762"), OLESTR(" a  b "), OLESTR("Author")};
        const size_t kind = choices.Below(12);
        if (kind < std::size(kTexts)) text_ = SysAllocString(kTexts[kind]);
        if (kind == 7 || kind == 8) {  // units of any kind, zeros and halves of pairs among them
            text_ = SysAllocStringLen(nullptr, static_cast<UINT>(choices.Below(kind == 7 ? 90 : 3000)));
            for (UINT i = 0; text_ && i < SysStringLen(text_); ++i)
                text_[i] = static_cast<OLECHAR>(i % 7 == 0 ? 0xD800 + choices.Byte() * 8 : choices.Byte());
        }
    }
    ~Argument() { SysFreeString(text_); }
    Argument(const Argument&) = delete;
    Argument& operator=(const Argument&) = delete;
    BSTR get() const { return text_; }
    void Done(World&) {}

private:
    BSTR text_ = nullptr;
};

// Where a method writes a number or a record. On the heap: what is written beyond its end is noticed.
template <class T>
requires(std::is_arithmetic_v<T> || std::is_enum_v<T> || std::is_class_v<T> || std::is_union_v<T>) &&
    (!Interface<T>)class Argument<T*> {
public:
    explicit Argument(World& world) {
        if (world.choices().Chance(6)) return;
        value_ = std::make_unique<T>();
        if constexpr (requires { value_->m_lSize; }) FillFit(world);
    }
    T* get() const { return value_.get(); }
    void Done(World&) {}

private:
    // What a method reads: a size and numbers.
    void FillFit(World& world) {
        value_->m_lSize = world.choices().Chance(32) ? world.Long() : LONG{sizeof(T)};
        constexpr size_t kFirst = sizeof(double);  // after the size
        for (size_t at = kFirst; at + sizeof(double) <= sizeof(T); at += sizeof(double)) {
            const double number = world.Double();
            std::memcpy(reinterpret_cast<uint8_t*>(value_.get()) + at, &number, sizeof number);
        }
    }

    std::unique_ptr<T> value_;
};

// An object handed in.
template <Interface I>
class Argument<I*> {
public:
    explicit Argument(World& world) : held_(world.Argument(__uuidof(I))), pointer_(static_cast<I*>(held_.get())) {}
    I* get() const { return pointer_; }
    void Done(World&) {}

private:
    ComPtr<IUnknown> held_;
    I* pointer_;
};

// Where a method puts a pointer: null now and then.
template <class T>
class Slot {
public:
    explicit Slot(World& world) : wanted_(!world.choices().Chance(6)) {}
    T* get() { return wanted_ ? &pointer_ : nullptr; }
    // Without more it is the address of something inside an object: see what comes after the calls that give it.
    T pointer() const { return pointer_; }
    void Done(World&) {}

private:
    bool wanted_;
    T pointer_ = nullptr;
};

template <class T>
requires(std::is_void_v<T> || std::is_arithmetic_v<T> || std::is_class_v<T>) class Argument<T**> : public Slot<T*> {
public:
    using Slot<T*>::Slot;
    void Done(World& world) {
        // An object handed out.
        if constexpr (Interface<T>)
            if (this->pointer()) world.Adopt(__uuidof(T), this->pointer());
    }
};

template <>
class Argument<BSTR*> : public Slot<BSTR> {
public:
    using Slot::Slot;
    void Done(World&) { SysFreeString(pointer()); }
};

// Memory that is as large as it says, or that says what no memory is.
template <>
class Argument<SPictureMemory*> {
public:
    explicit Argument(World& world) {
        Choices& choices = world.choices();
        if (choices.Chance(6)) return;
        const size_t width = choices.Below(40), height = choices.Below(40), stride = width + choices.Below(5);
        pixels_ = std::make_unique<unsigned int[]>(stride * height + 1);
        memory_ = std::make_unique<SPictureMemory>();
        *memory_ = {pixels_.get(), static_cast<LONG>(width), static_cast<LONG>(height), static_cast<LONG>(stride),
                    static_cast<LONG>(choices.Below(2))};
        if (choices.Chance(48) && height > 0) {  // bottom-up
            memory_->m_pPixels += stride * (height - 1);
            memory_->m_lStride = -memory_->m_lStride;
        }
        if (choices.Chance(6)) memory_->m_pPixels = nullptr;
        if (choices.Chance(6)) memory_->m_lWidth = -1 - world.Long();
        if (choices.Chance(6) && memory_->m_lWidth > 0) memory_->m_lWidth = 0;
        if (choices.Chance(6)) memory_->m_lHeight = -LONG{choices.Byte()};
        if (choices.Chance(6)) memory_->m_lScaling = world.Long();
        // A width that the rows do not have goes with a stride that says so.
        if (memory_->m_lWidth > static_cast<LONG>(width)) memory_->m_lStride = static_cast<LONG>(stride) % 41;
        if (memory_->m_lWidth > static_cast<LONG>(width) && memory_->m_lWidth <= 40) memory_->m_lWidth = 0;
    }
    SPictureMemory* get() const { return memory_.get(); }
    void Done(World&) {}

private:
    std::unique_ptr<unsigned int[]> pixels_;
    std::unique_ptr<SPictureMemory> memory_;
};

// A frame in memory that is as large as it says, in memory of anybody's, or beyond.
template <>
class Argument<SFrame*> {
public:
    explicit Argument(World& world) {
        Choices& choices = world.choices();
        if (choices.Chance(6)) return;
        constexpr LONG kFormats[] = {PF_Mono8,           PF_Mono10p,         PF_Mono12Packed, PF_Mono14,
                                     PF_BayerRG8,        PF_BayerGB10p,      PF_BayerGR12,    PF_BayerBG16,
                                     PF_BayerRG10Packed, PF_BayerBG12Packed, PF_RGB8,         PF_RGB8_Planar};
        const auto below = [&](size_t n) { return static_cast<LONG>(choices.Below(n)); };
        buffer_.resize(choices.Below(3000), choices.Byte());
        frame_ = std::make_unique<SFrame>();
        *frame_ = {buffer_.data(), static_cast<LONGLONG>(buffer_.size()), below(40), below(24), 0, 0, below(2),
                   below(3)};
        frame_->m_lPixelFormat = kFormats[choices.Below(std::size(kFormats))];
        if (choices.Chance(96)) frame_->m_lRowPitch = below(120);
        if (choices.Chance(32))
            for (const std::span<uint8_t> memory : world.memories())
                *frame_ = {memory.data(),          static_cast<LONGLONG>(memory.size()),
                           frame_->m_lWidth,       frame_->m_lHeight,
                           frame_->m_lPixelFormat, frame_->m_lRowPitch,
                           frame_->m_lBottomUp,    frame_->m_lMosaic};
        if (choices.Chance(6)) frame_->m_pBuffer = static_cast<unsigned char*>(HostileAddress(choices.Byte()));
        for (LONG SFrame::*const member :
             {&SFrame::m_lWidth, &SFrame::m_lHeight, &SFrame::m_lPixelFormat, &SFrame::m_lRowPitch, &SFrame::m_lMosaic})
            if (choices.Chance(6)) frame_.get()->*member = world.Long();
    }
    SFrame* get() const { return frame_.get(); }
    void Done(World&) {}

private:
    std::vector<unsigned char> buffer_;
    std::unique_ptr<SFrame> frame_;
};

}  // namespace orlix::fuzz
