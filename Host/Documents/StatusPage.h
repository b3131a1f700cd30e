#pragma once

#include "Facts/ServiceFigures.h"
#include "Facts/Snapshot.h"
#include "Journal/NumberedEntry.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Host::Cli {

/**
 * The page that a browser shows of the service at `now`, in UTC milliseconds: the verdict, the drives, and
 * the `last` entries of the journal, in order. It has no script, and its style is at `STYLE_PATH`.
 */
std::string statusPage(const Snapshot& snapshot, const ServiceFigures& figures,
                       const std::vector<Journal::NumberedEntry>& last, std::uint64_t now);

/** The path of the page's style. */
inline constexpr std::string_view STYLE_PATH = "/style.css";

/** The style of the page, as CSS. */
std::string_view statusStyle();

} // namespace Host::Cli
