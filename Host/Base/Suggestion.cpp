#include "Base/Suggestion.h"

#include "Base/Text.h"

#include <algorithm>
#include <cstddef>

namespace Host {
namespace {

// People type short words. The time grows with the product of the lengths, so longer ones are ignored.
constexpr std::size_t LONGEST_WORD = 64;

bool same(char a, char b)
{
    return equalIgnoringCase({&a, 1}, {&b, 1});
}

/** The number of changes that turn `from` into `to`. */
std::size_t distance(std::string_view from, std::string_view to)
{
    // changes[i][j] is that number for the first i characters of one and the first j of the other.
    std::vector<std::vector<std::size_t>> changes(from.size() + 1, std::vector<std::size_t>(to.size() + 1));
    for (std::size_t i = 0; i <= from.size(); ++i)
        for (std::size_t j = 0; j <= to.size(); ++j) {
            if (i == 0 || j == 0) {
                changes[i][j] = std::max(i, j);
                continue;
            }
            const std::size_t differs = same(from[i - 1], to[j - 1]) ? 0 : 1;
            changes[i][j] =
                std::min({changes[i - 1][j] + 1, changes[i][j - 1] + 1, changes[i - 1][j - 1] + differs});
            if (i > 1 && j > 1 && same(from[i - 1], to[j - 2]) && same(from[i - 2], to[j - 1]))
                changes[i][j] = std::min(changes[i][j], changes[i - 2][j - 2] + 1);
        }
    return changes[from.size()][to.size()];
}

} // namespace

std::string didYouMean(std::string_view word, const std::vector<std::string>& known)
{
    if (word.empty() || word.size() > LONGEST_WORD)
        return {};
    const std::string* nearest = nullptr;
    std::size_t fewest = 0;
    for (const std::string& candidate : known) {
        if (candidate.empty() || candidate.size() > LONGEST_WORD)
            continue;
        const std::size_t tolerated = std::max<std::size_t>(1, candidate.size() / 3);
        const std::size_t changes = distance(word, candidate);
        // Otherwise a short word would be similar to almost any other one.
        if (changes > tolerated || changes >= candidate.size())
            continue;
        if (nearest == nullptr || changes < fewest) {
            nearest = &candidate;
            fewest = changes;
        }
    }
    return nearest == nullptr ? std::string() : " Did you mean \"" + printable(*nearest) + "\"?";
}

} // namespace Host
