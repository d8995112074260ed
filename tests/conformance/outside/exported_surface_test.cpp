// SPDX-License-Identifier: Apache-2.0
// What the built library offers and needs, as its file says.

#include <dlfcn.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "support/child_process.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

std::string run(const std::vector<std::string>& command)
{
    test_support::ChildProcess process(command);
    EXPECT_EQ(process.wait_for_exit(), 0) << process.error_output();
    return process.output();
}

struct Symbol
{
    std::string binding;
    std::string section;
    std::string name;
};

/// The rows of a library's table of symbols: "--dyn-syms" for those of the dynamic linker, "--syms" for all.
std::vector<Symbol> symbols(const std::string& library, const std::string& table)
{
    std::vector<Symbol> symbols;
    std::istringstream lines(run({"readelf", table, "--wide", library}));
    for (std::string line; std::getline(lines, line);) {
        std::istringstream row(line);
        std::string number, value, size, type, visibility;
        Symbol symbol;
        if (row >> number >> value >> size >> type >> symbol.binding >> visibility >> symbol.section >>
            symbol.name)
            symbols.push_back(symbol);
    }
    return symbols;
}

bool is_undefined(const Symbol& symbol)
{
    return symbol.section == "UND";
}

std::string without_version(const std::string& name)
{
    return name.substr(0, name.find('@'));
}

/// What a library offers to others.
std::vector<std::string> exported_symbols(const std::string& library)
{
    std::vector<std::string> names;
    for (const Symbol& symbol : symbols(library, "--dyn-syms"))
        if (!is_undefined(symbol) && symbol.binding != "LOCAL" && symbol.section != "Ndx")
            names.push_back(symbol.name);
    return names;
}

/// What the plug-in uses and must get from elsewhere.
std::vector<std::string> needed_symbols()
{
    std::vector<std::string> names;
    for (const Symbol& symbol : symbols(PLUGIN, "--dyn-syms"))
        if (is_undefined(symbol) && symbol.binding == "GLOBAL")
            names.push_back(without_version(symbol.name));
    return names;
}

/// What the dynamic section tells after each `mark`.
std::vector<std::string> told_after(const std::string& mark)
{
    std::vector<std::string> names;
    std::istringstream lines(run({"readelf", "--dynamic", "--wide", PLUGIN}));
    for (std::string line; std::getline(lines, line);) {
        const std::size_t at = line.find(mark);
        if (at != std::string::npos)
            names.push_back(line.substr(at + mark.size(), line.rfind(']') - at - mark.size()));
    }
    return names;
}

std::vector<std::string> needed_libraries()
{
    return told_after("Shared library: [");
}

bool is_run_time_of_the_compiler(const std::string& library)
{
    for (const char* const name : {"libstdc++.so.6", "libgcc_s.so.1", "libc.so.6", "libm.so.6", "libasan.so",
                                   "libubsan.so", "libtsan.so", "ld-linux"})
        if (library.rfind(name, 0) == 0)
            return true;
    return false;
}

/// The names of the library's own objects that can be written to while it runs.
std::vector<std::string> writable_objects()
{
    std::vector<std::string> sections;
    std::istringstream headers(run({"readelf", "--section-headers", "--wide", PLUGIN}));
    for (std::string line; std::getline(headers, line);)
        for (const char* const name : {" .data ", " .bss "})
            if (line.find(name) != std::string::npos)
                sections.push_back(std::to_string(std::stoi(line.substr(line.find('[') + 1))));
    EXPECT_THAT(sections, testing::SizeIs(2));

    std::vector<std::string> names;
    for (const Symbol& symbol : symbols(PLUGIN, "--syms"))
        if (std::find(sections.begin(), sections.end(), symbol.section) != sections.end() &&
            symbol.name.rfind("_Z", 0) == 0)
            names.push_back(symbol.name);
    return names;
}

TEST(ExportedSurface, is_the_factory_alone)
{
    EXPECT_THAT(exported_symbols(PLUGIN), ElementsAre("RPCHandler"));
}

TEST(ExportedSurface, has_the_file_s_own_name_for_the_dynamic_linker)
{
    EXPECT_THAT(told_after("Library soname: ["), ElementsAre("libvarnelrpc_1.0.2.so"));
}

TEST(ExportedSurface, keeps_no_state_but_that_of_the_standard_streams)
{
    EXPECT_THAT(writable_objects(), testing::IsSubsetOf({"_ZStL8__ioinit"}));
}

TEST(ExportedSurface, rests_on_the_framework_the_interface_library_and_the_RMI_layer_only)
{
    std::vector<std::string> libraries;
    for (const std::string& library : needed_libraries())
        if (!is_run_time_of_the_compiler(library))
            libraries.push_back(library);

    EXPECT_THAT(libraries, testing::IsSubsetOf({"libzorb.so.1", "libVarnelRMI.so", "libddsrmi.so.1"}));
    EXPECT_THAT(libraries, Contains("libzorb.so.1"));
    EXPECT_THAT(libraries, Contains("libVarnelRMI.so"));
}

TEST(ExportedSurface, needs_nothing_that_those_libraries_do_not_give)
{
    std::vector<void*> libraries;
    for (const std::string& name : needed_libraries()) {
        const std::string in_this_build = std::string(LIBRARY_FOLDER) + "/" + name;
        void* library = dlopen(in_this_build.c_str(), RTLD_LAZY);
        if (library == nullptr)
            library = dlopen(name.c_str(), RTLD_LAZY);
        ASSERT_NE(library, nullptr) << dlerror();
        libraries.push_back(library);
    }

    const std::vector<std::string> needed = needed_symbols();
    std::vector<std::string> missing;
    for (const std::string& name : needed) {
        bool is_given = false;
        for (void* const library : libraries)
            is_given = is_given || dlsym(library, name.c_str()) != nullptr;
        if (!is_given)
            missing.push_back(name);
    }

    EXPECT_THAT(needed, Contains("os_strcpy"));
    EXPECT_THAT(missing, IsEmpty());
}

TEST(ExportedSurface, needs_no_more_of_the_framework_than_every_host_s_library_has)
{
    const std::vector<std::string> framework = exported_symbols(FRAMEWORK);
    const std::vector<std::string> least = exported_symbols(LEAST_FRAMEWORK);
    const auto has = [](const std::vector<std::string>& names, const std::string& name) {
        return std::find(names.begin(), names.end(), name) != names.end();
    };

    std::vector<std::string> beyond;
    for (const std::string& name : needed_symbols())
        if (has(framework, name) && !has(least, name))
            beyond.push_back(name);

    EXPECT_THAT(least, Contains("_ZN3zeb3api13KX_RPCHandler9AddMethodEPNS0_14CallbackMethodE"));
    EXPECT_THAT(beyond, IsEmpty());
}

TEST(ExportedSurface, uses_no_file_environment_thread_lock_or_setting_of_the_system_log)
{
    const std::vector<std::string> needed = needed_symbols();

    for (const char* const name :
         {"getenv", "secure_getenv", "open", "open64", "fopen", "fopen64", "pthread_create",
          "pthread_mutex_lock", "flockfile", "vsyslog", "__vsyslog_chk", "openlog", "closelog", "setlogmask"})
        EXPECT_THAT(needed, Not(Contains(name)));
}

} // namespace
