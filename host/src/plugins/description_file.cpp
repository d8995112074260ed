// SPDX-License-Identifier: Apache-2.0
#include "plugins/description_file.h"

#include <json-c/json_pointer.h>
#include <json-c/linkhash.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

#include "system/message_log.h"
#include "json/json_reader.h"

namespace zorbd {

using namespace strict_json;

namespace {

/// Deeper than any description; a reference to something around itself would never end.
constexpr int max_depth = 64;

std::string text_of(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw std::system_error(errno, std::generic_category());
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// What a reference such as "#/components/schemas/Name" stands for.
json_object* referred_to(json_object* reference, json_object* document)
{
    const std::string text(string_of(reference));
    json_object* found = nullptr;
    if (text.compare(0, 2, "#/") != 0 || json_pointer_get(document, text.c_str() + 1, &found) != 0)
        throw std::runtime_error("the reference " + text + " leads nowhere in the file");
    return found;
}

/// A copy of `value` with what its references stand for.
JsonValue resolved(json_object* value, json_object* document, int depth = 0);

JsonValue resolved_object(json_object* object, json_object* document, int depth)
{
    JsonValue copy(json_object_new_object());
    json_object_object_foreach(object, key, one) put_member(copy.get(), key, resolved(one, document, depth));
    return copy;
}

JsonValue resolved_array(json_object* array, json_object* document, int depth)
{
    JsonValue copy(json_object_new_array());
    for (std::size_t i = 0; i < json_object_array_length(array); ++i)
        json_object_array_add(copy.get(),
                              resolved(json_object_array_get_idx(array, i), document, depth).release());
    return copy;
}

JsonValue resolved(json_object* value, json_object* document, int depth)
{
    if (depth > max_depth)
        throw std::runtime_error("it nests too deeply, or a reference leads back to itself");
    if (json_object_is_type(value, json_type_array))
        return resolved_array(value, document, depth + 1);
    if (!json_object_is_type(value, json_type_object))
        return JsonValue(json_object_get(value));
    json_object* reference = member(value, "$ref");
    if (json_object_is_type(reference, json_type_string))
        return resolved(referred_to(reference, document), document, depth + 1);
    return resolved_object(value, document, depth + 1);
}

} // namespace

std::string DescriptionFile::path_for(const std::string& library)
{
    return std::filesystem::path(library).replace_extension(".openrpc.json").string();
}

DescriptionFile::DescriptionFile(const std::string& library)
{
    const std::string file = path_for(library);
    try {
        read(file);
    } catch (const std::system_error& error) {
        log_message("plug-in " + library + ": its methods are not described in " + file + ": " +
                    error.code().message());
    } catch (const std::exception& error) {
        m_methods.clear();
        log_message("plug-in " + library + ": its methods are not described, because " + file +
                    " is broken: " + error.what());
    }
}

void DescriptionFile::read(const std::string& file)
{
    const JsonValue document = parse_json(text_of(file), max_depth);
    json_object* methods = member(document.get(), "methods");
    if (!json_object_is_type(methods, json_type_array))
        throw std::runtime_error("it has no array \"methods\"");
    for (std::size_t i = 0; i < json_object_array_length(methods); ++i) {
        JsonValue method = resolved(json_object_array_get_idx(methods, i), document.get());
        json_object* name = member(method.get(), "name");
        if (!json_object_is_type(name, json_type_string))
            throw std::runtime_error("its method " + std::to_string(i + 1) + " has no name");
        m_methods[std::string(string_of(name))] = std::move(method);
    }
}

json_object* DescriptionFile::method(const std::string& name) const
{
    const auto found = m_methods.find(name);
    return found == m_methods.end() ? nullptr : found->second.get();
}

} // namespace zorbd
