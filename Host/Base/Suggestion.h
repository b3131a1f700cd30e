#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Host {

/**
 * The question that helps someone who mistyped `word`: ` Did you mean "list"?`, with the first of the nearest
 * of `known`. Empty when none is near: more than a third of its characters, but at least one, would have to
 * be changed, left out, put in or swapped with the next one. Case does not count.
 */
std::string didYouMean(std::string_view word, const std::vector<std::string>& known);

} // namespace Host
