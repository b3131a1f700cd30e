#pragma once

#include <locale>
#include <string>
#include <utility>

namespace TestSupport {

/** The process's locale writes and reads numbers with dots between groups of digits while it lives. */
class CGroupingLocale
{
public:
    /** `grouping` is in the form of `std::numpunct::grouping`: "\3" for 1.000.000. */
    explicit CGroupingLocale(std::string grouping = "\3")
        : m_Former(
              std::locale::global(std::locale(std::locale::classic(), new CPunctuation(std::move(grouping)))))
    {}
    ~CGroupingLocale() { std::locale::global(m_Former); }
    CGroupingLocale(const CGroupingLocale&) = delete;
    CGroupingLocale& operator=(const CGroupingLocale&) = delete;

private:
    class CPunctuation : public std::numpunct<char>
    {
    public:
        explicit CPunctuation(std::string grouping) : m_Grouping(std::move(grouping)) {}

    private:
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return m_Grouping; }

        std::string m_Grouping;
    };

    std::locale m_Former;
};

} // namespace TestSupport
