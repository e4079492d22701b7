// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <simdjson.h>

#include <array>
#include <cmath>
#include <optional>
#include <string_view>

/// The wanted fields of an object in one pass over it. Where a key stands twice its last value
/// counts, as in the programs that write the logs.
template <size_t Count>
class JsonFields {
public:
    JsonFields(const simdjson::dom::object &object, const std::array<std::string_view, Count> &keys)
    {
        for (const simdjson::dom::key_value_pair field : object) {
            for (size_t i = 0; i < Count; ++i) {
                if (field.key == keys[i])
                    m_values[i] = field.value;
            }
        }
    }

    /// The value of the key with that index; nothing when the object has no such key.
    const std::optional<simdjson::dom::element> &operator[](size_t i) const { return m_values[i]; }

private:
    std::array<std::optional<simdjson::dom::element>, Count> m_values;
};

/// The value as a T (string_view, object, array, bool ...); nothing when it is missing or another.
template <typename T>
std::optional<T> jsonAs(const std::optional<simdjson::dom::element> &value)
{
    T result;
    if (!value || value->get<T>().get(result) != simdjson::SUCCESS)
        return std::nullopt;
    return result;
}

/// The value as a token count: 0 when it is missing or not an integer of 64 bits. 100.0 is the
/// integer 100, since JSON does not tell the two apart.
inline qint64 jsonCount(const std::optional<simdjson::dom::element> &value)
{
    if (const auto integer = jsonAs<int64_t>(value))
        return *integer;
    const double number = value && value->is_double() ? value->get_double().value() : 0;
    const bool whole = std::trunc(number) == number && number >= -0x1p63 && number < 0x1p63;
    return whole ? static_cast<qint64>(number) : 0;
}

inline QString toQString(std::string_view utf8)
{
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}
