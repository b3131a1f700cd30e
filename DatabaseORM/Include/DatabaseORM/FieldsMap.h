#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace RaidDataModels {

/** One column: the model member bound to it, its name, and its position in the table (from 0). */
template<class Model, class Value>
struct dbField
{
    Value Model::*m_Member;
    std::string m_Column;
    std::size_t m_Position;
};

/** The common base of the field maps of all models. A storage has a list of them. */
class dbModelFieldsMapBase
{
public:
    /** `name` is the table's alias in queries. */
    explicit dbModelFieldsMapBase(std::string name);
    virtual ~dbModelFieldsMapBase();

    /** The table's alias. */
    const std::string& Name() const { return m_Name; }
    /** How many columns are bound. */
    std::size_t Columns() const { return m_Columns; }

protected:
    /** The next column's position. */
    std::size_t AddColumn() { return m_Columns++; }

private:
    std::string m_Name;
    std::size_t m_Columns = 0;
};

/** The columns of a model's table. Members are 32-bit or 64-bit integers, doubles or texts. */
template<class Model>
class dbModelFieldsMap : public dbModelFieldsMapBase
{
public:
    using dbModelFieldsMapBase::dbModelFieldsMapBase;

    /** Binds the table's next column to `member`. */
    template<class Value>
    void Bind(Value Model::*member, std::string column)
    {
        std::get<std::vector<dbField<Model, Value>>>(m_Fields).push_back(
            {member, std::move(column), AddColumn()});
    }

    /** The columns whose members are of type `Value`, in the order of their positions. */
    template<class Value>
    const std::vector<dbField<Model, Value>>& Fields() const
    {
        return std::get<std::vector<dbField<Model, Value>>>(m_Fields);
    }

    /** Calls `visit` with every column, kind by kind. */
    template<class Visitor>
    void ForEach(Visitor visit) const
    {
        const auto visitAll = [&visit](const auto&... lists) {
            const auto visitList = [&visit](const auto& list) {
                for (const auto& field : list)
                    visit(field);
            };
            (visitList(lists), ...);
        };
        std::apply(visitAll, m_Fields);
    }

private:
    std::tuple<std::vector<dbField<Model, std::int32_t>>, std::vector<dbField<Model, std::int64_t>>,
               std::vector<dbField<Model, double>>, std::vector<dbField<Model, std::string>>>
        m_Fields;
};

} // namespace RaidDataModels
