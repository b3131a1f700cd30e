#pragma once

#include "Plugins/ObjectStore.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Host::Cli {

/** A code that a property shows, and what it means for someone who has never heard of it. */
struct ExplainedCode
{
    const PI::CProperty* m_Property;
    std::uint32_t m_Code;
    std::string m_Text;    ///< what the code is called; another word where the code is not measured
    const char* m_Meaning; ///< a sentence or two
    const char* m_Advice;  ///< what to do, likewise
};

/**
 * The explained ones among the codes that `object` shows, in the order of its properties: reasons of its
 * health, states of spare blocks and of wear, good ones left out where the health is bad. A bad health
 * without reasons is explained itself, before the others. A state that is not measured is explained as such.
 * Refers to `object`, which is of `store`.
 */
std::vector<ExplainedCode> explainedCodes(const ObjectStore& store, const PI::CObject& object);

} // namespace Host::Cli
