#include "Terminal/Table.h"

#include "Base/Text.h"

namespace {

using Host::Cli::Screen;
using Host::Cli::Table;
using Host::Cli::Tone;

/** Natural widths 6, 6, 20, 10, 4: 54 columns with gaps of two, 50 with gaps of one. */
Table sampleTable()
{
    Table table(
        {{"Device"}, {"Vendor", false, 0, 1}, {"Model", false, 8}, {"Serial", false, 6}, {"Temp", true}});
    table.add({{"nvme0"}, {"MAKER"}, {"ABCDEFGHIJKLMNOPQRST"}, {"0123456789"}, {"7"}});
    table.add({{"nvme10"}, {"-"}, {"SHORT"}, {"42"}, {"36"}});
    return table;
}

std::vector<std::string> splitLines(const std::string& text)
{
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = text.find('\n', start);
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

TEST(Table, KeepsEveryTextWholeInAPipe)
{
    EXPECT_EQ(sampleTable().text({}), "Device  Vendor  Model                 Serial      Temp\n"
                                      "nvme0   MAKER   ABCDEFGHIJKLMNOPQRST  0123456789     7\n"
                                      "nvme10  -       SHORT                 42            36\n");
}

TEST(Table, LooksTheSameWhereThereIsRoom)
{
    EXPECT_EQ(sampleTable().text({200, false}), sampleTable().text({}));
    EXPECT_EQ(sampleTable().text({54, false}), sampleTable().text({}));
}

TEST(Table, NarrowsTheGapsFirst)
{
    EXPECT_EQ(splitLines(sampleTable().text({50, false}))[1],
              "nvme0  MAKER  ABCDEFGHIJKLMNOPQRST 0123456789    7");
}

TEST(Table, ThenShortensTheWidestText)
{
    EXPECT_EQ(sampleTable().text({40, false}), "Device Vendor Model      Serial     Temp\n"
                                               "nvme0  MAKER  ABCDE\u2026QRST 0123456789    7\n"
                                               "nvme10 -      SHORT      42           36\n");
}

TEST(Table, ThenLeavesColumnsOutAndSaysSo)
{
    EXPECT_EQ(sampleTable().text({30, false}), "Device Model    Serial    Temp\n"
                                               "nvme0  ABCD\u2026RST 0123\u20266789    7\n"
                                               "nvme10 SHORT    42          36\n"
                                               "Too narrow for: Vendor\n");
}

TEST(Table, NeverCutsWhatHasNoMinimum)
{
    const std::vector<std::string> lines = splitLines(sampleTable().text({5, false}));
    EXPECT_EQ(lines[2], "nvme10 SHORT    42       36");
}

TEST(Table, FitsEveryWidthThatItCanFit)
{
    for (unsigned width = 27; width < 60; ++width)
        for (const std::string& line : splitLines(sampleTable().text({width, false})))
            EXPECT_LE(Host::displayWidth(line), width) << line;
}

TEST(Table, TheColumnsLeftOutAreNamedInLinesThatFit)
{
    Table table({{"A"}, {"Vendor", false, 0, 1}, {"Location", false, 0, 1}});
    table.add({{"x"}, {"MAKER"}, {"PCI"}});
    EXPECT_EQ(table.text({16, true}),
              "\033[1mA\033[0m\nx\n\033[2mToo narrow for:\nVendor, Location\033[0m\n");
}

TEST(Table, ColoursTextAloneSoThatColumnsStayAligned)
{
    Table table({{"A"}, {"B"}});
    table.add({{"x", Tone::Bad}, {"y"}});
    EXPECT_EQ(table.text({80, true}), "\033[1mA\033[0m  \033[1mB\033[0m\n\033[1;31mx\033[0m  y\n");
    EXPECT_EQ(table.text({80, false}), "A  B\nx  y\n");
}

TEST(Table, ShowsControlCharactersAsQuestionMarks)
{
    Table table({{"A"}});
    table.add({{"x\033[2J\n"}});
    EXPECT_EQ(table.text({}), "A\nx?[2J?\n");
}

} // namespace
