// Asks the replacements as any program would ask the system, and prints their answers: a test of the test's
// own parts.

#include <windows.h>

// clang-format off
#include <initguid.h>
#include <cfgmgr32.h>
#include <setupapi.h>
#include <winioctl.h>
// clang-format on

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

std::string property(DEVINST device, ULONG number)
{
    std::array<char, 200> text{};
    ULONG size = text.size();
    const CONFIGRET result =
        CM_Get_DevNode_Registry_PropertyA(device, number, nullptr, text.data(), &size, 0);
    return result == CR_SUCCESS ? text.data() : "error " + std::to_string(result);
}

void printInterfaces(const std::string& instance)
{
    const HDEVINFO set = SetupDiGetClassDevsA(&GUID_DEVINTERFACE_DISK, instance.c_str(), nullptr,
                                              DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
    if (set == INVALID_HANDLE_VALUE)
        return;
    SP_DEVICE_INTERFACE_DATA data{};
    data.cbSize = sizeof(data);
    for (DWORD i = 0; SetupDiEnumDeviceInterfaces(set, nullptr, &GUID_DEVINTERFACE_DISK, i, &data); ++i) {
        DWORD size = 0;
        SetupDiGetDeviceInterfaceDetailA(set, &data, nullptr, 0, &size, nullptr);
        const DWORD probed = GetLastError();
        std::vector<char> bytes(size);
        auto* detail = reinterpret_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_A*>(bytes.data());
        detail->cbSize = sizeof(*detail);
        if (SetupDiGetDeviceInterfaceDetailA(set, &data, detail, size, nullptr, nullptr))
            std::printf("interface %lu %s\n", probed, static_cast<const char*>(detail->DevicePath));
    }
    SetupDiDestroyDeviceInfoList(set);
}

void printTree(DEVINST device, unsigned depth)
{
    std::array<char, 2048> instance{};
    CM_Get_Device_IDA(device, instance.data(), instance.size(), 0);
    std::printf("device %u %s %s\n", depth, instance.data(), property(device, CM_DRP_SERVICE).c_str());
    printInterfaces(instance.data());
    DEVINST next = 0;
    if (CM_Get_Child(&next, device, 0) == CR_SUCCESS)
        printTree(next, depth + 1);
    if (CM_Get_Sibling(&next, device, 0) == CR_SUCCESS)
        printTree(next, depth);
}

int printNumber(HANDLE disk)
{
    STORAGE_DEVICE_NUMBER number{};
    DWORD returned = 0;
    if (!DeviceIoControl(disk, IOCTL_STORAGE_GET_DEVICE_NUMBER, nullptr, 0, &number, sizeof(number),
                         &returned, nullptr))
        return std::printf("error %lu\n", GetLastError());
    return std::printf("number %lu %lu\n", number.DeviceNumber, returned);
}

/**
 * Prints the number of returned bytes, the page's place and length in the answer, and the first bytes after
 * the header.
 */
int printPage(HANDLE disk, DWORD dataType, DWORD value, DWORD size)
{
    constexpr DWORD HEADER = 8;
    std::vector<unsigned char> bytes(HEADER + sizeof(STORAGE_PROTOCOL_SPECIFIC_DATA) + size);
    auto* query = reinterpret_cast<STORAGE_PROPERTY_QUERY*>(bytes.data());
    query->PropertyId = StorageAdapterProtocolSpecificProperty;
    query->QueryType = PropertyStandardQuery;
    auto* protocol = reinterpret_cast<STORAGE_PROTOCOL_SPECIFIC_DATA*>(bytes.data() + HEADER);
    protocol->ProtocolType = ProtocolTypeNvme;
    protocol->DataType = dataType;
    protocol->ProtocolDataRequestValue = value;
    protocol->ProtocolDataOffset = sizeof(*protocol);
    protocol->ProtocolDataLength = size;
    DWORD returned = 0;
    if (!DeviceIoControl(disk, IOCTL_STORAGE_QUERY_PROPERTY, bytes.data(), bytes.size(), bytes.data(),
                         bytes.size(), &returned, nullptr))
        return std::printf("error %lu\n", GetLastError());
    std::printf("page %lu %lu %lu ", returned, protocol->ProtocolDataOffset, protocol->ProtocolDataLength);
    for (std::size_t i = 0; i < 16 && i < size; ++i)
        std::printf("%02x", bytes[HEADER + sizeof(*protocol) + i]);
    return std::printf("\n");
}

} // namespace

int main(int count, char** arguments)
{
    if (count < 2) {
        DEVINST root = 0;
        if (CM_Locate_DevNodeA(&root, nullptr, 0) != CR_SUCCESS)
            return 3;
        printTree(root, 0);
        return 0;
    }
    const HANDLE disk = CreateFileA(arguments[1], GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (disk == INVALID_HANDLE_VALUE) {
        std::printf("closed %lu\n", GetLastError());
        return 1;
    }
    printNumber(disk);
    for (int i = 2; i + 2 < count; i += 3)
        printPage(disk, std::strtoul(arguments[i], nullptr, 0), std::strtoul(arguments[i + 1], nullptr, 0),
                  std::strtoul(arguments[i + 2], nullptr, 0));
    CloseHandle(disk);
    return 0;
}
