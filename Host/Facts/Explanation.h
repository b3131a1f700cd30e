#pragma once

#include "Plugins/ObjectStore.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Host::Cli {

/** A code that a property shows, and its meaning for someone who does not know it. */
struct ExplainedCode
{
    const PI::CProperty* m_Property;
    std::uint32_t m_Code;
    std::string m_Text;    ///< the name of the code; another word if the state was not measured
    const char* m_Meaning; ///< a sentence or two
    const char* m_Advice;  ///< what to do, in a sentence or two
};

/**
 * Explains the codes that `object` shows, in the order of its properties. These are the reasons of its health
 * and the states of its spare blocks and wear. If the health is bad, good states are left out. A bad health
 * without reasons is explained first. For a state that was not measured, the text says so. Keeps a reference
 * to `object`, which must be in `store`.
 */
std::vector<ExplainedCode> explainedCodes(const ObjectStore& store, const PI::CObject& object);

} // namespace Host::Cli
