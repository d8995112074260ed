// SPDX-License-Identifier: Apache-2.0
#ifndef LEAST_FRAMEWORK_KX_JSON_H
#define LEAST_FRAMEWORK_KX_JSON_H

#include <string>

struct json_object;

namespace zeb {
namespace api {
namespace data {

class KX_JSON
{
public:
    KX_JSON();
    explicit KX_JSON(const json_object* object);
    KX_JSON(const KX_JSON& other);
    KX_JSON& operator=(const KX_JSON& other);
    ~KX_JSON();

    KX_JSON get_json_object(const std::string& key) const;
    std::string get_json_string(const std::string& key) const;
    int get_json_int(const std::string& key) const;
};

} // namespace data
} // namespace api
} // namespace zeb

#endif
