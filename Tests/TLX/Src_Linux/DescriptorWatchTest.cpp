#include <TLX/Event.h>
#include <TLX/Linux/DescriptorWatch.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <optional>

#include <fcntl.h>
#include <unistd.h>

namespace {

using TLX::Linux::CDescriptor;
using TLX::Threading::WaitResult::Taken;

class DescriptorWatchTest : public testing::Test
{
protected:
    DescriptorWatchTest()
    {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK), 0);
        m_Reader = CDescriptor(ends[0]);
        m_Writer = CDescriptor(ends[1]);
        EXPECT_EQ(m_Called.Init(false, false), Taken);
        m_Watch.emplace(m_Reader.Get(), [this] {
            char byte = 0;
            ssize_t size = 0;
            while ((size = ::read(m_Reader.Get(), &byte, 1)) > 0)
                ++m_Bytes;
            ++m_Calls;
            m_Called.Set();
            return size < 0;
        });
    }

    void Write() const { EXPECT_EQ(::write(m_Writer.Get(), "x", 1), 1); }

    CDescriptor m_Reader;
    CDescriptor m_Writer;
    TLX::Threading::CEvent m_Called;
    std::atomic<int> m_Bytes = 0;
    std::atomic<int> m_Calls = 0;
    std::optional<TLX::Linux::CDescriptorWatch> m_Watch;
};

TEST_F(DescriptorWatchTest, CallsEachTimeThereIsSomethingToRead)
{
    for (int count = 1; count <= 3; ++count) {
        Write();
        EXPECT_EQ(m_Called.Wait(), Taken);
        EXPECT_EQ(m_Bytes, count);
    }
}

TEST_F(DescriptorWatchTest, CallsOnceMoreAndNoLongerAfterTheOtherSideIsGone)
{
    m_Writer = CDescriptor();
    EXPECT_EQ(m_Called.Wait(), Taken);
    m_Watch.reset();
    EXPECT_EQ(m_Calls, 1);
}

TEST_F(DescriptorWatchTest, EndsWhenNothingEverCame)
{
    m_Watch.reset();
    EXPECT_EQ(m_Calls, 0);
    EXPECT_GE(::fcntl(m_Reader.Get(), F_GETFD), 0); // belongs to the caller
}

} // namespace
