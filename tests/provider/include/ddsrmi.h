// SPDX-License-Identifier: Apache-2.0
#ifndef PUBLISHED_DDSRMI_H
#define PUBLISHED_DDSRMI_H

// The names that every RMI layer has, whoever provides it, and nothing else: what compiles with this header
// uses no name that only one provider knows. Declarations alone; nothing here can be linked.

#include <exception>
#include <string>

namespace DDS {

typedef unsigned char Boolean;
typedef char Char;
typedef unsigned char Octet;
typedef short Short;
typedef unsigned short UShort;
typedef int Long;
typedef unsigned int ULong;
typedef long long LongLong;
typedef unsigned long long ULongLong;
typedef float Float;
typedef double Double;
typedef char* String;

String string_alloc(ULong length);
String string_dup(const char* text);
void string_free(String text);

class ReadCondition
{
public:
    virtual ~ReadCondition();
};

class QueryCondition : public ReadCondition
{
};

} // namespace DDS

namespace org {
namespace opensplice {
namespace DDS_RMI {

class SDKMutex
{
public:
    virtual ~SDKMutex();
    virtual int initialize() = 0;
    virtual int lock() = 0;
    virtual int unlock() = 0;
};

class SDKMutexFactory
{
public:
    static SDKMutex* createSDKMutex();
};

class RefCounted
{
public:
    RefCounted();
    virtual ~RefCounted();
    void inc_refcount();
    void dec_refcount();
};

template <class T>
class shared_ptr
{
public:
    shared_ptr();
    shared_ptr(T* object);
    shared_ptr(const shared_ptr& other);
    template <class U>
    shared_ptr(const shared_ptr<U>& other);
    virtual ~shared_ptr();
    shared_ptr& operator=(const shared_ptr& other);
    void reset();
    void reset(T* object);
    T* operator->() const;
    T* get() const;
};

class SystemException : public virtual std::exception
{
public:
    ~SystemException() noexcept override;
    const char* what() const noexcept override;

    std::string m_Msg;
    int dds_code;
};

class TIMEOUT : public virtual SystemException
{
public:
    TIMEOUT();
};

class BAD_PARAM : public virtual SystemException
{
public:
    explicit BAD_PARAM(const char* message);
};

class INTERNAL_ERROR : public virtual SystemException
{
public:
    INTERNAL_ERROR(const char* message, int code);
};

class SERVICE_NOT_FOUND : public virtual SystemException
{
public:
    SERVICE_NOT_FOUND();
};

class BAD_INV_ORDER : public virtual SystemException
{
public:
    explicit BAD_INV_ORDER(const char* message);
};

class CAsyncReplyHandler : public virtual RefCounted
{
public:
    virtual void asyncWait(DDS::QueryCondition* condition) = 0;
    virtual void handleReply(DDS::ReadCondition* condition) = 0;
};

class CAsyncReplyHandlerImpl : public CAsyncReplyHandler
{
public:
    void asyncWait(DDS::QueryCondition* condition) override;

    bool bActive;
};

class CInterfaceProxy : public virtual RefCounted
{
public:
    void setTimeout(unsigned milliseconds);
    unsigned getTimeout();
};
typedef shared_ptr<CInterfaceProxy> CInterfaceProxy_ref;

class CInterfaceRegistry : public virtual RefCounted
{
public:
    CInterfaceProxy_ref resolve(const std::string& server_name, const std::string& proxy_name,
                                DDS::Long server_instance, DDS::Long proxy_instance);
};
typedef shared_ptr<CInterfaceRegistry> CInterfaceRegistry_ref;

class CRuntime : public virtual RefCounted
{
public:
    static shared_ptr<CRuntime> getDefaultRuntime();
    static shared_ptr<CRuntime> getRuntime(DDS::Long domain);
    bool start(int argc, const char* argv[]);
    bool stop();
    bool isUsable();
    void run();
    void run(std::string service);
    void shutdown(bool wait = true);
    void shutdown(std::string service);
    bool is_running();
    CInterfaceRegistry_ref getRegistry();
    void setTimeout(unsigned milliseconds);
    unsigned getTimeout();
};
typedef shared_ptr<CRuntime> CRuntime_ref;

class DDS_Service
{
public:
    template <class Skeleton, class Impl>
    static bool register_interface(const shared_ptr<Impl>& implementation, const std::string& name,
                                   DDS::Long instance);
    static bool unregister_interface(const std::string& name, DDS::Long instance);
    static void run(const std::string& name);
    static void shutdown(const std::string& name);
    static bool is_running(const std::string& name);
    template <class Proxy>
    static bool getServerProxy(const std::string& name, DDS::Long proxy_instance, shared_ptr<Proxy>& proxy);
    template <class Proxy>
    static bool getServerProxy(const std::string& name, DDS::Long server_instance, DDS::Long proxy_instance,
                               shared_ptr<Proxy>& proxy);
};

} // namespace DDS_RMI
} // namespace opensplice
} // namespace org

#endif
