#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <variant>

namespace DatabaseORM {

/** "This member's column equals this value." */
template<class Model>
class condition_t
{
public:
    using model_t = Model;

    /** A text is written unchanged; the caller must double its single quotes. */
    condition_t(std::string Model::*member, std::string value) : m_Member(member), m_Value(std::move(value))
    {}

    /** A number is compared by its decimal text. */
    condition_t(std::int32_t Model::*member, std::int32_t value)
        : m_Member(member), m_Value(std::to_string(value))
    {}

    /** The member; its kind is the alternative. */
    const auto& Member() const { return m_Member; }
    /** The value's text, not quoted. */
    const std::string& Value() const { return m_Value; }

private:
    std::variant<std::int32_t Model::*, std::string Model::*> m_Member;
    std::string m_Value;
};

/** Two conditions that must both hold. */
template<class Model>
struct compoundCondition_t
{
    using model_t = Model;

    condition_t<Model> m_First;
    condition_t<Model> m_Second;
};

} // namespace DatabaseORM
