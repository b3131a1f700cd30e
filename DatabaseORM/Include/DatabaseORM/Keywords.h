#pragma once

#include <string_view>

/** The words for constraints in column definitions. */
namespace DatabaseORM {

inline constexpr std::string_view PRIMARY_KEY = "PRIMARY KEY";
inline constexpr std::string_view FOREIGN_KEY = "FOREIGN KEY";
inline constexpr std::string_view UNIQUE = "UNIQUE";
inline constexpr std::string_view NOT_NULL = "NOT NULL";
inline constexpr std::string_view DEFAULTVALUE = "DEFAULTVALUE";
inline constexpr std::string_view AUTOINCREMENT = "AUTOINCREMENT";

inline constexpr std::string_view ON_DELETE_CASCADE = "ON DELETE CASCADE";
inline constexpr std::string_view ON_DELETE_NO_ACTION = "ON DELETE NO ACTION";
inline constexpr std::string_view ON_DELETE_RESTRICT = "ON DELETE RESTRICT";
inline constexpr std::string_view ON_DELETE_SET_DEFAULT = "ON DELETE SET DEFAULT";
inline constexpr std::string_view ON_DELETE_SET_NULL = "ON DELETE SET NULL";
inline constexpr std::string_view ON_UPDATE_CASCADE = "ON UPDATE CASCADE";
inline constexpr std::string_view ON_UPDATE_NO_ACTION = "ON UPDATE NO ACTION";
inline constexpr std::string_view ON_UPDATE_RESTRICT = "ON UPDATE RESTRICT";
inline constexpr std::string_view ON_UPDATE_SET_DEFAULT = "ON UPDATE SET DEFAULT";
inline constexpr std::string_view ON_UPDATE_SET_NULL = "ON UPDATE SET NULL";

} // namespace DatabaseORM
