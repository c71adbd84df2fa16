// Strings, identifiers and error information: the system's own on Windows, this library's elsewhere, one behaviour.
#include <gtest/gtest.h>

#include <orlix/orlix.h>
#include <orlix/com_ptr.hpp>

#include <algorithm>
#include <cstring>
#include <string>

#include "support/objects.hpp"

namespace orlix {
namespace {

using Wide = std::basic_string<OLECHAR>;

TEST(Strings, AreCopiedWithTheirLengthBeforeThemAndATerminatorBehind) {
    const Wide with0(OLESTR("ab\0cd"), 5);
    const struct {
        BSTR text;
        Wide want;
    } cases[] = {
        {SysAllocString(OLESTR("")), {}},
        {SysAllocString(OLESTR("abc")), OLESTR("abc")},
        {SysAllocStringLen(OLESTR("abc"), 2), OLESTR("ab")},
        {SysAllocStringLen(with0.data(), 5), with0},
        {SysAllocStringLen(OLESTR("abc"), 0), {}},
    };
    for (const auto& [text, want] : cases) {
        ASSERT_NE(nullptr, text);
        EXPECT_EQ(want.size(), SysStringLen(text));
        EXPECT_EQ(want, Wide(text, SysStringLen(text)));
        EXPECT_EQ(0, text[want.size()]);
        uint32_t bytes = 0;
        std::memcpy(&bytes, reinterpret_cast<const char*>(text) - 4, 4);
        EXPECT_EQ(2 * want.size(), bytes);
        SysFreeString(text);
    }
}

TEST(Strings, NullIsEmptyAndRoomMayBeAskedForWithoutAText) {
    EXPECT_EQ(0u, SysStringLen(nullptr));
    EXPECT_EQ(nullptr, SysAllocString(nullptr));
    SysFreeString(nullptr);
    BSTR text = SysAllocStringLen(nullptr, 1000);
    ASSERT_NE(nullptr, text);
    EXPECT_EQ(1000u, SysStringLen(text));
    EXPECT_EQ(0, text[1000]);
    std::fill_n(text, 1000, OLESTR('x'));
    SysFreeString(text);
}

TEST(Strings, ALengthThatNoStringHasIsRefused) {
    for (UINT length : {0x7fffffffu, 0x80000000u, 0xfffffffeu, 0xffffffffu})
        EXPECT_EQ(nullptr, SysAllocStringLen(nullptr, length)) << length;
}

TEST(Identifiers, AreWrittenInUpperCaseAndReadInAny) {
    constexpr GUID kGuid = {0x0123abcd, 0x45ef, 0x6789, {0x0a, 0xb0, 0xc1, 0xd2, 0xe3, 0xf4, 0x05, 0x16}};
    OLECHAR text[39];
    EXPECT_EQ(39, StringFromGUID2(kGuid, text, 39));
    EXPECT_EQ(Wide(OLESTR("{0123ABCD-45EF-6789-0AB0-C1D2E3F40516}")), text);
    EXPECT_EQ(0, StringFromGUID2(kGuid, text, 38));
    for (const OLECHAR* written :
         {OLESTR("{0123ABCD-45EF-6789-0AB0-C1D2E3F40516}"), OLESTR("{0123abcd-45ef-6789-0ab0-c1d2e3f40516}")}) {
        CLSID read = {};
        EXPECT_EQ(S_OK, CLSIDFromString(written, &read));
        EXPECT_TRUE(read == kGuid);
    }
}

TEST(Identifiers, TextsThatAreNoneAreRefused) {
    for (const OLECHAR* text :
         {OLESTR(""), OLESTR("{"), OLESTR("{0123ABCD-45EF-6789-0AB0-C1D2E3F40516"),
          OLESTR("{0123ABCD-45EF-6789-0AB0-C1D2E3F4051}"), OLESTR("{0123ABCD-45EF-6789-0AB0-C1D2E3F4051G}"),
          OLESTR("{0123ABCD45EF-6789-0AB0-C1D2E3F40516}"), OLESTR("{0123ABCD-45EF-6789-0AB0C1D2E3F40516}"),
          OLESTR("No such name")}) {
        CLSID read = {};
        EXPECT_EQ(CO_E_CLASSSTRING, CLSIDFromString(text, &read)) << Wide(text).size();
    }
    CLSID read = {1, 2, 3, {}};
    EXPECT_EQ(S_OK, CLSIDFromString(nullptr, &read));
    EXPECT_TRUE(read == GUID_NULL);
}

TEST(ErrorInformation, HoldsCopiesOfWhatWasPutIntoItAndIsTakenOnce) {
    ComPtr<ICreateErrorInfo> create;
    ASSERT_EQ(S_OK, CreateErrorInfo(create.Out()));
    OLECHAR text[] = OLESTR("A text");
    EXPECT_EQ(S_OK, create->SetDescription(text));
    EXPECT_EQ(S_OK, create->SetHelpContext(9));
    text[0] = OLESTR('?');
    const auto info = create.As<IErrorInfo>();
    ASSERT_TRUE(info);
    EXPECT_EQ(create.As<IUnknown>().get(), info.As<IUnknown>().get());
    for (IErrorInfo* const last : {info.get(), static_cast<IErrorInfo*>(nullptr)}) {
        ASSERT_EQ(S_OK, SetErrorInfo(0, info.get()));
        ASSERT_EQ(S_OK, SetErrorInfo(0, last));
        const auto report = TakeErrorReport();
        ASSERT_EQ(last != nullptr, report.has_value());
        if (!report) continue;
        EXPECT_EQ("A text", report->description);
        EXPECT_EQ(9u, report->helpContext);
    }
    EXPECT_FALSE(TakeErrorReport());
}

}  // namespace
}  // namespace orlix
