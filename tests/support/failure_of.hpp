// What a call of the library's inside fails with.
#pragma once

#include "component/failure.hpp"
#include "support/testing.hpp"

namespace orlix {

// The text of the failure that ends the call, which has this result; empty when the call succeeds.
template <class Call>
std::string FailureOf(const Call& call, HRESULT result = E_FAIL) {
    try {
        call();
        return "";
    } catch (const Failure& failure) {
        EXPECT_EQ(result, failure.result());
        return failure.what();
    }
}

}  // namespace orlix
