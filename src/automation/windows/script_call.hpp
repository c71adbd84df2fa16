// One call of a script: from its arguments to the method's, and back to its results.
#pragma once

#include <orlix/orlix.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "automation/windows/contract_rows.hpp"
#include "automation/windows/named_values.hpp"

namespace orlix::automation {

// Why a call did not take place: the result of Invoke, and which argument is to blame.
struct BadCall {
    HRESULT result;
    UINT argument = 0;
};

// The parameters of a method, by their indices.
class Parameters {
public:
    explicit Parameters(const Method& method) noexcept;

    std::span<const uint8_t> inputs() const noexcept { return {numbered_.data(), inputCount_}; }
    // All but the result: in the order of the method, and in that of the numbers that names have. There the outputs,
    // which type information does not show, come behind.
    std::span<const uint8_t> all() const noexcept { return {all_.data(), allCount_}; }
    std::span<const uint8_t> numbered() const noexcept { return {numbered_.data(), allCount_}; }

private:
    std::array<uint8_t, kMostParameters> all_{}, numbered_{};
    size_t allCount_ = 0, inputCount_ = 0;
};

class ScriptCall {
public:
    ScriptCall(const Method& method, LCID locale) noexcept : method_(method), locale_(locale) {}

    // Assigns the arguments to the parameters, by position and name, and converts them. Throws BadCall.
    void Take(const DISPPARAMS& arguments);
    // Calls the method and returns its result. Throws BadCall when an added method does not take its array.
    HRESULT Run(void* object);
    // After a success: the results. Throws BadCall.
    void Give(VARIANT* result);

private:
    // What the method gets for a parameter, and who owns it.
    class Cell {
    public:
        Cell() noexcept = default;
        ~Cell();
        Cell(const Cell&) = delete;
        Cell& operator=(const Cell&) = delete;

        void Read(const Parameter& parameter, const VARIANT& value, LCID locale);
        void Omit(const Parameter& parameter) noexcept;
        void Prepare(const Parameter& parameter);
        VARIANT TakeResult(const Parameter& parameter);

        Argument argument{};

    private:
        enum class Owned : uint8_t { Nothing, Text, Object, Value };

        Owned owned_ = Owned::Nothing;
        union {
            LONG number_;
            DWORD color_;
            double real_;
            void* handle_;
            BSTR text_;
            IUnknown* object_;
            VARIANT value_;
            GivenValue givenValue_;
        };
        RecordMemory record_;
    };

    void Assign(const DISPPARAMS& arguments);

    const Method& method_;
    LCID locale_;
    std::array<const VARIANT*, kMostParameters> given_{};  // for each parameter; null where there is none
    std::array<UINT, kMostParameters> places_{};           // in the caller's array
    std::array<Cell, kMostParameters> cells_;
};

}  // namespace orlix::automation
