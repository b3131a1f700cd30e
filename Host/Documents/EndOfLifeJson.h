#pragma once

#include "Facts/EndOfLife.h"

#include <nlohmann/json_fwd.hpp>

#include <vector>

namespace Host::Cli {

/** The figures of one drive, for the document of `list`. */
nlohmann::ordered_json endOfLifeJson(const EndOfLife& end);

/** A list of these figures for the document of `show`, with an element for each adapter among `objects`. */
nlohmann::ordered_json endOfLifeJson(const ObjectStore& store,
                                     const std::vector<const PI::CObject*>& objects);

} // namespace Host::Cli
