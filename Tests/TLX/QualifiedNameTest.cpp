#include <TLX/TraceStreamBuffer.h>

#include <gtest/gtest.h>

#include <string_view>

namespace {

using TLX::Internals::qualifiedName;

struct CCase
{
    std::string_view m_Function;
    std::string_view m_Name;
};

constexpr CCase CASES[] = {
    {"std::vector<std::__cxx11::basic_string<char> > A::B::{anonymous}::C::f(const std::vector<int>&, int "
     "(*)(int)) "
     "const",
     "A::B::{anonymous}::C::f"},
    {"int main()", "main"},
    {"void freef()", "freef"},
    {"A::B::D::D()", "A::B::D::D"},
    {"A::B::D::~D()", "A::B::D::~D"},
    {"virtual A::B::V::~V()", "A::B::V::~V"},
    {"virtual uint32_t A::B::V::f(int)", "A::B::V::f"},
    {"static int A::B::D<T>::s(void (*)(int)) [with T = std::vector<int>]", "A::B::D<T>::s"},
    {"std::vector<T> A::C::t(T) [with T = std::__cxx11::basic_string<char>]", "A::C::t"},
    {"void A::B::D<T>::m()::L::x() [with T = std::vector<int>]", "A::B::D<T>::m"},
    {"const char* A::f()", "A::f"},
    {"std::string &A::f()", "A::f"},
    {"int A::B::V::at() &&", "A::B::V::at"},
    {"decltype(auto) A::B::V::au()", "A::B::V::au"},
    {"std::function<void(int)> A::g(std::function<int(char)>)", "A::g"},
    // results that enclose the name
    {"void (* A::B::{anonymous}::C::fp())(int)", "A::B::{anonymous}::C::fp"},
    {"void (*A::B::(anonymous namespace)::C::fp())(int)", "A::B::(anonymous namespace)::C::fp"},
    {"int (A::* B::member())(long)", "B::member"},
    {"int (& A::array())[3]", "A::array"},
    // operators
    {"bool A::B::D::operator()(int)", "A::B::D::operator()"},
    {"bool A::C::operator<(const A::C&) const", "A::C::operator<"},
    {"A::C& A::C::operator<<(int)", "A::C::operator<<"},
    {"A::C* A::C::operator->()", "A::C::operator->"},
    {"bool A::B::operator==(D<T>, D<T>) [with T = std::vector<int>]", "A::B::operator=="},
    {"A::C::operator bool() const", "A::C::operator bool"},
    {"A::C::operator std::function<void(int)>() const", "A::C::operator std::function<void(int)>"},
    {"static void* A::C::operator new [](std::size_t)", "A::C::operator new []"},
    {"int& A::C::operator[](int)", "A::C::operator[]"},
    {"void A::operators(int)", "A::operators"},
    {"void A::my_operator(int)", "A::my_operator"},
    // lambdas
    {"A::B::{anonymous}::g()::<lambda(int)>", "A::B::{anonymous}::g"},
    {"A::B::{anonymous}::g(int)::<lambda(int)>::<lambda()>", "A::B::{anonymous}::g"},
    {"A::B::{anonymous}::g(int)::<lambda(auto:11)> [with auto:11 = int]", "A::B::{anonymous}::g"},
    {"auto A::B::(anonymous namespace)::g(int)::(anonymous class)::operator()(int) const",
     "A::B::(anonymous namespace)::g"},
    {"A::<lambda(int)>", "A"},
    {"<lambda()>", "<lambda()>"},
    // clang
    {"std::vector<std::string> A::B::(anonymous namespace)::C::f(const std::vector<int> &, int (*)(int)) "
     "const",
     "A::B::(anonymous namespace)::C::f"},
    {"void (anonymous namespace)::g()", "(anonymous namespace)::g"},
    // no function
    {"", ""},
    {"top level", "level"},
    {"main", "main"},
    {"(", "("},
    {"int f(", "f"},
    {"decltype(", "decltype("},
    {"a<b(", "a<b("},
    {"operator", "operator"},
    {"x ", "x "},
};

TEST(QualifiedName, CutsResultAndArgumentsOff)
{
    for (const CCase& expected : CASES)
        EXPECT_EQ(qualifiedName(expected.m_Function), expected.m_Name) << expected.m_Function;
}

TEST(QualifiedName, OfThisCompilersNames)
{
    struct CLocal
    {
        static std::string_view Name() { return qualifiedName(__PRETTY_FUNCTION__); }
    };
    EXPECT_TRUE(CLocal::Name().ends_with("::TestBody")) << CLocal::Name();
    const auto lambda = [](int) { return qualifiedName(__PRETTY_FUNCTION__); };
    EXPECT_TRUE(lambda(1).ends_with("::TestBody")) << lambda(1);
}

TEST(QualifiedName, SurvivesEveryPrefixOfAName)
{
    for (const CCase& expected : CASES)
        for (std::size_t length = 0; length <= expected.m_Function.size(); ++length) {
            const std::string_view text = expected.m_Function.substr(0, length);
            EXPECT_NE(text.find(qualifiedName(text)), std::string_view::npos);
        }
}

} // namespace
