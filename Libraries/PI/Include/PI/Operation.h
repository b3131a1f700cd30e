#pragma once

#include <PI/Event.h>

#include <cstdint>
#include <utility>
#include <vector>

namespace PI {

/** With this operation the host collects a plug-in's pending events. */
inline constexpr std::uint32_t OPERATION_GET_EVENTS = 50002;

/** The constant words of an operation, in the order of the plug-ins' tables. */
struct COperationTemplate
{
    std::uint32_t m_Id;
    std::uint32_t m_Category;
    std::uint32_t m_FlagA;
    std::uint32_t m_FlagB;
    std::uint32_t m_FlagC;
    bool m_Boolean;
    std::uint32_t m_Word;
    std::uint32_t m_FlagD;
    std::uint32_t m_FlagE;

    friend bool operator==(const COperationTemplate&, const COperationTemplate&) = default;
};

/** An operation that an object offers, and its result after it was done. */
class COperation
{
public:
    COperation() = default;
    /** An operation with the identifier of `words`. */
    explicit COperation(const COperationTemplate& words) : m_Words(words), m_RequestedId(words.m_Id) {}

    /** The identifier that decides what the plug-in does. */
    std::uint32_t Id() const { return m_Words.m_Id; }
    /** The identifier that the host asked for. */
    std::uint32_t RequestedId() const { return m_RequestedId; }
    /** The constant words that it was made from. */
    const COperationTemplate& Words() const { return m_Words; }

    /** The result, if the operation collects events. */
    void SetEvents(std::vector<CEvent> events) { m_Events = std::move(events); }
    const std::vector<CEvent>& Events() const { return m_Events; }

private:
    COperationTemplate m_Words{};
    std::uint32_t m_RequestedId = 0;
    std::vector<CEvent> m_Events;
};

} // namespace PI
