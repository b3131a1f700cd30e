#include "Support/PluginUnderTest.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <iterator>
#include <string>
#include <utility>

namespace {

using NAMESPACE_Ostrel::CNVMeAdapter;

constexpr std::string CNVMeAdapter::*TEXTS[] = {
    &CNVMeAdapter::m_SerialNumber,  &CNVMeAdapter::m_Vendor,           &CNVMeAdapter::m_Model,
    &CNVMeAdapter::m_Name,          &CNVMeAdapter::m_Location,         &CNVMeAdapter::m_Driver,
    &CNVMeAdapter::m_DriverVersion, &CNVMeAdapter::m_FirmwareRevision, &CNVMeAdapter::m_VendorTag,
    &CNVMeAdapter::m_DeviceName,    &CNVMeAdapter::m_ModelName,        &CNVMeAdapter::m_EndOfLifeDate,
};

/** A text too long for a small buffer, different for each member. */
std::string text(std::size_t index)
{
    return "text number " + std::to_string(index) + " which no small buffer holds";
}

CNVMeAdapter filled()
{
    CNVMeAdapter adapter;
    for (std::size_t index = 0; index < std::size(TEXTS); ++index)
        adapter.*TEXTS[index] = text(index);
    return adapter;
}

void expectAllTexts(const CNVMeAdapter& adapter)
{
    for (std::size_t index = 0; index < std::size(TEXTS); ++index)
        EXPECT_EQ(adapter.*TEXTS[index], text(index));
}

TEST(AdapterRecordCopy, HasEachTextOfItsOwn)
{
    CNVMeAdapter original = filled();
    const CNVMeAdapter copy = original;
    CNVMeAdapter assigned;
    assigned = original;
    for (const auto member : TEXTS)
        (original.*member)[0] = 'X';
    expectAllTexts(copy);
    expectAllTexts(assigned);
}

TEST(AdapterRecordCopy, TakesEachTextAlongWhenItIsMoved)
{
    CNVMeAdapter original = filled();
    CNVMeAdapter moved = std::move(original);
    expectAllTexts(moved);
    CNVMeAdapter assigned;
    assigned = std::move(moved);
    expectAllTexts(assigned);
}

} // namespace
