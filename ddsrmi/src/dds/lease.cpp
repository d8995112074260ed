// SPDX-License-Identifier: Apache-2.0
#include "dds/lease.h"

#include <dds/ddsrt/xmlparser.h>
#include <strings.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>

#include "dds/qos.h"

namespace org::opensplice::DDS_RMI {

namespace {

using std::chrono::nanoseconds;

constexpr nanoseconds usual_lease = std::chrono::seconds(10);
constexpr int patience_in_leases = 6;

// Cyclone tells the lease of a participant that exists, but a participant's lease can only be given when it
// is made, and one that is made only to be asked makes itself known to the whole domain. So the configuration
// is read here, with Cyclone's own parser.
class LeaseInConfiguration
{
public:
    /// The list of XML texts and files that CYCLONEDDS_URI is.
    void read_list(const char* list)
    {
        while (*list != '\0') {
            const std::size_t length = *list == '<' ? read_text(list) : read_file(list);
            list += length;
            while (*list == ',' || *list == ' ')
                ++list;
        }
    }

    const std::string& last() const { return m_last; }

private:
    using Parser = std::unique_ptr<ddsrt_xmlp_state, decltype(&ddsrt_xmlp_free)>;

    // How many characters were used.
    std::size_t read_text(const char* text)
    {
        const ddsrt_xmlp_callbacks calls = callbacks();
        const Parser parser(ddsrt_xmlp_new_string(text, this, &calls), &ddsrt_xmlp_free);
        ddsrt_xmlp_set_options(parser.get(),
                               DDSRT_XMLP_ANONYMOUS_CLOSE_TAG | DDSRT_XMLP_MISSING_CLOSE_AS_EOF);
        const bool good = ddsrt_xmlp_parse(parser.get()) >= 0;
        return good ? ddsrt_xmlp_get_bufpos(parser.get()) : std::string(text).size();
    }

    std::size_t read_file(const char* list)
    {
        const std::string entry = std::string(list).substr(0, std::string(list).find(','));
        const std::string scheme = "file://";
        const std::string name = entry.rfind(scheme, 0) == 0 ? entry.substr(scheme.size()) : entry;
        const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(name.c_str(), "r"),
                                                                   &std::fclose);
        if (file != nullptr) {
            const ddsrt_xmlp_callbacks calls = callbacks();
            const Parser parser(ddsrt_xmlp_new_file(file.get(), this, &calls), &ddsrt_xmlp_free);
            ddsrt_xmlp_parse(parser.get());
        }
        return entry.size();
    }

    static ddsrt_xmlp_callbacks callbacks()
    {
        ddsrt_xmlp_callbacks calls{};
        calls.elem_open = [](void*, std::uintptr_t, std::uintptr_t* element, const char* name, int) {
            *element = strcasecmp(name, "LeaseDuration") == 0 ? 1 : 0;
            return 1;
        };
        calls.attr = [](void*, std::uintptr_t, const char*, const char*, int) { return 1; };
        calls.elem_data = [](void* self, std::uintptr_t element, const char* data, int) {
            if (element == 1)
                static_cast<LeaseInConfiguration*>(self)->m_last = data;
            return 1;
        };
        calls.elem_close = [](void*, std::uintptr_t, int) { return 1; };
        calls.error = [](void*, const char*, int) {}; // Cyclone itself says what is wrong
        return calls;
    }

    std::string m_last;
};

// A number and its unit; the usual lease for what Cyclone will refuse.
nanoseconds parse_duration(const std::string& text)
{
    static const std::map<std::string, double> nanoseconds_in{
        {"ns", 1}, {"us", 1e3}, {"ms", 1e6}, {"s", 1e9}, {"min", 6e10}, {"hr", 3.6e12}, {"day", 8.64e13}};
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    std::string unit(end);
    unit.erase(0, unit.find_first_not_of(" \t\n"));
    unit.erase(unit.find_last_not_of(" \t\n") + 1);
    const auto factor = nanoseconds_in.find(unit);
    if (factor == nanoseconds_in.end() || number <= 0 || number * factor->second > 1e18)
        return usual_lease;
    return nanoseconds(static_cast<nanoseconds::rep>(number * factor->second));
}

} // namespace

nanoseconds configured_lease()
{
    LeaseInConfiguration configuration;
    if (const char* const list = std::getenv("CYCLONEDDS_URI"))
        configuration.read_list(list);
    return configuration.last().empty() ? usual_lease : parse_duration(configuration.last());
}

Entity create_patient_participant(dds_domainid_t domain)
{
    const Qos qos(dds_create_qos());
    dds_qset_liveliness(qos.get(), DDS_LIVELINESS_AUTOMATIC, patience_in_leases * configured_lease().count());
    return Entity(dds_create_participant(domain, qos.get(), nullptr), "cannot join the DDS domain");
}

} // namespace org::opensplice::DDS_RMI
