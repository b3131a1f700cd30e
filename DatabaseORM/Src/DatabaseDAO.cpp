#include <DatabaseORM/DatabaseDAO.h>

namespace DatabaseWrapper {

DatabaseDAO::~DatabaseDAO() = default;

} // namespace DatabaseWrapper
