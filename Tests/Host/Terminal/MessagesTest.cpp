#include "Terminal/Messages.h"

#include <string>

namespace {

using Host::Cli::Messages;

class MessagesTest : public testing::Test
{
protected:
    Messages::Write writer()
    {
        return [this](const std::string& text) { m_Written += text; };
    }

    std::string m_Written;
};

TEST_F(MessagesTest, NameTheProgramAndForgeNothing)
{
    Messages(false, writer()).tell("One.\nTwo.\033[2J");
    EXPECT_EQ(m_Written, "ostrel: One.\nTwo.?[2J\n");
}

TEST_F(MessagesTest, APassingLineGivesWayToAShorterOneAndToAMessage)
{
    Messages messages(true, writer());
    messages.pass("4 \u00b0C");
    messages.pass("no");
    messages.tell("Hm.");
    messages.tell("Hm.");
    EXPECT_EQ(m_Written, "4 \u00b0C\rno  \r  \rostrel: Hm.\nostrel: Hm.\n");
}

TEST_F(MessagesTest, AMessageGivesNoTraceOfALineAmongTheResults)
{
    Messages messages(true, writer());
    messages.passesElsewhere(5);
    messages.tell("Hm.");
    messages.passesElsewhere(7);
    messages.passesElsewhere(0);
    messages.tell("Hm.");
    EXPECT_EQ(m_Written, "     \rostrel: Hm.\nostrel: Hm.\n");
}

TEST_F(MessagesTest, ATakenLineIsTakenOnce)
{
    Messages messages(true, writer());
    messages.pass("");
    messages.pass("on");
    messages.pass("");
    messages.pass("");
    EXPECT_EQ(m_Written, "on\r  \r");
}

TEST_F(MessagesTest, APipeGetsMessagesAlone)
{
    Messages messages(false, writer());
    messages.pass("on");
    messages.passesElsewhere(5);
    messages.tell("Hm.");
    EXPECT_EQ(m_Written, "ostrel: Hm.\n");
}

} // namespace
