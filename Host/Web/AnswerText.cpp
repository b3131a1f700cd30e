#include "Web/AnswerText.h"

#include "Base/Time.h"
#include "Web/Status.h"

#include <TLX/Clock.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <string_view>

namespace Host::Web {
namespace {

constexpr std::string_view SAFETY =
    "Cache-Control: no-store\r\n"
    "Content-Security-Policy: default-src 'none'; style-src 'self'; img-src 'self'; "
    "base-uri 'none'; form-action 'none'; frame-ancestors 'none'\r\n"
    "Cross-Origin-Resource-Policy: same-origin\r\n"
    "Referrer-Policy: no-referrer\r\n"
    "X-Content-Type-Options: nosniff\r\n";

/** An instant in milliseconds since 1970, such as "Thu, 01 Jan 1970 00:00:00 GMT". */
std::string dateText(std::uint64_t time)
{
    constexpr std::array<const char*, 7> weekdays = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    constexpr std::array<const char*, 12> months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                    "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const std::chrono::sys_seconds instant{std::chrono::seconds(time / MILLISECONDS_A_SECOND)};
    const auto day = std::chrono::floor<std::chrono::days>(instant);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss clock(instant - day);
    std::array<char, 64> text{};
    (void)std::snprintf(text.data(), text.size(), "%s, %02u %s %04d %02d:%02d:%02d GMT",
                        weekdays.at(std::chrono::weekday(day).c_encoding()),
                        static_cast<unsigned>(date.day()), months.at(static_cast<unsigned>(date.month()) - 1),
                        static_cast<int>(date.year()), static_cast<int>(clock.hours().count()),
                        static_cast<int>(clock.minutes().count()), static_cast<int>(clock.seconds().count()));
    return text.data();
}

void addField(std::string& head, std::string_view name, std::string_view value)
{
    ((head += name) += ": ") += value;
    head += "\r\n";
}

} // namespace

std::string headText(const Response& response, bool keepsAlive)
{
    std::string head = "HTTP/1.1 " + std::to_string(response.m_Status) + ' ';
    (head += statusText(response.m_Status)) += "\r\n";
    addField(head, "Date", dateText(TLX::Misc::now()));
    addField(head, "Connection", keepsAlive ? "keep-alive" : "close");
    if (!response.m_Type.empty())
        addField(head, "Content-Type", response.m_Type);
    if (response.m_Events == nullptr)
        addField(head, "Content-Length", std::to_string(response.m_Body.size()));
    head += SAFETY;
    for (const auto& [name, value] : response.m_Headers)
        addField(head, name, value);
    return head + "\r\n";
}

} // namespace Host::Web
