#include "Host/Commands_Linux/SimulatedProgram.h"

#include "Host/Built.h"

#include <algorithm>
#include <utility>

namespace HostTest {

std::vector<std::string> simulated(std::vector<std::string> words, const std::string& fleet)
{
    words.insert(words.begin(), {"--simulate", fleet});
    return words;
}

std::vector<std::string> simulated(std::vector<std::string> words)
{
    return simulated(std::move(words), std::string(Built::SHARE) + "/DemoFleet.json");
}

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

} // namespace HostTest
