#include <DatabaseORM/FieldsMap.h>

namespace RaidDataModels {

dbModelFieldsMapBase::dbModelFieldsMapBase(std::string name) : m_Name(std::move(name)) {}

dbModelFieldsMapBase::~dbModelFieldsMapBase() = default;

} // namespace RaidDataModels
