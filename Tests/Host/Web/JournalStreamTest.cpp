#include "Web/JournalStream.h"

#include "Host/Web/FakeView.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <sstream>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

std::vector<std::string> identifiersIn(const std::string& events)
{
    std::istringstream lines(events);
    std::vector<std::string> found;
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with("id: "))
            found.push_back(line.substr(4));
    return found;
}

TEST(JournalStreamTest, EachEntryIsOneEventOnce)
{
    HostTest::FakeView view;
    Host::Web::JournalStream stream(view, 0);
    EXPECT_EQ(stream.next(), "");
    view.addEntry("one\nline: of text");
    const std::string event = stream.next();
    ASSERT_THAT(event, StartsWith("id: 1\ndata: {"));
    EXPECT_TRUE(event.ends_with("}\n\n"));
    EXPECT_EQ(std::count(event.begin(), event.end(), '\n'), 3);
    const auto entry = nlohmann::json::parse(event.substr(event.find('{')));
    EXPECT_EQ(entry.at("number"), 1);
    EXPECT_EQ(entry.at("format"), 1);
    EXPECT_EQ(entry.at("text"), "one\nline: of text");
    EXPECT_EQ(stream.next(), "");
    view.addEntry("two");
    view.addEntry("three");
    EXPECT_THAT(identifiersIn(stream.next()), ElementsAre("2", "3"));
}

TEST(JournalStreamTest, ALongJournalComesInPiecesWithoutGaps)
{
    HostTest::FakeView view;
    for (int i = 0; i < 150; ++i)
        view.addEntry("x");
    Host::Web::JournalStream stream(view, 10);
    std::vector<std::string> all;
    for (const std::size_t size : {64U, 64U, 12U, 0U}) {
        const auto piece = identifiersIn(stream.next());
        EXPECT_EQ(piece.size(), size);
        all.insert(all.end(), piece.begin(), piece.end());
    }
    for (std::size_t i = 0; i < all.size(); ++i)
        EXPECT_EQ(all[i], std::to_string(11 + i));
}

TEST(JournalStreamTest, GoesOnWithANewJournal)
{
    HostTest::FakeView view;
    for (const char* text : {"one", "two", "three"})
        view.addEntry(text);
    Host::Web::JournalStream stream(view, 3);
    EXPECT_EQ(stream.next(), "");
    view.forgetEntries();
    EXPECT_EQ(stream.next(), "");
    view.addEntry("of the new one");
    EXPECT_THAT(identifiersIn(stream.next()), ElementsAre("1"));
    EXPECT_EQ(stream.next(), "");
}

TEST(JournalStreamTest, AnEntryThatCouldNotBeReadComesLater)
{
    HostTest::FakeView view;
    Host::Web::JournalStream stream(view, 0);
    view.addEntry("one");
    view.change([](auto& figures) { figures.m_JournalFailure = "The disk is full."; });
    EXPECT_THROW(stream.next(), Host::Failure);
    view.change([](auto& figures) { figures.m_JournalFailure.clear(); });
    EXPECT_THAT(identifiersIn(stream.next()), ElementsAre("1"));
}

} // namespace
