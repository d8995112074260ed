// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_RMI_FUZZ_STAGE_H
#define TESTS_RMI_FUZZ_STAGE_H

#include <cstddef>
#include <string>

#include "ddsrmi.h"
#include "fuzzed_InterfaceInfo.h"
#include "fuzzed_InterfaceProxy.h"
#include "support/dds_domain.h"

namespace fuzz {

namespace rmi = org::opensplice::DDS_RMI;
using Proxy = rmi::shared_ptr<DDS_RMI::Fuzzed::TargetInterfaceProxy>;

constexpr const char* service = "fuzz";
constexpr DDS::Long instance = 1;

inline const rmi::InterfaceInfo& target()
{
    return DDS_RMI::Fuzzed::Target_interface_info();
}

/// The name of the operation that an input's byte chooses.
std::string operation_name(std::size_t choice);

/// Ends the process: the fuzzer has found something.
[[noreturn]] void give_up(const char* what);

/// A DDS domain with a runtime of the RMI layer, whose reports are dropped. It lives as long as the process.
class Stage
{
public:
    Stage();

    const rmi::CRuntime_ref& runtime() const { return m_runtime; }

private:
    const test_support::DdsDomain m_domain;
    rmi::CRuntime_ref m_runtime;
};

} // namespace fuzz

#endif
