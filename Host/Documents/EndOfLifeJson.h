#pragma once

#include "Facts/EndOfLife.h"

#include <nlohmann/json_fwd.hpp>

#include <vector>

namespace Host::Cli {

/** The figures for the documents of `list`. */
nlohmann::ordered_json endOfLifeJson(const EndOfLife& end);

/** A list for the documents of `show`: of each adapter among `objects`. */
nlohmann::ordered_json endOfLifeJson(const ObjectStore& store,
                                     const std::vector<const PI::CObject*>& objects);

} // namespace Host::Cli
