// SPDX-License-Identifier: Apache-2.0
#include "plugins/load_failure.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <regex>
#include <string_view>

namespace zorbd {
namespace {

struct Origin
{
    const char* beginning; ///< of the name
    const char* remedy;
};

/// Where names come from, by how they begin; the first that fits.
constexpr Origin origins[] = {
    {"DDS_RMI::",
     "It is generated from an interface file: link the library that rmi_interface_library() makes of "
     "that file (VarnelRMI.idl has -lVarnelRMI)."},
    {"zeb::",
     "It is the framework's: link -lzorb. If it is linked, the framework here is older than the headers "
     "that the plug-in was built with."},
    {"org::opensplice::",
     "It is the RMI layer's: link -lddsrmi. If it is linked, the RMI layer here is older than "
     "the headers that the plug-in was built with."},
    {"DDS::", "It is the RMI layer's: link -lddsrmi."},
    {"os_", "It is the RMI layer's: link -lddsrmi."},
    {"json_", "It is json-c's: link -ljson-c."},
    {"dds_", "It is Cyclone DDS's: link -lddsc."},
};

bool begins_with(std::string_view text, std::string_view beginning)
{
    return text.compare(0, beginning.size(), beginning) == 0;
}

/// As it stands in the sources.
std::string demangled(const std::string& symbol)
{
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, &status), &std::free);
    return status == 0 ? name.get() : symbol;
}

/// The class of "vtable for Class" and the like; empty for other names.
std::string class_of_table(const std::string& name)
{
    std::smatch match;
    const std::regex table("(?:vtable|typeinfo|typeinfo name|VTT) for (.*)");
    return std::regex_match(name, match, table) ? match[1].str() : std::string();
}

std::string remedy_for(const std::string& name)
{
    const std::string table_class = class_of_table(name);
    const std::string& named = table_class.empty() ? name : table_class;
    for (const Origin& origin : origins)
        if (begins_with(named, origin.beginning))
            return origin.remedy;
    if (!table_class.empty())
        return "Link the library, or compile the file, that defines the virtual functions of " + table_class +
               '.';
    return "Link the library, or compile the file, that defines it.";
}

/// What the dynamic linker says of a symbol that nobody defines.
std::optional<std::string> explain_symbol(const std::string& said)
{
    std::smatch match;
    if (!std::regex_search(said, match, std::regex("^(.*): undefined symbol: ([^ ,]+)")))
        return std::nullopt;
    const std::string object = match[1];
    const std::string symbol = match[2];
    const std::string name = demangled(symbol);
    return "no library that is loaded with it defines " + name + (name == symbol ? "" : " (" + symbol + ')') +
           ". " + remedy_for(name) + " \"ldd -r " + object + "\" lists all that is missing";
}

/// What the dynamic linker says of a library that it does not find.
std::optional<std::string> explain_library(const std::string& file, const std::string& said)
{
    std::smatch match;
    if (!std::regex_search(said, match, std::regex("^(.*): cannot open shared object file: No such file")) ||
        match[1] == file)
        return std::nullopt;
    return "it needs the library " + match[1].str() +
           ", which is in none of the folders where the dynamic linker looks. Install it and run ldconfig, "
           "or link "
           "the plug-in with the folder: -Wl,-rpath,FOLDER, where '$ORIGIN' is the plug-in's own";
}

} // namespace

std::string explain_load_failure(const std::string& file, const std::string& said)
{
    if (const auto explained = explain_symbol(said))
        return *explained;
    return explain_library(file, said).value_or(said);
}

} // namespace zorbd
