// SPDX-License-Identifier: Apache-2.0
// The access control plug-in of Cyclone DDS, changed as an attacker would change his own: whatever its own
// side asks is allowed. What it shows to others is unchanged.

#define _GNU_SOURCE
#include <dds/security/dds_security_api.h>
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

typedef int (*Init)(const char* argument, void** context, struct ddsi_domaingv* gv);
typedef int (*Finalize)(void* context);

int init_access_control(const char* argument, void** context, struct ddsi_domaingv* gv);
int finalize_access_control(void* context);

// Debian keeps the genuine one in a folder beside Cyclone's own library.
static void* genuine(const char* name)
{
    static void* library = NULL;
    if (library == NULL) {
        char path[4096] = "";
        Dl_info ddsc;
        if (dladdr(dlsym(RTLD_DEFAULT, "dds_create_participant"), &ddsc) != 0) {
            const char* end = strrchr(ddsc.dli_fname, '/');
            snprintf(path, sizeof(path), "%.*s/libddsc0debian/libdds_security_ac.so",
                     (int)(end - ddsc.dli_fname), ddsc.dli_fname);
        }
        library = dlopen(path, RTLD_NOW);
    }
    if (library == NULL) {
        fprintf(stderr, "lawless_access_control: %s\n", dlerror());
        return NULL;
    }
    return dlsym(library, name);
}

static DDS_Security_boolean
allow_endpoint(dds_security_access_control* instance, const DDS_Security_PermissionsHandle permissions,
               const DDS_Security_DomainId domain, const DDS_Security_char* topic,
               const DDS_Security_Qos* qos, const DDS_Security_PartitionQosPolicy* partition,
               const DDS_Security_DataTags* tag, DDS_Security_SecurityException* ex)
{
    (void)instance, (void)permissions, (void)domain, (void)topic, (void)qos, (void)partition, (void)tag,
        (void)ex;
    return true;
}

static DDS_Security_boolean allow_topic(dds_security_access_control* instance,
                                        const DDS_Security_PermissionsHandle permissions,
                                        const DDS_Security_DomainId domain, const DDS_Security_char* topic,
                                        const DDS_Security_Qos* qos, DDS_Security_SecurityException* ex)
{
    (void)instance, (void)permissions, (void)domain, (void)topic, (void)qos, (void)ex;
    return true;
}

static DDS_Security_boolean allow_remote_writer(dds_security_access_control* instance,
                                                const DDS_Security_PermissionsHandle permissions,
                                                const DDS_Security_DomainId domain,
                                                const DDS_Security_PublicationBuiltinTopicDataSecure* data,
                                                DDS_Security_SecurityException* ex)
{
    (void)instance, (void)permissions, (void)domain, (void)data, (void)ex;
    return true;
}

static DDS_Security_boolean allow_remote_reader(dds_security_access_control* instance,
                                                const DDS_Security_PermissionsHandle permissions,
                                                const DDS_Security_DomainId domain,
                                                const DDS_Security_SubscriptionBuiltinTopicDataSecure* data,
                                                DDS_Security_boolean* relay_only,
                                                DDS_Security_SecurityException* ex)
{
    (void)instance, (void)permissions, (void)domain, (void)data, (void)ex;
    *relay_only = false;
    return true;
}

int init_access_control(const char* argument, void** context, struct ddsi_domaingv* gv)
{
    Init init = NULL;
    *(void**)&init = genuine("init_access_control");
    const int result = init == NULL ? -1 : init(argument, context, gv);
    if (result == 0) {
        dds_security_access_control* control = *context;
        control->check_create_datawriter = allow_endpoint;
        control->check_create_datareader = allow_endpoint;
        control->check_create_topic = allow_topic;
        control->check_remote_datawriter = allow_remote_writer;
        control->check_remote_datareader = allow_remote_reader;
    }
    return result;
}

int finalize_access_control(void* context)
{
    Finalize finalize = NULL;
    *(void**)&finalize = genuine("finalize_access_control");
    return finalize == NULL ? -1 : finalize(context);
}
