#include <gtest/gtest.h>

#include <orlix/orlix.h>

// Initialises the component runtime for the thread of the tests.
class Apartment : public ::testing::Environment {
public:
    void SetUp() override { ASSERT_EQ(S_OK, CoInitialize(nullptr)); }
    void TearDown() override { CoUninitialize(); }
};
[[maybe_unused]] static ::testing::Environment* const apartment = ::testing::AddGlobalTestEnvironment(new Apartment);
