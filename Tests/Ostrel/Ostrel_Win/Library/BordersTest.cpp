#include "Relay/Relay.h"

#include <TLX/TraceSink.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <system_error>

namespace {

/** Throws inside the toolkit's library. */
void throwInToolkit()
{
    (void)TLX::Trace::rotatingFileSink("there/is/no/such/folder/trace.log");
}

class COwnSink final : public TLX::Trace::ISink
{
public:
    void Write(const TLX::Trace::CLine& /*line*/) noexcept override {}
};

TEST(Borders, ExceptionsOfALibraryAreCaughtOutsideOfIt)
{
    try {
        throwInToolkit();
        FAIL() << "nothing was thrown";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
    }
}

TEST(Borders, ExceptionsPassThroughALibraryThatThrowsThemAgain)
{
    EXPECT_THROW(relay(throwInToolkit), std::system_error);
    EXPECT_THROW(relay([] { throw std::out_of_range("the program's own"); }), std::out_of_range);
    EXPECT_THROW(relay([] { relay(throwInToolkit); }), std::system_error);
}

TEST(Borders, ALibraryKnowsTheExceptionsOfAnother)
{
    try {
        throwInToolkit();
        FAIL() << "nothing was thrown";
    } catch (...) {
        EXPECT_TRUE(describe(std::current_exception()).starts_with("system error: "));
    }
    EXPECT_EQ(describe(std::make_exception_ptr(std::runtime_error("the program's own"))),
              "the program's own");
    EXPECT_EQ(describe(std::make_exception_ptr(1)), "something else");
}

TEST(Borders, DownCastsKnowTheClassesOfALibrary)
{
    const std::unique_ptr<TLX::Trace::ISink> relayed = makeRelaySink();
    EXPECT_NE(dynamic_cast<CRelaySink*>(relayed.get()), nullptr);
    EXPECT_EQ(dynamic_cast<COwnSink*>(relayed.get()), nullptr);
    const std::shared_ptr<TLX::Trace::ISink> other = TLX::Trace::standardErrorSink();
    EXPECT_EQ(dynamic_cast<CRelaySink*>(other.get()), nullptr);
    EXPECT_TRUE(typeid(*relayed) == typeid(CRelaySink));
}

} // namespace
