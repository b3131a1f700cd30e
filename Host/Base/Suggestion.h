#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Host {

/**
 * A question for someone who mistyped `word`: ` Did you mean "list"?`. It names the first of the nearest
 * words in `known`. It is empty when no word is near. A word is near when at most a third of its characters
 * must be changed, left out, added or swapped with the next one. One such change is always allowed. Case does
 * not count.
 */
std::string didYouMean(std::string_view word, const std::vector<std::string>& known);

} // namespace Host
