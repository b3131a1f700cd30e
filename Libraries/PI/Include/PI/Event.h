#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace PI {

/** Something that happened, as a plug-in reports it. The host's catalogue has the text of `m_Id`. */
class CEvent
{
public:
    std::uint64_t m_Source = 0;   ///< object identifier, or 19002 for the host as a whole
    std::uint32_t m_Id = 0;       ///< what happened, a `PI::_EVENT_CODE`
    std::uint32_t m_Severity = 0; ///< 2 information, 3 warning, 4 error
    std::uint64_t m_Time = 0;     ///< milliseconds since 1970

    // Texts that the host inserts into the text of the event.
    void SetSource(std::string text) { m_SourceText = std::move(text); }
    void SetPlaceHolder1(std::string text) { m_PlaceHolder1 = std::move(text); }
    void SetPlaceHolder2(std::string text) { m_PlaceHolder2 = std::move(text); }

    const std::string& SourceText() const { return m_SourceText; }
    const std::string& PlaceHolder1() const { return m_PlaceHolder1; }
    const std::string& PlaceHolder2() const { return m_PlaceHolder2; }

private:
    std::string m_SourceText;
    std::string m_PlaceHolder1;
    std::string m_PlaceHolder2;
};

} // namespace PI
