// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_INTERFACE_INFO_H
#define DDSRMI_INTERFACE_INFO_H

#include <cstddef>

#include "ddsrmi/dds_types.h"

namespace org {
namespace opensplice {
namespace DDS_RMI {

class CInterfaceProxy;
struct ProxySeed;

/// One operation of an interface.
struct OperationInfo
{
    const char* name; ///< as in the IDL file
    /// Its name and types as people read them; two versions of an operation differ here.
    const char* signature;
    /// Of the signature; what requests name the operation by.
    DDS::ULongLong hash;
};

/// What the code generator knows of an interface. All of it is static data of the interface library.
struct InterfaceInfo
{
    /// The interface's scoped name, e.g. "M::I".
    const char* server_class;
    const char* request_topic;       ///< DDS topic of all requests
    const char* reply_topic;         ///< DDS topic of all replies
    const OperationInfo* operations; ///< in the order of the IDL file
    std::size_t operation_count;     ///< length of `operations`
};

/// Makes the interface's proxy for a connection that the registry has established.
typedef CInterfaceProxy* (*ProxyFactory)(const ProxySeed& seed);

/// Makes an interface's proxies known to the lookup for as long as it lives. Objects for the same interface
/// may overlap; the newest counts.
class ProxyRegistration
{
public:
    /// `interface_info` must outlive this.
    ProxyRegistration(const InterfaceInfo& interface_info, ProxyFactory factory);
    ~ProxyRegistration();
    ProxyRegistration(const ProxyRegistration&) = delete;
    ProxyRegistration& operator=(const ProxyRegistration&) = delete;

private:
    const InterfaceInfo& m_interface;
    ProxyFactory m_factory;
};

/// Frees a text that generated code was given, whichever way its function ends.
class OwnedString
{
public:
    /// Takes ownership of `text`, which DDS::string_free can free; it may be null.
    explicit OwnedString(DDS::String text = nullptr) : m_text(text) {}
    ~OwnedString() { DDS::string_free(m_text); }
    OwnedString(const OwnedString&) = delete;
    OwnedString& operator=(const OwnedString&) = delete;

    /// The text, still owned by this.
    DDS::String get() const { return m_text; }
    /// For who puts another text in its place and frees what was there.
    DDS::String& slot() { return m_text; }

private:
    DDS::String m_text;
};

} // namespace DDS_RMI
} // namespace opensplice
} // namespace org

#endif
