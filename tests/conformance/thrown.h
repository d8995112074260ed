// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_CONFORMANCE_THROWN_H
#define TESTS_CONFORMANCE_THROWN_H

#include <cxxabi.h>

#include <cstdlib>
#include <exception>
#include <memory>
#include <string>
#include <typeinfo>

namespace conformance {

/// What `action` throws; nothing when it returns. Allocates nothing itself.
template <class Action>
std::exception_ptr caught(const Action& action)
{
    try {
        action();
    } catch (...) {
        return std::current_exception();
    }
    return nullptr;
}

/// The name of a type as the source has it.
inline std::string type_name(const std::type_info& type)
{
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
    return status == 0 ? name.get() : type.name();
}

/// The type and text of an exception, e.g. "std::out_of_range: stoi"; empty for none.
inline std::string description(const std::exception_ptr& exception)
{
    if (exception == nullptr)
        return "";
    try {
        std::rethrow_exception(exception);
    } catch (const std::exception& error) {
        return type_name(typeid(error)) + ": " + error.what();
    } catch (...) {
        return "something else";
    }
}

} // namespace conformance

#endif
