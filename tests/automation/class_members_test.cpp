#include "automation/windows/class_members.hpp"

#include <gtest/gtest.h>

namespace orlix::automation {
namespace {

TEST(ClassMembers, ANameBelongsToTheInterfaceThatIsListedFirst) {
    const IID* const interfaces[] = {&__uuidof(IBitmapProcess), &__uuidof(ISupportErrorInfo), &__uuidof(IPictureExZoom),
                                     &__uuidof(IBitmap)};
    const ClassMembers members(interfaces);
    const auto interfaceOf = [&](const char* name, Access access) {
        const Member* const member = members.Find(name);
        return member && member->methods[access] ? *member->methods[access]->iid : GUID_NULL;
    };
    EXPECT_TRUE(interfaceOf("width", kGet) == __uuidof(IBitmap));
    EXPECT_TRUE(interfaceOf("ipictureex_width", kGet) == __uuidof(IPictureEx));
    EXPECT_TRUE(interfaceOf("zoomfactor", kPut) == __uuidof(IPictureExZoom));
    EXPECT_FALSE(members.Find("ibitmap_width")) << "inherited, listed again";
    EXPECT_EQ(3, members.Find("zoomfactor")->id);
    EXPECT_FALSE(members.Find(DISPID{1})) << "the width is the bitmap's";
    EXPECT_TRUE(members.Find(DISPID{3}) == members.Find("zoomfactor"));
    // An interface puts what its base gets.
    const IID* const process[] = {&__uuidof(IImageProcess)};
    const ClassMembers image(process);
    const Member* const bins = image.Find("numberofbins");
    ASSERT_TRUE(bins && bins->methods[kGet] && bins->methods[kPut]);
    EXPECT_FALSE(*bins->methods[kGet]->iid == *bins->methods[kPut]->iid);
    const IID* const foreign[] = {&__uuidof(IStream)};
    EXPECT_TRUE(ClassMembers(foreign).empty());
}

}  // namespace
}  // namespace orlix::automation
