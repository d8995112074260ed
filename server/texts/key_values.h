// SPDX-License-Identifier: Apache-2.0
#ifndef SERVER_TEXTS_KEY_VALUES_H
#define SERVER_TEXTS_KEY_VALUES_H

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace varnel {

/// Pairs of a key and a value: a node's configuration, or its readings.
class KeyValues
{
public:
    /// No pairs.
    KeyValues() = default;

    /// Reads pairs such as "interval=30; power=low", separated by semicolons or commas; blanks around keys
    /// and values do not count. A key is a letter, then letters, digits, '_', '-' and '.'; a value is
    /// printable ASCII without separators and '='; neither is empty, and no key stands there twice. Throws
    /// Refusal for anything else, for no pairs at all, and beyond the limits.
    static KeyValues parse(std::string_view text);

    std::size_t size() const { return m_pairs.size(); }
    /// The pairs in the order in which they were given, as "key=value; key=value".
    std::string text() const;

private:
    bool has_key(std::string_view key) const;
    void add(std::string_view pair);

    std::vector<std::pair<std::string, std::string>> m_pairs;
};

} // namespace varnel

#endif
