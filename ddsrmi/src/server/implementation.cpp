// SPDX-License-Identifier: Apache-2.0
#include "server/implementation.h"

#include <exception>

#include "ddsrmi/encoding.h"

namespace org::opensplice::DDS_RMI {

namespace {

constexpr std::size_t longest_explanation = 1000;

Implementation::Outcome failed(const std::string& explanation)
{
    const std::string text = explanation.substr(0, longest_explanation);
    return {ReplyKind::failed, std::vector<DDS::Octet>(text.begin(), text.end())};
}

} // namespace

Implementation::Implementation(const shared_ptr<CInterfaceSkeleton>& skeleton, const std::string& service)
    : m_skeleton(skeleton), m_interface(skeleton->_interface_info()),
      m_unknown("refused a request to service '" + service + "' for an operation that it does not have"),
      m_undecodable("refused a request to service '" + service + "' that cannot be decoded")
{
    for (std::size_t i = 0; i < m_interface.operation_count; ++i)
        m_operations.emplace(m_interface.operations[i].hash, i);
}

Implementation::Outcome Implementation::run(DDS_RMI_Request& request)
{
    const auto operation = m_operations.find(request.operation);
    if (operation == m_operations.end()) {
        m_unknown.count();
        return {ReplyKind::unknown_operation, {}};
    }
    try {
        return run(operation->second, request);
    } catch (const DecodingError& error) {
        m_undecodable.count();
        return failed(error.what());
    } catch (const std::exception& error) {
        report_current_exception(std::string("the implementation of ") +
                                 m_interface.operations[operation->second].name);
        return failed(error.what());
    } catch (...) {
        report_current_exception(std::string("the implementation of ") +
                                 m_interface.operations[operation->second].name);
        return failed("it threw something that is no std::exception");
    }
}

Implementation::Outcome Implementation::run(std::size_t operation, DDS_RMI_Request& request)
{
    Decoder arguments(request.arguments._buffer, request.arguments._length);
    Encoder result;
    m_skeleton->_dispatch(operation, arguments, result);
    return {ReplyKind::result, result.release()};
}

} // namespace org::opensplice::DDS_RMI
