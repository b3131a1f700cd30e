#include <PI/ErrorCode.h>

namespace PI {

std::string_view errorName(std::uint32_t code)
{
    switch (code) {
    case ERR_SUCCESS:
        return "ERR_SUCCESS";
    case ERR_GENERAL_FAILURE:
        return "ERR_GENERAL_FAILURE";
    case ERR_NO_SUPPORTED_HARDWARE:
        return "ERR_NO_SUPPORTED_HARDWARE";
    case ERR_UNKNOWN_REQUEST:
        return "ERR_UNKNOWN_REQUEST";
    case ERR_PROPERTY_NOT_SETTABLE:
        return "ERR_PROPERTY_NOT_SETTABLE";
    case ERR_OPERATION_NOT_SUPPORTED:
        return "ERR_OPERATION_NOT_SUPPORTED";
    case ERR_OUT_OF_MEMORY:
        return "ERR_OUT_OF_MEMORY";
    case ERR_OBJECT_NOT_FOUND:
        return "ERR_OBJECT_NOT_FOUND";
    case ERR_LOCK_INITIALIZATION_FAILED:
        return "ERR_LOCK_INITIALIZATION_FAILED";
    default:
        return "ERR_UNKNOWN";
    }
}

} // namespace PI
