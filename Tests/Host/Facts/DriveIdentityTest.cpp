#include "Facts/DriveIdentity.h"

#include <gmock/gmock.h>

namespace {

using Host::Cli::DriveIdentity;
using Host::Cli::subjectText;

TEST(DriveIdentityTest, ADriveGoesByItsNameOrByWhatElseIsKnown)
{
    DriveIdentity drive;
    EXPECT_EQ(subjectText(drive), "An adapter");
    drive.m_Serial = "S";
    EXPECT_EQ(subjectText(drive), "(S)");
    drive.m_Model = "MODEL";
    EXPECT_EQ(subjectText(drive), "MODEL (S)");
    drive.m_Vendor = "INTEL";
    EXPECT_EQ(subjectText(drive), "INTEL MODEL (S)");
    drive.m_Serial.clear();
    EXPECT_EQ(subjectText(drive), "INTEL MODEL");
    drive.m_Name = "NVMe PCI Adapter (1)";
    EXPECT_EQ(subjectText(drive), "NVMe PCI Adapter (1)");
}

} // namespace
