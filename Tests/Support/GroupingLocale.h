#pragma once

#include <locale>
#include <string>
#include <utility>

namespace TestSupport {

/**
 * While it lives, the process's locale writes and reads numbers with a separator between groups of digits.
 */
class CGroupingLocale
{
public:
    /** `grouping` is in the form of `std::numpunct::grouping`: "\3" for 1.000.000. */
    explicit CGroupingLocale(std::string grouping = "\3", char separator = '.')
        : m_Former(std::locale::global(
              std::locale(std::locale::classic(), new CPunctuation(std::move(grouping), separator))))
    {}
    ~CGroupingLocale() { std::locale::global(m_Former); }
    CGroupingLocale(const CGroupingLocale&) = delete;
    CGroupingLocale& operator=(const CGroupingLocale&) = delete;

private:
    class CPunctuation : public std::numpunct<char>
    {
    public:
        CPunctuation(std::string grouping, char separator)
            : m_Grouping(std::move(grouping)), m_Separator(separator)
        {}

    private:
        char do_thousands_sep() const override { return m_Separator; }
        std::string do_grouping() const override { return m_Grouping; }

        std::string m_Grouping;
        char m_Separator;
    };

    std::locale m_Former;
};

} // namespace TestSupport
