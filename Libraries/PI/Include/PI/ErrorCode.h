#pragma once

#include <PI/Export.h>

#include <cstdint>
#include <string_view>

namespace PI {

/** What a request returns. */
enum _ERROR_CODE : std::uint32_t
{
    ERR_SUCCESS = 0,
    ERR_GENERAL_FAILURE = 20000,
    ERR_NO_SUPPORTED_HARDWARE = 20001,
    ERR_UNKNOWN_REQUEST = 20002,
    ERR_PROPERTY_NOT_SETTABLE = 20004,
    ERR_OPERATION_NOT_SUPPORTED = 20005,
    ERR_OUT_OF_MEMORY = 20007,
    ERR_OBJECT_NOT_FOUND = 20008,
    ERR_LOCK_INITIALIZATION_FAILED = 20011,
};

/** The name of a result code, such as "ERR_GENERAL_FAILURE"; "ERR_UNKNOWN" for any other number. */
PI_EXPORT std::string_view errorName(std::uint32_t code);

} // namespace PI
