// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_EXCEPTIONS_H
#define DDSRMI_EXCEPTIONS_H

#include <exception>
#include <string>

namespace org {
namespace opensplice {
namespace DDS_RMI {

/// Base of what the RMI layer throws.
class SystemException : public virtual std::exception
{
public:
    /// `message` is for people; `code` is the DDS return code behind the failure, where there is one.
    explicit SystemException(const std::string& message = "RMI system exception", int code = 0);
    ~SystemException() noexcept override;
    /// The message; valid for as long as the exception.
    const char* what() const noexcept override;

    /// What has failed, for people.
    std::string m_Msg;
    /// The DDS return code behind the failure; 0 where there is none.
    int dds_code;
};

/// A reply did not come in time, or a request could not be handed over within the blocking time.
class TIMEOUT : public virtual SystemException
{
public:
    /// With a message that says no more than that.
    TIMEOUT();
    /// `message` names what was waited for.
    explicit TIMEOUT(const std::string& message);
    ~TIMEOUT() noexcept override;
};

/// A caller's error, such as a reply handler that is still in use.
class BAD_PARAM : public virtual SystemException
{
public:
    /// `message` says what is wrong with the call.
    explicit BAD_PARAM(const char* message);
    ~BAD_PARAM() noexcept override;
};

/// A failure of the RMI layer, of DDS below it, or of the implementation at the other end.
class INTERNAL_ERROR : public virtual SystemException
{
public:
    /// `code` is the DDS return code behind the failure, where there is one.
    explicit INTERNAL_ERROR(const char* message, int code = 0);
    ~INTERNAL_ERROR() noexcept override;
};

/// No such service is there.
class SERVICE_NOT_FOUND : public virtual SystemException
{
public:
    /// With a message that says no more than that.
    SERVICE_NOT_FOUND();
    /// `message` names the service.
    explicit SERVICE_NOT_FOUND(const std::string& message);
    ~SERVICE_NOT_FOUND() noexcept override;
};

/// An operation that the object's state does not allow, such as a call after the runtime was stopped.
class BAD_INV_ORDER : public virtual SystemException
{
public:
    /// `message` says what was called too early or too late.
    explicit BAD_INV_ORDER(const char* message);
    ~BAD_INV_ORDER() noexcept override;
};

/// Base of the exceptions that interface files declare. An implementation throws them; the caller gets them.
class UserException : public virtual std::exception
{
public:
    ~UserException() noexcept override;
    /// The exception's name in the interface file, e.g. "M::TooHot".
    const char* what() const noexcept override;

protected:
    /// The name stays the caller's and must outlive the exception and its copies.
    explicit UserException(const char* name);
    /// Exceptions are values.
    UserException(const UserException&) = default;
    /// Takes the other's members.
    UserException& operator=(const UserException&) = default;

private:
    const char* m_name;
};

} // namespace DDS_RMI
} // namespace opensplice
} // namespace org

#endif
