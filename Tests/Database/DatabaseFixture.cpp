#include "DatabaseFixture.h"

namespace TestSupport {

DatabaseFixture::DatabaseFixture()
{
    Reopen();
}

DatabaseFixture::~DatabaseFixture()
{
    m_Storage.reset();
    setDatabaseFile({});
}

void DatabaseFixture::Reopen()
{
    m_Storage.reset();
    setDatabaseFile(File());
    m_Storage = getDatabasePointer();
}

RaidDataModels::Adapter makeAdapter(std::int32_t number, const std::string& serial)
{
    RaidDataModels::Adapter adapter;
    adapter.m_HostName = "localhost";
    adapter.m_AdapterNumber = number;
    adapter.m_Present = 1;
    adapter.m_SerialNumber = DatabaseORM::escapeQuotes(serial);
    return adapter;
}

RaidDataModels::PD makeDrive(const std::string& serial)
{
    RaidDataModels::PD drive;
    drive.m_HostName = "localhost";
    drive.m_DriveKey = DatabaseORM::escapeQuotes(serial);
    drive.m_SerialNumber = drive.m_DriveKey;
    drive.m_Temperature = "NULL";
    return drive;
}

} // namespace TestSupport
