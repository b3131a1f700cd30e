#include <TLX/Linux/Descriptor.h>

#include <gtest/gtest.h>

#include <utility>

#include <fcntl.h>

namespace {

using TLX::Linux::CDescriptor;

int someDescriptor()
{
    return ::open("/dev/null", O_RDONLY | O_CLOEXEC);
}

bool isOpen(int descriptor)
{
    return ::fcntl(descriptor, F_GETFD) >= 0;
}

TEST(DescriptorTest, IsClosedWithItsOwner)
{
    int number = -1;
    {
        CDescriptor first(someDescriptor());
        number = first.Get();
        const CDescriptor second(std::move(first));
        EXPECT_FALSE(first.Valid()); // NOLINT(bugprone-use-after-move): what a move leaves is the subject
        EXPECT_EQ(second.Get(), number);
        EXPECT_TRUE(isOpen(number));
    }
    EXPECT_FALSE(isOpen(number));
}

TEST(DescriptorTest, IsClosedWhenAnotherTakesItsPlace)
{
    CDescriptor descriptor(someDescriptor());
    const int number = descriptor.Get();
    descriptor = CDescriptor();
    EXPECT_FALSE(descriptor.Valid());
    EXPECT_FALSE(isOpen(number));
}

TEST(DescriptorTest, StaysOpenWhenItIsReleased)
{
    int number = -1;
    {
        CDescriptor descriptor(someDescriptor());
        number = descriptor.Release();
        EXPECT_FALSE(descriptor.Valid());
    }
    EXPECT_TRUE(isOpen(number));
    const CDescriptor again(number);
}

} // namespace
