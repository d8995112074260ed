// SPDX-License-Identifier: Apache-2.0
#include "dds_domain.h"

#include <dds/dds.h>
#include <gmock/gmock.h>

#include <cstdlib>

namespace {

using test_support::DdsDomain;

TEST(DdsDomain, is_the_domain_of_a_default_participant)
{
    const DdsDomain domain;
    const dds_entity_t participant = dds_create_participant(DDS_DOMAIN_DEFAULT, nullptr, nullptr);
    ASSERT_GT(participant, 0) << dds_strretcode(participant);

    dds_domainid_t id = 0;
    EXPECT_EQ(dds_get_domainid(participant, &id), DDS_RETCODE_OK);
    dds_delete(participant);

    EXPECT_EQ(static_cast<int>(id), domain.id());
}

TEST(DdsDomain, is_not_given_twice)
{
    const DdsDomain one;
    const DdsDomain other;

    EXPECT_NE(one.id(), other.id());
}

TEST(DdsDomain, lies_in_the_range_whose_ports_are_free)
{
    const DdsDomain domain;

    EXPECT_THAT(domain.id(), testing::AllOf(testing::Ge(1), testing::Le(99)));
}

TEST(DdsDomain, is_handed_to_children_by_the_environment)
{
    const DdsDomain domain;

    EXPECT_STREQ(std::getenv("CYCLONEDDS_URI"), domain.uri().c_str());
}

TEST(DdsDomain, takes_its_configuration_back)
{
    ::setenv("CYCLONEDDS_URI", "<CycloneDDS/>", 1);
    {
        const DdsDomain domain;
    }

    EXPECT_STREQ(std::getenv("CYCLONEDDS_URI"), "<CycloneDDS/>");
}

} // namespace
