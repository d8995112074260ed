// SPDX-License-Identifier: Apache-2.0
#include "plugins/load_failure.h"

#include <gmock/gmock.h>

#include <string>

namespace {

using testing::HasSubstr;
using testing::StartsWith;
using zorbd::explain_load_failure;

constexpr const char* file = "./libthermostat.so";

std::string without_symbol(const std::string& symbol)
{
    return explain_load_failure(file, "./libthermostat.so: undefined symbol: " + symbol);
}

TEST(load_failure, names_the_symbol_as_the_sources_do_and_the_command_that_lists_all)
{
    EXPECT_EQ(
        without_symbol("_ZN4Heat5levelEi"),
        "no library that is loaded with it defines Heat::level(int) (_ZN4Heat5levelEi). Link the library, or "
        "compile the file, that defines it. \"ldd -r ./libthermostat.so\" lists all that is missing");
}

TEST(load_failure, leaves_names_of_c_as_they_are)
{
    EXPECT_THAT(without_symbol("heat_level"),
                StartsWith("no library that is loaded with it defines heat_level. "));
}

TEST(load_failure, stops_at_the_end_of_the_symbol)
{
    EXPECT_THAT(without_symbol("heat_level, version HEAT_1.0"), HasSubstr(" defines heat_level. "));
}

TEST(load_failure, tells_where_a_name_comes_from)
{
    EXPECT_THAT(without_symbol("_ZN7DDS_RMI7Weather25ThermometerInterfaceProxy22_register_service_infoEv"),
                HasSubstr("rmi_interface_library()"));
    EXPECT_THAT(without_symbol("_ZTVN7DDS_RMI7Weather20ThermometerInterfaceE"),
                HasSubstr("rmi_interface_library()"));
    EXPECT_THAT(without_symbol("_ZNK3zeb3api4data7KX_JSON4sizeEv"), HasSubstr("link -lzorb."));
    EXPECT_THAT(without_symbol("_ZN3org10opensplice7DDS_RMI8CRuntime4stopEv"), HasSubstr("link -lddsrmi."));
    EXPECT_THAT(without_symbol("_ZN3DDS10string_dupEPKc"), HasSubstr("link -lddsrmi."));
    EXPECT_THAT(without_symbol("json_object_new_array"), HasSubstr("link -ljson-c."));
    EXPECT_THAT(without_symbol("dds_create_participant"), HasSubstr("link -lddsc."));
}

TEST(load_failure, tells_of_a_class_whose_virtual_functions_are_nowhere)
{
    EXPECT_THAT(
        without_symbol("_ZTV6Heater"),
        HasSubstr("defines vtable for Heater (_ZTV6Heater). Link the library, or compile the file, that "
                  "defines the virtual functions of Heater."));
}

TEST(load_failure, names_a_library_that_is_not_found)
{
    EXPECT_THAT(explain_load_failure(file,
                                     "libThermostat.so: cannot open shared object file: No such file or "
                                     "directory"),
                StartsWith("it needs the library libThermostat.so, which is in none of the folders"));
}

TEST(load_failure, leaves_any_other_message_as_it_is)
{
    const std::string missing =
        "./libthermostat.so: cannot open shared object file: No such file or directory";

    EXPECT_EQ(explain_load_failure(file, missing), missing);
    EXPECT_EQ(explain_load_failure(file, "./libthermostat.so: invalid ELF header"),
              "./libthermostat.so: invalid ELF header");
}

} // namespace
