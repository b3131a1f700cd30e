#include "Web/EventReader.h"

#include <gmock/gmock.h>

#include <utility>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::Pair;

class EventReaderTest : public testing::Test
{
protected:
    void add(std::string_view piece)
    {
        m_Reader.add(piece, [this](const Host::Web::SentEvent& event) {
            m_Events.emplace_back(event.m_Id, event.m_Data);
        });
    }

    Host::Web::EventReader m_Reader;
    std::vector<std::pair<std::string, std::string>> m_Events;
};

constexpr std::string_view STREAM = ":\n\nid: 1\ndata: {a}\n\n:\n\nid: 22\ndata: {b: c}\n\n";

TEST_F(EventReaderTest, EventsAreFoundHoweverTheyAreCut)
{
    for (std::size_t size = 1; size <= STREAM.size(); ++size) {
        m_Events.clear();
        for (std::size_t at = 0; at < STREAM.size(); at += size)
            add(STREAM.substr(at, size));
        EXPECT_THAT(m_Events, ElementsAre(Pair("1", "{a}"), Pair("22", "{b: c}"))) << size;
    }
}

TEST_F(EventReaderTest, AnEventThatIsNotCompleteIsNone)
{
    add("id: 1\ndata: {a}\n");
    EXPECT_TRUE(m_Events.empty());
    add("\n");
    EXPECT_EQ(m_Events.size(), 1U);
}

} // namespace
