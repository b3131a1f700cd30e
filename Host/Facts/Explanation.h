#pragma once

#include <PI/Object.h>

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <vector>

namespace Host::Cli {

/** What a code means for someone who has never heard of it, and what to do. */
struct Explanation
{
    std::uint32_t m_Code;
    const char* m_Meaning; ///< a sentence or two
    const char* m_Advice;  ///< likewise
};

/** A code that a property shows, and what there is to say about it. */
struct ExplainedCode
{
    const PI::CProperty* m_Property;
    const Explanation* m_Explanation;
};

/**
 * The explained ones among the codes that `object` shows, in the order of its properties: reasons of its
 * health, states of spare blocks and of wear, good ones left out where the health is bad. A bad health
 * without reasons is explained itself, before the others. Refers to `object`.
 */
std::vector<ExplainedCode> explainedCodes(const PI::CObject& object);

/** A list for the documents of `show`. */
nlohmann::ordered_json explanationsJson(const std::vector<const PI::CObject*>& objects);

} // namespace Host::Cli
