#include "Documents/ExplanationJson.h"

#include "Host/Catalogue.h"
#include "Host/Objects.h"

#include <PI/StateCode.h>

#include <nlohmann/json.hpp>

namespace {

using namespace Host::Cli;
using HostTest::property;

/** An object whose health is critical because its medium is read-only. */
PI::CObject failing()
{
    PI::CObject object;
    object.m_ID = 16;
    object.m_Properties = {
        property(PI::PROP_HEALTH_STATUS, 1, PI::HEALTH_CRITICAL, std::vector<std::uint32_t>{}),
        property(PI::PROP_STATUS_REASONS, 1, std::vector<std::uint32_t>{PI::REASON_READ_ONLY},
                 std::vector<std::uint32_t>{})};
    return object;
}

TEST(ExplanationsJson, NameObjectPropertyAndCode)
{
    const HostTest::Catalogue catalogue;
    const PI::CObject object = failing();
    const nlohmann::ordered_json list = explanationsJson(Host::ObjectStore({object}), {&object});
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0]["object"], "0x0000000000000010");
    EXPECT_EQ(list[0]["property"], PI::PROP_STATUS_REASONS);
    EXPECT_EQ(list[0]["code"], PI::REASON_READ_ONLY);
    EXPECT_EQ(list[0]["text"], "Media is read-only");
    EXPECT_THAT(list[0]["meaning"].get<std::string>(), testing::HasSubstr("stopped taking data"));
    EXPECT_THAT(list[0]["advice"].get<std::string>(), testing::HasSubstr("replace it"));
    EXPECT_EQ(explanationsJson(Host::ObjectStore({object}), {}).dump(), "[]");
}

} // namespace
