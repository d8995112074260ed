// SPDX-License-Identifier: Apache-2.0
#include "allocation_probe.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>

#include "recording.h"

namespace conformance {
namespace {

enum class Form { object, array };

struct Block
{
    void* address;
    Form form;
};

// A table without allocations of its own; far more than any test leaves.
constexpr std::size_t table_size = 1 << 14;
Block table[table_size]; // guarded by table_mutex, like block_count's changes
std::mutex table_mutex;
std::atomic<std::size_t> block_count{0};

thread_local std::size_t allocations_to_failure = 0;

void note(void* address, Form form)
{
    const std::lock_guard lock(table_mutex);
    if (block_count == table_size)
        std::abort();
    table[block_count] = {address, form};
    ++block_count;
}

/// Whether the block was in the table; it is in any case not any more.
bool take_out(void* address)
{
    if (block_count == 0)
        return false;
    const std::lock_guard lock(table_mutex);
    Block* const end = table + block_count;
    Block* const found =
        std::find_if(table, end, [address](const Block& block) { return block.address == address; });
    if (found == end)
        return false;
    std::move(found + 1, end, found);
    --block_count;
    return true;
}

std::vector<void*> blocks(Form form)
{
    const Unobserved unobserved;
    std::vector<void*> found;
    found.reserve(table_size);
    const std::lock_guard lock(table_mutex);
    for (std::size_t i = 0; i < block_count; ++i)
        if (table[i].form == form)
            found.push_back(table[i].address);
    return found;
}

std::string event(const char* verb, Form form, std::size_t size)
{
    return form == Form::array ? std::string(verb) + " array " + std::to_string(size)
                               : std::string(verb) + " object";
}

bool is_to_fail()
{
    return allocations_to_failure != 0 && --allocations_to_failure == 0;
}

void* allocate_observed(std::size_t size, Form form)
{
    const Unobserved unobserved;
    if (is_to_fail()) {
        record("memory", event("no", form, size));
        throw std::bad_alloc();
    }
    void* const address = std::malloc(size == 0 ? 1 : size);
    if (address == nullptr)
        throw std::bad_alloc();
    std::memset(address, garbage, size);
    note(address, form);
    record("memory", event("new", form, size));
    return address;
}

void* allocate(std::size_t size, Form form)
{
    if (is_observed())
        return allocate_observed(size, form);
    void* const address = std::malloc(size == 0 ? 1 : size);
    if (address == nullptr)
        throw std::bad_alloc();
    return address;
}

void release(void* address, Form form) noexcept
{
    if (address == nullptr)
        return;
    const bool is_observed_now = is_observed();
    const Unobserved unobserved;
    if (take_out(address) && is_observed_now)
        record("memory", form == Form::array ? "delete array" : "delete object");
    std::free(address);
}

} // namespace

void fail_allocation(std::size_t nth)
{
    allocations_to_failure = nth;
}

std::vector<std::string> arrays_left()
{
    const Unobserved unobserved;
    std::vector<std::string> texts;
    for (const void* const array : blocks(Form::array))
        texts.emplace_back(static_cast<const char*>(array));
    return texts;
}

std::size_t objects_left()
{
    return blocks(Form::object).size();
}

void free_arrays_left()
{
    for (void* const array : blocks(Form::array))
        release(array, Form::array);
}

bool is_left(const void* array)
{
    const std::vector<void*> arrays = blocks(Form::array);
    return std::find(arrays.begin(), arrays.end(), array) != arrays.end();
}

} // namespace conformance

using conformance::Form;

void* operator new(std::size_t size)
{
    return conformance::allocate(size, Form::object);
}

void* operator new[](std::size_t size)
{
    return conformance::allocate(size, Form::array);
}

void operator delete(void* address) noexcept
{
    conformance::release(address, Form::object);
}

void operator delete(void* address, std::size_t) noexcept
{
    conformance::release(address, Form::object);
}

void operator delete[](void* address) noexcept
{
    conformance::release(address, Form::array);
}

void operator delete[](void* address, std::size_t) noexcept
{
    conformance::release(address, Form::array);
}
